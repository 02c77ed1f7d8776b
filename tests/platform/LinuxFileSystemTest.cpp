#include <filesystem>

#include <sys/stat.h>

#include "platform/linux/LinuxFileSystem.h"
#include "support/FileContents.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

namespace fs = std::filesystem;
using test::folderEntries;
using test::readFileText;
using test::writeFileText;

class LinuxFileSystemTest : public testing::Test {
  protected:
    test::TempDir inside;
    test::TempDir outside;
    LinuxFileSystem files;
};

TEST_F(LinuxFileSystemTest, ReplacesTheWholeFileAndLeavesNoTemporaryFile) {
    const std::string path = inside.file("export.txt");
    ASSERT_TRUE(files.writeAtomically(path, "old"));
    ASSERT_TRUE(files.writeAtomically(path, std::string("new\0bytes", 9)));

    std::string read;
    EXPECT_TRUE(files.readFile(path, read));
    EXPECT_EQ(read, std::string("new\0bytes", 9));
    EXPECT_EQ(folderEntries(inside.path()), std::vector<std::string>{"export.txt"});
}

TEST_F(LinuxFileSystemTest, ATargetNameAsLongAsANameMayBeIsWritten) {
    const std::string path = inside.file(std::string(255, 'a'));
    EXPECT_TRUE(files.writeAtomically(path, "artwork"));
    EXPECT_EQ(readFileText(path), "artwork");
}

TEST_F(LinuxFileSystemTest, ASymlinkIsReplacedNeverWrittenThroughAndAFolderThatRefusesSaysWhy) {
    const std::string victim = outside.file("victim");
    ASSERT_TRUE(writeFileText(victim, "untouched"));
    const std::string path = inside.file("artwork.jpg");
    fs::create_symlink(victim, path);

    ASSERT_TRUE(files.writeAtomically(path, "ours"));

    EXPECT_EQ(readFileText(victim), "untouched");
    EXPECT_FALSE(fs::is_symlink(path));
    EXPECT_EQ(readFileText(path), "ours");

    std::string reason;
    EXPECT_FALSE(files.writeAtomically(inside.file("missing/file"), "x", &reason));
    EXPECT_NE(reason.find("missing"), std::string::npos) << reason;

    std::string read;
    EXPECT_FALSE(files.readFile(inside.file("missing/file"), read, &reason));
    EXPECT_FALSE(files.readFile(inside.path(), read, &reason)) << "a folder is no file";
    EXPECT_EQ(folderEntries(inside.path()), std::vector<std::string>{"artwork.jpg"});
}

TEST_F(LinuxFileSystemTest, TheBackupMarkIsSetOnOurFileButNeverThroughASymlink) {
    const std::string store = inside.file("CoreData.sqlite");
    ASSERT_TRUE(writeFileText(store, "db"));
    EXPECT_FALSE(files.isExcludedFromBackup(store));
    EXPECT_TRUE(files.excludeFromBackup(store));
    EXPECT_TRUE(files.isExcludedFromBackup(store));

    const std::string victim = outside.file("victim");
    ASSERT_TRUE(writeFileText(victim, "theirs"));
    const std::string link = inside.file("link");
    fs::create_symlink(victim, link);
    EXPECT_FALSE(files.excludeFromBackup(link));
    EXPECT_FALSE(files.isExcludedFromBackup(victim));

    EXPECT_FALSE(files.excludeFromBackup(inside.file("missing")));
}

}  // namespace
}  // namespace tb
