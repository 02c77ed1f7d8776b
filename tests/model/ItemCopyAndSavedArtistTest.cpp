// Item.newFrom and the saved artist: the model's own writes to the store.

#include <nlohmann/json.hpp>

#include "Fixtures.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBCoreDataManager.h"
#include "model/store/ObjectContext.h"
#include "model/store/RecordJson.h"
#include "support/DaoTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ItemCopyAndSavedArtistTest : public DaoTest {
  protected:
    // An album as the mapper makes it, with the listener's and the device's state on top.
    static ItemPtr busyAlbum() {
        ItemPtr album = Item::parseItemFrom(fixture("album.json"), false);
        album->downloaded = true;
        album->downloadCompleted = true;
        album->downloadDate = 1700000123.5;
        album->favoriteStatus = 2;
        album->offlineToastShown = 3;
        album->georestricted = true;
        album->mixpanelSourceJSON = Data{"{}"};
        album->verifiedSearchResult = true;
        return album;
    }
};

TEST_F(ItemCopyAndSavedArtistTest, NewFromCopiesEveryStoredFieldIntoANewRecordOfTheContext) {
    const ItemPtr original = busyAlbum();
    ASSERT_TRUE(original);
    const ItemPtr copy = Item::newFrom(saving().context(), original);
    ASSERT_TRUE(copy);
    EXPECT_NE(copy, original);
    EXPECT_TRUE(copy->isManaged());
    EXPECT_FALSE(original->isManaged());
    EXPECT_EQ(RecordJson::object(*copy), RecordJson::object(*original));
    EXPECT_EQ(copy->tracks.size(), 3u);
    EXPECT_FALSE(copy->verifiedSearchResult);  // not stored, so not copied

    // The copy is its own record: changing it leaves the original alone.
    copy->title = "Changed";
    EXPECT_EQ(original->title, "Tidal Maps");

    // It becomes a row with the first save after it was changed, and not before.
    saving().save(nullptr);
    EXPECT_THAT(savedColumn("Item", "itemID"), IsEmpty());
    copy->title = "Tidal Maps";
    copy->didChange();
    saving().save(nullptr);
    EXPECT_THAT(savedColumn("Item", "itemID"), ElementsAre("al-900"));
    EXPECT_THAT(savedColumn("Item", "georestricted"), ElementsAre("1"));
}

TEST_F(ItemCopyAndSavedArtistTest, CachingAParsedArtistMakesACopyTheOneSavedArtist) {
    EXPECT_EQ(Artist::savedArtist(saving()), nullptr);

    const ArtistPtr parsed = Artist::parseFrom(fixture("artist.json"));
    ASSERT_TRUE(parsed);
    parsed->verifiedSearchResult = true;
    parsed->cacheObject(saving());
    EXPECT_FALSE(parsed->isManaged());
    const ArtistPtr saved = Artist::savedArtist(saving());
    ASSERT_TRUE(saved);
    EXPECT_NE(saved, parsed);
    EXPECT_EQ(RecordJson::object(*saved), RecordJson::object(*parsed));
    EXPECT_FALSE(saved->verifiedSearchResult);
    EXPECT_THAT(savedColumn("Artist", "artistId"), ElementsAre("556"));

    // A newer user record replaces it rather than joining it.
    const ArtistPtr newer = Artist::parseFrom(JSON(nlohmann::json{{"id", "557"}, {"name", "Ama"}}));
    newer->cacheObject(saving());
    EXPECT_THAT(savedColumn("Artist", "artistId"), ElementsAre("557"));
    EXPECT_EQ(Artist::savedArtist(saving())->name, "Ama");

    // The next run finds it.
    Launch next(device);
    next.startup();
    ASSERT_TRUE(Artist::savedArtist(saving()));
    EXPECT_EQ(Artist::savedArtist(saving())->artistId, "557");
}

TEST_F(ItemCopyAndSavedArtistTest, ANewObjectIsSavedByCachingItWithoutACopy) {
    Artist::parseFrom(JSON(nlohmann::json{{"id", "old"}}))->cacheObject(saving());

    const ArtistPtr fresh = Artist::newObject(saving());
    ASSERT_TRUE(fresh);
    EXPECT_TRUE(fresh->isInserted());
    fresh->artistId = "new";
    EXPECT_EQ(Artist::savedArtist(saving())->artistId, "old");  // nothing is saved yet

    fresh->cacheObject(saving());
    EXPECT_THAT(savedColumn("Artist", "artistId"), ElementsAre("new"));
    EXPECT_EQ(Artist::savedArtist(saving()), fresh);  // the same record, not a copy of it
}

TEST_F(ItemCopyAndSavedArtistTest, RemoveAllLeavesNoArtistRows) {
    for (const char* id : {"a", "b"}) {
        Artist::newObject(saving())->artistId = id;
    }
    saving().save(nullptr);
    ASSERT_THAT(savedColumn("Artist", "artistId"), ElementsAre("a", "b"));

    Artist::removeAll(saving());
    EXPECT_THAT(savedColumn("Artist", "artistId"), IsEmpty());
    EXPECT_EQ(Artist::savedArtist(saving()), nullptr);
    Artist::removeAll(saving());  // nothing left to remove is fine
}

TEST_F(ItemCopyAndSavedArtistTest, WithoutAStoreNothingIsMadeOrWritten) {
    Launch unopened(device);  // a run whose store was never opened
    EXPECT_EQ(Item::newFrom(unopened.policy().context(), busyAlbum()), nullptr);
    EXPECT_EQ(Artist::newObject(unopened.policy()), nullptr);
    EXPECT_EQ(Artist::savedArtist(unopened.policy()), nullptr);
    Artist::parseFrom(fixture("artist.json"))->cacheObject(unopened.policy());
    Artist::removeAll(unopened.policy());
    EXPECT_TRUE(device.errors.records.empty());

    EXPECT_EQ(Item::newFrom(unopened.policy().context(), nullptr), nullptr);
}

}  // namespace
}  // namespace tb::test
