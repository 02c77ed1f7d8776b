#pragma once

#include <string>

#include "accounts/TBUserManager.h"

namespace tb {

class AppSession;

// The end of one sign-in or sign-up, caught from the session's three blocks and waited for
// on the main queue. A failure keeps the session's own message (a wrong password, a taken
// email); a failure without an answer, while the service's host can't be reached, says that
// instead of the session's generic text.
class LoginOutcome {
  public:
    TBLoginSuccessBlock success();
    TBLoginFailureBlock failure();
    TBLoginTimeoutBlock timeout();

    // Waits for one of the blocks. 0 on success; otherwise prints one line on stderr,
    // "tunebrook: COMMAND: MESSAGE", and returns 1.
    int wait(AppSession& session, const std::string& command);

  private:
    // Longer than the login's own 30 s, so that the session's time-out answers first.
    static constexpr double kWaitSeconds = 45;
    // Longer than one try of the reachability watch.
    static constexpr double kReachabilitySeconds = 3;

    bool done_ = false;
    bool succeeded_ = false;
    int status_ = 0;
    std::string message_;
};

}  // namespace tb
