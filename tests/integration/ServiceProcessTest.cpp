#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <httplib.h>
#include <nlohmann/json.hpp>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "core/TunebrookKeys.h"
#include "support/ServiceCall.h"
#include "support/ServiceProcess.h"
#include "support/ServiceTestSigner.h"
#include "support/TempDir.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

// The reference service as a separate process: started from its binary, signed calls over
// loopback, killed and started again on the same data.
class ServiceProcessTest : public ::testing::Test {
  protected:
    std::unique_ptr<ServiceProcess> start(std::vector<std::string> args = {}) {
        args.insert(args.end(),
                    {"--media-cache", ServiceProcess::mediaCacheFor(TB_SERVICE_BINARY)});
        auto process = std::make_unique<ServiceProcess>(TB_SERVICE_BINARY, dir_.file("data"), args);
        EXPECT_TRUE(process->started()) << process->error();
        return process;
    }

    httplib::Result send(ServiceProcess& service,
                         const std::string& method,
                         const std::string& path,
                         const ServiceTestSigner::Params& params = {},
                         bool sign = true) {
        return serviceCall(service, signer_, method, path, params, sign);
    }

    void useKeysOf(const ServiceProcess& service) {
        signer_ = ServiceTestSigner(service.consumerKey(), service.consumerSecret());
    }

    TempDir dir_;
    ServiceTestSigner signer_{"", ""};
};

