#pragma once

#include <string>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "support/ServiceProcess.h"
#include "support/ServiceTestSigner.h"

namespace tb::test {

// The service writes some ids as numbers and some as text, as the real one does.
inline std::string idText(const nlohmann::json& id) {
    return id.is_string() ? id.get<std::string>() : id.dump();
}

// A call to a path under the API base of a service process, signed by the serializer
// scheme (unsigned when `sign` is false): parameters go into the query for GET and into a
// form body otherwise.
inline httplib::Result serviceCall(const ServiceProcess& service,
                                   const ServiceTestSigner& signer,
                                   const std::string& method,
                                   const std::string& path,
                                   const ServiceTestSigner::Params& params = {},
                                   bool sign = true) {
    httplib::Client client(service.host(), service.port());
    client.set_url_encode(false);
    httplib::Headers headers;
    if (sign) {
        headers.emplace("Authorization",
                        signer.serializerHeader(method, service.baseUrl() + path, params,
                                                ServiceTestSigner::timestampNow(),
                                                ServiceTestSigner::freshNonce()));
    }
    const std::string form = ServiceTestSigner::formEncode(params);
    if (method == "GET") {
        return client.Get("/v1/" + path + (form.empty() ? "" : "?" + form), headers);
    }
    return client.Post("/v1/" + path, headers, form, "application/x-www-form-urlencoded");
}

}  // namespace tb::test
