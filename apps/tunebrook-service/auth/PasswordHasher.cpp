#include "tunebrook-service/auth/PasswordHasher.h"

#include <string>
#include <vector>

#include "tunebrook-service/core/Crypto.h"

namespace tb::service {

namespace {

constexpr int kIterations = 20000;
constexpr size_t kHashLength = 32;

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    size_t start = 0;
    while (true) {
        size_t end = text.find(separator, start);
        parts.emplace_back(text.substr(start, end - start));
        if (end == std::string_view::npos) {
            return parts;
        }
        start = end + 1;
    }
}

std::string unhex(const std::string& hex) {
    std::string out;
    if (hex.size() % 2 != 0) {
        return out;
    }
    for (size_t i = 0; i < hex.size(); i += 2) {
        out.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return out;
}

bool isHex(const std::string& text) {
    return text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

}  // namespace

std::string PasswordHasher::hash(std::string_view password) {
    std::string salt = Crypto::randomBytes(16);
    std::string derived = Crypto::pbkdf2Sha256(password, salt, kIterations, kHashLength);
    return "pbkdf2-sha256$" + std::to_string(kIterations) + "$" + Crypto::hex(salt) + "$" +
           Crypto::hex(derived);
}

bool PasswordHasher::verify(std::string_view password, std::string_view stored) {
    auto parts = split(stored, '$');
    if (parts.size() != 4 || parts[0] != "pbkdf2-sha256" || !isHex(parts[2]) || !isHex(parts[3]) ||
        parts[1].empty() || parts[1].size() > 7 ||
        parts[1].find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    int iterations = std::stoi(parts[1]);
    std::string salt = unhex(parts[2]);
    std::string expected = unhex(parts[3]);
    if (iterations <= 0 || expected.empty()) {
        return false;
    }
    std::string derived = Crypto::pbkdf2Sha256(password, salt, iterations, expected.size());
    return Crypto::constantTimeEqual(derived, expected);
}

}  // namespace tb::service
