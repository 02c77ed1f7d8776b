#include "platform/HttpTransport.h"

#include <cctype>

namespace tb {

std::optional<std::string> findHeader(const HttpHeaders& headers, std::string_view name) {
    for (const auto& [key, value] : headers) {
        if (key.size() != name.size()) {
            continue;
        }
        bool same = true;
        for (size_t i = 0; i < key.size() && same; ++i) {
            same = std::tolower(static_cast<unsigned char>(key[i])) ==
                   std::tolower(static_cast<unsigned char>(name[i]));
        }
        if (same) {
            return value;
        }
    }
    return std::nullopt;
}

}  // namespace tb
