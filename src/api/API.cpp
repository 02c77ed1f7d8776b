#include "api/API.h"

#include "api/XAuthRequestAdapter.h"

namespace tb {

API::API(XAuthRequestAdapter& adapter) : adapter_(adapter) {}

void API::setCredentialsWithToken(const std::string& token, const std::string& secret) {
    adapter_.xAuthSigner().setCredentials(XAuthSigner::Credentials{token, secret});
}

void API::resetCredentials() {
    adapter_.xAuthSigner().setCredentials(std::nullopt);
}

}  // namespace tb
