#pragma once

#include "api/TBSessionManager.h"

namespace tb {

// A session over the HTTP port: its configuration's headers and time-out go on every request,
// then the adapter (if any) has the last word, as it signs what is sent.
class SessionManager final : public TBSessionManager {
  public:
    struct Configuration {
        HttpHeaders headers;
        double timeoutIntervalForRequest = 60.0;
    };

    SessionManager(HttpTransport& http, Configuration configuration);

    const Configuration& configuration() const { return configuration_; }

    std::shared_ptr<HttpTask> request(HttpRequest request, Completion completion) override;
    std::shared_ptr<HttpTask> upload(std::string data,
                                     HttpRequest request,
                                     Completion completion) override;
    void setAdapter(const XAuthRequestAdapter* adapter) override { adapter_ = adapter; }

  private:
    HttpTransport& http_;
    Configuration configuration_;
    const XAuthRequestAdapter* adapter_ = nullptr;
};

}  // namespace tb
