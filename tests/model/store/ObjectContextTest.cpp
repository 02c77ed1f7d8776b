#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "StoreTestSupport.h"
#include "model/StoreModel.h"
#include "model/store/EntityDescription.h"
#include "model/store/StoreError.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

using Ids = std::vector<std::string>;

FetchRequest byID(const std::string& id) {
    FetchRequest request = FetchRequest::fetchRequestWithEntityName("Item");
    request.predicate = Predicate::withFormat("itemID == %@", {id});
    return request;
}

FetchRequest allItems() {
    return FetchRequest::fetchRequestWithEntityName("Item");
}

Ids titles(const StoreFixture& store) {
    return StoreFixture::query(store.path(),
                               "SELECT itemID || ' ' || ifnull(title, '-') FROM Item ORDER BY pk");
}

TEST(ObjectContextTest, OneRowIsOneObjectInEveryListThatHoldsIt) {
    StoreFixture store;
    store.saveItem("1", "One");
    store.saveItem("2", "Two");
    auto list = *store.context().fetch<Item>(allItems());
    auto playlist = *store.context().fetch<Item>(byID("2"));
    ASSERT_EQ(playlist.front().get(), list[1].get());

    playlist.front()->downloaded = true;
    playlist.front()->didChange();
    ASSERT_TRUE(store.context().save());
    EXPECT_TRUE(list[1]->downloaded);
    EXPECT_EQ(StoreFixture::query(store.path(), "SELECT downloaded FROM Item WHERE itemID = '2'"),
              Ids{"1"});

    std::weak_ptr<Item> gone = list[0];
    list.clear();
    playlist.clear();
    EXPECT_TRUE(gone.expired());  // the context keeps no unchanged record alive
    EXPECT_EQ(store.context().registeredObjectCount(), 0u);
    EXPECT_EQ(store.context().fetch<Item>(byID("1"))->front()->title, "One");
}

// A save writes what was changed and nothing else: a row that another writer changed under a
// record held here, unchanged, keeps that writer's value.
TEST(ObjectContextTest, ASaveWritesEveryPendingChangeAndOnlyThose) {
    StoreFixture store;
    for (const char* id : {"1", "2", "3"}) {
        store.saveItem(id, std::string("Old ") + id);
    }
    auto held = *store.context().fetch<Item>(allItems());
    StoreFixture::query(store.path(), "UPDATE Item SET title = 'Elsewhere' WHERE itemID = '2'");
    held[0]->title = "Changed";
    held[0]->didChange();
    store.context().deleteObject(held[2]);
    store.context().insertNewObject<Item>()->itemID = "4";
    EXPECT_TRUE(store.context().hasChanges());

    Error error;
    ASSERT_TRUE(store.context().save(&error)) << error.message;
    EXPECT_FALSE(store.context().hasChanges());
    EXPECT_EQ(titles(store), (Ids{"1 Changed", "2 Elsewhere", "4 -"}));
    EXPECT_TRUE(held[2]->isDeleted());
    EXPECT_FALSE(held[2]->isManaged());

    // Naming the changed records to the save is the same as telling each of them.
    held[1]->title = "Named";
    ASSERT_TRUE(store.context().saveChangesOf({held[1], held[1], std::make_shared<Item>()}));
    EXPECT_EQ(titles(store), (Ids{"1 Changed", "2 Named", "4 -"}));
    ASSERT_TRUE(store.context().save());  // nothing left: writes nothing, and works
}

TEST(ObjectContextTest, AChangedRecordLetGoBeforeSavingKeepsItsChanges) {
    StoreFixture store;
    store.saveItem("1", "One");
    {
        auto item = store.context().fetch<Item>(byID("1"))->front();
        item->title = "Changed";
        item->didChange();
    }
    EXPECT_TRUE(store.context().hasChanges());
    EXPECT_EQ(store.context().fetch<Item>(byID("1"))->front()->title, "Changed");
    ASSERT_TRUE(store.context().save());
    store.open();
    EXPECT_EQ(store.context().fetch<Item>(byID("1"))->front()->title, "Changed");
}

TEST(ObjectContextTest, InsertingAndDeletingBeforeASaveWritesNothing) {
    StoreFixture store;
    auto item = store.context().insertNewObject<Item>();
    EXPECT_TRUE(item->isInserted());
    store.context().deleteObject(item);
    EXPECT_FALSE(store.context().hasChanges());
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(titles(store), Ids{});
    EXPECT_EQ(store.context().insertNewObjectForEntityForName("CachedItem")->entity().name(),
              "CachedItem");
}

TEST(ObjectContextTest, SaveIsOneTransactionAndAFailureWritesNothingAndKeepsTheChanges) {
    StoreFixture store;
    store.saveItem("keep", "Keep");
    StoreFixture::query(store.path(),
                        "CREATE TRIGGER refuse BEFORE INSERT ON Item WHEN NEW.title = 'bad' "
                        "BEGIN SELECT RAISE(ABORT, 'refused'); END");
    auto gone = store.saveItem("gone");
    auto existing = store.context().fetch<Item>(byID("keep"))->front();
    existing->title = "Changed";
    existing->didChange();
    store.context().deleteObject(gone);
    for (std::string title : {"ok1", "bad"}) {
        auto item = store.context().insertNewObject<Item>();
        item->itemID = title;
        item->title = title;
    }

    Error error;
    EXPECT_FALSE(store.context().save(&error));
    EXPECT_EQ(error.domain, StoreError::kDomain);
    EXPECT_NE(error.userInfo[StoreError::kUnderlyingErrorKey].find("refused"), std::string::npos);
    EXPECT_EQ(titles(store), (Ids{"keep Keep", "gone -"}));
    EXPECT_TRUE(store.context().hasChanges());

    StoreFixture::query(store.path(), "DROP TRIGGER refuse");
    ASSERT_TRUE(store.context().save(&error)) << error.message;
    EXPECT_EQ(titles(store), (Ids{"keep Changed", "ok1 ok1", "bad bad"}));
}

