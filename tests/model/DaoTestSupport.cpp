#include "DaoTestSupport.h"

#include <fstream>

#include "api/TBDataManager.h"
#include "model/TBCoreDataManager.h"
#include "model/store/EntityDescription.h"
#include "model/store/ObjectContext.h"

namespace tb::test {

std::string storePathOf(TestPlatform& device) {
    return device.context().paths().documents + "/CoreData.sqlite";
}

Launch::Launch(TestPlatform& device)
    : context_(std::make_unique<AppContext>(device.ports(), device.context().options())) {}

Launch::~Launch() = default;

TBDataManager& Launch::data() {
    return context_->singleton<TBDataManager>();
}

TBCoreDataManager& Launch::policy() {
    return context_->singleton<TBCoreDataManager>();
}

ObjectContext* Launch::store() {
    return data().managedObjectContext().get();
}

Launch& Launch::startup() {
    data().startup();
    return *this;
}

namespace {

ItemPtr makeItem(const std::string& id, const std::string& type) {
    auto item = std::make_shared<Item>();
    item->itemID = id;
    item->type = type;
    item->title = "Title " + id;
    item->artist = "Artist " + id;
    item->image = "https://img.example/" + id + ".jpg";
    return item;
}

}  // namespace

ItemPtr song(const std::string& id, const std::string& title, const std::string& artist) {
    auto item = makeItem(id, "song");
    item->isSong = true;
    item->title = title;
    item->artist = artist;
    return item;
}

ItemPtr album(const std::string& id, std::vector<ItemPtr> tracks) {
    auto item = makeItem(id, "album");
    item->isAlbum = true;
    std::string ids;
    for (const auto& track : tracks) {
        ids += (ids.empty() ? "" : ",") + track->itemID.value_or("");
    }
    item->tracksIDs = ids;
    item->hasTracks = !tracks.empty();
    item->tracks = std::move(tracks);
    return item;
}

ItemPtr albumTrack(const std::string& id, const std::string& albumId) {
    auto item = makeItem(id, "song");
    item->isAlbumTrack = true;
    item->parentID = albumId;
    return item;
}

ItemPtr playlist(const std::string& id, std::vector<ItemPtr> items) {
    auto item = makeItem(id, "playlist");
    item->isPlaylist = true;
    item->hasItems = !items.empty();
    item->items = std::move(items);
    return item;
}

ItemPtr playlistTrack(const std::string& id, const std::string& playlistId) {
    auto item = makeItem(id, "song");
    item->isPlaylistTrack = true;
    item->parentID = playlistId;
    return item;
}

ItemPtr insertRow(const ItemPtr& item) {
    auto& context = *TBDataManager::sharedManager().managedObjectContext();
    auto row = context.insertNewObject<Item>();
    EntityDescription::copyAttributes(*item, *row, true);
    context.save();
    return row;
}

std::vector<std::string> idsOf(const std::vector<ItemPtr>& items) {
    std::vector<std::string> ids;
    for (const auto& item : items) {
        ids.push_back(item->itemID.value_or("<nil>"));
    }
    return ids;
}

void writeBytes(const std::string& path, std::size_t size, char fill) {
    std::ofstream(path, std::ios::binary) << std::string(size, fill);
}

}  // namespace tb::test
