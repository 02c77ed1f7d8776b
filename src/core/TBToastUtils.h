#pragma once

#include <cstdint>
#include <string>

namespace tb {

class NotificationCenter;
class UIHost;

// Short messages for the listener. The offline toast shows once per loss of the network:
// after it has shown, further calls are quiet until networkBecameReachable is posted, so a
// screen full of failing requests raises one toast, not dozens.
class TBToastUtils {
  public:
    TBToastUtils(UIHost& ui, NotificationCenter& notifications);
    ~TBToastUtils();
    TBToastUtils(const TBToastUtils&) = delete;
    TBToastUtils& operator=(const TBToastUtils&) = delete;

    static TBToastUtils& shared();

    void showOfflineToast();

    // A toast with the success or the failure image.
    void showToast(const std::string& text, bool success);

  private:
    UIHost& ui_;
    NotificationCenter& notifications_;
    std::uint64_t reachableObserver_ = 0;
    bool offlineToastShown_ = false;
};

}  // namespace tb
