#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "platform/Error.h"
#include "platform/HttpTransport.h"

namespace tb {

class AFMultipartFormData;
class RandomSource;

// Builds the HTTP requests of a client from a method, an absolute URL and parameters (a JSON
// object): parameters go into the query string for the methods listed in
// HTTPMethodsEncodingParametersInURI (GET, HEAD, DELETE) and into a form body
// ("application/x-www-form-urlencoded; charset=utf-8") for the others. Every request gets
// the serializer's headers and time-out. Subclasses sign the request or change the body.
class AFHTTPRequestSerializer {
  public:
    using ConstructingBodyBlock = std::function<void(AFMultipartFormData& formData)>;

    explicit AFHTTPRequestSerializer(RandomSource& random);
    virtual ~AFHTTPRequestSerializer();
    AFHTTPRequestSerializer(const AFHTTPRequestSerializer&) = delete;
    AFHTTPRequestSerializer& operator=(const AFHTTPRequestSerializer&) = delete;

    // Sets a header of every request.
    void setValueForHTTPHeaderField(const std::string& value, const std::string& field);
    const HttpHeaders& HTTPRequestHeaders() const { return headers_; }

    double timeoutInterval() const { return timeoutInterval_; }
    void setTimeoutInterval(double seconds) { timeoutInterval_ = seconds; }

    const std::vector<std::string>& HTTPMethodsEncodingParametersInURI() const {
        return methodsInURI_;
    }
    void setHTTPMethodsEncodingParametersInURI(std::vector<std::string> methods) {
        methodsInURI_ = std::move(methods);
    }
    bool encodesParametersInURI(const std::string& method) const;

    // Nothing, with `error` set to a bad-URL error, when URLString is not an absolute URL.
    virtual std::optional<HttpRequest> requestWithMethod(const std::string& method,
                                                         const std::string& URLString,
                                                         const nlohmann::json& parameters,
                                                         Error* error = nullptr);

    // A multipart/form-data request: each flattened parameter becomes a form part, then the
    // block adds its own parts.
    virtual std::optional<HttpRequest> multipartFormRequestWithMethod(
        const std::string& method,
        const std::string& URLString,
        const nlohmann::json& parameters,
        const ConstructingBodyBlock& constructingBodyWithBlock,
        Error* error = nullptr);

  protected:
    // Puts the parameters into the body of a method that doesn't carry them in the URL: a
    // form body here. A null means no parameters: no body, no content type.
    virtual void setBody(HttpRequest& request, const nlohmann::json& parameters) const;

    RandomSource& random_;

  private:
    std::optional<HttpRequest> emptyRequest(const std::string& method,
                                            const std::string& URLString,
                                            Error* error) const;

    HttpHeaders headers_;
    double timeoutInterval_ = 60.0;
    std::vector<std::string> methodsInURI_ = {"GET", "HEAD", "DELETE"};
};

}  // namespace tb
