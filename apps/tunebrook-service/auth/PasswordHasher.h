#pragma once

#include <string>
#include <string_view>

namespace tb::service {

// Salted PBKDF2-SHA256, stored as "pbkdf2-sha256$<iterations>$<salt hex>$<hash hex>".
class PasswordHasher {
  public:
    static std::string hash(std::string_view password);
    static bool verify(std::string_view password, std::string_view stored);
};

}  // namespace tb::service
