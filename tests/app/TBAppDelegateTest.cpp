#include <algorithm>
#include <any>
#include <filesystem>

#include "accounts/TBKeychainManager.h"
#include "api/TBXAuthClientManager.h"
#include "app/TBAppDelegate.h"
#include "core/TBConstants.h"
#include "core/TBPermisionsManager.h"
#include "core/TBPreferencesRepository.h"
#include "platform/NotificationCenter.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The ports of `platform`, for a second context over the same stores: a later start of the
// app on the same device.
AppPorts portsOf(test::TestPlatform& platform) {
    AppPorts ports;
    ports.mainQueue = &platform.queue;
    ports.clock = &platform.queue.clock();
    ports.defaults = &platform.defaults;
    ports.keychain = &platform.keychain;
    ports.olderKeychain = &platform.olderKeychain;
    ports.http = &platform.http;
    ports.errorReporter = &platform.errors;
    ports.reachability = &platform.reachability;
    ports.uiHost = &platform.ui;
    ports.random = &platform.random;
    ports.externalSdks = &platform.sdks;
    ports.remoteConfig = &platform.remoteConfig;
    return ports;
}

std::vector<std::string> namesOf(const std::vector<LaunchRecord>& records) {
    std::vector<std::string> names;
    for (const auto& record : records) {
        names.push_back(record.name);
    }
    return names;
}

std::string outcomeOf(const TBAppDelegate& app, const std::string& step) {
    for (const auto& record : app.launchRecords()) {
        if (record.name == step) {
            return record.outcome;
        }
    }
    return "(did not run)";
}

class TBAppDelegateTest : public ::testing::Test {
  protected:
    TBAppDelegate& launch() {
        auto& app = TBAppDelegate::shared();
        EXPECT_EQ(app.didFinishLaunchingWithOptions(), std::nullopt);
        return app;
    }

    test::TestPlatform platform;
};

TEST_F(TBAppDelegateTest, LaunchRunsItsStepsInTheFixedOrder) {
    platform.random.script = {10};
    const auto& app = launch();

    EXPECT_THAT(
        namesOf(app.launchRecords()),
        ElementsAre("keys", "crash reporter pick", "Embrace", "Crashlytics and Answers", "Bugsnag",
                    "fresh install", "ComScore", "Twitter", "Firebase", "environment", "store",
                    "token restore", "reachability", "push", "location", "OneSignal",
                    "featured music", "Zendesk", "messaging and Google sign-in", "AppsFlyer"));
    EXPECT_THAT(platform.errors.started, ElementsAre("Crashlytics", "Answers", "Bugsnag"));
    EXPECT_THAT(
        platform.sdks.libraries(),
        ElementsAre("SCORAnalytics.start", "TWTRTwitter.start", "FIRApp.configure",
                    "OneSignal.init", "ZDKZendesk.initialize", "ZDKCoreLogger.enable",
                    "ZDKTheme.primaryColor", "ZDKSupport.initialize", "FIRMessaging.delegate",
                    "GIDSignIn.clientID", "AppsFlyerTracker.start"));
}

TEST_F(TBAppDelegateTest, OutsideLibrariesGetKeyRolesAndNeverKeyValues) {
    launch();
    for (const auto& start : platform.sdks.starts) {
        for (const auto& [name, value] : start.settings) {
            EXPECT_EQ(value.rfind("test-", 0), std::string::npos)
                << start.library << " got the value of " << name;
        }
    }
    EXPECT_EQ(platform.sdks.starts[0].settings.at("publisherId"), "comscoreId");
    EXPECT_EQ(platform.sdks.starts[3].settings.at("appId"), "oneSignalLiveKey");
    EXPECT_EQ(platform.sdks.starts[3].settings.at("kOSSettingsKeyAutoPrompt"), "false");
}

