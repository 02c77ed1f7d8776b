#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/AppContext.h"
#include "model/Item.h"
#include "support/ChildProcess.h"
#include "support/TestPlatform.h"

namespace tb {
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
    // The context after startup (null when there is none).
    ObjectContext* store();

    // Opens the store as the launch does.
    Launch& startup();

  private:
    std::unique_ptr<AppContext> context_;
};

// "<documents>/CoreData.sqlite" of the device.
std::string storePathOf(TestPlatform& device);

// A detached song, album or playlist as the mappers would make it.
ItemPtr song(const std::string& id,
             const std::string& title = "Song",
             const std::string& artist = "Artist");
ItemPtr album(const std::string& id, std::vector<ItemPtr> tracks);
ItemPtr albumTrack(const std::string& id, const std::string& albumId);
ItemPtr playlist(const std::string& id, std::vector<ItemPtr> items);
ItemPtr playlistTrack(const std::string& id, const std::string& playlistId);

// Inserts a row copied from `item` into the current store and saves it.
ItemPtr insertRow(const ItemPtr& item);

// The itemIDs of the items, in order.
std::vector<std::string> idsOf(const std::vector<ItemPtr>& items);

// A file of `size` bytes.
void writeBytes(const std::string& path, std::size_t size, char fill = 'x');

}  // namespace tb::test
