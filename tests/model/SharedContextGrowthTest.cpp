// Records the app makes in the store's context while reading: an album's tracks and a queue
// restored from the bookmarks. They belong to the context, so a change reaches the store, but
// reading alone must never grow it, however often the app launches or albums are browsed.

#include <fstream>
#include <sstream>

#include "model/BookmarkItem.h"
#include "model/BookmarkStatus.h"
#include "model/Item.h"
#include "model/store/EntityDescription.h"
#include "model/store/FetchRequest.h"
#include "model/store/ObjectContext.h"
#include "model/store/Predicate.h"
#include "platform/JSON.h"
#include "support/DaoTestSupport.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

JSON albumAnswer() {
    std::ifstream file(std::string(TB_SOURCE_DIR) + "/tests/model/fixtures/album.json");
    std::stringstream text;
    text << file.rdbuf();
    return JSON::parse(text.str());
}

std::int64_t rows(ObjectContext& store, const std::string& entity) {
    return store.countForFetchRequest(FetchRequest::fetchRequestWithEntityName(entity))
        .value_or(-1);
}

// What the player does with the bookmarks at a launch: each row becomes a queue entry made in
// the context, held for the run, while the position is written every two seconds.
std::vector<ItemPtr> restoreQueue(ObjectContext& store) {
    std::vector<ItemPtr> queue;
    const auto bookmarks =
        store.fetch<BookmarkItem>(FetchRequest::fetchRequestWithEntityName("BookmarkItem"));
    for (const auto& row : bookmarks.value_or(std::vector<std::shared_ptr<BookmarkItem>>{})) {
        auto entry = std::make_shared<Item>();
        EntityDescription::copyAttributes(*row, *entry);
        queue.push_back(Item::newFrom(&store, entry));
    }
    return queue;
}

void savePosition(ObjectContext& store, std::int64_t position) {
    auto status =
        store.fetch<BookmarkStatus>(FetchRequest::fetchRequestWithEntityName("BookmarkStatus"))
            .value_or(std::vector<std::shared_ptr<BookmarkStatus>>{});
    auto row = status.empty() ? store.insertNewObject<BookmarkStatus>() : status.front();
    row->playbackPosition = position;
    row->didChange();
    ASSERT_TRUE(store.save());
}

class SharedContextGrowthTest : public ::testing::Test {
  protected:
    TestPlatform device;
};

TEST_F(SharedContextGrowthTest, LaunchesWithABookmarkAndAlbumViewsLeaveTheRowCountAlone) {
    {
        Launch first(device);
        ObjectContext& store = *first.startup().store();
        for (int index = 0; index < 3; ++index) {
            auto bookmark = store.insertNewObject<BookmarkItem>();
            bookmark->itemID = "queued-" + std::to_string(index);
            bookmark->bookmarkIndex = index;
        }
        auto kept = store.insertNewObject<Item>();
        kept->itemID = "downloaded";
        ASSERT_TRUE(store.save());
    }

    for (int launchNumber = 0; launchNumber < 100; ++launchNumber) {
        Launch launch(device);
        ObjectContext& store = *launch.startup().store();
        const auto queue = restoreQueue(store);
        ASSERT_EQ(queue.size(), 3u);
        EXPECT_TRUE(queue.front()->isManaged());
        savePosition(store, launchNumber * 2000);

        // Browsing an album while the queue plays.
        const ItemPtr album = Item::parseItemFrom(albumAnswer(), false, &store);
        ASSERT_TRUE(album && !album->tracks.empty());
        EXPECT_TRUE(album->tracks.front()->isManaged());
        savePosition(store, launchNumber * 2000 + 1000);

        EXPECT_FALSE(store.hasChanges());
        ASSERT_EQ(rows(store, "Item"), 1) << "launch " << launchNumber;
        EXPECT_EQ(rows(store, "BookmarkItem"), 3);
        EXPECT_EQ(rows(store, "BookmarkStatus"), 1);
    }
}

TEST_F(SharedContextGrowthTest, AChangedAlbumTrackOrCopyReachesTheStoreAndNothingElseDoes) {
    Launch launch(device);
    ObjectContext& store = *launch.startup().store();
    const ItemPtr album = Item::parseItemFrom(albumAnswer(), false, &store);
    ASSERT_GE(album->tracks.size(), 2u);

    const ItemPtr flagged = album->tracks[1];
    flagged->albumTrackDownloadedAsSingle = true;
    flagged->didChange();
    const ItemPtr copy = Item::newFrom(&store, album);
    copy->title = "Renamed";
    ASSERT_TRUE(store.save());

    // The flagged track and the changed copy became rows; the untouched tracks did not.
    EXPECT_EQ(rows(store, "Item"), 1);  // the copy has not been marked yet
    copy->didChange();
    ASSERT_TRUE(store.save());
    EXPECT_EQ(rows(store, "Item"), 2);

    // A fetch gives back the very record the flag was set on, so every holder sees it.
    FetchRequest request = FetchRequest::fetchRequestWithEntityName("Item");
    request.predicate = Predicate::withFormat("itemID == %@", {*flagged->itemID});
    const auto found = store.fetch<Item>(request);
    ASSERT_TRUE(found && found->size() == 1);
    EXPECT_EQ(found->front(), flagged);
    EXPECT_TRUE(found->front()->albumTrackDownloadedAsSingle);

    // Records made in the context go with it: a reset leaves them detached, not dangling.
    const ItemPtr untouched = album->tracks[0];
    store.reset();
    EXPECT_FALSE(untouched->isManaged());
    untouched->didChange();  // harmless on a detached record
    EXPECT_FALSE(store.hasChanges());
}

}  // namespace
}  // namespace tb::test
