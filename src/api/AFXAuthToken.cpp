#include "api/AFXAuthToken.h"

#include <nlohmann/json.hpp>

#include "platform/JSON.h"

namespace tb {

AFXAuthToken::AFXAuthToken(std::string key, std::string secret, std::int64_t expiration)
    : key_(std::move(key)), secret_(std::move(secret)), expiration_(expiration) {}

std::optional<AFXAuthToken> AFXAuthToken::initWithDict(const nlohmann::json& dictionary) {
    if (!dictionary.is_object() || dictionary.empty()) {
        return std::nullopt;
    }
    const JSON reader(dictionary);
    return AFXAuthToken(reader["oauth_token"].stringValue(),
                        reader["oauth_token_secret"].stringValue(),
                        reader["oauth_token_expiration"].int64Value());
}

nlohmann::json AFXAuthToken::encodeWithCoder() const {
    return {{"key", key_}, {"secret", secret_}, {"expiration", expiration_}};
}

std::optional<AFXAuthToken> AFXAuthToken::initWithCoder(const nlohmann::json& archive) {
    if (!archive.is_object()) {
        return std::nullopt;
    }
    const JSON reader(archive);
    return AFXAuthToken(reader["key"].stringValue(), reader["secret"].stringValue(),
                        reader["expiration"].int64Value());
}

}  // namespace tb
