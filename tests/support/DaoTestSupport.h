#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/AppContext.h"
#include "model/Item.h"
#include "model/store/Predicate.h"
#include "model/store/SortDescriptor.h"
#include "support/ChildProcess.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb {
class ItemDAO;
class ObjectContext;
class TBCoreDataManager;
class TBDataManager;
}  // namespace tb

namespace tb::test {

// One run of the app on a device. The device (a TestPlatform) keeps what outlives a process:
// the documents folder, the user defaults, the keychain, the recorders. Each Launch is a
// fresh process: a new AppContext over the device's ports, with new singletons.
class Launch {
  public:
    explicit Launch(TestPlatform& device);
    ~Launch();

    AppContext& context() { return *context_; }
    TBDataManager& data();
    TBCoreDataManager& policy();
    ItemDAO& dao();
    // The context after startup (null when there is none).
    ObjectContext* store();

    // Opens the store as the launch does.
    Launch& startup();

  private:
    std::unique_ptr<AppContext> context_;
};

// "<documents>/CoreData.sqlite" of the device.
std::string storePathOf(TestPlatform& device);

// A device with the store open, as after the launch, for the DAO's tests: the device's own
// context is current, so the class-level operations work on it.
class DaoTest : public ::testing::Test {
  protected:
    DaoTest();

    ObjectContext& store();
    ItemDAO& dao();
    TBCoreDataManager& saving();
    const std::string& documents() { return device.context().paths().documents; }
    // The values of one column of a table, read straight from the file through a
    // connection of its own (saved rows only), in row order; "NULL" for NULL.
    std::vector<std::string> savedColumn(const std::string& table,
                                         const std::string& column,
                                         const std::string& where = "1");
    // The ids that a predicate fetches, in the order of the sort descriptors.
    std::vector<std::string> idsWhere(const Predicate& predicate,
                                      const std::vector<SortDescriptor>& sort = {});
    // The codes and "Method" labels of the store errors recorded so far.
    std::vector<std::string> reportedSaveFailures();

    TestPlatform device;
};

// A detached song, album or playlist as the mappers would make it.
ItemPtr song(const std::string& id,
             const std::string& title = "Song",
             const std::string& artist = "Artist");
// The same, as a download of the given state.
ItemPtr downloadedSong(const std::string& id, bool completed, double downloadDate = 1.7e9);
ItemPtr album(const std::string& id, std::vector<ItemPtr> tracks);
ItemPtr albumTrack(const std::string& id, const std::string& albumId);
ItemPtr playlist(const std::string& id, std::vector<ItemPtr> items);
ItemPtr playlistTrack(const std::string& id, const std::string& playlistId);

// `item` after `change`, to build a row's state in one expression.
template <typename Change>
ItemPtr with(ItemPtr item, Change change) {
    change(*item);
    return item;
}

// Inserts a row copied from `item` into the current store and saves it.
ItemPtr insertRow(const ItemPtr& item);

// The itemIDs of the items, in order.
std::vector<std::string> idsOf(const std::vector<ItemPtr>& items);

// Runs SQL on the file through a connection of its own, and gives the first column of each
// row as text ("NULL" for NULL).
std::vector<std::string> queryColumn(const std::string& path, const std::string& sql);

// A file of `size` bytes.
void writeBytes(const std::string& path, std::size_t size, char fill = 'x');

}  // namespace tb::test
