#pragma once

#include <string>

#include "core/TBPreferencesDataSource.h"

namespace tb {

class NotificationCenter;
class UserDefaults;
class UserDefaultsProvider;

// The preferences as a stateless view on the standard user defaults: make one wherever one
// is needed. Every write is synchronised at once, since the process may end at any moment.
//
// Most switches are stored as the text "1" (true) or "0" (false); anything else stored
// reads false and nothing stored reads the default. Tooltips keep an integer that is 1 once
// shown. Writing the equalizer's switch or gains tells the player through eqEnablingChanged
// and eqValuesChanged.
class TBPreferencesRepository final : public TBPreferencesDataSource {
  public:
    TBPreferencesRepository(UserDefaultsProvider& defaults, NotificationCenter& notifications);

    bool liveEnvironment() const override;
    void setLiveEnvironment(bool value) override;
    bool enableAds() const override;
    void setEnableAds(bool value) override;
    bool excludeReups() const override;
    void setExcludeReups(bool value) override;
    bool largeMusicCellType() const override;
    void setLargeMusicCellType(bool value) override;
    bool trackAds() const override;
    void setTrackAds(bool value) override;
    bool eqEnabled() const override;
    void setEqEnabled(bool value) override;
    bool castSDKInitialized() const override;
    void setCastSDKInitialized(bool value) override;
    bool highlightsHintShown() const override;
    void setHighlightsHintShown(bool value) override;
    std::vector<double> eqValues() const override;
    void setEqValues(const std::vector<double>& values) override;
    std::optional<std::string> eqPreset() const override;
    void setEqPreset(const std::optional<std::string>& preset) override;
    std::vector<std::string> recentSearches() const override;
    void setRecentSearches(const std::vector<std::string>& searches) override;
    std::optional<std::string> defaultGenre() override;
    void setDefaultGenre(const std::optional<std::string>& genre) override;
    bool onboardingDismissed() const override;
    void setOnboardingDismissed(bool value) override;
    std::optional<std::string> onboardingPlaylistGenreChoice() const override;
    void setOnboardingPlaylistGenreChoice(const std::optional<std::string>& genre) override;
    std::int64_t inAppRatingDowloadedCount() const override;
    void setInAppRatingDowloadedCount(std::int64_t count) override;
    std::int64_t inAppRatingFavoritedCount() const override;
    void setInAppRatingFavoritedCount(std::int64_t count) override;
    bool shouldShowMiniplayerTooltip() const override;
    void setMiniplayerTooltipShown() override;
    bool shouldShowSuggestedFollowsTooltip() const override;
    void setSuggestedFollowsTooltipShown() override;
    bool shouldShowPlayerPlaylistTooltip() const override;
    void setPlayerPlaylistTooltipShown() override;
    bool shouldShowPlayerQueueTooltip() const override;
    void setPlayerQueueTooltipShown() override;
    bool shouldShowPlayerScrollDownTooltip() const override;
    void setPlayerScrollDownTooltipShown() override;
    bool shouldShowPlayerEQTooltip() const override;
    void setPlayerEQTooltipShown() override;
    bool shouldShowPlaylistShuffleTooltip() const override;
    void setPlaylistShuffleTooltipShown() override;
    bool shouldShowPlaylistDownloadTooltip() const override;
    void setPlaylistDownloadTooltipShown() override;
    bool shouldShowAlbumFavoriteTooltip() const override;
    void setAlbumFavoriteTooltipShown() override;
    bool shouldShowQueueAddToPlaylistTooltip() const override;
    void setQueueAddToPlaylistTooltipShown() override;

  private:
    UserDefaults& standard() const;
    bool oneStringBool(const char* key, bool fallback) const;
    void setOneStringBool(const char* key, bool value);
    std::optional<std::string> optionalString(const char* key) const;
    void setOptionalString(const char* key, const std::optional<std::string>& value);
    bool shouldShowTooltip(const char* key) const;
    void setTooltipShown(const char* key);
    void setInteger(const char* key, std::int64_t value);

    UserDefaultsProvider& defaults_;
    NotificationCenter& notifications_;
};

}  // namespace tb
