#include "api/AFXAuthJSONRequestSerializer.h"

#include <nlohmann/json.hpp>

namespace tb {

AFXAuthJSONRequestSerializer::AFXAuthJSONRequestSerializer(std::string consumerKey,
                                                           std::string consumerSecret,
                                                           RandomSource& random,
                                                           Clock& clock)
    : AFXAuthRequestSerializer(std::move(consumerKey), std::move(consumerSecret), random, clock) {
    setHTTPMethodsEncodingParametersInURI({"GET", "HEAD"});
}

void AFXAuthJSONRequestSerializer::setBody(HttpRequest& request,
                                           const nlohmann::json& parameters) const {
    if (parameters.is_null()) {
        return;
    }
    if (!findHeader(request.headers, "Content-Type")) {
        request.headers.emplace_back("Content-Type", "application/json");
    }
    // Text that isn't valid UTF-8 can't go into JSON as it is; it is replaced, not refused.
    request.body = parameters.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

FormPairs AFXAuthJSONRequestSerializer::parametersToSign(const std::string& method,
                                                         const nlohmann::json& parameters,
                                                         bool multipart) const {
    if (multipart || encodesParametersInURI(method)) {
        return flattenFormParameters(parameters);
    }
    return {};
}

}  // namespace tb
