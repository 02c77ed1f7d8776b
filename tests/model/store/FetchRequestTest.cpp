#include <algorithm>
#include <string>
#include <vector>

#include "StoreTestSupport.h"
#include "model/PlaylistTracks.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

using Ids = std::vector<std::string>;

class FetchRequestTest : public ::testing::Test {
  protected:
    void SetUp() override {
        add("a", "Zeta", 300.0, 3);
        add("b", "Alpha", 100.0, 1);
        add("c", std::nullopt, 200.0, 2);
        add("d", "alpha", 100.0, 4);
        ASSERT_TRUE(store.context().save());
    }

    void add(const std::string& id,
             std::optional<std::string> artist,
             double date,
             std::int64_t duration) {
        auto item = store.context().insertNewObject<Item>();
        item->itemID = id;
        item->artist = std::move(artist);
        item->downloadDate = date;
        item->duration = duration;
        item->title = "title " + id;
        item->downloaded = true;
    }

    Ids fetch(const FetchRequest& request) {
        return StoreFixture::idsOf(*store.context().fetch<Item>(request));
    }

    static FetchRequest items() { return FetchRequest::fetchRequestWithEntityName("Item"); }

    StoreFixture store;
};

TEST_F(FetchRequestTest, SortDescriptorsOrderRowsAndEqualKeysKeepSavedOrder) {
    FetchRequest request = items();
    request.sortDescriptors = {{"downloadDate", false}};
    EXPECT_EQ(fetch(request), (Ids{"a", "c", "b", "d"}));
    request.sortDescriptors = {{"downloadDate", true}};
    EXPECT_EQ(fetch(request), (Ids{"b", "d", "c", "a"}));
    request.sortDescriptors = {{"downloadDate", true}, {"duration", false}};
    EXPECT_EQ(fetch(request), (Ids{"d", "b", "c", "a"}));
    EXPECT_EQ(fetch(items()), (Ids{"a", "b", "c", "d"}));
}

TEST_F(FetchRequestTest, TextSortsByteWiseWithNilFirstUnlessCaseInsensitive) {
    FetchRequest request = items();
    request.sortDescriptors = {SortDescriptor::sortDescriptorWithKey("artist", true)};
    EXPECT_EQ(fetch(request), (Ids{"c", "b", "a", "d"}));
    request.sortDescriptors = {{"artist", true, true}};
    EXPECT_EQ(fetch(request), (Ids{"c", "b", "d", "a"}));
    request.sortDescriptors = {{"artist", false, true}, {"itemID", false}};
    EXPECT_EQ(fetch(request), (Ids{"a", "d", "b", "c"}));
}

TEST_F(FetchRequestTest, FetchLimitTakesTheFirstRowsInOrder) {
    FetchRequest request = items();
    request.sortDescriptors = {{"duration", false}};
    request.fetchLimit = 2;
    EXPECT_EQ(fetch(request), (Ids{"d", "a"}));
    request.predicate = Predicate::withFormat("itemID == %@", {"c"});
    EXPECT_EQ(fetch(request), (Ids{"c"}));
}

TEST_F(FetchRequestTest, CountReadsNoRowsAndHonoursPredicateAndLimit) {
    FetchRequest request = items();
    request.predicate = Predicate::withFormat("downloadDate < %@", {250.0});
    request.includesSubentities = false;
    Error error;
    EXPECT_EQ(store.context().countForFetchRequest(request, &error), 3);
    EXPECT_EQ(store.context().registeredObjectCount(), 0u);
    request.fetchLimit = 2;
    EXPECT_EQ(store.context().countForFetchRequest(request), 2);
    EXPECT_EQ(store.context().countForFetchRequest(
                  FetchRequest::fetchRequestWithEntityName("PlaylistTracks")),
              0);
}

TEST_F(FetchRequestTest, PropertiesToFetchReadOnlyThoseColumns) {
    FetchRequest request = items();
    request.propertiesToFetch = {"itemID", "duration"};
    request.sortDescriptors = {{"itemID", true}};
    auto records = *store.context().fetch<Item>(request);
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0]->itemID, "a");
    EXPECT_EQ(records[0]->duration, 3);
    EXPECT_EQ(records[0]->title, std::nullopt);  // stored, but not asked for
    EXPECT_FALSE(records[0]->downloaded);
    EXPECT_FALSE(store.context().hasChanges());
}

TEST_F(FetchRequestTest, APartialRecordSavesOnlyWhatChangedAndKeepsTheRestOfItsRow) {
    FetchRequest request = items();
    request.propertiesToFetch = {"itemID"};
    request.predicate = Predicate::withFormat("itemID == %@", {"a"});
    auto record = store.context().fetch<Item>(request)->front();
    record->itemID = "a2";  // a fetched attribute
    record->synced = true;  // one changed away from its default
    record->didChange();
    EXPECT_TRUE(store.context().hasChanges());
    ASSERT_TRUE(store.context().save());
    EXPECT_FALSE(store.context().hasChanges());
    record.reset();
    store.open();

    request.propertiesToFetch.clear();
    request.predicate = Predicate::withFormat("itemID == %@", {"a2"});
    auto full = store.context().fetch<Item>(request)->front();
    EXPECT_TRUE(full->synced);
    EXPECT_EQ(full->title, "title a");
    EXPECT_TRUE(full->downloaded);
    EXPECT_EQ(full->duration, 3);
}

