#include "platform/HttpTransport.h"

#include <cctype>

namespace tb {

namespace {

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<std::string> findHeader(const HttpHeaders& headers, std::string_view name) {
    for (const auto& [key, value] : headers) {
        if (sameName(key, name)) {
            return value;
        }
    }
    return std::nullopt;
}

void setHeader(HttpHeaders& headers, std::string_view name, std::string value) {
    bool replaced = false;
    for (auto entry = headers.begin(); entry != headers.end();) {
        if (!sameName(entry->first, name)) {
            ++entry;
        } else if (!replaced) {
            entry->second = std::move(value);
            replaced = true;
            ++entry;
        } else {
            entry = headers.erase(entry);
        }
    }
    if (!replaced) {
        headers.emplace_back(std::string(name), std::move(value));
    }
}

}  // namespace tb
