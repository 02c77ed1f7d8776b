#pragma once

namespace tb {

class Clock;
class UserDefaults;

// The full-screen ads' pacing. Its time stamp of the last interstitial (standard user
// defaults, "interstitialad_timestamp") doubles as the install marker: no object under it
// means a fresh install, and the launch writes 0.0 there at once, which also leaves the
// regular clock already past due at the next start.
class InterstitialsManager {
  public:
    InterstitialsManager(UserDefaults& defaults, const Clock& clock);

    static InterstitialsManager& shared();

    // True when nothing at all is stored under the time stamp.
    bool isFreshInstall() const;

    // Stores 0.0 as the time of the last interstitial and synchronises.
    void setInterstitialAdNotShown();

    // Stores now as the time of the last interstitial and synchronises.
    void setInterstitialAdShown();

  private:
    UserDefaults& defaults_;
    const Clock& clock_;
};

}  // namespace tb
