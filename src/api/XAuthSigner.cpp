#include "api/XAuthSigner.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "api/FormParameters.h"
#include "api/XAuthEncoding.h"
#include "platform/Clock.h"
#include "platform/PercentEncoding.h"
#include "platform/RandomSource.h"

namespace tb {

namespace {

// The form body's parameters, read back the way a URL parser reads "http://localhost?" and
// the body: up to a "#", and none at all when that isn't a valid query. Nothing when the
// request has no form body.
std::optional<FormPairs> bodyItems(const HttpRequest& request) {
    const auto contentType = findHeader(request.headers, "Content-Type");
    if (!contentType ||
        contentType->find("application/x-www-form-urlencoded") == std::string::npos ||
        request.body.empty()) {
        return std::nullopt;
    }
    const auto query = std::string_view(request.body).substr(0, request.body.find('#'));
    return parseQueryItems(query).value_or(FormPairs{});
}

FormPairs urlItems(const HttpRequest& request) {
    const std::string& url = request.url;
    const auto question = url.find('?');
    if (question == std::string::npos) {
        return {};
    }
    const auto end = url.find('#', question);
    const auto query = std::string_view(url).substr(
        question + 1, end == std::string::npos ? std::string::npos : end - question - 1);
    return parseQueryItems(query).value_or(FormPairs{});
}

}  // namespace

XAuthSigner::XAuthSigner(Configuration configuration, RandomSource& random, Clock& clock)
    : configuration_(std::move(configuration)), random_(random), clock_(clock) {}

std::string XAuthSigner::sign(const HttpRequest& request) const {
    Parameters oauth = oauthParameters();
    const std::string base = signatureBaseString(request, signedParameters(request, oauth));
    oauth["oauth_signature"] = hmacSha1Base64(signatureKey(), base);
    return authorizationHeader(oauth);
}

XAuthSigner::Parameters XAuthSigner::oauthParameters() const {
    const auto nonce =
        random_.secureUniform(static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()));
    Parameters parameters = {
        {"oauth_consumer_key", configuration_.consumerKey},
        {"oauth_signature_method", configuration_.signatureMethod},
        {"oauth_timestamp", std::to_string(static_cast<std::int64_t>(clock_.now()))},
        {"oauth_nonce", std::to_string(nonce)},
        {"oauth_version", configuration_.authVersion},
    };
    if (credentials_) {
        parameters["oauth_token"] = credentials_->token;
    }
    return parameters;
}

// The OAuth parameters plus the request's own: those of a form body when it has one,
// otherwise those of the URL. Later items replace earlier ones of the same name, and an
// item without a value removes the name altogether.
XAuthSigner::Parameters XAuthSigner::signedParameters(const HttpRequest& request,
                                                      const Parameters& oauthParameters) const {
    Parameters parameters = oauthParameters;
    const auto formItems = bodyItems(request);
    const FormPairs items = formItems ? *formItems : urlItems(request);
    for (const auto& item : items) {
        if (item.value) {
            parameters[item.key] = *item.value;
        } else {
            parameters.erase(item.key);
        }
    }
    return parameters;
}

// "key=value" entries in the strict encoding, sorted as whole entries; the joined list is
// encoded once more as a whole.
std::string XAuthSigner::signatureBaseString(const HttpRequest& request,
                                             const Parameters& signedParameters) const {
    std::vector<std::string> entries;
    for (const auto& [key, value] : signedParameters) {
        entries.push_back(percentEncodeForSigning(key) + "=" + percentEncodeForSigning(value));
    }
    std::sort(entries.begin(), entries.end());
    std::string list;
    for (const auto& entry : entries) {
        list += (list.empty() ? "" : "&") + entry;
    }
    const std::string url = request.url.substr(0, request.url.find('?'));
    return request.method + "&" + percentEncodeForSigning(url) + "&" +
           percentEncodeForSigning(list);
}

std::string XAuthSigner::signatureKey() const {
    return percentEncodeForSigning(configuration_.consumerSecret) + "&" +
           percentEncodeForSigning(credentials_ ? credentials_->secret : "");
}

// `OAuth key="value", ...` of the OAuth parameters only, in the order of their keys.
std::string XAuthSigner::authorizationHeader(const Parameters& oauthParameters) {
    std::string header = "OAuth ";
    bool first = true;
    for (const auto& [key, value] : oauthParameters) {
        header += (first ? "" : ", ") + key + "=\"" + percentEncodeForSigning(value) + "\"";
        first = false;
    }
    return header;
}

}  // namespace tb
