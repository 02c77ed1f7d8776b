#include <string>
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

std::vector<std::string> column(const StoreFixture& store, const std::string& sql) {
    return StoreFixture::query(store.path(), sql);
}

TEST(ObjectContextTest, OneRowIsOneObjectWhileAnyoneHoldsIt) {
    StoreFixture store;
    store.saveItem("1", "One");
    auto first = store.context().fetch<Item>(byID("1"))->front();
    auto all = *store.context().fetch<Item>(FetchRequest::fetchRequestWithEntityName("Item"));
    EXPECT_EQ(all.front().get(), first.get());
    EXPECT_TRUE(first->isManaged());
    EXPECT_EQ(store.context().registeredObjectCount(), 1u);

    all.clear();
    first.reset();
    EXPECT_EQ(store.context().registeredObjectCount(), 0u);  // unchanged records are let go
    auto again = store.context().fetch<Item>(byID("1"))->front();
    EXPECT_EQ(again->title, "One");
}

TEST(ObjectContextTest, ChangedFieldsAreFoundAndSavedWithoutBeingReported) {
    StoreFixture store;
    store.saveItem("1", "One");
    auto item = store.context().fetch<Item>(byID("1"))->front();
    EXPECT_FALSE(store.context().hasChanges());

    item->title = "Uno";
    item->volumeData = std::vector<std::int64_t>{3, 1};
    EXPECT_TRUE(store.context().hasChanges());
    Error error;
    ASSERT_TRUE(store.context().save(&error)) << error.message;
    EXPECT_FALSE(store.context().hasChanges());
    EXPECT_EQ(column(store, "SELECT title || volumeData FROM Item"), Ids{"Uno[3,1]"});

    item->title = "One";
    item->title = "Uno";  // changed and changed back: nothing to write
    EXPECT_FALSE(store.context().hasChanges());
    ASSERT_TRUE(store.context().save());
    ASSERT_TRUE(store.context().save());  // saving twice is fine
}

TEST(ObjectContextTest, AChangedRecordDroppedBeforeSavingKeepsItsChanges) {
    StoreFixture store;
    store.saveItem("1", "One");
    store.context().fetch<Item>(byID("1"))->front()->title =
        "Changed";  // the only reference dies here

    EXPECT_TRUE(store.context().hasChanges());
    EXPECT_EQ(store.context().registeredObjectCount(), 1u);
    EXPECT_EQ(store.context().fetch<Item>(byID("1"))->front()->title, "Changed");
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(store.context().registeredObjectCount(), 0u);
    store.open();
    EXPECT_EQ(store.context().fetch<Item>(byID("1"))->front()->title, "Changed");
}

TEST(ObjectContextTest, ASaveOfNamedChangesWritesThemWithInsertsAndDeletesAndNothingElse) {
    StoreFixture store;
    for (const char* id : {"1", "2", "3", "4"}) {
        store.saveItem(id, std::string("Old ") + id);
    }
    auto held = *store.context().fetch<Item>(FetchRequest::fetchRequestWithEntityName("Item"));
    held[0]->title = "Named";
    held[1]->title = "Not named";
    store.context().deleteObject(held[2]);
    store.context().insertNewObject<Item>()->itemID = "5";
    // Dropped with a change: kept by the context, and so always written.
    store.context().fetch<Item>(byID("4"))->front()->title = "Let go";
    held.pop_back();

    Error error;
    ASSERT_TRUE(store.context().saveChangesOf({held[0], held[0], std::make_shared<Item>()}, &error))
        << error.message;
    EXPECT_EQ(column(store, "SELECT itemID || ' ' || ifnull(title, '-') FROM Item ORDER BY pk"),
              (Ids{"1 Named", "2 Old 2", "4 Let go", "5 -"}));
    EXPECT_TRUE(store.context().hasChanges());  // the change to 2 waits for a full save
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(column(store, "SELECT title FROM Item WHERE itemID = '2'"), Ids{"Not named"});

    // A named record that is unchanged, deleted, or of no context writes nothing.
    ASSERT_TRUE(store.context().saveChangesOf({held[0], held[2]}));
    EXPECT_FALSE(store.context().hasChanges());
}

TEST(ObjectContextTest, InsertsBecomeRowsOnlyWhenSaved) {
    StoreFixture store;
    auto item = store.context().insertNewObject<Item>();
    item->itemID = "new";
    EXPECT_TRUE(item->isManaged());
    EXPECT_TRUE(item->isInserted());
    EXPECT_TRUE(store.context().hasChanges());
    EXPECT_EQ(store.idsWhere("TRUEPREDICATE"), Ids{});  // queries read saved rows
    ASSERT_TRUE(store.context().save());
    EXPECT_FALSE(item->isInserted());
    EXPECT_EQ(store.context().fetch<Item>(byID("new"))->front().get(), item.get());

    auto byName = store.context().insertNewObjectForEntityForName("CachedItem");
    EXPECT_EQ(byName->entity().name(), "CachedItem");
}

