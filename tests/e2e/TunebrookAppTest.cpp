#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "support/AppRun.h"
#include "support/TempDir.h"
#include "support/TestKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct Run {
    int status = -1;     // the exit status, or -1 when the process did not exit by itself
    std::string output;  // stdout and stderr together
};

Run runApp(const std::vector<std::string>& arguments, const test::SignalOn& stop = {}) {
    const auto run = test::AppRun::of(TB_APP_BINARY, arguments, 20, stop);
    return {run.status, run.out + run.err};
}

class TunebrookAppTest : public ::testing::Test {
  protected:
    TunebrookAppTest() { test::writeTestKeys(keys); }

    std::vector<std::string> withHome(std::vector<std::string> more = {}) {
        std::vector<std::string> arguments = {"--home", home.path(), "--keys", keys};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    test::TempDir home;
    test::TempDir elsewhere;
    std::string keys = elsewhere.file("keys.json");
};

TEST_F(TunebrookAppTest, LaunchesTellsEachStepAndExits) {
    const auto run = runApp(withHome());

    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_THAT(run.output, HasSubstr("launch: keys -> 25 roles from " + keys + "\n"));
    EXPECT_THAT(run.output,
                ::testing::ContainsRegex("launch: crash reporter pick -> (Embrace|Bugsnag)\n"));
    EXPECT_THAT(run.output, HasSubstr("launch: fresh install -> yes\n"));
    EXPECT_THAT(run.output, HasSubstr("launch: environment -> live\n"));
    EXPECT_THAT(run.output, HasSubstr("launch: store -> open\n"));
    EXPECT_TRUE(std::filesystem::exists(home.path() + "/documents/CoreData.sqlite"));
    EXPECT_LT(run.output.find("launch: keys"), run.output.find("launch: crash reporter pick"));
    EXPECT_LT(run.output.find("launch: fresh install"), run.output.find("launch: AppsFlyer"));
}

TEST_F(TunebrookAppTest, ASecondRunIsNotAFreshInstallAndKeepsItsCrashReporter) {
    const auto first = runApp(withHome());
    ASSERT_EQ(first.status, 0) << first.output;
    const std::regex pick("launch: crash reporter pick -> (Embrace|Bugsnag)\n");
    std::smatch picked;
    ASSERT_TRUE(std::regex_search(first.output, picked, pick)) << first.output;

    const auto second = runApp(withHome());
    EXPECT_EQ(second.status, 0) << second.output;
    EXPECT_THAT(second.output, HasSubstr("launch: fresh install -> no\n"));
    EXPECT_THAT(second.output,
                HasSubstr("launch: crash reporter pick -> " + picked[1].str() + " (kept)\n"));
}

TEST_F(TunebrookAppTest, TheKeysFileDefaultsToTheConfigFolderOfTheHome) {
    const auto first = runApp({"--home", home.path()});
    EXPECT_EQ(first.status, 1);
    EXPECT_THAT(first.output, HasSubstr(home.path() + "/config/keys.json"));

    EXPECT_FALSE(std::filesystem::exists(home.path() + "/config")) << "a failed start left files";
    std::filesystem::create_directories(home.path() + "/config");
    test::writeTestKeys(home.path() + "/config/keys.json");
    EXPECT_EQ(runApp({"--home", home.path()}).status, 0);
}

TEST_F(TunebrookAppTest, AMissingKeyFailsWithItsNameAndStartsNothing) {
    test::writeTestKeys(keys, "mixpanelToken");
    const auto run = runApp(withHome());

    EXPECT_NE(run.status, 0);
    EXPECT_THAT(run.output, HasSubstr("\"mixpanelToken\""));
    EXPECT_THAT(run.output, HasSubstr(keys));
    EXPECT_THAT(run.output, Not(HasSubstr("launch:")));

    test::writeTestKeys(keys);
    EXPECT_THAT(runApp(withHome()).output, HasSubstr("launch: fresh install -> yes\n"));
}

TEST_F(TunebrookAppTest, ABrokenKeysFileFailsClearly) {
    std::ofstream(keys, std::ios::trunc) << "{\"tunebrookConsumerKey\": ";

    const auto run = runApp(withHome());
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("keys file " + keys + " is not a JSON object"));
}

