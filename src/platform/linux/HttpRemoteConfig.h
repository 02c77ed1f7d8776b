#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/RemoteConfig.h"
#include "platform/RemoteConfigState.h"

namespace tb {

class ErrorReporter;
class HttpTransport;
class MainQueue;
struct HttpResult;

// The remote store on Linux. A fetch asks the config service for its set (one JSON object
// of keys and values, any JSON type each) with a plain GET; the activated set is kept in
// "remote-config.json" in the app's data folder, written atomically, so the next launch
// starts on it. A file that is missing, broken or not a plain file (a symlink is never
// followed) reads as no activated values.
class HttpRemoteConfig final : public RemoteConfig {
  public:
    static constexpr const char* kFileName = "remote-config.json";
    static constexpr const char* kErrorDomain = "RemoteConfig";
    static constexpr double kFetchTimeoutSeconds = 25.0;

    // `url` is where the config service answers; `folder` holds the activated set.
    HttpRemoteConfig(HttpTransport& http,
                     MainQueue& queue,
                     ErrorReporter& errors,
                     std::string url,
                     const std::string& folder);
    ~HttpRemoteConfig() override;

    void setDefaults(RemoteConfigDefaults defaults) override;
    void fetch(double expirationSeconds, FetchHandler handler) override;
    void activate(ActivateHandler handler) override;
    RemoteConfigValue configValueForKey(const std::string& key) const override;

  private:
    void readActivated();
    std::optional<Error> writeActivated() const;
    // Keeps the set of an answer; an error when the answer holds none.
    std::optional<Error> takeAnswer(const HttpResult& result);

    HttpTransport& http_;
    MainQueue& queue_;
    ErrorReporter& errors_;
    std::string url_;
    std::string path_;
    RemoteConfigState state_;
    std::optional<double> lastFetchAt_;
    // Answers that arrive after this object is gone are dropped.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