TEST(ObjectContextTest, DetachedRecordsAndCopiesBelongToNoContext) {
    StoreFixture store;
    auto detached = std::make_shared<Item>();
    store.context().deleteObject(detached);  // ignored
    detached->didChange();
    EXPECT_FALSE(detached->isDeleted());

    auto managed = store.saveItem("m", "Managed");
    Item copy = *managed;
    EXPECT_FALSE(copy.isManaged());
    copy.title = "Copy";
    copy.didChange();
    EXPECT_FALSE(store.context().hasChanges());
}

TEST(ObjectContextTest, RollbackDropsInsertsRestoresDeletesAndRereadsChanges) {
    StoreFixture store;
    store.saveItem("1", "One");
    store.saveItem("2", "Two");
    auto one = store.context().fetch<Item>(byID("1"))->front();
    auto two = store.context().fetch<Item>(byID("2"))->front();
    one->title = "Changed";
    one->didChange();
    store.context().deleteObject(two);
    auto inserted = store.context().insertNewObject<Item>();

    store.context().rollback();
    EXPECT_FALSE(store.context().hasChanges());
    EXPECT_EQ(one->title, "One");
    EXPECT_FALSE(two->isDeleted());
    EXPECT_FALSE(inserted->isManaged());
    EXPECT_EQ(store.idsWhere("TRUEPREDICATE"), (Ids{"1", "2"}));
}

// Reset, the end of the context and a store rebuilt under it all leave the records it handed
// out as detached ones, with their values.
TEST(ObjectContextTest, RecordsLeftByTheirContextOrTheirStoreBecomeDetached) {
    auto store = std::make_unique<StoreFixture>();
    auto item = store->saveItem("1", "One");
    item->title = "Unsaved";
    item->didChange();
    store->context().reset();
    EXPECT_FALSE(item->isManaged());
    EXPECT_FALSE(store->context().hasChanges());
    auto fresh = store->context().fetch<Item>(byID("1"))->front();
    EXPECT_NE(fresh.get(), item.get());
    EXPECT_EQ(fresh->title, "One");

    auto& coordinator = *store->context().persistentStoreCoordinator();
    coordinator.removePersistentStore();
    PersistentStoreCoordinator::destroyPersistentStore(store->path());
    ASSERT_TRUE(coordinator.addPersistentStore(store->path(), nullptr));
    EXPECT_EQ(store->context().fetch<Item>(byID("1"))->size(), 0u);
    EXPECT_FALSE(fresh->isManaged());

    auto last = store->saveItem("2", "Two");
    store.reset();
    EXPECT_FALSE(last->isManaged());
    EXPECT_EQ(last->title, "Two");
}

TEST(ObjectContextTest, WithoutAStoreEveryQueryAndSaveFails) {
    auto coordinator = std::make_shared<PersistentStoreCoordinator>(StoreModel::merged());
    ObjectContext context(coordinator);
    Error error;
    EXPECT_EQ(context.fetch<Item>(byID("1"), &error), std::nullopt);
    EXPECT_EQ(error.code, StoreError::kNoStore);
    EXPECT_EQ(context.countForFetchRequest(byID("1")), std::nullopt);
    context.insertNewObject<Item>();
    EXPECT_FALSE(context.save(&error));
    EXPECT_EQ(error.code, StoreError::kNoStore);
}

// Records go to other threads (a download's completion, a decoder) and may be let go there.
TEST(ObjectContextTest, RecordsLetGoOnAnotherThreadLeaveTheContextWhole) {
    StoreFixture store;
    for (int i = 0; i < 50; ++i) {
        store.saveItem(std::to_string(i), "Title");
    }
    auto records = *store.context().fetch<Item>(allItems());
    records[0]->title = "Changed";
    records[0]->didChange();
    std::thread([held = std::move(records)]() mutable { held.clear(); }).join();

    EXPECT_EQ(store.context().registeredObjectCount(), 1u);  // the changed one, kept
    ASSERT_TRUE(store.context().save());
    auto again = *store.context().fetch<Item>(allItems());
    EXPECT_EQ(again.size(), 50u);
    EXPECT_EQ(again[0]->title, "Changed");
    EXPECT_EQ(store.context().fetch<Item>(byID("0"))->front().get(), again[0].get());
}

TEST(ObjectContextDeathTest, TheContextIsUsedOnTheThreadThatMadeItOnly) {
#ifdef NDEBUG
    GTEST_SKIP() << "checked in debug builds";
#else
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    StoreFixture store;
    EXPECT_DEATH(std::thread([&] { store.context().hasChanges(); }).join(),
                 "used off the main queue");
#endif
}

// A writer that forgets to mark its record would lose the change without a word; with the
// check on (debug builds, and every test run), the process stops instead. Marking it after
// another save, as a writer of several records may, is still in time.
TEST(ObjectContextDeathTest, AChangeThatIsNeverMarkedStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ::setenv("TB_STORE_CHECK_MARKS", "1", 1);
    auto forget = [](bool markLate) {
        StoreFixture store;
        store.saveItem("1", "One");
        auto item = store.context().fetch<Item>(byID("1"))->front();
        item->title = "Late";
        store.saveItem("2", "Two");  // another writer's save meets the unmarked change
        if (markLate) {
            item->didChange();
            ASSERT_TRUE(store.context().save());
        }
    };
    forget(true);
    EXPECT_DEATH(forget(false), "changed without didChange");
}

}  // namespace
}  // namespace tb::test
