#pragma once

namespace tb {

// Keys of the standard user defaults that more than one class reads. The interstitial time
// stamp doubles as the install marker: no object under it means a fresh install.
struct TBUserDefaultKeys {
    const char* foundError256OnStartup = "foundError256OnStartup";
    const char* firstLaunch = "firstLaunch";
    const char* interstitialAdTimestamp = "interstitialad_timestamp";
    const char* soundOnInterstitialAdTimestamp = "sound_on_interstitialad_timestamp";
};

}  // namespace tb