TEST_F(TBAppDelegateTest, ALowDrawPicksBugsnagWithTheBuildsReleaseStage) {
    platform.random.script = {49};
    const auto& app = launch();

    // One draw for the pick; the featured music's signed request draws its nonce too.
    EXPECT_EQ(std::count(platform.random.upperBoundsAsked.begin(),
                         platform.random.upperBoundsAsked.end(), 100u),
              1);
    EXPECT_EQ(outcomeOf(app, "crash reporter pick"), "Bugsnag");
    EXPECT_EQ(outcomeOf(app, "Embrace"), "skipped");
    EXPECT_EQ(platform.errors.startKeys.at("Bugsnag"), "test-bugsnagKey");
    EXPECT_THAT((std::vector<std::string>{"Debug", "Production"}),
                ::testing::Contains(platform.errors.releaseStage));

    TBKeychainManager keychain(platform.keychain, platform.olderKeychain);
    EXPECT_TRUE(keychain.boolForKey("crashReportingSDKPicked"));
    EXPECT_TRUE(keychain.boolForKey("bugsnagEnabled"));
    EXPECT_FALSE(keychain.boolForKey("embraceEnabled"));
}

TEST_F(TBAppDelegateTest, AHighDrawPicksEmbraceBeforeTheOthers) {
    platform.random.script = {50};
    const auto& app = launch();

    EXPECT_EQ(outcomeOf(app, "crash reporter pick"), "Embrace");
    EXPECT_EQ(outcomeOf(app, "Bugsnag"), "skipped");
    EXPECT_THAT(platform.errors.started, ElementsAre("Embrace", "Crashlytics", "Answers"));
    EXPECT_EQ(platform.errors.startKeys.at("Embrace"), "test-embraceKey");
    EXPECT_EQ(platform.errors.releaseStage, "");
}

TEST_F(TBAppDelegateTest, ThePickIsMadeOnceAndSurvivesAReinstall) {
    platform.random.script = {75};
    launch();

    // A reinstall: the defaults are new, the keychain is the device's.
    MemoryUserDefaultsProvider reinstalledDefaults;
    AppPorts ports = portsOf(platform);
    ports.defaults = &reinstalledDefaults;
    platform.random.script = {5};
    AppContext reinstalled(ports, platform.context().options());
    auto& app = TBAppDelegate::shared();
    ASSERT_NE(&app, &platform.context().appDelegate());
    ASSERT_EQ(app.didFinishLaunchingWithOptions(), std::nullopt);

    // One draw for the pick; the featured music's signed request draws its nonce too.
    EXPECT_EQ(std::count(platform.random.upperBoundsAsked.begin(),
                         platform.random.upperBoundsAsked.end(), 100u),
              1);
    EXPECT_EQ(outcomeOf(app, "crash reporter pick"), "Embrace (kept)");
    EXPECT_TRUE(app.freshInstall());
}

TEST_F(TBAppDelegateTest, ASecondLaunchAfterAFirstIsNotFresh) {
    const auto& first = launch();
    EXPECT_TRUE(first.freshInstall());
    EXPECT_EQ(platform.defaults.standard().objectForKey("interstitialad_timestamp"),
              DefaultsValue(0.0));

    AppContext second(portsOf(platform), platform.context().options());
    auto& app = TBAppDelegate::shared();
    ASSERT_EQ(app.didFinishLaunchingWithOptions(), std::nullopt);
    EXPECT_FALSE(app.freshInstall());
    EXPECT_EQ(outcomeOf(app, "fresh install"), "no");
}

TEST_F(TBAppDelegateTest, TheFreshInstallAnswerIsKeptForTheProcess) {
    const auto& app = launch();
    platform.defaults.standard().setDouble("interstitialad_timestamp", 100.0);
    EXPECT_TRUE(app.freshInstall());
}

TEST_F(TBAppDelegateTest, AKeychainThatRefusesWritesRunsNeitherPickedReporter) {
    platform.keychain.setFailsWrites(true);
    const auto& app = launch();
    EXPECT_EQ(outcomeOf(app, "crash reporter pick"), "none");
    EXPECT_THAT(platform.errors.started, ElementsAre("Crashlytics", "Answers"));
}

