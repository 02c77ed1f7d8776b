#pragma once

#include <optional>
#include <string>

namespace tb {

class TunebrookKeys;

// The service host the catalogue talks to in this process: the live host or the test host
// of the key store (wsUrlLive, wsUrlDev), as the launch chose. Service paths are appended
// to it with no separator, so the base URL always ends in a slash.
//
// One per app; TBDataManager::useProd/useDev/baseURL are its public face.
class TBServiceEnvironment {
  public:
    explicit TBServiceEnvironment(const TunebrookKeys& keys);

    void useProd();
    void useDev();

    // The chosen base URL. Before any choice it is the live one: the environment the launch
    // picks when nothing says otherwise.
    std::string baseURL() const;

    // The two hosts, whatever was chosen.
    std::string liveBaseURL() const;
    std::string devBaseURL() const;

  private:
    static std::string withTrailingSlash(std::string url);

    const TunebrookKeys& keys_;
    std::optional<std::string> baseURL_;
};

}  // namespace tb
