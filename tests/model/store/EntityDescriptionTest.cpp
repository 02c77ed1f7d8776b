#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "StoreTestSupport.h"
#include "model/BookmarkItem.h"
#include "model/store/EntityBuilder.h"
#include "model/store/EntityDescription.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

std::set<std::string> namesOf(const EntityDescription& entity) {
    std::set<std::string> names;
    for (const auto& attribute : entity.attributes()) {
        names.insert(attribute.name());
    }
    return names;
}

// The bookmark mirror is copied to and from Item by name: apart from its position in the
// queue and the item's geo flag, every attribute must meet its namesake.
TEST(EntityDescriptionTest, ItemAndItsBookmarkMirrorShareEveryAttributeButOneEach) {
    const auto item = namesOf(Item::entityDescription());
    const auto bookmark = namesOf(BookmarkItem::entityDescription());
    std::vector<std::string> onlyOne;
    std::set_symmetric_difference(item.begin(), item.end(), bookmark.begin(), bookmark.end(),
                                  std::back_inserter(onlyOne));
    EXPECT_EQ(onlyOne, (std::vector<std::string>{"bookmarkIndex", "georestricted"}));
    EXPECT_EQ(Item::entityDescription().attributeNamed("verifiedSearchResult"), nullptr);
}

TEST(EntityDescriptionTest, CopyByNameMirrorsAnItemIntoItsBookmarkAndBack) {
    Item item;
    item.itemID = "1";
    item.title = "Song";
    item.isAlbumTrack = true;
    item.duration = 215;
    item.uploaderFollowersCount = 0;
    item.downloadDate = 12.5;
    item.volumeData = std::vector<std::int64_t>{1, 2};
    item.mixpanelSourceJSON = Data{"{\"tab\":\"Browse\"}"};
    item.tracks = {std::make_shared<Item>()};
    item.georestricted = true;

    BookmarkItem bookmark;
    bookmark.bookmarkIndex = 4;
    EntityDescription::copyAttributes(item, bookmark);
    EXPECT_EQ(bookmark.itemID, "1");
    EXPECT_TRUE(bookmark.isAlbumTrack);
    EXPECT_EQ(bookmark.uploaderFollowersCount, 0);
    EXPECT_EQ(bookmark.volumeData, item.volumeData);
    EXPECT_EQ(bookmark.mixpanelSourceJSON, item.mixpanelSourceJSON);
    EXPECT_EQ(bookmark.tracks, item.tracks);
    EXPECT_EQ(bookmark.bookmarkIndex, 4);  // not an Item attribute: untouched

    Item back;
    back.georestricted = true;
    EntityDescription::copyAttributes(bookmark, back);
    EXPECT_EQ(back.title, "Song");
    EXPECT_EQ(back.downloadDate, 12.5);
    EXPECT_TRUE(back.georestricted);  // the mirror has none to copy
    EXPECT_FALSE(back.isManaged());
}

TEST(EntityDescriptionTest, CopySkippingNilKeepsWhatTheTargetHad) {
    Item source;
    source.itemID = "1";  // title, image and tracks are nil
    source.duration = 0;  // plain values are never nil
    Item target;
    target.title = "Kept";
    target.image = "kept.jpg";
    target.duration = 99;
    target.tracks = {std::make_shared<Item>()};

    EntityDescription::copyAttributes(source, target, true);
    EXPECT_EQ(target.itemID, "1");
    EXPECT_EQ(target.title, "Kept");
    EXPECT_EQ(target.image, "kept.jpg");
    EXPECT_EQ(target.tracks.size(), 1u);
    EXPECT_EQ(target.duration, 0);

    EntityDescription::copyAttributes(source, target, false);
    EXPECT_EQ(target.title, std::nullopt);
    EXPECT_TRUE(target.tracks.empty());
}

// Two made-up entities whose only attribute shares a name but not a type.
struct Named final : ManagedObject {
    std::optional<std::string> value;
    static const EntityDescription& entityDescription() {
        static const EntityDescription entity = [] {
            EntityBuilder<Named> builder("Named");
            builder.attribute("value", &Named::value);
            return std::move(builder).build();
        }();
        return entity;
    }
    const EntityDescription& entity() const override { return entityDescription(); }
};