TEST_F(TBAppDelegateTest, TheEnvironmentFollowsThePreference) {
    TBPreferencesRepository(platform.defaults, platform.context().notificationCenter())
        .setLiveEnvironment(false);
    const auto& app = launch();
    EXPECT_FALSE(app.liveEnvironment());
    EXPECT_EQ(outcomeOf(app, "environment"), "dev");
}

TEST_F(TBAppDelegateTest, TheStoreOpensAfterTheEnvironmentIsChosen) {
    const auto& app = launch();
    EXPECT_EQ(outcomeOf(app, "store"), "open");
    EXPECT_TRUE(std::filesystem::exists(platform.context().paths().documents + "/CoreData.sqlite"));
}

TEST_F(TBAppDelegateTest, TheStoredTokenReachesBothClientsOnlyWhenItsSecretIsThere) {
    auto& keychain = platform.context().keychainManager();
    keychain.setWithString("tok", "token");
    EXPECT_EQ(outcomeOf(launch(), "token restore"), "no token");
    EXPECT_EQ(platform.context().clients().client().token(), std::nullopt);

    keychain.setWithString("sec", "tokenSecret");
    keychain.setWithInt(99, "tokenExpiration");
    AppContext second(portsOf(platform), platform.context().options());
    auto& app = TBAppDelegate::shared();
    app.didFinishLaunchingWithOptions();
    EXPECT_EQ(outcomeOf(app, "token restore"), "restored");
    for (auto* client : {&second.clients().client(), &second.clients().jsonClient()}) {
        ASSERT_TRUE(client->token());
        EXPECT_EQ(client->token()->secret(), "sec");
        EXPECT_EQ(client->token()->expiration(), 99);
    }
}

TEST_F(TBAppDelegateTest, PushIsEnabledOnlyWhenGranted) {
    EXPECT_EQ(outcomeOf(launch(), "push"), "not granted");

    AppContext second(portsOf(platform), platform.context().options());
    TBPermisionsManager::sharedInstance().setPushGranted(true);
    auto& app = TBAppDelegate::shared();
    app.didFinishLaunchingWithOptions();
    EXPECT_EQ(outcomeOf(app, "push"), "enabled");
    EXPECT_EQ(outcomeOf(app, "location"), "disabled");
}

TEST_F(TBAppDelegateTest, AStepInsertedByNameRunsInItsPlace) {
    auto& app = TBAppDelegate::shared();
    std::vector<std::string> seen;
    ASSERT_TRUE(app.launchSequence().insertAfter(
        "environment", {"catalogue", [&] {
                            seen.push_back(app.liveEnvironment() ? "live" : "dev");
                            return "opened";
                        }}));
    ASSERT_EQ(app.didFinishLaunchingWithOptions(), std::nullopt);

    const auto names = namesOf(app.launchRecords());
    const auto at = std::find(names.begin(), names.end(), "catalogue");
    ASSERT_NE(at, names.end());
    EXPECT_EQ(*(at - 1), "environment");
    EXPECT_EQ(*(at + 1), "store");
    EXPECT_THAT(seen, ElementsAre("live"));
}

TEST(TBAppDelegateKeysTest, WithoutAKeyStoreNothingStarts) {
    test::TempDir dir;
    AppOptions options;
    options.keysFile = dir.file("absent.json");
    test::TestPlatform platform(options);

    const auto error = TBAppDelegate::shared().didFinishLaunchingWithOptions();

    ASSERT_TRUE(error);
    EXPECT_NE(error->message.find(dir.file("absent.json")), std::string::npos);
    EXPECT_THAT(TBAppDelegate::shared().launchRecords(), IsEmpty());
    EXPECT_THAT(platform.errors.started, IsEmpty());
    EXPECT_THAT(platform.sdks.starts, IsEmpty());
    EXPECT_TRUE(platform.keychain.allKeys().empty());
}