TEST_F(ServiceProcessTest, PrintsItsAddressFirstAndWritesItsKeysForTheOwnerOnly) {
    auto service = start();
    ASSERT_TRUE(service->started());
    EXPECT_EQ(service->baseUrl(), "http://127.0.0.1:" + std::to_string(service->port()) + "/v1/");
    struct stat info {};
    ASSERT_EQ(stat(dir_.file("data/keys.json").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    std::ifstream file(dir_.file("data/keys.json"));
    auto keys = nlohmann::json::parse(file);
    EXPECT_EQ(keys["wsUrlLive"], service->baseUrl());
    EXPECT_EQ(keys["wsUrlDev"], service->baseUrl());
    EXPECT_GE(keys["tunebrookConsumerSecret"].get<std::string>().size(), 32u);
    // Every role the client asks for is there, so the client starts with this file.
    for (const auto& role : TunebrookKeys::roles()) {
        EXPECT_TRUE(keys[role].is_string()) << role;
    }
    EXPECT_EQ(service->terminate(), 0);
}

TEST_F(ServiceProcessTest, RefusesUnsignedCallsAndServesSignedOnesWithRealAudio) {
    auto service = start();
    ASSERT_TRUE(service->started());
    useKeysOf(*service);
    auto refused = send(*service, "GET", "chart/songs/weekly", {}, false);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 401);

    auto chart = send(*service, "GET", "chart/songs/weekly", {{"page", "1"}});
    ASSERT_TRUE(chart);
    ASSERT_EQ(chart->status, 200);
    auto songs = nlohmann::json::parse(chart->body)["results"];
    ASSERT_FALSE(songs.empty());
    std::string id;
    for (const auto& song : songs) {
        if (!song["geo_restricted"].get<bool>()) {
            id = idText(song["id"]);
            break;
        }
    }
    auto play = send(*service, "POST", "music/" + id + "/play", {{"session", "s1"}});
    ASSERT_TRUE(play);
    ASSERT_EQ(play->status, 200) << play->body;
    std::string url = nlohmann::json::parse(play->body);
    std::string path = url.substr(url.find("/media/"));

    httplib::Client client(service->host(), service->port());
    client.set_url_encode(false);
    auto head = client.Get(path, {{"Range", "bytes=0-3"}});
    ASSERT_TRUE(head);
    EXPECT_EQ(head->status, 206);
    EXPECT_EQ(head->get_header_value("Content-Type"), "audio/mpeg");
    ASSERT_EQ(head->body.size(), 4u);
    // An MP3 made by ffmpeg starts with its tag or a frame's sync bits.
    bool tag = head->body.compare(0, 3, "ID3") == 0;
    bool sync = static_cast<unsigned char>(head->body[0]) == 0xff &&
                (static_cast<unsigned char>(head->body[1]) & 0xe0) == 0xe0;
    EXPECT_TRUE(tag || sync);
    auto whole = client.Head(path);
    ASSERT_TRUE(whole);
    EXPECT_GT(std::stoll(whole->get_header_value("Content-Length")), 50000);
}

TEST_F(ServiceProcessTest, KeepsAccountsDownloadsAndKeysAcrossAKill) {
    std::string consumerKey;
    std::string songId;
    int port = 0;
    {
        auto service = start();
        ASSERT_TRUE(service->started());
        useKeysOf(*service);
        consumerKey = service->consumerKey();
        port = service->port();
        auto made = send(*service, "POST", "user/register",
                         {{"email", "kept@example.com"},
                          {"artist_name", "Kept"},
                          {"password", "kept password"},
                          {"password2", "kept password"}});
        ASSERT_TRUE(made);
        ASSERT_EQ(made->status, 200) << made->body;
        auto token = nlohmann::json::parse(made->body);
        signer_.setToken(token["oauth_token"], token["oauth_token_secret"]);
        auto recent = nlohmann::json::parse(send(*service, "GET", "music/recent")->body);
        songId = idText(recent["results"][0]["id"]);
        ASSERT_EQ(send(*service, "POST", "user/downloads", {{"music_id", songId}})->status, 200);
        service->kill9();
    }
    auto service = start();
    ASSERT_TRUE(service->started());
    EXPECT_EQ(service->consumerKey(), consumerKey);
    // Addresses the client kept still lead here.
    EXPECT_EQ(service->port(), port);
    useKeysOf(*service);
    auto login = send(*service, "POST", "access_token",
                      {{"x_auth_mode", "client_auth"},
                       {"x_auth_username", "kept@example.com"},
                       {"x_auth_password", "kept password"}});
    ASSERT_TRUE(login);
    ASSERT_EQ(login->status, 200) << login->body;
    auto token = nlohmann::json::parse(login->body);
    signer_.setToken(token["oauth_token"], token["oauth_token_secret"]);
    auto downloads = nlohmann::json::parse(send(*service, "GET", "user/downloads")->body);
    ASSERT_EQ(downloads["results"].size(), 1u);
    EXPECT_EQ(idText(downloads["results"][0]["id"]), songId);
}

TEST_F(ServiceProcessTest, FaultsFromTheCommandLineApplyFromTheFirstCall) {
    auto service = start({"--fault", "GET featured=status:503,times=1"});
    ASSERT_TRUE(service->started());
    useKeysOf(*service);
    EXPECT_EQ(send(*service, "GET", "featured")->status, 503);
    EXPECT_EQ(send(*service, "GET", "featured")->status, 200);
}

TEST(ServiceProcessArgumentsTest, ASecondServiceCannotShareAListeningPort) {
    TempDir dir;
    ServiceProcess first(TB_SERVICE_BINARY, dir.file("first"), {"--media", "placeholder"});
    ASSERT_TRUE(first.started()) << first.error();
    ServiceProcess second(TB_SERVICE_BINARY, dir.file("second"),
                          {"--media", "placeholder", "--port", std::to_string(first.port())});
    EXPECT_FALSE(second.started());
    EXPECT_NE(second.terminate(), 0);
}

TEST(ServiceProcessArgumentsTest, ABadFaultRuleStopsTheStart) {
    TempDir dir;
    ServiceProcess badFault(TB_SERVICE_BINARY, dir.file("data"),
                            {"--media", "placeholder", "--fault", "featured=explode"});
    EXPECT_FALSE(badFault.started());
    EXPECT_NE(badFault.terminate(), 0);
}

// Processes other than `self` whose command line mentions `text`.
std::vector<pid_t> processesMentioning(const std::string& text, pid_t self) {
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") != std::string::npos) {
            continue;
        }
        std::ifstream in(entry.path() / "cmdline", std::ios::binary);
        std::stringstream line;
        line << in.rdbuf();
        pid_t pid = std::stoi(name);
        if (pid != self && line.str().find(text) != std::string::npos) {
            found.push_back(pid);
        }
    }
    return found;
}

TEST(ServiceProcessArgumentsTest, AStopWhileTheFirstStartMakesAudioEndsItAndItsFfmpegChildren) {
    TempDir dir;
    std::string data = dir.file("data");
    std::vector<std::string> args = {TB_SERVICE_BINARY, "--data", data, "--media", "synthesize"};
    std::vector<char*> argv;
    for (auto& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    ASSERT_EQ(posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);

    bool making = waitFor([&] { return !processesMentioning(data + "/", pid).empty(); },
                          std::chrono::seconds(60));
    kill(pid, SIGTERM);
    int status = 0;
    bool ended =
        waitFor([&] { return waitpid(pid, &status, WNOHANG) == pid; }, std::chrono::seconds(10));
    if (!ended) {
        kill(pid, SIGKILL);
        waitpid(pid, &status, 0);
    }
    ASSERT_TRUE(making) << "no ffmpeg child was seen making the audio";
    EXPECT_TRUE(ended) << "the service went on with its first start after SIGTERM";
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 0);
    EXPECT_TRUE(waitFor([&] { return processesMentioning(data + "/", pid).empty(); },
                        std::chrono::seconds(10)));
}

}  // namespace
}  // namespace tb::test
