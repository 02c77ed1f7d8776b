#include <set>
#include <string>
#include <vector>

#include "StoreTestSupport.h"
#include "model/Artist.h"
#include "model/BookmarkItem.h"
#include "model/BookmarkStatus.h"
#include "model/CachedItem.h"
#include "model/PlaylistTracks.h"
#include "model/store/EntityBuilder.h"
#include "model/store/EntityDescription.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

std::vector<std::string> namesOf(const EntityDescription& entity) {
    std::vector<std::string> names;
    for (const auto& attribute : entity.attributes()) {
        names.push_back(attribute.name());
    }
    return names;
}

std::string typeOf(const EntityDescription& entity, const std::string& name) {
    const AttributeDescription* attribute = entity.attributeNamed(name);
    return attribute ? std::string(attributeTypeName(attribute->type())) : "missing";
}

// The bookmark mirror's attributes as the bookmark feature lists them.
const std::set<std::string> kBookmarkItemAttributes = {"addToPlaylistStatus",
                                                       "album",
                                                       "albumTrackDownloadedAsSingle",
                                                       "amp",
                                                       "ampDuration",
                                                       "artist",
                                                       "banner",
                                                       "bookmarkIndex",
                                                       "buyURL",
                                                       "cached",
                                                       "commentsCount",
                                                       "created",
                                                       "desc",
                                                       "downloadCompleted",
                                                       "downloadDate",
                                                       "downloaded",
                                                       "downloadURL",
                                                       "duration",
                                                       "favorited",
                                                       "favorites",
                                                       "favoriteStatus",
                                                       "featured",
                                                       "genre",
                                                       "hasItems",
                                                       "hasTracks",
                                                       "image",
                                                       "isAlbum",
                                                       "isAlbumTrack",
                                                       "isPlaylist",
                                                       "isPlaylistTrack",
                                                       "isSong",
                                                       "isUserPlaylist",
                                                       "itemID",
                                                       "items",
                                                       "itemsIDs",
                                                       "lastUpdated",
                                                       "mixpanelSourceJSON",
                                                       "offlineToastShown",
                                                       "originalImage",
                                                       "parentID",
                                                       "playlist",
                                                       "playlistImage",
                                                       "playlists",
                                                       "playlistTracksCount",
                                                       "plays",
                                                       "privatePlaylist",
                                                       "producer",
                                                       "rankAllTime",
                                                       "rankDaily",
                                                       "rankMonthly",
                                                       "rankWeekly",
                                                       "rankYearly",
                                                       "repostArtistName",
                                                       "reposted",
                                                       "reposts",
                                                       "repostStatus",
                                                       "repostTimestamp",
                                                       "smallImage",
                                                       "songImage",
                                                       "status",
                                                       "streamOnly",
                                                       "synced",
                                                       "title",
                                                       "trackNumber",
                                                       "tracks",
                                                       "tracksIDs",
                                                       "type",
                                                       "uploaded",
                                                       "uploaderFollowed",
                                                       "uploaderId",
                                                       "uploaderImage",
                                                       "uploaderFollowersCount",
                                                       "uploaderName",
                                                       "uploaderSlug",
                                                       "uploaderTastemaker",
                                                       "uploaderTwitter",
                                                       "uploaderVerified",
                                                       "url",
                                                       "urlSlug",
                                                       "videoAd",
                                                       "volumeData"};