class TBAppDelegateEventsTest : public TBAppDelegateTest {
  protected:
    void observe(const char* name) {
        platform.context().notificationCenter().addObserver(
            name, nullptr, [this, name](const Notification&) { posted.push_back(name); });
    }

    std::vector<std::string> posted;
};

TEST_F(TBAppDelegateEventsTest, ResignPostsTheBackgroundNotification) {
    observe("didEnterBackground");
    observe("willEnterForeground");
    auto& app = launch();

    app.applicationWillResignActive();
    app.applicationDidEnterBackground();
    app.applicationWillEnterForeground();

    EXPECT_THAT(posted, ElementsAre("didEnterBackground"));
}

TEST_F(TBAppDelegateEventsTest, EveryActivationPostsTheForegroundNotificationTheFirstToo) {
    observe("willEnterForeground");
    auto& app = launch();
    platform.sdks.starts.clear();
    EXPECT_FALSE(app.firstDidBecomeActiveExecuted());

    app.applicationDidBecomeActive();
    EXPECT_TRUE(app.firstDidBecomeActiveExecuted());
    EXPECT_THAT(posted, ElementsAre("willEnterForeground"));

    app.applicationDidBecomeActive();
    EXPECT_THAT(posted, ElementsAre("willEnterForeground", "willEnterForeground"));
    EXPECT_THAT(platform.sdks.libraries(),
                ElementsAre("FBSDKAppEvents.activateApp", "AppsFlyerTracker.trackAppLaunch",
                            "FBSDKAppEvents.activateApp", "AppsFlyerTracker.trackAppLaunch"));
}

std::string text(const UserInfo& info, const std::string& key) {
    return std::any_cast<std::string>(info.at(key));
}

TEST(TBAppDelegateLinkTest, TheAppSchemeCarriesTypeIdAndKey) {
    const auto song =
        TBAppDelegate::notificationForURL("tunebrook://song/artist-slug/song-slug?key=abc");
    ASSERT_TRUE(song);
    EXPECT_EQ(text(*song, "type"), "song");
    EXPECT_EQ(text(*song, "id"), "artist-slug/song-slug");
    const auto params = std::any_cast<UserInfo>(song->at("params"));
    EXPECT_EQ(text(params, "key"), "abc");
    EXPECT_EQ(params.size(), 1u);
}

TEST(TBAppDelegateLinkTest, EveryKeyPrefixIsRemovedFromTheKey) {
    const auto link = TBAppDelegate::notificationForURL("tunebrook://album/42?key=a-key=b");
    ASSERT_TRUE(link);
    EXPECT_EQ(text(std::any_cast<UserInfo>(link->at("params")), "key"), "a-b");
}

TEST(TBAppDelegateLinkTest, ParamsNeedAnIdAndAQueryThatBeginsWithTheKey) {
    for (const std::string url :
         {"tunebrook://feed?key=abc", "tunebrook://feed/?key=abc",
          "tunebrook://song/1?other=1&key=abc", "tunebrook://song/1?", "tunebrook://song/1"}) {
        const auto link = TBAppDelegate::notificationForURL(url);
        ASSERT_TRUE(link) << url;
        EXPECT_EQ(link->count("params"), 0u) << url;
        EXPECT_EQ(link->size(), 2u) << url;
    }
    EXPECT_EQ(text(*TBAppDelegate::notificationForURL("tunebrook://feed?key=abc"), "id"), "");
}

TEST(TBAppDelegateLinkTest, OnlyTheAppsOwnSchemeIsTaken) {
    test::TestPlatform platform;
    auto& app = TBAppDelegate::shared();
    EXPECT_TRUE(app.applicationOpenURL("tunebrook://song/1"));
    EXPECT_FALSE(app.applicationOpenURL("https://tunebrook.test/song/1"));
    EXPECT_FALSE(app.applicationOpenURL("TUNEBROOK://song/1"));
    EXPECT_FALSE(app.applicationOpenURL("not a url"));
}

}  // namespace
}  // namespace tb
