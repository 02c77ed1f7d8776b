#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "platform/UserInfo.h"

namespace tb {

class MainQueue;

struct Notification {
    std::string name;
    const void* object = nullptr;  // the sender, compared by identity; may be null
    UserInfo userInfo;
};

// Named notifications between the app's parts. Observers run on the main queue: a post made
// on the main queue is delivered before post() returns, in the order observers were added;
// a post from another thread is handed to the main queue first.
class NotificationCenter {
  public:
    using ObserverId = std::uint64_t;
    using Block = std::function<void(const Notification&)>;

    explicit NotificationCenter(MainQueue& queue);

    // Observes `name`; with a non-null `object`, only posts from that object.
    ObserverId addObserver(const std::string& name, const void* object, Block block);

    // Removes the observer; a delivery under way does not reach it any more.
    void removeObserver(ObserverId id);

    void post(const std::string& name, const void* object = nullptr, UserInfo userInfo = {});

  private:
    struct Observer {
        std::string name;
        const void* object;
        Block block;
    };

    void deliver(const Notification& notification);

    MainQueue& queue_;
    std::map<ObserverId, Observer> observers_;
    ObserverId nextId_ = 1;
};

}  // namespace tb
