#include "platform/Promise.h"

namespace tb {

Promise<void> after(MainQueue& queue, double seconds) {
    auto timeout = Promise<void>::pending(queue);
    queue.postAfter(seconds, [resolver = timeout.resolver] { resolver.fulfill(); });
    return timeout.promise;
}

}  // namespace tb
