#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/ManualQueue.h"
#include "platform/linux/HttpRemoteConfig.h"
#include "support/FakeHttpTransport.h"
#include "support/FileContents.h"
#include "support/Recorders.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

namespace fs = std::filesystem;
using Status = RemoteConfigFetchStatus;
constexpr const char* kURL = "http://127.0.0.1:9/remote-config";

struct Outcome {
    std::optional<Status> status;
    std::optional<Error> error;
};

// The Linux remote store over a scripted transport and a temp data folder.
class HttpRemoteConfigTest : public ::testing::Test {
  protected:
    std::unique_ptr<HttpRemoteConfig> open() {
        auto store = std::make_unique<HttpRemoteConfig>(http, queue, errors, kURL, dir.path());
        store->setDefaults({{"timing", RemoteConfigValue::integer(275)},
                            {"enabled", RemoteConfigValue::boolean(true)}});
        return store;
    }

    // A fetch that the transport's rules answer, or `answer` with the request's index.
    Outcome fetch(HttpRemoteConfig& store, const std::function<void(std::size_t)>& answer = {}) {
        Outcome outcome;
        store.fetch(0.0, [&outcome](Status status, std::optional<Error> error) {
            outcome = {status, std::move(error)};
        });
        if (answer) {
            answer(http.count() - 1);
        }
        queue.runUntilIdle();
        return outcome;
    }

    static std::int64_t timing(const HttpRemoteConfig& store) {
        return store.configValueForKey("timing").numberValue()->integerValue;
    }

    std::optional<Error> activate(HttpRemoteConfig& store) {
        std::optional<Error> result = Error{"unset", 0, "", {}};
        store.activate([&result](std::optional<Error> error) { result = std::move(error); });
        queue.runUntilIdle();
        return result;
    }

    std::string file() const { return dir.file(HttpRemoteConfig::kFileName); }

    ManualQueue queue;
    test::FakeHttpTransport http{queue};
    test::RecordingErrorReporter errors;
    test::TempDir dir;
};

TEST_F(HttpRemoteConfigTest, FetchedValuesAreInForceOnlyOnceActivatedAndStayForTheNextLaunch) {
    http.on("GET", "/remote-config", 200, R"({"timing": "soon", "list": [1, "a"], "enabled": 0})");
    {
        auto store = open();
        EXPECT_EQ(fetch(*store).status, Status::Success);
        EXPECT_EQ(timing(*store), 275);

        EXPECT_EQ(activate(*store), std::nullopt);
        EXPECT_FALSE(store->configValueForKey("timing").numberValue());
    }
    auto next = open();
    // Each value keeps the JSON type it was sent with.
    EXPECT_EQ(next->configValueForKey("timing").stringValue(), "soon");
    EXPECT_EQ(next->configValueForKey("list").stringValue(), R"([1,"a"])");
    EXPECT_FALSE(next->configValueForKey("enabled").boolValue());
    EXPECT_FALSE(next->configValueForKey("never sent").hasValue());
    EXPECT_EQ(http.request(0).url, kURL);
}

struct FailedFetch {
    std::string name;
    int status;
    std::string body;
    std::int64_t transportError;  // 0: the answer arrives
};

class HttpRemoteConfigFailureTest : public HttpRemoteConfigTest,
                                    public ::testing::WithParamInterface<FailedFetch> {};

TEST_P(HttpRemoteConfigFailureTest, AFailedFetchReportsAnErrorAndChangesNothing) {
    auto store = open();
    fetch(*store, [this](std::size_t index) { http.respond(index, 200, R"({"timing": 60})"); });
    activate(*store);

    const auto& failure = GetParam();
    const Outcome outcome = fetch(*store, [this, &failure](std::size_t index) {
        if (failure.transportError != 0) {
            http.fail(index, failure.transportError);
        } else {
            http.respond(index, failure.status, failure.body);
        }
    });
    EXPECT_EQ(outcome.status, Status::Failure);
    EXPECT_TRUE(outcome.error.has_value());
    EXPECT_EQ(activate(*store), std::nullopt);
    EXPECT_EQ(timing(*store), 60);
    EXPECT_EQ(timing(*open()), 60);
}

INSTANTIATE_TEST_SUITE_P(Failures,
                         HttpRemoteConfigFailureTest,
                         ::testing::Values(FailedFetch{"Offline", 0, "", -1009},
                                           FailedFetch{"ServerError", 500, "{}", 0},
                                           FailedFetch{"NotAnObject", 200, "[1]", 0},
                                           FailedFetch{"NotJSON", 200, "{", 0}),
                         [](const auto& test) { return test.param.name; });

struct BrokenFile {
    std::string name;
    std::function<void(const std::string& file, const std::string& outside)> make;
};

class HttpRemoteConfigBrokenFileTest : public HttpRemoteConfigTest,
                                       public ::testing::WithParamInterface<BrokenFile> {};

TEST_P(HttpRemoteConfigBrokenFileTest, ReadsAsNoActivatedValuesAndIsReplacedByTheNextActivation) {
    test::TempDir elsewhere;
    const std::string outside = elsewhere.file("target.json");
    ASSERT_TRUE(test::writeFileText(outside, R"({"timing": 1})"));
    GetParam().make(file(), outside);

    auto store = open();
    EXPECT_EQ(timing(*store), 275);

    http.on("GET", "/remote-config", 200, R"({"timing": 60})");
    fetch(*store);
    EXPECT_EQ(activate(*store), std::nullopt);
    EXPECT_EQ(timing(*open()), 60);
    EXPECT_FALSE(fs::is_symlink(file()));
    EXPECT_EQ(test::readFileText(outside), R"({"timing": 1})");
}

INSTANTIATE_TEST_SUITE_P(
    Files,
    HttpRemoteConfigBrokenFileTest,
    ::testing::Values(BrokenFile{"NotJSON",
                                 [](const std::string& file, const std::string&) {
                                     test::writeFileText(file, R"({"timing": 1)");
                                 }},
                      BrokenFile{"NotAnObject",
                                 [](const std::string& file, const std::string&) {
                                     test::writeFileText(file, "[1, 2]");
                                 }},
                      BrokenFile{"SymlinkOutOfTheFolder",
                                 [](const std::string& file, const std::string& outside) {
                                     fs::create_symlink(outside, file);
                                 }}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace tb