TEST(EntityDescriptionTest, ItemAndItsBookmarkMirrorHaveTheSameAttributesButGeorestricted) {
    const auto& bookmark = BookmarkItem::entityDescription();
    auto bookmarkNames = namesOf(bookmark);
    EXPECT_EQ(std::set<std::string>(bookmarkNames.begin(), bookmarkNames.end()),
              kBookmarkItemAttributes);
    EXPECT_EQ(bookmarkNames.size(), kBookmarkItemAttributes.size());

    auto expectedItem = kBookmarkItemAttributes;
    expectedItem.erase("bookmarkIndex");
    expectedItem.insert("georestricted");
    auto itemNames = namesOf(Item::entityDescription());
    EXPECT_EQ(std::set<std::string>(itemNames.begin(), itemNames.end()), expectedItem);
    EXPECT_EQ(Item::entityDescription().attributeNamed("verifiedSearchResult"), nullptr);
    EXPECT_EQ(Artist::entityDescription().attributeNamed("verifiedSearchResult"), nullptr);

    for (const auto* entity : {&Item::entityDescription(), &bookmark}) {
        EXPECT_EQ(typeOf(*entity, "itemID"), "String");
        EXPECT_EQ(typeOf(*entity, "isSong"), "Bool");
        EXPECT_EQ(typeOf(*entity, "duration"), "Int64");
        EXPECT_EQ(typeOf(*entity, "uploaderFollowersCount"), "Int64");
        EXPECT_EQ(typeOf(*entity, "downloadDate"), "Date");
        EXPECT_EQ(typeOf(*entity, "mixpanelSourceJSON"), "Data");
        EXPECT_EQ(typeOf(*entity, "volumeData"), "IntegerArray");
        EXPECT_EQ(typeOf(*entity, "tracks"), "RecordArray");
        EXPECT_EQ(typeOf(*entity, "items"), "RecordArray");
    }
    EXPECT_EQ(typeOf(bookmark, "bookmarkIndex"), "Int64");
    EXPECT_EQ(typeOf(Item::entityDescription(), "georestricted"), "Bool");
}

TEST(EntityDescriptionTest, TheSmallerEntitiesHaveTheirExactAttributes) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(namesOf(CachedItem::entityDescription()),
              (Names{"itemID", "filePath", "fileSize", "lastUsed"}));
    EXPECT_EQ(typeOf(CachedItem::entityDescription(), "fileSize"), "Int64");
    EXPECT_EQ(typeOf(CachedItem::entityDescription(), "lastUsed"), "Date");
    EXPECT_EQ(namesOf(BookmarkStatus::entityDescription()),
              (Names{"itemID", "playbackPosition", "bookmarkDate", "screenType", "entityID"}));
    EXPECT_EQ(typeOf(BookmarkStatus::entityDescription(), "playbackPosition"), "Int64");
    EXPECT_EQ(typeOf(BookmarkStatus::entityDescription(), "bookmarkDate"), "Date");
    EXPECT_EQ(namesOf(PlaylistTracks::entityDescription()),
              (Names{"playlistId", "trackId", "number"}));
    EXPECT_EQ(typeOf(PlaylistTracks::entityDescription(), "number"), "Int64");
    EXPECT_EQ(namesOf(Artist::entityDescription()).size(), 29u);
    EXPECT_EQ(typeOf(Artist::entityDescription(), "created"), "Date");
    EXPECT_EQ(typeOf(Artist::entityDescription(), "verified"), "Bool");
    EXPECT_EQ(typeOf(Artist::entityDescription(), "uploadsCount"), "Int64");
}

TEST(EntityDescriptionTest, DefaultsComeFromAFreshRecord) {
    const auto& item = Item::entityDescription();
    EXPECT_EQ(item.attributeNamed("downloaded")->defaultSQL(), "0");
    EXPECT_EQ(item.attributeNamed("duration")->defaultSQL(), "0");
    EXPECT_EQ(item.attributeNamed("title")->defaultSQL(), "NULL");
    EXPECT_EQ(item.attributeNamed("uploaderFollowersCount")->defaultSQL(), "NULL");
    EXPECT_EQ(item.attributeNamed("tracks")->defaultSQL(), "NULL");
    EXPECT_TRUE(item.attributeNamed("itemID")->isIndexed());
    auto record = item.newDetachedRecord();
    EXPECT_FALSE(record->isManaged());
    EXPECT_EQ(&record->entity(), &item);
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

    fetched->tracks[0]->title = "Renamed";  // a change inside a nested record counts
    EXPECT_TRUE(store.context().hasChanges());
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
