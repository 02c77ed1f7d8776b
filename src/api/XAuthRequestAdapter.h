#pragma once

#include "api/XAuthSigner.h"
#include "platform/HttpTransport.h"

namespace tb {

// Signs each request of the typed layer's signed session just before it goes out.
class XAuthRequestAdapter {
  public:
    explicit XAuthRequestAdapter(XAuthSigner xAuthSigner);

    XAuthSigner& xAuthSigner() { return xAuthSigner_; }
    const XAuthSigner& xAuthSigner() const { return xAuthSigner_; }

    // The request with its "Authorization" header set (replacing any there was).
    HttpRequest adapt(HttpRequest request) const;

  private:
    XAuthSigner xAuthSigner_;
};

}  // namespace tb
