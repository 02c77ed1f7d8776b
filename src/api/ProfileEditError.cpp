#include "api/ProfileEditError.h"

#include "api/TBJSONError.h"
#include "platform/JSON.h"

namespace tb {

namespace {

constexpr const char* kTitle = "title";
constexpr int kUnauthorized = 401;

// The texts of {"field": ["text", ...], ...} (a bare text per field counts too), in the
// order of the fields, one per line.
std::string errorTexts(const JSON& errors) {
    std::string joined;
    auto add = [&joined](const JSON& text) {
        const std::string value = text.stringValue();
        if (value.empty()) {
            return;
        }
        if (!joined.empty()) {
            joined += '\n';
        }
        joined += value;
    };
    for (const auto& [field, texts] : errors.dictionaryValue()) {
        if (texts.isArray()) {
            for (const JSON& text : texts.arrayValue()) {
                add(text);
            }
        } else {
            add(texts);
        }
    }
    return joined;
}

}  // namespace

Error ProfileEditError::makeErrorWithMessage(std::string title, std::string message) {
    return Error{kDomain, errorWithMessage, std::move(message), {{kTitle, std::move(title)}}};
}

Error ProfileEditError::makeGeneric() {
    return Error{kDomain, generic, {}, {}};
}

Error ProfileEditError::makeInvalidSignature() {
    return Error{kDomain, invalidSignature, {}, {}};
}

Error ProfileEditError::fromFailure(const Error& failure) {
    const std::optional<TBJSONError> error = TBJSONError::from(failure);
    if (!error) {
        return makeGeneric();
    }
    if (error->statusCode() == kUnauthorized) {
        return makeInvalidSignature();
    }
    const JSON json = error->json.value_or(JSON());
    const std::string message = json["message"].stringValue();
    const std::string texts = errorTexts(json["errors"]);
    if (texts.empty() && message.empty()) {
        return makeGeneric();
    }
    if (texts.empty()) {
        return makeErrorWithMessage({}, message);
    }
    return makeErrorWithMessage(message, texts);
}

std::optional<std::string> ProfileEditError::title(const Error& error) {
    if (error.domain != kDomain || error.code != errorWithMessage) {
        return std::nullopt;
    }
    auto found = error.userInfo.find(kTitle);
    return found == error.userInfo.end() ? std::string() : found->second;
}

}  // namespace tb
