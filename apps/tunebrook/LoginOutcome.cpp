#include "LoginOutcome.h"

#include <iostream>

#include "AppSession.h"
#include "api/TBReachabilityManager.h"
#include "app/AppContext.h"

namespace tb {

TBLoginSuccessBlock LoginOutcome::success() {
    return [this] {
        succeeded_ = true;
        done_ = true;
    };
}

TBLoginFailureBlock LoginOutcome::failure() {
    return [this](int status, const std::string& message, const TBLoginExtra&) {
        status_ = status;
        message_ = message;
        if (status == 0 && message_.empty()) {
            message_ = "the service gave no usable answer";
        }
        done_ = true;
    };
}

TBLoginTimeoutBlock LoginOutcome::timeout() {
    return [this] {
        message_ = "the service did not answer in time";
        done_ = true;
    };
}

int LoginOutcome::wait(AppSession& session, const std::string& command) {
    if (!session.runUntil([this] { return done_; }, kWaitSeconds)) {
        message_ = "no answer from the service";
    }
    if (succeeded_) {
        return 0;
    }
    // A refused connection fails the login at once, often before the reachability watch has
    // had its first reading; it gets a moment to have one.
    auto& reachability = session.context().reachabilityManager();
    if (status_ == 0 && session.runUntil([&reachability] { return reachability.isOffline(); },
                                         kReachabilitySeconds)) {
        message_ = "the service can't be reached";
    }
    std::cerr << "tunebrook: " << command << ": " << message_ << std::endl;
    return 1;
}

}  // namespace tb
