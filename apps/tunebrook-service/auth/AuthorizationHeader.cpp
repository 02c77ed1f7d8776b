#include "tunebrook-service/auth/AuthorizationHeader.h"

#include "tunebrook-service/core/PercentCodec.h"

namespace tb::service {

namespace {

constexpr size_t kMaxEntries = 16;

std::string_view trim(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace

std::optional<std::map<std::string, std::string>> AuthorizationHeader::parse(
    std::string_view header) {
    header = trim(header);
    constexpr std::string_view kScheme = "OAuth ";
    if (header.size() < kScheme.size() || header.substr(0, kScheme.size()) != kScheme) {
        return std::nullopt;
    }
    header.remove_prefix(kScheme.size());
    std::map<std::string, std::string> entries;
    size_t start = 0;
    while (start < header.size()) {
        size_t comma = header.find(',', start);
        if (comma == std::string_view::npos) {
            comma = header.size();
        }
        std::string_view entry = trim(header.substr(start, comma - start));
        start = comma + 1;
        size_t equals = entry.find('=');
        if (equals == std::string_view::npos || equals == 0) {
            return std::nullopt;
        }
        std::string_view quoted = entry.substr(equals + 1);
        if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') {
            return std::nullopt;
        }
        auto key = PercentCodec::decode(entry.substr(0, equals));
        auto value = PercentCodec::decode(quoted.substr(1, quoted.size() - 2));
        if (!key || !value || entries.size() >= kMaxEntries || entries.count(*key)) {
            return std::nullopt;
        }
        entries.emplace(std::move(*key), std::move(*value));
    }
    if (entries.empty()) {
        return std::nullopt;
    }
    return entries;
}

}  // namespace tb::service
