#include "tunebrook-service/routes/HighlightEntities.h"

#include <algorithm>
#include <map>

#include <nlohmann/json.hpp>

#include "tunebrook-service/http/IdText.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr size_t kMaxBody = 64 * 1024;

struct Draft {
    std::string kind;
    std::string id;
    std::optional<int64_t> position;
};

std::string text(const json& value) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_number_integer()) {
        return std::to_string(value.get<int64_t>());
    }
    return {};
}

std::optional<std::vector<Draft>> fromJson(const json& list) {
    if (!list.is_array() || list.size() > HighlightEntities::kMaxEntities) {
        return std::nullopt;
    }
    std::vector<Draft> drafts;
    for (const auto& entry : list) {
        if (!entry.is_object()) {
            return std::nullopt;
        }
        Draft draft{text(entry.value("kind", json())), text(entry.value("id", json())), {}};
        if (entry.contains("position")) {
            auto position = IdText::parse(text(entry["position"]));
            if (!position) {
                return std::nullopt;
            }
            draft.position = *position;
        }
        drafts.push_back(std::move(draft));
    }
    return drafts;
}

json parseLimited(const std::string& body) {
    if (body.size() > kMaxBody) {
        return json();
    }
    // Depth is bounded by the size limit and checked by the shape test that follows.
    return json::parse(body, nullptr, false);
}

// "entities[][kind]" starts a new entity each time a field repeats; "entities[3][kind]"
// groups by the number.
std::optional<std::vector<Draft>> fromFlattened(const std::vector<FormParam>& params) {
    const std::string prefix = "entities[";
    std::vector<Draft> drafts;
    std::map<std::string, size_t> numbered;
    for (const auto& param : params) {
        if (param.name.compare(0, prefix.size(), prefix) != 0) {
            continue;
        }
        size_t close = param.name.find(']', prefix.size());
        if (close == std::string::npos || param.name.size() < close + 3 ||
            param.name[close + 1] != '[' || param.name.back() != ']') {
            return std::nullopt;
        }
        std::string index = param.name.substr(prefix.size(), close - prefix.size());
        std::string field = param.name.substr(close + 2, param.name.size() - close - 3);
        Draft* draft = nullptr;
        if (index.empty()) {
            bool repeats = drafts.empty() || (field == "kind" && !drafts.back().kind.empty()) ||
                           (field == "id" && !drafts.back().id.empty()) ||
                           (field == "position" && drafts.back().position);
            if (repeats) {
                drafts.emplace_back();
            }
            draft = &drafts.back();
        } else {
            auto [it, added] = numbered.emplace(index, drafts.size());
            if (added) {
                drafts.emplace_back();
            }
            draft = &drafts[it->second];
        }
        if (drafts.size() > HighlightEntities::kMaxEntities) {
            return std::nullopt;
        }
        if (field == "kind") {
            draft->kind = param.value;
        } else if (field == "id") {
            draft->id = param.value;
        } else if (field == "position") {
            auto position = IdText::parse(param.value);
            if (!position) {
                return std::nullopt;
            }
            draft->position = *position;
        }
    }
    if (drafts.empty()) {
        return std::nullopt;
    }
    return drafts;
}

}  // namespace

std::optional<std::vector<PinnedEntity>> HighlightEntities::read(
    const std::vector<FormParam>& params,
    const std::string& contentType,
    const std::string& body) {
    std::optional<std::vector<Draft>> drafts;
    if (auto field = FormParams::find(params, "entities")) {
        drafts = fromJson(parseLimited(*field));
    } else if (contentType.find("application/json") != std::string::npos) {
        json parsed = parseLimited(body);
        if (parsed.is_object() && parsed.contains("entities")) {
            drafts = fromJson(parsed["entities"]);
        }
    } else {
        drafts = fromFlattened(params);
    }
    if (!drafts) {
        return std::nullopt;
    }
    std::stable_sort(drafts->begin(), drafts->end(), [](const Draft& a, const Draft& b) {
        return a.position.value_or(INT64_MAX) < b.position.value_or(INT64_MAX);
    });
    std::vector<PinnedEntity> entities;
    for (const auto& draft : *drafts) {
        auto id = IdText::parse(draft.id);
        if (!id || (draft.kind != "song" && draft.kind != "album" && draft.kind != "playlist")) {
            return std::nullopt;
        }
        entities.push_back({draft.kind, *id});
    }
    return entities;
}

}  // namespace tb::service
