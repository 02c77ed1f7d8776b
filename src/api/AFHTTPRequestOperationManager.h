#pragma once

#include <functional>
#include <memory>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "api/AFHTTPRequestOperation.h"
#include "api/AFHTTPRequestSerializer.h"

namespace tb {

class HttpTransport;
class MainQueue;

// Sends requests built by its serializer relative to a base URL and answers on the main
// queue: success with the parsed JSON, or failure with the error (see
// AFHTTPRequestOperation for which is which). Every request gets exactly one answer, a
// cancelled one included.
class AFHTTPRequestOperationManager {
  public:
    using OperationPtr = std::shared_ptr<AFHTTPRequestOperation>;
    using Success = std::function<void(AFHTTPRequestOperation& operation,
                                       const nlohmann::json& responseObject)>;
    using Failure = std::function<void(AFHTTPRequestOperation& operation, const Error& error)>;

    AFHTTPRequestOperationManager(std::string baseURL,
                                  HttpTransport& http,
                                  MainQueue& queue,
                                  std::unique_ptr<AFHTTPRequestSerializer> requestSerializer);
    virtual ~AFHTTPRequestOperationManager();
    AFHTTPRequestOperationManager(const AFHTTPRequestOperationManager&) = delete;
    AFHTTPRequestOperationManager& operator=(const AFHTTPRequestOperationManager&) = delete;

    const std::string& baseURL() const { return baseURL_; }
    AFHTTPRequestSerializer& requestSerializer() { return *requestSerializer_; }
    void setRequestSerializer(std::unique_ptr<AFHTTPRequestSerializer> serializer);

    // URLString is resolved against the base URL: a full URL stays as it is, "path" is
    // appended to the base's folder, "/path" replaces the base's path.
    OperationPtr GET(const std::string& URLString,
                     const nlohmann::json& parameters,
                     Success success,
                     Failure failure);
    OperationPtr HEAD(const std::string& URLString,
                      const nlohmann::json& parameters,
                      Success success,
                      Failure failure);
    OperationPtr POST(const std::string& URLString,
                      const nlohmann::json& parameters,
                      Success success,
                      Failure failure);
    OperationPtr POST(
        const std::string& URLString,
        const nlohmann::json& parameters,
        const AFHTTPRequestSerializer::ConstructingBodyBlock& constructingBodyWithBlock,
        Success success,
        Failure failure);
    OperationPtr PUT(const std::string& URLString,
                     const nlohmann::json& parameters,
                     Success success,
                     Failure failure);
    OperationPtr PATCH(const std::string& URLString,
                       const nlohmann::json& parameters,
                       Success success,
                       Failure failure);
    OperationPtr DELETE(const std::string& URLString,
                        const nlohmann::json& parameters,
                        Success success,
                        Failure failure);

    // The operation named by `method` ("GET", "POST", ...), as callers that hold the method
    // as text dispatch it. A name without an operation is a programming fault.
    OperationPtr performMethod(const std::string& method,
                               const std::string& URLString,
                               const nlohmann::json& parameters,
                               Success success,
                               Failure failure);

    // The absolute URL of `URLString` against `base`.
    static std::string resolveURL(const std::string& base, const std::string& URLString);

    // Requests sent and not yet answered (each is answered exactly once, a cancel included).
    int requestsInFlight() const { return *inFlight_; }

  private:
    OperationPtr requestOperation(const std::string& method,
                                  const std::string& URLString,
                                  const nlohmann::json& parameters,
                                  Success success,
                                  Failure failure);
    OperationPtr start(std::optional<HttpRequest> request,
                       const Error& buildError,
                       Success success,
                       Failure failure);

    std::string baseURL_;
    // Shared with the completions, which may run after the manager is gone.
    std::shared_ptr<int> inFlight_ = std::make_shared<int>(0);
    HttpTransport& http_;
    MainQueue& queue_;
    std::unique_ptr<AFHTTPRequestSerializer> requestSerializer_;
};

}  // namespace tb
