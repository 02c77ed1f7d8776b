#include "core/TBPreferencesRepository.h"

#include "core/TBConstants.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

namespace tb {

namespace {

// Keys of the standard user defaults. Some carry old misspellings; stored values depend on
// them.
constexpr const char* kLiveEnvironment = "liveEnvironment";
constexpr const char* kEnableAds = "enableAds";
constexpr const char* kExcludeReups = "excludeReups";
constexpr const char* kLargeMusicCellType = "largeMusicCellType";
constexpr const char* kTrackAds = "trackAds";
constexpr const char* kEqEnabled = "ud_eq_enabled";
constexpr const char* kCastSDKInitialized = "ud_cast_inited";
constexpr const char* kHighlightsHintShown = "highligths_hint_shown";
constexpr const char* kEqValues = "ud_eq_values";
constexpr const char* kEqPreset = "ud_eq_preset";
constexpr const char* kRecentSearches = "recent_searches";
constexpr const char* kDefaultGenre = "default_genre";
constexpr const char* kOnboardingDismissed = "onboardingDismissed";
constexpr const char* kOnboardingPlaylistGenreChoice = "onboardingPlaylistGenreChoice";
constexpr const char* kInAppRatingDowloadedCount = "inAppRatingDowloadedCount";
constexpr const char* kInAppRatingFavoritedCount = "inAppRatingFavoritedCount";

constexpr const char* kMiniplayerTooltip = "miniplayerTooltipShownCount";
constexpr const char* kSuggestedFollowsTooltip = "suggestedFollowsShownCount";
constexpr const char* kPlayerPlaylistTooltip = "playerPlaylistTooltipShownCount";
constexpr const char* kPlayerQueueTooltip = "playerQueueTooltipShownCount";
constexpr const char* kPlayerScrollDownTooltip = "playerScrollDownTooltip";
constexpr const char* kPlayerEQTooltip = "playerEQTooltip";
constexpr const char* kPlaylistShuffleTooltip = "playlistShuffleTooltipShownCount";
constexpr const char* kPlaylistDownloadTooltip = "playlistDownloadTooltipShownCount";
constexpr const char* kAlbumFavoriteTooltip = "albumFavoriteTooltipShownCount";
constexpr const char* kQueueAddToPlaylistTooltip = "queueAddToPlaylistTooltipShownCount";

// The genre was renamed on the service; the old name would find nothing.
constexpr const char* kRetiredGenre = "afropop";
constexpr const char* kRenamedGenre = "afrobeats";

// The flat gain, for a stored band that is not a number.
constexpr double kNeutralGain = 0.5;

}  // namespace

TBPreferencesRepository::TBPreferencesRepository(UserDefaultsProvider& defaults,
                                                 NotificationCenter& notifications)
    : defaults_(defaults), notifications_(notifications) {}

UserDefaults& TBPreferencesRepository::standard() const {
    return defaults_.standard();
}

bool TBPreferencesRepository::oneStringBool(const char* key, bool fallback) const {
    const auto stored = standard().objectForKey(key);
    if (!stored) {
        return fallback;
    }
    // A boolean written by other code (logout writes one) reads as its text would.
    if (const bool* flag = std::get_if<bool>(&stored->value)) {
        return *flag;
    }
    return standard().stringForKey(key) == "1";
}

void TBPreferencesRepository::setOneStringBool(const char* key, bool value) {
    standard().setString(key, value ? "1" : "0");
    standard().synchronize();
}

std::optional<std::string> TBPreferencesRepository::optionalString(const char* key) const {
    return standard().stringForKey(key);
}

void TBPreferencesRepository::setOptionalString(const char* key,
                                                const std::optional<std::string>& value) {
    if (value) {
        standard().setString(key, *value);
    } else {
        standard().removeObjectForKey(key);
    }
    standard().synchronize();
}

bool TBPreferencesRepository::shouldShowTooltip(const char* key) const {
    return standard().integerForKey(key) < 1;
}

void TBPreferencesRepository::setTooltipShown(const char* key) {
    setInteger(key, 1);
}

void TBPreferencesRepository::setInteger(const char* key, std::int64_t value) {
    standard().setInteger(key, value);
    standard().synchronize();
}

bool TBPreferencesRepository::liveEnvironment() const {
    return oneStringBool(kLiveEnvironment, true);
}
void TBPreferencesRepository::setLiveEnvironment(bool value) {
    setOneStringBool(kLiveEnvironment, value);
}
bool TBPreferencesRepository::enableAds() const {
    return oneStringBool(kEnableAds, true);
}
void TBPreferencesRepository::setEnableAds(bool value) {
    setOneStringBool(kEnableAds, value);
}
bool TBPreferencesRepository::excludeReups() const {
    return oneStringBool(kExcludeReups, false);
}
void TBPreferencesRepository::setExcludeReups(bool value) {
    setOneStringBool(kExcludeReups, value);
}
bool TBPreferencesRepository::largeMusicCellType() const {
    return oneStringBool(kLargeMusicCellType, false);
}
void TBPreferencesRepository::setLargeMusicCellType(bool value) {
    setOneStringBool(kLargeMusicCellType, value);
}
bool TBPreferencesRepository::trackAds() const {
    return oneStringBool(kTrackAds, false);
}
void TBPreferencesRepository::setTrackAds(bool value) {
    setOneStringBool(kTrackAds, value);
}
bool TBPreferencesRepository::eqEnabled() const {
    return oneStringBool(kEqEnabled, false);
}
void TBPreferencesRepository::setEqEnabled(bool value) {
    setOneStringBool(kEqEnabled, value);
    notifications_.post(TBConstants::TBGlobalNotifications().eqEnablingChanged);
}
bool TBPreferencesRepository::castSDKInitialized() const {
    return oneStringBool(kCastSDKInitialized, false);
}
void TBPreferencesRepository::setCastSDKInitialized(bool value) {
    setOneStringBool(kCastSDKInitialized, value);
}
bool TBPreferencesRepository::highlightsHintShown() const {
    return oneStringBool(kHighlightsHintShown, false);
}
void TBPreferencesRepository::setHighlightsHintShown(bool value) {
    setOneStringBool(kHighlightsHintShown, value);
}

std::vector<double> TBPreferencesRepository::eqValues() const {
    std::vector<double> gains;
    for (const auto& element : standard().arrayForKey(kEqValues).value_or(DefaultsValue::Array{})) {
        if (const double* real = std::get_if<double>(&element.value)) {
            gains.push_back(*real);
        } else if (const std::int64_t* whole = std::get_if<std::int64_t>(&element.value)) {
            gains.push_back(static_cast<double>(*whole));
        } else {
            gains.push_back(kNeutralGain);
        }
    }
    return gains;
}

void TBPreferencesRepository::setEqValues(const std::vector<double>& values) {
    standard().setArray(kEqValues, DefaultsValue::Array(values.begin(), values.end()));
    standard().synchronize();
    notifications_.post(TBConstants::TBGlobalNotifications().eqValuesChanged);
}

std::optional<std::string> TBPreferencesRepository::eqPreset() const {
    return optionalString(kEqPreset);
}

void TBPreferencesRepository::setEqPreset(const std::optional<std::string>& preset) {
    setOptionalString(kEqPreset, preset);
}

std::vector<std::string> TBPreferencesRepository::recentSearches() const {
    std::vector<std::string> searches;
    for (const auto& element :
         standard().arrayForKey(kRecentSearches).value_or(DefaultsValue::Array{})) {
        if (const std::string* term = std::get_if<std::string>(&element.value)) {
            searches.push_back(*term);
        }
    }
    return searches;
}

// The message extension shows the same list, from its own suite.
void TBPreferencesRepository::setRecentSearches(const std::vector<std::string>& searches) {
    const DefaultsValue::Array array(searches.begin(), searches.end());
    for (UserDefaults* suite :
         {&standard(), &defaults_.suite(TBConstants::TBGroupIdsContants().imessageExtension)}) {
        suite->setArray(kRecentSearches, array);
        suite->synchronize();
    }
}

std::optional<std::string> TBPreferencesRepository::defaultGenre() {
    auto genre = optionalString(kDefaultGenre);
    if (genre == kRetiredGenre) {
        genre = kRenamedGenre;
        setOptionalString(kDefaultGenre, genre);
    }
    return genre;
}

void TBPreferencesRepository::setDefaultGenre(const std::optional<std::string>& genre) {
    setOptionalString(kDefaultGenre, genre);
}

bool TBPreferencesRepository::onboardingDismissed() const {
    return standard().boolForKey(kOnboardingDismissed);
}

void TBPreferencesRepository::setOnboardingDismissed(bool value) {
    standard().setBool(kOnboardingDismissed, value);
    standard().synchronize();
}

std::optional<std::string> TBPreferencesRepository::onboardingPlaylistGenreChoice() const {
    return optionalString(kOnboardingPlaylistGenreChoice);
}

void TBPreferencesRepository::setOnboardingPlaylistGenreChoice(
    const std::optional<std::string>& genre) {
    setOptionalString(kOnboardingPlaylistGenreChoice, genre);
}

std::int64_t TBPreferencesRepository::inAppRatingDowloadedCount() const {
    return standard().integerForKey(kInAppRatingDowloadedCount);
}
void TBPreferencesRepository::setInAppRatingDowloadedCount(std::int64_t count) {
    setInteger(kInAppRatingDowloadedCount, count);
}
std::int64_t TBPreferencesRepository::inAppRatingFavoritedCount() const {
    return standard().integerForKey(kInAppRatingFavoritedCount);
}
void TBPreferencesRepository::setInAppRatingFavoritedCount(std::int64_t count) {
    setInteger(kInAppRatingFavoritedCount, count);
}

bool TBPreferencesRepository::shouldShowMiniplayerTooltip() const {
    return shouldShowTooltip(kMiniplayerTooltip);
}
void TBPreferencesRepository::setMiniplayerTooltipShown() {
    setTooltipShown(kMiniplayerTooltip);
}
bool TBPreferencesRepository::shouldShowSuggestedFollowsTooltip() const {
    return shouldShowTooltip(kSuggestedFollowsTooltip);
}
void TBPreferencesRepository::setSuggestedFollowsTooltipShown() {
    setTooltipShown(kSuggestedFollowsTooltip);
}
bool TBPreferencesRepository::shouldShowPlayerPlaylistTooltip() const {
    return shouldShowTooltip(kPlayerPlaylistTooltip);
}
void TBPreferencesRepository::setPlayerPlaylistTooltipShown() {
    setTooltipShown(kPlayerPlaylistTooltip);
}
bool TBPreferencesRepository::shouldShowPlayerQueueTooltip() const {
    return shouldShowTooltip(kPlayerQueueTooltip);
}
void TBPreferencesRepository::setPlayerQueueTooltipShown() {
    setTooltipShown(kPlayerQueueTooltip);
}
bool TBPreferencesRepository::shouldShowPlayerScrollDownTooltip() const {
    return shouldShowTooltip(kPlayerScrollDownTooltip);
}
void TBPreferencesRepository::setPlayerScrollDownTooltipShown() {
    setTooltipShown(kPlayerScrollDownTooltip);
}
bool TBPreferencesRepository::shouldShowPlayerEQTooltip() const {
    return shouldShowTooltip(kPlayerEQTooltip);
}
void TBPreferencesRepository::setPlayerEQTooltipShown() {
    setTooltipShown(kPlayerEQTooltip);
}
bool TBPreferencesRepository::shouldShowPlaylistShuffleTooltip() const {
    return shouldShowTooltip(kPlaylistShuffleTooltip);
}
void TBPreferencesRepository::setPlaylistShuffleTooltipShown() {
    setTooltipShown(kPlaylistShuffleTooltip);
}
bool TBPreferencesRepository::shouldShowPlaylistDownloadTooltip() const {
    return shouldShowTooltip(kPlaylistDownloadTooltip);
}
void TBPreferencesRepository::setPlaylistDownloadTooltipShown() {
    setTooltipShown(kPlaylistDownloadTooltip);
}
bool TBPreferencesRepository::shouldShowAlbumFavoriteTooltip() const {
    return shouldShowTooltip(kAlbumFavoriteTooltip);
}
void TBPreferencesRepository::setAlbumFavoriteTooltipShown() {
    setTooltipShown(kAlbumFavoriteTooltip);
}
bool TBPreferencesRepository::shouldShowQueueAddToPlaylistTooltip() const {
    return shouldShowTooltip(kQueueAddToPlaylistTooltip);
}
void TBPreferencesRepository::setQueueAddToPlaylistTooltipShown() {
    setTooltipShown(kQueueAddToPlaylistTooltip);
}

}  // namespace tb
