#include <filesystem>

#include "support/TempDir.h"
#include "tunebrook-service/media/ByteRange.h"
#include "tunebrook-service/media/MediaGenerator.h"
#include "tunebrook-service/media/MediaUrlSigner.h"

#include <gtest/gtest.h>

namespace tb::service {
namespace {

using Kind = ByteRange::Kind;

TEST(ByteRangeTest, ReadsOneRangeOfAThousandBytesAndOddHeadersMeanTheWhole) {
    struct Case {
        const char* header;
        uint64_t first, last;
    };
    // An end past the resource is cut to its last byte.
    for (const auto& c :
         {Case{"bytes=0-99", 0, 99}, Case{"bytes=900-", 900, 999}, Case{"bytes=-10", 990, 999},
          Case{"bytes=500-999999999999", 500, 999}, Case{"bytes=-5000", 0, 999}}) {
        const auto range = ByteRange::parse(c.header, 1000);
        EXPECT_EQ(range.kind, Kind::partial) << c.header;
        EXPECT_EQ(range.first, c.first) << c.header;
        EXPECT_EQ(range.last, c.last) << c.header;
    }

    EXPECT_EQ(ByteRange::parse("bytes=1000-", 1000).kind, Kind::unsatisfiable);
    EXPECT_EQ(ByteRange::parse("bytes=-0", 1000).kind, Kind::unsatisfiable);
    for (const char* header : {"", "bytes=5-2", "bytes=0-1,4-5", "items=0-1", "bytes=a-b",
                               "bytes=-", "bytes=99999999999999999999-"}) {
        auto range = ByteRange::parse(header, 1000);
        EXPECT_EQ(range.kind, Kind::whole) << header;
        EXPECT_EQ(range.length(), 1000u) << header;
    }
}

TEST(MediaUrlSignerTest, AddressesExpireAndCantBeForgedOrMovedToAnotherSong) {
    MediaUrlSigner signer("http://127.0.0.1:1", "secret", 60);
    std::string url = signer.streamUrl(10001, 1000.0);
    ASSERT_EQ(url.rfind("http://127.0.0.1:1/media/audio/10001.mp3?expires=1060&sig=", 0), 0u);
    std::string sig = url.substr(url.find("sig=") + 4);
    EXPECT_EQ(signer.check(10001, "1060", sig, 1059.0), MediaUrlSigner::Check::ok);
    EXPECT_EQ(signer.check(10001, "1060", sig, 1061.0), MediaUrlSigner::Check::expired);
    EXPECT_EQ(signer.check(10002, "1060", sig, 1000.0), MediaUrlSigner::Check::forged);
    EXPECT_EQ(signer.check(10001, "9999", sig, 1000.0), MediaUrlSigner::Check::forged);
    EXPECT_EQ(signer.check(10001, "-1", sig, 1000.0), MediaUrlSigner::Check::forged);
    MediaUrlSigner otherSecret("http://127.0.0.1:1", "other", 60);
    EXPECT_EQ(otherSecret.check(10001, "1060", sig, 1000.0), MediaUrlSigner::Check::forged);
}

TEST(MediaGeneratorTest, PlaceholdersFillTheFoldersOnceAndTheCacheIsReused) {
    test::TempDir dir;
    MediaPlan plan = MediaPlan::fromSeed(5);
    std::vector<std::string> lines;
    MediaGenerator first(dir.file("one"), dir.file("cache"), MediaMode::placeholder,
                         [&](const std::string& line) { lines.push_back(line); });
    std::string error;
    ASSERT_TRUE(first.ensure(plan, 5, error)) << error;
    std::string song = MediaGenerator::audioPath(dir.file("one"), plan.shortAudio[0].name);
    EXPECT_TRUE(std::filesystem::exists(song));
    EXPECT_TRUE(
        std::filesystem::exists(MediaGenerator::imagePath(dir.file("one"), plan.artwork[0].name)));

    // A file that goes missing is made again; the others stay as they are.
    auto before = std::filesystem::last_write_time(
        MediaGenerator::audioPath(dir.file("one"), plan.shortAudio[1].name));
    std::filesystem::remove(song);
    ASSERT_TRUE(first.ensure(plan, 5, error)) << error;
    EXPECT_TRUE(std::filesystem::exists(song));
    EXPECT_EQ(before, std::filesystem::last_write_time(
                          MediaGenerator::audioPath(dir.file("one"), plan.shortAudio[1].name)));
}

}  // namespace
}  // namespace tb::service
