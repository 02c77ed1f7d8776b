#pragma once

namespace tb::RemoteVariableKeys {

// The keys of the remote variables, as the config service and the app's readers name them.
inline constexpr const char* adInterstitialTiming = "ad_interstitial_timing";
inline constexpr const char* adBannerTiming = "ad_banner_timing";
inline constexpr const char* adBannerMinDuration = "ad_banner_minduration";
inline constexpr const char* adInterstitialEnabledFirstLoad = "ad_interstitial_enabled_firstload";
inline constexpr const char* adPlayerEnabled = "ad_player_enabled";
inline constexpr const char* adBannerEnabled = "ad_banner_enabled";
inline constexpr const char* adInterstitialEnabled = "ad_interstitial_enabled";
inline constexpr const char* deeplinkFirstLoad = "deeplink_firstload";
inline constexpr const char* tester = "tester";
inline constexpr const char* checkDownloadEnabled = "check_download_enabled";
inline constexpr const char* checkSyncEnabled = "check_sync_enabled";
inline constexpr const char* bookmarksEnabled = "bookmarks_enabled";
inline constexpr const char* bookmarksExpirationHours = "bookmarks_expiration_hours";
inline constexpr const char* checkPlaybackTimeout = "check_playback_timeout";
inline constexpr const char* searchTrending = "search_trending";
inline constexpr const char* nowPlayingNativeAdPercentage = "now_playing_native_ad_percentage";
inline constexpr const char* inAppRatingEnabled = "in_app_rating_enabled";
inline constexpr const char* adInterstitialSoundOnAdEnabled = "ad_interstitial_sound_on_ad_enabled";
inline constexpr const char* adInterstitialSoundOnAdPeriod = "ad_interstitial_sound_on_ad_period";
inline constexpr const char* onboardingEnabled = "onboarding_enabled";
inline constexpr const char* feedBigImagesByDefault = "feed_big_images_by_default";

}  // namespace tb::RemoteVariableKeys
