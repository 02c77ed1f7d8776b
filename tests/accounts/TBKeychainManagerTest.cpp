#include <limits>

#include "accounts/TBKeychainManager.h"
#include "platform/MemoryKeychainStore.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

class TBKeychainManagerTest : public ::testing::Test {
  protected:
    MemoryKeychainStore current;
    MemoryKeychainStore older;
    TBKeychainManager keychain{current, older};
};

TEST_F(TBKeychainManagerTest, EntriesAreTheJSONOfAValueWrapper) {
    keychain.setWithString("abc\"d", "token");
    keychain.setWithInt(1700000000123, "tokenExpiration");
    keychain.setWithDouble(2.5, "ratio");
    keychain.setWithBool(true, "embraceEnabled");

    EXPECT_EQ(current.dataForKey("token"), R"({"value":"abc\"d"})");
    EXPECT_EQ(current.dataForKey("tokenExpiration"), R"({"value":1700000000123})");
    EXPECT_EQ(current.dataForKey("ratio"), R"({"value":2.5})");
    EXPECT_EQ(current.dataForKey("embraceEnabled"), R"({"value":true})");

    EXPECT_EQ(keychain.stringForKey("token"), "abc\"d");
    EXPECT_EQ(keychain.intForKey("tokenExpiration"), 1700000000123);
    EXPECT_EQ(keychain.doubleForKey("ratio"), 2.5);
    EXPECT_TRUE(keychain.boolForKey("embraceEnabled"));
}

TEST_F(TBKeychainManagerTest, ReadsEntriesWrittenByEarlierVersions) {
    current.setData("feedUnseen", R"({"value": 3})");
    current.setData("wholeDouble", R"({"value": 3})");
    current.setData("userId", R"( { "value" : "42" } )");
    current.setData("bugsnagEnabled", R"({"value":false})");

    EXPECT_EQ(keychain.intForKey("feedUnseen"), 3);
    EXPECT_EQ(keychain.doubleForKey("wholeDouble"), 3.0);
    EXPECT_EQ(keychain.stringForKey("userId"), "42");
    EXPECT_FALSE(keychain.boolForKey("bugsnagEnabled"));
}

TEST_F(TBKeychainManagerTest, EntriesThatDoNotDecodeReadAsAbsent) {
    current.setData("a", "not json");
    current.setData("b", R"({"value": 1.5})");
    current.setData("c", R"({"other": "x"})");
    current.setData("d", R"({"value": "true"})");
    current.setData("e", R"({})");
    current.setData("f", R"({"value": null})");
    current.setData("g", std::string(10000, '[') + std::string(10000, ']'));
    current.setData("h", R"({"value": 18446744073709551615})");

    EXPECT_EQ(keychain.stringForKey("a"), std::nullopt);
    EXPECT_EQ(keychain.intForKey("b"), std::nullopt);
    EXPECT_EQ(keychain.stringForKey("b"), std::nullopt);
    EXPECT_EQ(keychain.doubleForKey("c"), std::nullopt);
    EXPECT_FALSE(keychain.boolForKey("d"));
    EXPECT_EQ(keychain.stringForKey("e"), std::nullopt);
    EXPECT_EQ(keychain.intForKey("f"), std::nullopt);
    EXPECT_EQ(keychain.stringForKey("g"), std::nullopt);
    EXPECT_EQ(keychain.intForKey("h"), std::nullopt);
}

TEST_F(TBKeychainManagerTest, TheFirstReadMovesAValueOutOfTheOlderStore) {
    older.setData("token", "old-token");
    older.setData("tokenExpiration", " 1700000000");
    older.setData("ratio", "0.25");

    EXPECT_EQ(keychain.stringForKey("token"), "old-token");
    EXPECT_EQ(keychain.intForKey("tokenExpiration"), 1700000000);
    EXPECT_EQ(keychain.doubleForKey("ratio"), 0.25);

    EXPECT_TRUE(older.allKeys().empty());
    EXPECT_EQ(current.dataForKey("token"), R"({"value":"old-token"})");
    EXPECT_EQ(current.dataForKey("tokenExpiration"), R"({"value":1700000000})");
    EXPECT_EQ(keychain.stringForKey("token"), "old-token");
}

TEST_F(TBKeychainManagerTest, TheCurrentStoreWinsOverTheOlderOne) {
    keychain.setWithString("new", "userSlug");
    older.setData("userSlug", "stale");

    EXPECT_EQ(keychain.stringForKey("userSlug"), "new");
    EXPECT_EQ(older.dataForKey("userSlug"), "stale");
}

TEST_F(TBKeychainManagerTest, OlderTextThatIsNotANumberStaysWhereItIs) {
    older.setData("feedUnseen", "none");
    EXPECT_EQ(keychain.intForKey("feedUnseen"), std::nullopt);
    EXPECT_EQ(keychain.doubleForKey("feedUnseen"), std::nullopt);
    EXPECT_FALSE(current.dataForKey("feedUnseen"));
}

TEST_F(TBKeychainManagerTest, BooleansHaveNoOlderStore) {
    older.setData("crashReportingSDKPicked", "1");
    EXPECT_FALSE(keychain.boolForKey("crashReportingSDKPicked"));
    EXPECT_FALSE(current.dataForKey("crashReportingSDKPicked"));
}

TEST_F(TBKeychainManagerTest, EveryWriteClearsTheOlderStore) {
    older.setData("email", "a@b.c");
    older.setData("password", "secret");
    older.setData("facebookId", "fb");

    keychain.setWithString(std::nullopt, "email");
    keychain.setWithBool(false, "password");
    keychain.removeObjectForKey("facebookId");

    EXPECT_TRUE(older.allKeys().empty());
    EXPECT_EQ(keychain.stringForKey("email"), std::nullopt);
    EXPECT_EQ(keychain.stringForKey("facebookId"), std::nullopt);
}

TEST_F(TBKeychainManagerTest, NoneRemovesTheEntry) {
    keychain.setWithInt(5, "notificationsUnseen");
    keychain.setWithInt(std::nullopt, "notificationsUnseen");
    EXPECT_FALSE(current.dataForKey("notificationsUnseen"));
    EXPECT_EQ(keychain.intForKey("notificationsUnseen"), std::nullopt);
}

TEST_F(TBKeychainManagerTest, ARefusedWriteKeepsTheOldValue) {
    keychain.setWithString("kept", "token");
    current.setFailsWrites(true);
    keychain.setWithString("lost", "token");
    current.setFailsWrites(false);
    EXPECT_EQ(keychain.stringForKey("token"), "kept");

    // A number JSON can't hold is refused the same way.
    keychain.setWithDouble(1.0, "ratio");
    keychain.setWithDouble(std::numeric_limits<double>::quiet_NaN(), "ratio");
    keychain.setWithDouble(std::numeric_limits<double>::infinity(), "ratio");
    EXPECT_EQ(keychain.doubleForKey("ratio"), 1.0);
}

TEST_F(TBKeychainManagerTest, AWrapperValueOfAnotherTypeFallsBackToTheOlderStore) {
    current.setData("userId", R"({"value": 42})");
    older.setData("userId", "u42");
    EXPECT_EQ(keychain.stringForKey("userId"), "u42");
    EXPECT_EQ(current.dataForKey("userId"), R"({"value":"u42"})");
}

}  // namespace
}  // namespace tb