TEST(ObjectContextTest, DeletingRemovesTheRowAtTheNextSave) {
    StoreFixture store;
    store.saveItem("1");
    store.saveItem("2");
    auto item = store.context().fetch<Item>(byID("1"))->front();
    store.context().deleteObject(item);
    EXPECT_TRUE(item->isDeleted());
    EXPECT_TRUE(store.context().hasChanges());
    EXPECT_EQ(column(store, "SELECT COUNT(*) FROM Item"), Ids{"2"});
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(column(store, "SELECT itemID FROM Item"), Ids{"2"});
    EXPECT_TRUE(item->isDeleted());
    EXPECT_FALSE(item->isManaged());

    auto inserted = store.context().insertNewObject<Item>();
    store.context().deleteObject(inserted);  // never written at all
    EXPECT_FALSE(store.context().hasChanges());
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(column(store, "SELECT COUNT(*) FROM Item"), Ids{"1"});
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
    store.context().deleteObject(gone);
    for (std::string title : {"ok1", "bad", "ok2"}) {
        store.context().insertNewObject<Item>()->title = title;
    }

    Error error;
    EXPECT_FALSE(store.context().save(&error));
    EXPECT_EQ(error.domain, StoreError::kDomain);
    EXPECT_NE(error.userInfo[StoreError::kUnderlyingErrorKey].find("refused"), std::string::npos);
    EXPECT_EQ(column(store, "SELECT title FROM Item ORDER BY pk"), (Ids{"Keep", "NULL"}));
    EXPECT_TRUE(store.context().hasChanges());

    StoreFixture::query(store.path(), "DROP TRIGGER refuse");
    ASSERT_TRUE(store.context().save(&error)) << error.message;
    EXPECT_EQ(column(store, "SELECT title FROM Item ORDER BY pk"),
              (Ids{"Changed", "ok1", "bad", "ok2"}));
}

TEST(ObjectContextTest, DetachedRecordsAndCopiesBelongToNoContext) {
    StoreFixture store;
    auto detached = std::make_shared<Item>();
    detached->itemID = "d";
    EXPECT_FALSE(detached->isManaged());
    store.context().deleteObject(detached);  // ignored
    EXPECT_FALSE(detached->isDeleted());

    auto managed = store.saveItem("m", "Managed");
    Item copy = *managed;
    EXPECT_FALSE(copy.isManaged());
    EXPECT_EQ(copy.title, "Managed");
    copy.title = "Copy";
    EXPECT_FALSE(store.context().hasChanges());
    ASSERT_TRUE(store.context().save());
    EXPECT_EQ(column(store, "SELECT title FROM Item"), Ids{"Managed"});
}

TEST(ObjectContextTest, RollbackDropsInsertsRestoresDeletesAndRereadsChanges) {
    StoreFixture store;
    store.saveItem("1", "One");
    store.saveItem("2", "Two");
    auto one = store.context().fetch<Item>(byID("1"))->front();
    auto two = store.context().fetch<Item>(byID("2"))->front();
    one->title = "Changed";
    store.context().deleteObject(two);
    auto inserted = store.context().insertNewObject<Item>();

    store.context().rollback();
    EXPECT_FALSE(store.context().hasChanges());
    EXPECT_EQ(one->title, "One");
    EXPECT_FALSE(two->isDeleted());
    EXPECT_FALSE(inserted->isManaged());
    EXPECT_EQ(store.idsWhere("TRUEPREDICATE"), (Ids{"1", "2"}));
}

TEST(ObjectContextTest, ResetForgetsEveryRecord) {
    StoreFixture store;
    auto item = store.saveItem("1", "One");
    item->title = "Unsaved";
    store.context().reset();
    EXPECT_FALSE(item->isManaged());
    EXPECT_FALSE(store.context().hasChanges());
    EXPECT_EQ(store.context().registeredObjectCount(), 0u);
    auto fresh = store.context().fetch<Item>(byID("1"))->front();
    EXPECT_NE(fresh.get(), item.get());
    EXPECT_EQ(fresh->title, "One");
}

TEST(ObjectContextTest, RecordsOutliveTheirContextAsDetachedOnes) {
    auto store = std::make_unique<StoreFixture>();
    auto item = store->saveItem("1", "One");
    item->title = "Unsaved";
    store.reset();
    EXPECT_FALSE(item->isManaged());
    EXPECT_EQ(item->title, "Unsaved");
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

TEST(ObjectContextTest, AStoreRebuiltUnderTheContextDetachesOldRecords) {
    TempDir dir;
    auto coordinator = std::make_shared<PersistentStoreCoordinator>(StoreModel::merged());
    ASSERT_TRUE(coordinator->addPersistentStore(dir.file("CoreData.sqlite"), nullptr));
    ObjectContext context(coordinator);
    auto old = context.insertNewObject<Item>();
    old->itemID = "old";
    ASSERT_TRUE(context.save());

    coordinator->removePersistentStore();
    PersistentStoreCoordinator::destroyPersistentStore(dir.file("CoreData.sqlite"));
    ASSERT_TRUE(coordinator->addPersistentStore(dir.file("CoreData.sqlite"), nullptr));
    EXPECT_EQ(context.fetch<Item>(byID("old"))->size(), 0u);
    EXPECT_FALSE(old->isManaged());
    auto fresh = context.insertNewObject<Item>();
    fresh->itemID = "fresh";
    ASSERT_TRUE(context.save());
    EXPECT_EQ(context.fetch<Item>(byID("fresh"))->front().get(), fresh.get());
}

}  // namespace
}  // namespace tb::test
