#include "tunebrook-service/http/FormParams.h"

#include "tunebrook-service/core/PercentCodec.h"

namespace tb::service {

std::optional<std::vector<FormParam>> FormParams::parse(std::string_view text) {
    std::vector<FormParam> params;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('&', start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        std::string_view pair = text.substr(start, end - start);
        start = end + 1;
        if (pair.empty()) {
            if (end == text.size()) {
                break;
            }
            continue;
        }
        if (params.size() >= kMaxParams) {
            return std::nullopt;
        }
        size_t equals = pair.find('=');
        FormParam param;
        auto name = PercentCodec::decodeFormComponent(pair.substr(0, equals));
        if (!name) {
            return std::nullopt;
        }
        param.name = std::move(*name);
        if (equals == std::string_view::npos) {
            param.hasValue = false;
        } else {
            auto value = PercentCodec::decodeFormComponent(pair.substr(equals + 1));
            if (!value) {
                return std::nullopt;
            }
            param.value = std::move(*value);
        }
        params.push_back(std::move(param));
    }
    return params;
}

std::optional<std::string> FormParams::find(const std::vector<FormParam>& params,
                                            std::string_view name) {
    for (const auto& param : params) {
        if (param.name == name) {
            return param.value;
        }
    }
    return std::nullopt;
}

}  // namespace tb::service
