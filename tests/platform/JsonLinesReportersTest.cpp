#include <sstream>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/Clock.h"
#include "platform/linux/JsonLinesErrorReporter.h"
#include "platform/linux/JsonLinesExternalSdks.h"
#include "support/FileContents.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

std::vector<nlohmann::json> readLines(const std::string& path) {
    std::vector<nlohmann::json> records;
    std::istringstream text(test::readFileText(path));
    for (std::string line; std::getline(text, line);) {
        records.push_back(nlohmann::json::parse(line));  // throws, failing the test, on a torn line
    }
    return records;
}

class JsonLinesReportersTest : public ::testing::Test {
  protected:
    test::TempDir support;
    ManualClock clock{1'700'000'123.5};
};

TEST_F(JsonLinesReportersTest, ErrorsAndReporterEventsAreOneRecordPerLine) {
    JsonLinesErrorReporter reporter(support.path(), clock);
    reporter.startReporter("Bugsnag", "bugsnag-secret-key");
    reporter.setReleaseStage("Production");
    clock.advance(2.0);
    reporter.recordError(Error{"TBCoreData", 11, "disk\nfull \xFF", {{"path", "/x"}}},
                         {{"itemID", "42"}});
    reporter.endAppStartup();

    EXPECT_EQ(reporter.path(), support.file("errors.jsonl"));
    const auto lines = readLines(reporter.path());
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0],
              (nlohmann::json{{"time", 1'700'000'123.5}, {"kind", "start"}, {"name", "Bugsnag"}}));
    EXPECT_EQ(lines[1]["kind"], "releaseStage");
    EXPECT_EQ(lines[1]["stage"], "Production");
    EXPECT_EQ(lines[2]["time"], 1'700'000'125.5);
    EXPECT_EQ(lines[2]["kind"], "error");
    EXPECT_EQ(lines[2]["domain"], "TBCoreData");
    EXPECT_EQ(lines[2]["code"], 11);
    EXPECT_EQ(lines[2]["message"].get<std::string>().substr(0, 9), "disk\nfull");
    EXPECT_EQ(lines[2]["userInfo"], (nlohmann::json{{"path", "/x"}}));
    EXPECT_EQ(lines[2]["additionalInfo"], (nlohmann::json{{"itemID", "42"}}));
    EXPECT_EQ(lines[3]["kind"], "appStartupEnded");

    EXPECT_EQ(test::readFileText(reporter.path()).find("bugsnag-secret-key"), std::string::npos)
        << "a reporter's key reached the disk";
}

TEST_F(JsonLinesReportersTest, RecordsAreAppendedAcrossRunsAndWritersWithoutTornLines) {
    JsonLinesErrorReporter({support.path(), clock}).endAppStartup();
    constexpr int kPerWriter = 500;
    std::vector<std::thread> writers;
    for (int w = 0; w < 4; ++w) {
        writers.emplace_back([&, w] {
            // Each writer has its own descriptor, as separate processes would.
            JsonLinesErrorReporter reporter(support.path(), clock);
            for (int i = 0; i < kPerWriter; ++i) {
                reporter.recordError(Error{"W" + std::to_string(w), i, std::string(300, 'x'), {}});
            }
        });
    }
    for (auto& writer : writers) {
        writer.join();
    }
    const auto lines = readLines(support.file("errors.jsonl"));
    EXPECT_EQ(lines.size(), 1u + 4 * kPerWriter);
    EXPECT_EQ(lines.front()["kind"], "appStartupEnded");
}

TEST_F(JsonLinesReportersTest, SdkStartsAndCallsAreRecordedInOrderWithTheirSettings) {
    JsonLinesExternalSdks sdks(support.path(), clock);
    sdks.start("ComScore.start",
               {{"publisherId", "comscoreId"}, {"publisherSecret", "comscoreSecret"}});
    clock.advance(1.0);
    sdks.start("FIRApp.configure", {});
    sdks.call("OneSignal.removeExternalUserId", {});

    EXPECT_EQ(sdks.path(), support.file("sdks.jsonl"));
    const auto lines = readLines(sdks.path());
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[2]["call"], "OneSignal.removeExternalUserId");
    EXPECT_EQ(lines[0]["library"], "ComScore.start");
    EXPECT_EQ(lines[0]["settings"]["publisherSecret"], "comscoreSecret");
    EXPECT_EQ(lines[1]["library"], "FIRApp.configure");
    EXPECT_EQ(lines[1]["settings"], nlohmann::json::object());
    EXPECT_EQ(lines[1]["time"], 1'700'000'124.5);

    // Without their folder both drop records and go on.
    JsonLinesErrorReporter({support.file("missing"), clock}).recordError(Error{"D", 1, "", {}});
    JsonLinesExternalSdks(support.file("missing"), clock).start("FIRApp.configure", {});
}

}  // namespace
}  // namespace tb
