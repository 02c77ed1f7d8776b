#include <chrono>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "service/ServiceFixture.h"
#include "support/ChildProcess.h"
#include "support/FileContents.h"
#include "tunebrook-service/Service.h"

namespace tb::test {
namespace {

namespace fs = std::filesystem;

class ServiceFolderTest : public ServiceFixture {
  protected:
    std::string data() const { return dataDir() + "/data"; }

    // Each entry of the data folder that others may reach, with its mode.
    std::vector<std::string> openToOthers() const {
        std::vector<std::string> open;
        auto check = [&](const fs::path& path) {
            struct stat info {};
            lstat(path.c_str(), &info);
            mode_t wanted = S_ISDIR(info.st_mode) ? 0700 : 0600;
            if (!S_ISLNK(info.st_mode) && (info.st_mode & 0777) != wanted) {
                open.push_back(path.string());
            }
        };
        check(data());
        for (const auto& entry : fs::recursive_directory_iterator(data())) {
            check(entry.path());
        }
        return open;
    }
};

TEST_F(ServiceFolderTest, TheFolderAndEverythingInItStayTheOwnersAlone) {
    for (const char* name : {"service.sqlite", "service.sqlite-wal", "service.sqlite-shm",
                             "keys.json", "demo-account.json", "images/art-01.jpg"}) {
        EXPECT_TRUE(fs::exists(data() + "/" + name)) << name;
    }
    EXPECT_EQ(openToOthers(), std::vector<std::string>{});

    // Files an older start left open are narrowed at the next start.
    TearDown();
    fs::permissions(data(), fs::perms::all);
    fs::permissions(data() + "/images", fs::perms::all);
    fs::permissions(data() + "/keys.json", fs::perms::all);
    ASSERT_TRUE(writeFileText(data() + "/notes.txt", "left by hand"));
    SetUp();
    EXPECT_EQ(openToOthers(), std::vector<std::string>{});
}

TEST_F(ServiceFolderTest, ASecondServiceOnTheFolderIsRefusedAndChangesNothing) {
    const std::string keysPath = data() + "/keys.json";
    const std::string keys = readFileText(keysPath);
    struct stat before {};
    stat(keysPath.c_str(), &before);

    tb::service::ServiceOptions options;
    options.dataDir = data();
    options.media = tb::service::MediaMode::placeholder;
    options.progress = [](const std::string&) {};
    tb::service::Service second(options);
    std::string error;
    EXPECT_FALSE(second.start(error));
    EXPECT_NE(error.find("already using"), std::string::npos) << error;

    const std::string folder = data();
    auto start = std::chrono::steady_clock::now();
    ChildResult binary = runInChild([&folder](int out) {
        dup2(out, STDERR_FILENO);
        int nothing = open("/dev/null", O_WRONLY);
        dup2(nothing, STDOUT_FILENO);
        execl(TB_SERVICE_BINARY, TB_SERVICE_BINARY, "--data", folder.c_str(), "--media",
              "placeholder", static_cast<char*>(nullptr));
        return 127;
    });
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_NE(binary.status, 0);
    EXPECT_NE(binary.status, 127);
    EXPECT_EQ(std::count(binary.output.begin(), binary.output.end(), '\n'), 1) << binary.output;
    EXPECT_NE(binary.output.find("already using"), std::string::npos) << binary.output;

    struct stat after {};
    stat(keysPath.c_str(), &after);
    EXPECT_EQ(readFileText(keysPath), keys);
    EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(raw("GET", "/admin/health").status, 200);
}

TEST_F(ServiceFolderTest, MediaLinksOutOfTheFolderAreNotFollowed) {
    TempDir outside;
    ASSERT_TRUE(writeFileText(outside.file("art-01.jpg"), "a secret from elsewhere"));
    const std::string image = data() + "/images/art-01.jpg";
    // The file itself a link, then its whole folder.
    fs::remove(image);
    fs::create_symlink(outside.file("art-01.jpg"), image);
    auto throughFile = raw("GET", "/media/images/art-01.jpg");
    fs::rename(data() + "/images", data() + "/images-kept");
    fs::create_symlink(outside.path(), data() + "/images");
    auto throughFolder = raw("GET", "/media/images/art-01.jpg");
    for (const auto& answer : {throughFile, throughFolder}) {
        EXPECT_TRUE(answer.transportOk);
        EXPECT_NE(answer.status, 200);
        EXPECT_EQ(answer.body.find("secret"), std::string::npos);
    }
}

}  // namespace
}  // namespace tb::test
