#pragma once

#include "api/AFXAuthRequestSerializer.h"

namespace tb {

// The JSON serializer of the older request path: parameters of GET and HEAD go into the
// query string and are signed; every other method sends them as a JSON body, which the
// signature does not cover. Multipart forms sign their parameters whatever the method.
class AFXAuthJSONRequestSerializer final : public AFXAuthRequestSerializer {
  public:
    AFXAuthJSONRequestSerializer(std::string consumerKey,
                                 std::string consumerSecret,
                                 RandomSource& random,
                                 Clock& clock);

  protected:
    void setBody(HttpRequest& request, const nlohmann::json& parameters) const override;
    FormPairs parametersToSign(const std::string& method,
                               const nlohmann::json& parameters,
                               bool multipart) const override;
};

}  // namespace tb