TEST_F(TunebrookAppTest, VersionAndHelpNeedNoKeys) {
    const auto version = runApp({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, ::testing::StartsWith("tunebrook "));

    const auto help = runApp({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--home", "--keys", "--stay", "--version"}) {
        EXPECT_THAT(help.output, HasSubstr(option));
    }
    EXPECT_NE(runApp({"--no-such-option"}).status, 0);
}

TEST_F(TunebrookAppTest, StayRunsUntilTerminatedAndStopsCleanly) {
    for (const int signal : {SIGTERM, SIGINT}) {
        const auto run =
            runApp(withHome({"--stay"}), {"running until SIGINT or SIGTERM\n", signal});
        EXPECT_EQ(run.status, 0) << run.output;
        EXPECT_THAT(run.output,
                    HasSubstr(signal == SIGTERM ? "stopped by SIGTERM" : "stopped by SIGINT"));
    }
}

TEST_F(TunebrookAppTest, CommandsRunAfterTheLaunch) {
    const auto taken = runApp(withHome({"open", "tunebrook://song/artist/title?key=k1"}));
    EXPECT_EQ(taken.status, 0) << taken.output;
    EXPECT_THAT(taken.output, HasSubstr("open: type=song id=artist/title key=k1\n"));
    EXPECT_LT(taken.output.find("launch: AppsFlyer"), taken.output.find("open:"));

    // Options of the app may also follow the command.
    const auto refused =
        runApp({"open", "https://example.test/x", "--home", home.path(), "--keys", keys});
    EXPECT_EQ(refused.status, 1) << refused.output;
    EXPECT_THAT(refused.output, HasSubstr("open: not taken"));

    EXPECT_NE(runApp(withHome({"open"})).status, 0);

    // An id that climbs out of its place is refused as the link is read (after decoding).
    const auto climbing =
        runApp(withHome({"open", "tunebrook://song/%2E%2E%2F%2E%2E%2Fetc%2Fpasswd"}));
    EXPECT_EQ(climbing.status, 1) << climbing.output;
    EXPECT_THAT(climbing.output, HasSubstr("open: not taken"));
}

struct BadOption {
    const char* name;
    std::vector<std::string> arguments;
    const char* told;
};

class TunebrookBadOptionTest : public TunebrookAppTest,
                               public ::testing::WithParamInterface<BadOption> {};

// A bad option stops the run before the launch, saying what would be right.
TEST_P(TunebrookBadOptionTest, IsRefusedBeforeTheLaunchInPlainWords) {
    std::vector<std::string> arguments = {"--keys", keys};
    for (std::string argument : GetParam().arguments) {
        arguments.push_back(argument == "HOME" ? home.path() : argument);
    }
    const auto run = runApp(arguments);
    EXPECT_NE(run.status, 0);
    EXPECT_THAT(run.output, HasSubstr(GetParam().told));
    EXPECT_THAT(run.output, Not(HasSubstr("launch:")));
}

INSTANTIATE_TEST_SUITE_P(
    Options,
    TunebrookBadOptionTest,
    ::testing::Values(BadOption{"EmptyHome", {"--home", ""}, "--home: needs a folder"},
                      BadOption{"PageZero",
                                {"--home", "HOME", "trending", "--page", "0"},
                                "pages are numbered from 1"},
                      BadOption{"NegativePage",
                                {"--home", "HOME", "chart", "songs", "--page=-3"},
                                "pages are numbered from 1"},
                      BadOption{"PageInWords",
                                {"--home", "HOME", "search", "x", "--page", "two"},
                                "pages are numbered from 1"}),
    [](const auto& named) { return std::string(named.param.name); });

}  // namespace
}  // namespace tb
