#include "accounts/TBCredentials.h"

#include "accounts/TBKeychainManager.h"
#include "api/API.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBConstants.h"
#include "core/TBPreferencesRepository.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/ExternalSdks.h"
#include "platform/NotificationCenter.h"
#include "platform/SharedInstance.h"

namespace tb {

namespace {

const TBKeychainKeys& keys() {
    return TBConstants::TBKeychainKeys();
}

bool contains(const std::set<std::string>& ids, const std::optional<std::string>& id) {
    return id && ids.count(*id) > 0;
}

void insert(std::set<std::string>& ids, const std::optional<std::string>& id) {
    if (id) {
        ids.insert(*id);
    }
}

void erase(std::set<std::string>& ids, const std::optional<std::string>& id) {
    if (id) {
        ids.erase(*id);
    }
}

}  // namespace

TBCredentials::TBCredentials(Collaborators collaborators)
    : keychainManager_(collaborators.keychainManager),
      defaults_(collaborators.defaults),
      store_(collaborators.store),
      clients_(collaborators.clients),
      api_(collaborators.api),
      sdks_(collaborators.sdks),
      notifications_(collaborators.notifications) {}

TBCredentials::~TBCredentials() = default;

TBCredentials& TBCredentials::sharedInstance() {
    return SharedInstance<TBCredentials>::get();
}

// ---- From the keychain ------------------------------------------------------------------

std::optional<std::string> TBCredentials::userSlug() {
    return keychainManager_.stringForKey(keys().userSlug);
}

std::optional<std::string> TBCredentials::userId() {
    return keychainManager_.stringForKey(keys().userId);
}

std::optional<std::string> TBCredentials::userScreenName() {
    return keychainManager_.stringForKey(keys().userScreenName);
}

std::optional<std::string> TBCredentials::userEmail() {
    return keychainManager_.stringForKey(keys().userEmail);
}

std::optional<std::string> TBCredentials::userPassword() {
    return keychainManager_.stringForKey(keys().userPassword);
}

std::optional<std::string> TBCredentials::socialEmail() {
    return keychainManager_.stringForKey(keys().socialEmail);
}

std::optional<std::string> TBCredentials::facebookId() {
    return keychainManager_.stringForKey(keys().userFacebookId);
}

std::optional<std::string> TBCredentials::googleIdToken() {
    return keychainManager_.stringForKey(keys().userGoogleIdToken);
}

std::optional<std::string> TBCredentials::twitterToken() {
    return keychainManager_.stringForKey(keys().userTwitterToken);
}

std::optional<std::string> TBCredentials::twitterSecret() {
    return keychainManager_.stringForKey(keys().userTwitterSecret);
}

std::optional<std::string> TBCredentials::token() {
    return keychainManager_.stringForKey(keys().token);
}

std::optional<std::string> TBCredentials::tokenSecret() {
    return keychainManager_.stringForKey(keys().tokenSecret);
}

std::int64_t TBCredentials::tokenExpiration() {
    return keychainManager_.intForKey(keys().tokenExpiration).value_or(0);
}

std::int64_t TBCredentials::notificationUnseen() {
    return keychainManager_.intForKey(keys().notificationsUnseen).value_or(0);
}

std::int64_t TBCredentials::feedUnseen() {
    return keychainManager_.intForKey(keys().feedUnseen).value_or(0);
}

std::int64_t TBCredentials::ticketRepliesUnseen() {
    return keychainManager_.intForKey(keys().ticketRepliesUnseen).value_or(0);
}

std::optional<std::string> TBCredentials::registeredViaSocial() {
    return keychainManager_.stringForKey(keys().registeredViaSocial);
}

bool TBCredentials::loggedIn() {
    return userEmail() || facebookId() || googleIdToken() || (twitterToken() && twitterSecret());
}

// ---- Writes ---------------------------------------------------------------------------

void TBCredentials::saveUserWithEmail(const std::optional<std::string>& email,
                                      const std::optional<std::string>& password,
                                      const std::optional<std::string>& socialEmail,
                                      const std::optional<std::string>& facebookId,
                                      const std::optional<std::string>& googleIdToken,
                                      const std::optional<std::string>& twitterToken,
                                      const std::optional<std::string>& twitterSecret,
                                      const std::optional<std::string>& userUrlSlug,
                                      const std::optional<std::string>& userId,
                                      const std::optional<std::string>& userScreenName,
                                      const std::optional<std::string>& registeredViaSocial) {
    keychainManager_.setWithString(email, keys().userEmail);
    keychainManager_.setWithString(password, keys().userPassword);
    keychainManager_.setWithString(socialEmail, keys().socialEmail);
    keychainManager_.setWithString(facebookId, keys().userFacebookId);
    keychainManager_.setWithString(googleIdToken, keys().userGoogleIdToken);
    keychainManager_.setWithString(twitterToken, keys().userTwitterToken);
    keychainManager_.setWithString(twitterSecret, keys().userTwitterSecret);
    keychainManager_.setWithString(userUrlSlug, keys().userSlug);
    keychainManager_.setWithString(userId, keys().userId);
    keychainManager_.setWithString(userScreenName, keys().userScreenName);
    keychainManager_.setWithString(registeredViaSocial, keys().registeredViaSocial);
}

void TBCredentials::saveToken(const std::optional<std::string>& token,
                              const std::optional<std::string>& tokenSecret,
                              std::int64_t tokenExpiration) {
    keychainManager_.setWithString(token, keys().token);
    keychainManager_.setWithString(tokenSecret, keys().tokenSecret);
    keychainManager_.setWithInt(tokenExpiration, keys().tokenExpiration);
}

void TBCredentials::saveUserUrlSlug(const std::optional<std::string>& userUrlSlug) {
    keychainManager_.setWithString(userUrlSlug, keys().userSlug);
}

void TBCredentials::saveUserEmail(const std::optional<std::string>& email) {
    keychainManager_.setWithString(email, keys().userEmail);
}

void TBCredentials::saveUserScreenName(const std::optional<std::string>& screenName) {
    keychainManager_.setWithString(screenName, keys().userScreenName);
}

void TBCredentials::saveNewFeedItems(std::int64_t count) {
    keychainManager_.setWithInt(count, keys().feedUnseen);
}

void TBCredentials::saveNotiticationUnseen(std::int64_t count) {
    keychainManager_.setWithInt(count, keys().notificationsUnseen);
}

// The steps run in this order so that whoever observes "loggedOut" finds every trace of
// the account gone, the request paths included. The unseen notifications count is kept on
// purpose: it belongs to the device's badge, not to the account.
void TBCredentials::logout() {
    const std::nullopt_t none = std::nullopt;
    saveUserWithEmail(none, none, none, none, none, none, none, none, none, none, none);
    saveToken(none, none, 0);

    keychainManager_.setWithInt(0, keys().feedUnseen);
    keychainManager_.setWithInt(0, keys().ticketRepliesUnseen);

    saveArtist(nullptr);

    TBPreferencesRepository preferences(defaults_, notifications_);
    preferences.setExcludeReups(false);
    preferences.setHighlightsHintShown(false);

    favoriteMusic_.clear();
    favoritePlaylists_.clear();
    userPlaylists_.clear();
    followingArtists_.clear();
    reups_.clear();

    sdks_.call("MixpanelTracker.reset", {});
    sdks_.call("OneSignal.removeExternalUserId", {});

    clients_.client().setToken(std::nullopt);
    clients_.jsonClient().setToken(std::nullopt);
    api_.resetCredentials();

    notifications_.post(TBConstants::TBGlobalNotifications().loggedOut);
}

// ---- The saved artist -------------------------------------------------------------------

ArtistPtr TBCredentials::savedArtist() {
    return Artist::savedArtist(store_);
}

void TBCredentials::saveArtist(const ArtistPtr& artist) {
    if (artist) {
        artist->cacheObject(store_);
    } else {
        Artist::removeAll(store_);
    }
}

// ---- Sets -------------------------------------------------------------------------------

bool TBCredentials::artistIsFollowed(const std::string& artistId) const {
    return followingArtists_.count(artistId) > 0;
}

void TBCredentials::setArtistFollowed(const std::string& artistId) {
    followingArtists_.insert(artistId);
}

void TBCredentials::setArtistUnfollowed(const std::string& artistId) {
    followingArtists_.erase(artistId);
}

std::set<std::string>& TBCredentials::favoritesFor(const Item& item) {
    return item.isPlaylist ? favoritePlaylists_ : favoriteMusic_;
}

const std::set<std::string>& TBCredentials::favoritesFor(const Item& item) const {
    return item.isPlaylist ? favoritePlaylists_ : favoriteMusic_;
}

bool TBCredentials::itemIsFavorited(const Item& item) const {
    return contains(favoritesFor(item), item.itemID);
}

void TBCredentials::addItemToFavorites(const Item& item) {
    insert(favoritesFor(item), item.itemID);
}

void TBCredentials::removeItemFromFavorites(const Item& item) {
    erase(favoritesFor(item), item.itemID);
}

bool TBCredentials::itemIsReposted(const Item& item) const {
    return contains(reups_, item.itemID);
}

void TBCredentials::setItemReposted(const Item& item) {
    insert(reups_, item.itemID);
}

void TBCredentials::setItemUnreposted(const Item& item) {
    erase(reups_, item.itemID);
}

void TBCredentials::addOwnedItem(Item& item) {
    item.isUserPlaylist = item.isPlaylist;
    item.didChange();
    if (item.isPlaylist) {
        insert(userPlaylists_, item.itemID);
    }
}

bool TBCredentials::itemIsHighlighted(const Item& item) const {
    if (!item.itemID) {
        return false;
    }
    for (const auto& highlight : highlights_) {
        if (highlight && highlight->itemID == item.itemID) {
            return true;
        }
    }
    return false;
}

void TBCredentials::addItemToHighlights(const ItemPtr& item) {
    if (item) {
        highlights_.push_back(item);
    }
}

void TBCredentials::removeItemFromHighlights(const Item& item) {
    std::erase_if(highlights_, [&item](const ItemPtr& highlight) {
        return highlight && item.itemID && highlight->itemID == item.itemID;
    });
}

}  // namespace tb
