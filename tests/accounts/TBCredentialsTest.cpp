#include "accounts/SharedWebCredentialsHelper.h"
#include "accounts/TBCredentials.h"
#include "accounts/TBKeychainManager.h"
#include "api/TBDataManager.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBConstants.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/MemoryKeychainStore.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;

class TBCredentialsTest : public ::testing::Test {
  protected:
    TBCredentials& credentials() { return platform.context().credentials(); }

    static ItemPtr item(const std::string& id, bool playlist) {
        auto made = std::make_shared<Item>();
        made->itemID = id;
        made->isPlaylist = playlist;
        made->isSong = !playlist;
        return made;
    }

    test::TestPlatform platform;
};

struct IdentityCase {
    const char* name;
    const char* key;
    const char* secondKey;  // may be null
    bool loggedIn;
};

class LoggedInTest : public TBCredentialsTest,
                     public ::testing::WithParamInterface<IdentityCase> {};

TEST_P(LoggedInTest, DependsOnTheIdentityAndNeverOnTheToken) {
    auto& keychain = credentials().keychainManager();
    keychain.setWithString("value", GetParam().key);
    if (GetParam().secondKey) {
        keychain.setWithString("value", GetParam().secondKey);
    }
    EXPECT_EQ(credentials().loggedIn(), GetParam().loggedIn);
}

INSTANTIATE_TEST_SUITE_P(
    Identities,
    LoggedInTest,
    ::testing::Values(IdentityCase{"Email", "email", nullptr, true},
                      IdentityCase{"Facebook", "facebookId", nullptr, true},
                      IdentityCase{"Google", "googleIdToken", nullptr, true},
                      IdentityCase{"TwitterPair", "twitterToken", "twitterSecret", true},
                      IdentityCase{"TwitterTokenAlone", "twitterToken", nullptr, false},
                      IdentityCase{"TokenAlone", "token", "tokenSecret", false}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(TBCredentialsTest, LogoutForgetsTheAccountEverywhereButKeepsUnseenNotifications) {
    auto& c = credentials();
    c.saveUserWithEmail("me@x.test", "pw", "s@x.test", "fb", "g", "t", "ts", "me", "7", "Me",
                        "false");
    c.saveToken("tok", "sec", 99);
    c.saveNotiticationUnseen(4);
    c.saveNewFeedItems(3);
    c.keychainManager().setWithInt(2, "ticketRepliesUnseen");
    c.setFavoriteMusic({"1"});
    c.setFavoritePlaylists({"2"});
    c.setUserPlaylists({"3"});
    c.setFollowingArtists({"4"});
    c.setReups({"5"});
    c.setHighlights({item("6", false)});
    platform.context().dataManager().startup();
    auto artist = std::make_shared<Artist>();
    artist->urlSlug = "me";
    c.saveArtist(artist);
    ASSERT_NE(c.savedArtist(), nullptr);
    auto& clients = platform.context().clients();
    clients.client().setToken("tok", "sec", 99);
    clients.jsonClient().setToken("tok", "sec", 99);
    auto& defaults = platform.defaults.standard();
    defaults.setString("excludeReups", "1");
    defaults.setString("highligths_hint_shown", "1");
    int loggedOut = 0;
    platform.context().notificationCenter().addObserver(
        TBConstants::TBGlobalNotifications().loggedOut, nullptr,
        [&](const Notification&) { ++loggedOut; });

    c.logout();
    platform.queue.runUntilIdle();

    EXPECT_FALSE(c.loggedIn());
    EXPECT_EQ(c.userSlug(), std::nullopt);
    EXPECT_EQ(c.registeredViaSocial(), std::nullopt);
    EXPECT_EQ(c.token(), std::nullopt);
    EXPECT_EQ(c.tokenExpiration(), 0);
    EXPECT_EQ(c.notificationUnseen(), 4);
    EXPECT_EQ(c.feedUnseen(), 0);
    EXPECT_EQ(c.ticketRepliesUnseen(), 0);
    EXPECT_EQ(c.savedArtist(), nullptr);
    EXPECT_EQ(c.favoritedItemsCount() + c.myPlaylistsCount() + c.reups().size() +
                  c.followingArtists().size(),
              0u);
    EXPECT_EQ(c.highlights().size(), 1u) << "highlights stay until they are replaced";
    EXPECT_EQ(defaults.stringForKey("excludeReups"), "0");
    EXPECT_FALSE(defaults.boolForKey("highligths_hint_shown"));
    EXPECT_THAT(platform.sdks.callNames(),
                ElementsAre("MixpanelTracker.reset", "OneSignal.removeExternalUserId"));
    EXPECT_EQ(clients.client().token(), std::nullopt);
    EXPECT_EQ(clients.jsonClient().token(), std::nullopt);
    EXPECT_EQ(loggedOut, 1);
}

TEST_F(TBCredentialsTest, SetsTellPlaylistsFromOtherItemsWithTheSameId) {
    auto& c = credentials();
    const auto song = item("9", false);
    const auto playlist = item("9", true);

    c.addItemToFavorites(*playlist);
    EXPECT_TRUE(c.itemIsFavorited(*playlist));
    EXPECT_FALSE(c.itemIsFavorited(*song));
    c.addItemToFavorites(*song);
    c.removeItemFromFavorites(*playlist);
    EXPECT_TRUE(c.itemIsFavorited(*song));
    EXPECT_EQ(c.favoritedItemsCount(), 1u);

    c.addOwnedItem(*playlist);
    c.addOwnedItem(*song);
    EXPECT_TRUE(playlist->isUserPlaylist);
    EXPECT_FALSE(song->isUserPlaylist);
    EXPECT_EQ(c.myPlaylistsCount(), 1u);

    c.addItemToHighlights(song);
    EXPECT_TRUE(c.itemIsHighlighted(*item("9", false)));
    c.removeItemFromHighlights(*song);
    EXPECT_FALSE(c.itemIsHighlighted(*song));
}

TEST(SharedWebCredentialsHelperTest, KeepsOneAccountPerWebHostUntilThatAccountIsRemoved) {
    MemoryKeychainStore store;
    SharedWebCredentialsHelper helper(store, "https://tunebrook.test");
    std::optional<std::string> account;
    std::optional<std::string> password;
    auto read = [&](const auto& a, const auto& p) {
        account = a;
        password = p;
    };

    helper.saveCredentials("me@x.test", "pw");
    helper.removeCredentials("other@x.test");
    helper.checkSafariCredentials(read);
    EXPECT_EQ(account, "me@x.test");
    EXPECT_EQ(password, "pw");

    helper.removeCredentials("me@x.test");
    helper.checkSafariCredentials(read);
    EXPECT_EQ(account, std::nullopt);
}

}  // namespace
}  // namespace tb
