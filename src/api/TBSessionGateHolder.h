#pragma once

#include <memory>

#include "api/TBSessionGate.h"

namespace tb {

class AppContext;

// The context's session gate. It answers with the installed gate, or with a signed-out
// one that refuses refreshes until a session installs itself.
class TBSessionGateHolder {
  public:
    explicit TBSessionGateHolder(AppContext& context);
    ~TBSessionGateHolder();
    TBSessionGateHolder(const TBSessionGateHolder&) = delete;
    TBSessionGateHolder& operator=(const TBSessionGateHolder&) = delete;

    TBSessionGate& gate();

    // The gate must outlive its installation; null puts the signed-out default back.
    void install(TBSessionGate* gate);

  private:
    std::unique_ptr<TBSessionGate> signedOut_;
    TBSessionGate* installed_ = nullptr;
};

}  // namespace tb