TEST_F(FetchRequestTest, APartialRecordFetchedAgainInFullBecomesWholeKeepingItsChanges) {
    FetchRequest partial = items();
    partial.propertiesToFetch = {"itemID"};
    partial.predicate = Predicate::withFormat("itemID == %@", {"b"});
    auto record = store.context().fetch<Item>(partial)->front();
    record->duration = 42;  // changed before the rest was read
    record->didChange();

    FetchRequest full = items();
    full.predicate = partial.predicate;
    auto again = store.context().fetch<Item>(full)->front();
    EXPECT_EQ(again.get(), record.get());
    EXPECT_EQ(again->artist, "Alpha");
    EXPECT_EQ(again->duration, 42);
    EXPECT_TRUE(store.context().hasChanges());
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(
        StoreFixture::query(store.path(), "SELECT duration || artist FROM Item WHERE itemID = 'b'"),
        Ids{"42Alpha"});
}

// Fetches and counts see the changes not saved yet, as they will be once saved.
struct PendingCase {
    const char* name;
    void (*change)(ObjectContext& context, std::vector<std::shared_ptr<Item>>& rows);
    const char* format;
    Ids expected;
};

class FetchSeesPendingTest : public FetchRequestTest,
                             public ::testing::WithParamInterface<PendingCase> {};

TEST_P(FetchSeesPendingTest, FetchesAndCountsMatchWhatTheSaveWillWrite) {
    auto rows = *store.context().fetch<Item>(items());
    GetParam().change(store.context(), rows);
    FetchRequest request = items();
    request.predicate = Predicate::withFormat(GetParam().format);
    request.sortDescriptors = {{"downloadDate", true}};
    auto fetched = *store.context().fetch<Item>(request);
    EXPECT_EQ(StoreFixture::idsOf(fetched), GetParam().expected);
    EXPECT_EQ(store.context().countForFetchRequest(request),
              static_cast<std::int64_t>(GetParam().expected.size()));
    request.fetchLimit = 1;
    EXPECT_EQ(fetch(request).size(), std::min<std::size_t>(1, GetParam().expected.size()));

    ASSERT_TRUE(store.context().save());  // what was fetched is what is now stored
    store.open();
    request.fetchLimit = 0;
    EXPECT_EQ(fetch(request), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Changes,
    FetchSeesPendingTest,
    ::testing::Values(
        PendingCase{"Insert",
                    [](ObjectContext& context, std::vector<std::shared_ptr<Item>>&) {
                        auto item = context.insertNewObject<Item>();
                        item->itemID = "e";
                        item->downloadDate = 150.0;
                        item->downloaded = true;
                    },
                    "downloaded == 1", Ids{"b", "d", "e", "c", "a"}},
        PendingCase{"ChangedInAndOut",
                    [](ObjectContext&, std::vector<std::shared_ptr<Item>>& rows) {
                        rows[0]->artist = "alpha";  // a: comes in
                        rows[0]->didChange();
                        rows[3]->artist = "Omega";  // d: goes out
                        rows[3]->didChange();
                    },
                    "artist CONTAINS[cd] 'alpha'", Ids{"b", "a"}},
        PendingCase{"Delete",
                    [](ObjectContext& context, std::vector<std::shared_ptr<Item>>& rows) {
                        context.deleteObject(rows[1]);
                    },
                    "downloaded == 1", Ids{"d", "c", "a"}},
        PendingCase{"ChangedThenDeleted",
                    [](ObjectContext& context, std::vector<std::shared_ptr<Item>>& rows) {
                        rows[2]->duration = 10;
                        rows[2]->didChange();
                        context.deleteObject(rows[2]);
                    },
                    "duration > 2", Ids{"d", "a"}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(FetchRequestTest, APendingInsertComesBackAsTheInsertedRecordAndStaysPending) {
    auto inserted = store.context().insertNewObject<Item>();
    inserted->itemID = "e";
    auto fetched = *store.context().fetch<Item>(items());
    EXPECT_EQ(fetched.back().get(), inserted.get());
    EXPECT_TRUE(inserted->isInserted());
    EXPECT_EQ(StoreFixture::query(store.path(), "SELECT COUNT(*) FROM Item"), Ids{"4"});
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(StoreFixture::query(store.path(), "SELECT COUNT(*) FROM Item"), Ids{"5"});
}

TEST_F(FetchRequestTest, OtherEntitiesAreFetchedByName) {
    auto track = store.context().insertNewObject<PlaylistTracks>();
    track->playlistId = "p";
    track->trackId = "t";
    track->number = 7;
    ASSERT_TRUE(store.context().save());
    auto request = FetchRequest::fetchRequestWithEntityName("PlaylistTracks");
    request.predicate = Predicate::withFormat("playlistId == %@", {"p"});
    auto rows = *store.context().executeFetchRequest(request);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].get(), track.get());
    EXPECT_EQ(&rows[0]->entity(), &PlaylistTracks::entityDescription());
}

using FetchRequestDeathTest = FetchRequestTest;

TEST_F(FetchRequestDeathTest, NamesOutsideTheModelAreProgrammingFaults) {
    FetchRequest request = items();
    request.sortDescriptors = {{"nope", true}};
    EXPECT_DEATH(fetch(request), "sort key 'nope' is not an attribute of the entity Item");
    request = items();
    request.propertiesToFetch = {"nope"};
    EXPECT_DEATH(fetch(request), "property to fetch 'nope' is not an attribute");
    EXPECT_DEATH(
        store.context().countForFetchRequest(FetchRequest::fetchRequestWithEntityName("Song")),
        "entity 'Song', which is not in the store's model");
    EXPECT_DEATH(
        store.context().fetch<Item>(FetchRequest::fetchRequestWithEntityName("PlaylistTracks")),
        "was asked for records of Item");
}

}  // namespace
}  // namespace tb::test
