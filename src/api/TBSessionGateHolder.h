#pragma once

#include <memory>

#include "api/TBSessionGate.h"

namespace tb {

// The app's session gate. It answers with the installed gate, or with a signed-out
// one that refuses refreshes until a session installs itself.
class TBSessionGateHolder {
  public:
    TBSessionGateHolder();
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
