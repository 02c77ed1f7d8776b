#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/Item.h"
#include "model/store/ObjectContext.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "support/TempDir.h"

namespace tb::test {

// A store on a real file in a temp dir, with the app's model and one context.
class StoreFixture {
  public:
    StoreFixture();
    // The store at `path` (a file the test made) in place of a new one.
    explicit StoreFixture(std::string path);
    ~StoreFixture();

    // Opens (or reopens, after closing) the store; fails the test if it can't.
    void open();
    void close();

    ObjectContext& context() { return *context_; }
    const std::string& path() const { return path_; }
    TempDir& dir() { return dir_; }

    // Inserts an Item row with the given id and title and saves it.
    std::shared_ptr<Item> saveItem(const std::string& itemID,
                                   const std::optional<std::string>& title = {});
    // The itemIDs of the records, in order.
    static std::vector<std::string> idsOf(const std::vector<std::shared_ptr<Item>>& items);
    // The itemIDs that the predicate fetches from Item, in saved order.
    std::vector<std::string> idsWhere(const std::string& format,
                                      std::vector<PredicateArgument> arguments = {});

    // Runs SQL on the file through a connection of its own, and the first column of each row
    // as text ("NULL" for NULL).
    static std::vector<std::string> query(const std::string& path, const std::string& sql);

  private:
    TempDir dir_;
    std::string path_;
    std::shared_ptr<PersistentStoreCoordinator> coordinator_;
    std::unique_ptr<ObjectContext> context_;
};

}  // namespace tb::test
