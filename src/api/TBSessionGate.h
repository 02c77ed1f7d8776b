#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "model/ItemAttributes.h"

namespace tb {

// What the catalogue client needs to know of the listener's session: whether someone is
// signed in, their slug and highlights, and the token refresh that follows a 401. The
// session (credentials and user manager) implements it and installs itself in the
// context's TBSessionGateHolder; until then the holder's default says "signed out".
class TBSessionGate {
  public:
    virtual ~TBSessionGate() = default;

    virtual bool loggedIn() = 0;
    // The signed-in listener's slug.
    virtual std::optional<std::string> userSlug() = 0;
    // The listener's current highlights, in their order.
    virtual std::vector<ItemPtr> highlights() = 0;

    // Gets a fresh token (a new login with the stored identity) and calls one of the two
    // blocks when done.
    virtual void refreshToken(std::function<void()> success, std::function<void()> failure) = 0;
};

}  // namespace tb
