#include "StopRequest.h"

#include "platform/RunLoop.h"

namespace tb {

void StopRequest::request() {
    std::lock_guard lock(mutex_);
    requested_ = true;
    quitLocked();
}

void StopRequest::attach(RunLoop& loop) {
    std::lock_guard lock(mutex_);
    loop_ = &loop;
    if (requested_) {
        quitLocked();
    }
}

void StopRequest::detach() {
    std::lock_guard lock(mutex_);
    loop_ = nullptr;
}

bool StopRequest::requested() const {
    std::lock_guard lock(mutex_);
    return requested_;
}

void StopRequest::quitLocked() {
    if (RunLoop* loop = loop_) {
        loop->post([loop] { loop->quit(); });
    }
}

}  // namespace tb
