#pragma once

#include <memory>
#include <string>

#include "platform/HttpTransport.h"

namespace tb {

class XAuthRequestAdapter;

// The three request operations the typed layer uses of a session: a data request, an upload
// request, and the setter of the adapter that sees every request before it goes out.
class TBSessionManager {
  public:
    using Completion = HttpTransport::Completion;

    virtual ~TBSessionManager() = default;

    // Sends `request` with the session's headers (the request's own win) and time-out,
    // through the adapter when one is set. The completion runs on the main queue.
    virtual std::shared_ptr<HttpTask> request(HttpRequest request, Completion completion) = 0;
    // The same, with `data` as the body.
    virtual std::shared_ptr<HttpTask> upload(std::string data,
                                             HttpRequest request,
                                             Completion completion) = 0;
    // Null removes the adapter. The adapter must outlive its use here.
    virtual void setAdapter(const XAuthRequestAdapter* adapter) = 0;
};

}  // namespace tb
