#include "StoreTestSupport.h"

#include <utility>

#include "model/StoreModel.h"
#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "support/DaoTestSupport.h"

#include <gtest/gtest.h>

namespace tb::test {

StoreFixture::StoreFixture() : path_(dir_.file("CoreData.sqlite")) {
    open();
}

StoreFixture::StoreFixture(std::string path) : path_(std::move(path)) {
    open();
}

StoreFixture::~StoreFixture() {
    close();
}

void StoreFixture::open() {
    close();
    coordinator_ = std::make_shared<PersistentStoreCoordinator>(StoreModel::merged());
    Error error;
    ASSERT_TRUE(coordinator_->addPersistentStore(path_, &error))
        << error.code << " " << error.message;
    context_ = std::make_unique<ObjectContext>(coordinator_);
}

void StoreFixture::close() {
    context_.reset();
    coordinator_.reset();
}

std::shared_ptr<Item> StoreFixture::saveItem(const std::string& itemID,
                                             const std::optional<std::string>& title) {
    auto item = context_->insertNewObject<Item>();
    item->itemID = itemID;
    item->title = title;
    Error error;
    EXPECT_TRUE(context_->save(&error)) << error.message;
    return item;
}

std::vector<std::string> StoreFixture::idsOf(const std::vector<std::shared_ptr<Item>>& items) {
    std::vector<std::string> ids;
    for (const auto& item : items) {
        ids.push_back(item->itemID.value_or("<nil>"));
    }
    return ids;
}

std::vector<std::string> StoreFixture::idsWhere(const std::string& format,
                                                std::vector<PredicateArgument> arguments) {
    FetchRequest request = FetchRequest::fetchRequestWithEntityName("Item");
    request.predicate = Predicate::withFormat(format, std::move(arguments));
    Error error;
    auto items = context_->fetch<Item>(request, &error);
    EXPECT_TRUE(items.has_value()) << error.message;
    return items ? idsOf(*items) : std::vector<std::string>{};
}

std::vector<std::string> StoreFixture::query(const std::string& path, const std::string& sql) {
    return queryColumn(path, sql);
}

}  // namespace tb::test