struct Counted final : ManagedObject {
    std::int64_t value = 0;
    std::optional<std::int64_t> maybe;
    static const EntityDescription& entityDescription() {
        static const EntityDescription entity = [] {
            EntityBuilder<Counted> builder("Counted");
            builder.attribute("value", &Counted::value);
            builder.attribute("maybe", &Counted::maybe);
            return std::move(builder).build();
        }();
        return entity;
    }
    const EntityDescription& entity() const override { return entityDescription(); }
};

TEST(EntityDescriptionDeathTest, ClashingTypesUnderOneNameAreAFaultOfTheModel) {
    Named named;
    Counted counted;
    EXPECT_DEATH(EntityDescription::copyAttributes(named, counted),
                 "Named.value \\(String\\) can't be copied to Counted.value \\(Int64\\)");
    EXPECT_DEATH(
        EntityBuilder<Counted>("Bad").attribute("when", &Counted::value, AttributeType::date),
        "date attribute 'when' must be held in a double");
}

TEST(EntityDescriptionTest, TransformedAttributesSurviveTheStore) {
    StoreFixture store;
    auto album = store.context().insertNewObject<Item>();
    album->itemID = "album";
    album->volumeData = std::vector<std::int64_t>{0, -5, 9000000000};
    album->mixpanelSourceJSON = Data{std::string("\x00\xff{\"a\":1}", 9)};
    for (int i = 0; i < 2; ++i) {
        auto track = std::make_shared<Item>();
        track->itemID = "t" + std::to_string(i);
        track->title = "Tráck \"" + std::to_string(i) + "\"";
        track->isAlbumTrack = true;
        track->trackNumber = i + 1;
        track->uploaderFollowersCount = 0;
        track->volumeData = std::vector<std::int64_t>{i};
        track->mixpanelSourceJSON = Data{std::string("\x01\x00", 2)};
        track->downloadDate = 1.25;
        album->tracks.push_back(track);
    }
    album->tracks.push_back(nullptr);  // an empty slot is left out
    ASSERT_TRUE(store.context().save());
    album.reset();
    store.open();

    auto fetched =
        store.context().fetch<Item>(FetchRequest::fetchRequestWithEntityName("Item"))->front();
    EXPECT_EQ(fetched->volumeData, (std::vector<std::int64_t>{0, -5, 9000000000}));
    EXPECT_EQ(fetched->mixpanelSourceJSON->bytes, std::string("\x00\xff{\"a\":1}", 9));
    ASSERT_EQ(fetched->tracks.size(), 2u);
    const Item& second = *fetched->tracks[1];
    EXPECT_FALSE(second.isManaged());
    EXPECT_EQ(second.itemID, "t1");
    EXPECT_EQ(second.title, "Tráck \"1\"");
    EXPECT_TRUE(second.isAlbumTrack);
    EXPECT_EQ(second.trackNumber, 2);
    EXPECT_EQ(second.uploaderFollowersCount, 0);
    EXPECT_EQ(second.volumeData, (std::vector<std::int64_t>{1}));
    EXPECT_EQ(second.mixpanelSourceJSON->bytes, std::string("\x01\x00", 2));
    EXPECT_EQ(second.downloadDate, 1.25);
    EXPECT_EQ(second.image, std::nullopt);
    EXPECT_FALSE(store.context().hasChanges());
}

TEST(EntityDescriptionTest, BrokenTransformedColumnsReadAsNil) {
    StoreFixture store;
    store.saveItem("1");
    store.close();
    std::string deep(5000, '[');
    StoreFixture::query(store.path(),
                        "UPDATE Item SET volumeData = '[1, \"x\"]', tracks = '{\"no\": [' ");
    store.open();
    auto item =
        store.context().fetch<Item>(FetchRequest::fetchRequestWithEntityName("Item"))->front();
    EXPECT_EQ(item->volumeData, std::nullopt);
    EXPECT_TRUE(item->tracks.empty());
    item.reset();
    store.close();
    StoreFixture::query(store.path(), "UPDATE Item SET tracks = '" + deep +
                                          "', items = '[1, \"a\", {\"itemID\": 7}]'");
    store.open();
    item = store.context().fetch<Item>(FetchRequest::fetchRequestWithEntityName("Item"))->front();
    EXPECT_TRUE(item->tracks.empty());
    ASSERT_EQ(item->items.size(), 1u);  // only the object, and its mistyped id is skipped
    EXPECT_EQ(item->items[0]->itemID, std::nullopt);
}

}  // namespace
}  // namespace tb::test
