// Fetching an item's artwork.

#include <filesystem>

#include "app/AppContext.h"
#include "model/TBUtil.h"
#include "offline/TBDownloadImageOperation.h"
#include "platform/Log.h"
#include "support/DaoTestSupport.h"
#include "support/FileContents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

const std::string kJpeg = std::string("\xFF\xD8\xFF\xE0", 4) + "jpeg body";
const std::string kPng = std::string("\x89PNG\r\n\x1A\n", 8) + "png body";

class TBDownloadImageOperationTest : public ::testing::Test {
  protected:
    TBDownloadImageOperationTest() {
        previousSink_ = setLogSink([this](std::string_view line) { lines.emplace_back(line); });
    }
    ~TBDownloadImageOperationTest() override { setLogSink(previousSink_); }

    std::shared_ptr<TBDownloadImageOperation> run(const ItemPtr& item) {
        auto operation = std::make_shared<TBDownloadImageOperation>(
            device.http, device.queue, device.context().paths().documents, item);
        operation->start();
        device.queue.runUntilIdle();
        return operation;
    }
    std::string artwork(const std::string& url) {
        return TBUtil::remoteUrlToArtworkFile(url, device.context().paths().documents);
    }
    std::vector<std::string> urlsSent() {
        std::vector<std::string> urls;
        for (const auto& sent : device.http.sent()) {
            urls.push_back(sent->request.url);
        }
        return urls;
    }

    TestPlatform device;
    std::vector<std::string> lines;

  private:
    LogSink previousSink_;
};

TEST_F(TBDownloadImageOperationTest, TheSmallOriginalAndBannerImagesAreFetchedSideBySide) {
    auto item = song("s");
    item->image = "https://img.example/main.jpg";
    item->smallImage = "";
    item->originalImage = "https://img.example/original.png";
    item->banner = "https://img.example/banner.jpg";
    auto operation = run(item);

    EXPECT_THAT(urlsSent(),
                ElementsAre("https://img.example/main.jpg", "https://img.example/original.png",
                            "https://img.example/banner.jpg"));
    for (const auto& sent : device.http.sent()) {
        EXPECT_EQ(sent->request.timeoutSeconds, 60.0);
        EXPECT_EQ(sent->request.method, "GET");
    }
    EXPECT_TRUE(operation->isExecuting());
    device.http.respond(0, 200, kJpeg);
    device.http.respond(1, 200, kPng);
    device.queue.runUntilIdle();
    EXPECT_TRUE(operation->isExecuting());  // the banner is still on its way
    device.http.respond(2, 200, kJpeg);
    device.queue.runUntilIdle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(readFileText(artwork("https://img.example/main.jpg")), kJpeg);
    EXPECT_EQ(readFileText(artwork("https://img.example/original.png")), kPng);
    EXPECT_THAT(lines, ElementsAre("### Image download succeeded https://img.example/main.jpg",
                                   "### Image download succeeded https://img.example/original.png",
                                   "### Image download succeeded https://img.example/banner.jpg"));
    EXPECT_THAT(folderEntries(device.context().paths().documents + "/artworks"),
                UnorderedElementsAre("httpsimg.examplemain.jpg", "httpsimg.exampleoriginal.png",
                                     "httpsimg.examplebanner.jpg"));
}

TEST_F(TBDownloadImageOperationTest, ArtworkAlreadyOnDiskIsNotFetchedAgain) {
    auto item = song("s");
    item->image = "https://img.example/main.jpg";
    writeBytes(artwork("https://img.example/main.jpg"), 5);
    auto operation = run(item);
    EXPECT_THAT(urlsSent(), IsEmpty());
    EXPECT_TRUE(operation->isFinished());
}

TEST_F(TBDownloadImageOperationTest, OneFailureDoesNotStopTheOthers) {
    auto item = song("s");
    item->smallImage = "https://img.example/missing.jpg";
    item->originalImage = "https://img.example/page.html";
    item->banner = "https://img.example/cancelled.jpg";
    item->image = "https://img.example/unused.jpg";
    auto operation = run(item);
    ASSERT_EQ(device.http.count(), 3u);
    device.http.respond(0, 404, kJpeg);
    device.http.respond(1, 200, "<html>not here</html>");
    device.http.fail(2, URLError::kCancelled);
    device.queue.runUntilIdle();

    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(lines,
                ElementsAre("### Image download failed https://img.example/missing.jpg",
                            "### Image download failed (not an image) "
                            "https://img.example/page.html",
                            "### Image download cancelled https://img.example/cancelled.jpg"));
    EXPECT_THAT(folderEntries(device.context().paths().documents + "/artworks"), IsEmpty());
}

TEST_F(TBDownloadImageOperationTest, AnImageThatCantBeWrittenIsToldAndTheOperationStillEnds) {
    auto item = song("s");
    item->image = "https://img.example/main.jpg";
    fs::remove_all(device.context().paths().documents + "/artworks");
    writeBytes(device.context().paths().documents + "/artworks", 1);  // no folder can go there
    auto operation = run(item);
    device.http.respond(0, 200, kJpeg);
    device.queue.runUntilIdle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(
        lines,
        ElementsAre("### Image download failed (failed to write) https://img.example/main.jpg"));
}

TEST_F(TBDownloadImageOperationTest, AnAddressThatIsNoWebAddressIsNeverRequested) {
    auto item = song("s");
    item->image = "not a url";
    item->banner = "ftp://img.example/banner.jpg";
    auto operation = run(item);
    EXPECT_THAT(urlsSent(), IsEmpty());
    EXPECT_TRUE(operation->isFinished());
    EXPECT_TRUE(run(std::make_shared<Item>())->isFinished());
}

TEST(TBDownloadImageOperationImageTest, ImagesAreKnownByTheirFirstBytes) {
    EXPECT_TRUE(TBDownloadImageOperation::looksLikeImage(kJpeg));
    EXPECT_TRUE(TBDownloadImageOperation::looksLikeImage(kPng));
    EXPECT_TRUE(TBDownloadImageOperation::looksLikeImage("GIF87a..."));
    EXPECT_TRUE(TBDownloadImageOperation::looksLikeImage("GIF89a..."));
    EXPECT_TRUE(
        TBDownloadImageOperation::looksLikeImage(std::string("RIFF\x10\0\0\0WEBPVP8 ", 16)));
    EXPECT_FALSE(
        TBDownloadImageOperation::looksLikeImage(std::string("RIFF\x10\0\0\0WAVEfmt ", 16)));
    EXPECT_FALSE(TBDownloadImageOperation::looksLikeImage("\xFF\xD8"));
    EXPECT_FALSE(TBDownloadImageOperation::looksLikeImage(""));
    EXPECT_FALSE(TBDownloadImageOperation::looksLikeImage("<!DOCTYPE html>"));
}

TEST(TBDownloadImageOperationImageTest, AtMostThreeAddressesWithoutRepeats) {
    Item item;
    EXPECT_THAT(TBDownloadImageOperation::artworkURLsOf(item), IsEmpty());
    item.image = "main";
    EXPECT_THAT(TBDownloadImageOperation::artworkURLsOf(item), ElementsAre("main"));
    item.smallImage = "small";
    item.banner = "";
    EXPECT_THAT(TBDownloadImageOperation::artworkURLsOf(item), ElementsAre("small", "main"));
    item.originalImage = "original";
    item.banner = "banner";
    EXPECT_THAT(TBDownloadImageOperation::artworkURLsOf(item),
                ElementsAre("small", "original", "banner"));
}

}  // namespace
}  // namespace tb::test
