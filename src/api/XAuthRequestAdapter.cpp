#include "api/XAuthRequestAdapter.h"

namespace tb {

XAuthRequestAdapter::XAuthRequestAdapter(XAuthSigner xAuthSigner)
    : xAuthSigner_(std::move(xAuthSigner)) {}

HttpRequest XAuthRequestAdapter::adapt(HttpRequest request) const {
    setHeader(request.headers, "Authorization", xAuthSigner_.sign(request));
    return request;
}

}  // namespace tb
