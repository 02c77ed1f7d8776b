#include "tunebrook-service/auth/EmailRule.h"

#include <algorithm>
#include <cctype>

namespace tb::service {

bool EmailRule::valid(const std::string& email) {
    if (email.empty() || email.size() > 254) {
        return false;
    }
    size_t at = email.find('@');
    if (at == std::string::npos || at == 0 || email.find('@', at + 1) != std::string::npos) {
        return false;
    }
    std::string domain = email.substr(at + 1);
    size_t dot = domain.find('.');
    if (dot == std::string::npos || dot == 0 || domain.back() == '.') {
        return false;
    }
    return std::none_of(email.begin(), email.end(), [](unsigned char c) {
        return std::isspace(c) || c < 0x20 || c == '"' || c == '<' || c == '>' || c == ',';
    });
}

std::string EmailRule::normalized(const std::string& email) {
    std::string out = email;
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

}  // namespace tb::service
