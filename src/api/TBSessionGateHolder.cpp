#include "api/TBSessionGateHolder.h"

namespace tb {

namespace {

// Nobody is signed in, so nothing can be refreshed.
class SignedOutSession final : public TBSessionGate {
  public:
    bool loggedIn() override { return false; }
    std::optional<std::string> userSlug() override { return std::nullopt; }
    std::vector<ItemPtr> highlights() override { return {}; }
    void refreshToken(std::function<void()> /*success*/, std::function<void()> failure) override {
        if (failure) {
            failure();
        }
    }
};

}  // namespace

TBSessionGateHolder::TBSessionGateHolder() : signedOut_(std::make_unique<SignedOutSession>()) {}

TBSessionGateHolder::~TBSessionGateHolder() = default;

TBSessionGate& TBSessionGateHolder::gate() {
    return installed_ ? *installed_ : *signedOut_;
}

void TBSessionGateHolder::install(TBSessionGate* gate) {
    installed_ = gate;
}

}  // namespace tb
