#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "api/AFXAuthClient.h"

namespace tb {

// Holds the two signed clients of the service: `client` sends form bodies, `jsonClient`
// JSON bodies. Both are made at first use, on the catalogue's base URL and the service's
// consumer key and secret, so they see the environment chosen at start-up; choosing another
// one later does not reach them.
class TBXAuthClientManager {
  public:
    struct Settings {
        std::string baseURL;
        std::string consumerKey;
        std::string consumerSecret;
    };

    // The settings are read at first use, so that they see the environment chosen at
    // start-up.
    TBXAuthClientManager(AFXAuthClient::Environment environment,
                         std::function<Settings()> readSettings);
    TBXAuthClientManager(AFXAuthClient::Environment environment,
                         std::string baseURL,
                         std::string consumerKey,
                         std::string consumerSecret);
    ~TBXAuthClientManager();
    TBXAuthClientManager(const TBXAuthClientManager&) = delete;
    TBXAuthClientManager& operator=(const TBXAuthClientManager&) = delete;

    static TBXAuthClientManager& sharedManager();

    AFXAuthClient& client();
    AFXAuthClient& jsonClient();

  private:
    const Settings& settings();

    AFXAuthClient::Environment environment_;
    std::function<Settings()> readSettings_;
    std::optional<Settings> settings_;
    std::unique_ptr<AFXAuthClient> client_;
    std::unique_ptr<AFXAuthClient> jsonClient_;
};

}  // namespace tb
