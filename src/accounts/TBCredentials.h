#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "model/ItemAttributes.h"

namespace tb {

class API;
class ExternalSdks;
class NotificationCenter;
class TBCoreDataManager;
class TBKeychainManager;
class TBXAuthClientManager;
class UserDefaultsProvider;
struct Artist;
struct Item;
using ArtistPtr = std::shared_ptr<Artist>;

// The single record of who is signed in. Identity and tokens live in the keychain and are
// read anew at every call; what the listener has favorited, followed, reposted, owns and
// highlights lives in memory only, empty after a start until the user record has answered.
//
// Only the session changes tokens; saveToken() stores them and leaves the request clients
// alone. All calls are on the main queue.
class TBCredentials {
  public:
    struct Collaborators {
        TBKeychainManager& keychainManager;
        UserDefaultsProvider& defaults;
        // The saved artist (the listener's own account) lives in the object store.
        TBCoreDataManager& store;
        TBXAuthClientManager& clients;
        API& api;
        ExternalSdks& sdks;
        NotificationCenter& notifications;
    };

    explicit TBCredentials(Collaborators collaborators);
    ~TBCredentials();
    TBCredentials(const TBCredentials&) = delete;
    TBCredentials& operator=(const TBCredentials&) = delete;

    static TBCredentials& sharedInstance();

    TBKeychainManager& keychainManager() { return keychainManager_; }

    // ---- In memory, rebuilt from the user record -------------------------------------
    const std::set<std::string>& favoriteMusic() const { return favoriteMusic_; }
    const std::set<std::string>& favoritePlaylists() const { return favoritePlaylists_; }
    const std::set<std::string>& userPlaylists() const { return userPlaylists_; }
    const std::set<std::string>& followingArtists() const { return followingArtists_; }
    const std::set<std::string>& reups() const { return reups_; }
    const std::vector<ItemPtr>& highlights() const { return highlights_; }
    void setFavoriteMusic(std::set<std::string> ids) { favoriteMusic_ = std::move(ids); }
    void setFavoritePlaylists(std::set<std::string> ids) { favoritePlaylists_ = std::move(ids); }
    void setUserPlaylists(std::set<std::string> ids) { userPlaylists_ = std::move(ids); }
    void setFollowingArtists(std::set<std::string> ids) { followingArtists_ = std::move(ids); }
    void setReups(std::set<std::string> ids) { reups_ = std::move(ids); }
    void setHighlights(std::vector<ItemPtr> items) { highlights_ = std::move(items); }

    // ---- From the keychain ----------------------------------------------------------
    std::optional<std::string> userSlug();
    std::optional<std::string> userId();
    std::optional<std::string> userScreenName();
    std::optional<std::string> userEmail();
    std::optional<std::string> userPassword();
    std::optional<std::string> socialEmail();
    std::optional<std::string> facebookId();
    std::optional<std::string> googleIdToken();
    std::optional<std::string> twitterToken();
    std::optional<std::string> twitterSecret();
    std::optional<std::string> token();
    std::optional<std::string> tokenSecret();
    std::int64_t tokenExpiration();  // 0 when absent
    std::int64_t notificationUnseen();
    std::int64_t feedUnseen();
    std::int64_t ticketRepliesUnseen();
    std::optional<std::string> registeredViaSocial();

    // ---- Derived -------------------------------------------------------------------
    // An identity is present: an email, a Facebook id, a Google token, or both Twitter
    // values. The token is not looked at: an identity without one refreshes on its first 401.
    bool loggedIn();
    std::size_t myPlaylistsCount() const { return userPlaylists_.size(); }
    std::size_t favoritedItemsCount() const {
        return favoriteMusic_.size() + favoritePlaylists_.size();
    }

    // ---- Writes (nil removes the key) ----------------------------------------------
    void saveUserWithEmail(const std::optional<std::string>& email,
                           const std::optional<std::string>& password,
                           const std::optional<std::string>& socialEmail,
                           const std::optional<std::string>& facebookId,
                           const std::optional<std::string>& googleIdToken,
                           const std::optional<std::string>& twitterToken,
                           const std::optional<std::string>& twitterSecret,
                           const std::optional<std::string>& userUrlSlug,
                           const std::optional<std::string>& userId,
                           const std::optional<std::string>& userScreenName,
                           const std::optional<std::string>& registeredViaSocial);
    void saveToken(const std::optional<std::string>& token,
                   const std::optional<std::string>& tokenSecret,
                   std::int64_t tokenExpiration);
    void saveUserUrlSlug(const std::optional<std::string>& userUrlSlug);
    void saveUserEmail(const std::optional<std::string>& email);
    void saveUserScreenName(const std::optional<std::string>& screenName);
    void saveNewFeedItems(std::int64_t count);
    void saveNotiticationUnseen(std::int64_t count);

    // Forgets the identity, the tokens and the in-memory sets, tells the analytics and push
    // libraries, takes the token from all three request paths and posts "loggedOut". The
    // unseen notifications count and the highlights stay.
    void logout();

    // ---- The listener's own account (the saved artist) -----------------------------
    ArtistPtr savedArtist();
    // Replaces the saved artist; nil removes it.
    void saveArtist(const ArtistPtr& artist);

    // ---- Sets ----------------------------------------------------------------------
    bool artistIsFollowed(const std::string& artistId) const;
    void setArtistFollowed(const std::string& artistId);
    void setArtistUnfollowed(const std::string& artistId);

    // A playlist is looked up among the favorite playlists, anything else among the
    // favorite music, by its id.
    bool itemIsFavorited(const Item& item) const;
    void addItemToFavorites(const Item& item);
    void removeItemFromFavorites(const Item& item);

    bool itemIsReposted(const Item& item) const;
    void setItemReposted(const Item& item);
    void setItemUnreposted(const Item& item);

    // Marks the item as the listener's own when it is a playlist (and lists it among the
    // listener's playlists); any other item is marked as not owned.
    void addOwnedItem(Item& item);

    bool itemIsHighlighted(const Item& item) const;
    void addItemToHighlights(const ItemPtr& item);
    void removeItemFromHighlights(const Item& item);

  private:
    std::set<std::string>& favoritesFor(const Item& item);
    const std::set<std::string>& favoritesFor(const Item& item) const;

    TBKeychainManager& keychainManager_;
    UserDefaultsProvider& defaults_;
    TBCoreDataManager& store_;
    TBXAuthClientManager& clients_;
    API& api_;
    ExternalSdks& sdks_;
    NotificationCenter& notifications_;

    std::set<std::string> favoriteMusic_;
    std::set<std::string> favoritePlaylists_;
    std::set<std::string> userPlaylists_;
    std::set<std::string> followingArtists_;
    std::set<std::string> reups_;
    std::vector<ItemPtr> highlights_;
};

}  // namespace tb
