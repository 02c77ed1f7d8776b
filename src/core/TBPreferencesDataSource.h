#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tb {

// The listener's and the admin's preferences, the once-only tooltips and the small counters
// kept in the standard user defaults. Implemented by TBPreferencesRepository; screens and
// managers that only read preferences take this interface.
class TBPreferencesDataSource {
  public:
    virtual ~TBPreferencesDataSource() = default;

    // Switches, each with its default when nothing is stored.
    virtual bool liveEnvironment() const = 0;  // true
    virtual void setLiveEnvironment(bool value) = 0;
    virtual bool enableAds() const = 0;  // true
    virtual void setEnableAds(bool value) = 0;
    virtual bool excludeReups() const = 0;  // false
    virtual void setExcludeReups(bool value) = 0;
    virtual bool largeMusicCellType() const = 0;  // false
    virtual void setLargeMusicCellType(bool value) = 0;
    virtual bool trackAds() const = 0;  // false
    virtual void setTrackAds(bool value) = 0;
    virtual bool eqEnabled() const = 0;  // false
    virtual void setEqEnabled(bool value) = 0;
    virtual bool castSDKInitialized() const = 0;  // false
    virtual void setCastSDKInitialized(bool value) = 0;
    virtual bool highlightsHintShown() const = 0;  // false
    virtual void setHighlightsHintShown(bool value) = 0;

    // The equalizer: normalised gains by band (empty when none are stored) and the chosen
    // preset's case name (nothing for a custom setting).
    virtual std::vector<double> eqValues() const = 0;
    virtual void setEqValues(const std::vector<double>& values) = 0;
    virtual std::optional<std::string> eqPreset() const = 0;
    virtual void setEqPreset(const std::optional<std::string>& preset) = 0;

    // The newest search terms first.
    virtual std::vector<std::string> recentSearches() const = 0;
    virtual void setRecentSearches(const std::vector<std::string>& searches) = 0;

    virtual std::optional<std::string> defaultGenre() = 0;
    virtual void setDefaultGenre(const std::optional<std::string>& genre) = 0;

    virtual bool onboardingDismissed() const = 0;
    virtual void setOnboardingDismissed(bool value) = 0;
    virtual std::optional<std::string> onboardingPlaylistGenreChoice() const = 0;
    virtual void setOnboardingPlaylistGenreChoice(const std::optional<std::string>& genre) = 0;

    // The in-app rating's counters.
    virtual std::int64_t inAppRatingDowloadedCount() const = 0;
    virtual void setInAppRatingDowloadedCount(std::int64_t count) = 0;
    virtual std::int64_t inAppRatingFavoritedCount() const = 0;
    virtual void setInAppRatingFavoritedCount(std::int64_t count) = 0;

    // Tooltips, each shown once.
    virtual bool shouldShowMiniplayerTooltip() const = 0;
    virtual void setMiniplayerTooltipShown() = 0;
    virtual bool shouldShowSuggestedFollowsTooltip() const = 0;
    virtual void setSuggestedFollowsTooltipShown() = 0;
    virtual bool shouldShowPlayerPlaylistTooltip() const = 0;
    virtual void setPlayerPlaylistTooltipShown() = 0;
    virtual bool shouldShowPlayerQueueTooltip() const = 0;
    virtual void setPlayerQueueTooltipShown() = 0;
    virtual bool shouldShowPlayerScrollDownTooltip() const = 0;
    virtual void setPlayerScrollDownTooltipShown() = 0;
    virtual bool shouldShowPlayerEQTooltip() const = 0;
    virtual void setPlayerEQTooltipShown() = 0;
    virtual bool shouldShowPlaylistShuffleTooltip() const = 0;
    virtual void setPlaylistShuffleTooltipShown() = 0;
    virtual bool shouldShowPlaylistDownloadTooltip() const = 0;
    virtual void setPlaylistDownloadTooltipShown() = 0;
    virtual bool shouldShowAlbumFavoriteTooltip() const = 0;
    virtual void setAlbumFavoriteTooltipShown() = 0;
    virtual bool shouldShowQueueAddToPlaylistTooltip() const = 0;
    virtual void setQueueAddToPlaylistTooltipShown() = 0;
};

}  // namespace tb
