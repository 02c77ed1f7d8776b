#pragma once

#include <string>

namespace tb {

class XAuthRequestAdapter;

// The front of the typed layer for code that cannot reach its request structs: it hands the
// listener's token to the signer of the typed layer's signed session, or takes it away. The
// typed layer never refreshes a token itself, so whoever renews the token on the other
// request path calls setCredentialsWithToken() afterwards to keep both paths in step.
class API {
  public:
    explicit API(XAuthRequestAdapter& adapter);

    void setCredentialsWithToken(const std::string& token, const std::string& secret);
    void resetCredentials();

  private:
    XAuthRequestAdapter& adapter_;
};

}  // namespace tb
