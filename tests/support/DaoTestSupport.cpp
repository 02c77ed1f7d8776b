#include "support/DaoTestSupport.h"

#include <fstream>

#include "api/TBDataManager.h"
#include "model/ItemDAO.h"
#include "model/TBCoreDataManager.h"
#include "model/store/EntityDescription.h"
#include "model/store/FetchRequest.h"
#include "model/store/ObjectContext.h"
#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "model/store/StoreError.h"

namespace tb::test {

std::string storePathOf(TestPlatform& device) {
    return device.context().paths().documents + "/CoreData.sqlite";
}

Launch::Launch(TestPlatform& device)
    : context_(std::make_unique<AppContext>(device.ports(), device.context().options())) {}

Launch::~Launch() = default;

TBDataManager& Launch::data() {
    return context_->dataManager();
}

TBCoreDataManager& Launch::policy() {
    return context_->coreDataManager();
}

ItemDAO& Launch::dao() {
    return context_->itemDAO();
}

ObjectContext* Launch::store() {
    return data().managedObjectContext().get();
}

Launch& Launch::startup() {
    data().startup();
    return *this;
}

DaoTest::DaoTest() {
    device.context().dataManager().startup();
}

ObjectContext& DaoTest::store() {
    return *device.context().dataManager().managedObjectContext();
}

ItemDAO& DaoTest::dao() {
    return device.context().itemDAO();
}

TBCoreDataManager& DaoTest::saving() {
    return device.context().coreDataManager();
}

std::vector<std::string> DaoTest::savedColumn(const std::string& table,
                                              const std::string& column,
                                              const std::string& where) {
    return queryColumn(storePathOf(device), "SELECT " + column + " FROM " + table + " WHERE " +
                                                where + " ORDER BY rowid");
}

std::vector<std::string> DaoTest::idsWhere(const Predicate& predicate,
                                           const std::vector<SortDescriptor>& sort) {
    auto request = FetchRequest::fetchRequestWithEntityName("Item");
    request.predicate = predicate;
    request.sortDescriptors = sort;
    auto rows = store().fetch<Item>(request);
    EXPECT_TRUE(rows.has_value());
    return rows ? idsOf(*rows) : std::vector<std::string>{};
}

std::vector<std::string> DaoTest::reportedSaveFailures() {
    std::vector<std::string> failures;
    for (const auto& record : device.errors.records) {
        if (record.error.domain == StoreError::kDomain) {
            const auto method = record.additionalInfo.find("Method");
            failures.push_back(std::to_string(record.error.code) + " " +
                               (method == record.additionalInfo.end() ? "-" : method->second));
        }
    }
    return failures;
}

std::vector<std::string> queryColumn(const std::string& path, const std::string& sql) {
    SqliteError error;
    auto database = SqliteDatabase::open(path, &error);
    EXPECT_TRUE(database) << error.message;
    if (!database) {
        return {};
    }
    auto statement = database->prepare(sql, &error);
    EXPECT_TRUE(statement) << error.message;
    std::vector<std::string> rows;
    while (statement && statement->step(&error) == SqliteStatement::Step::row) {
        rows.push_back(statement->columnIsNull(0) ? "NULL" : std::string(statement->columnText(0)));
    }
    return rows;
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

ItemPtr downloadedSong(const std::string& id, bool completed, double downloadDate) {
    auto item = song(id, "Title " + id, "Artist " + id);
    item->downloaded = true;
    item->downloadCompleted = completed;
    item->downloadDate = downloadDate;
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
    // The newest app's store: the device's own, or a later launch's.
    auto& context = *TBDataManager::sharedManager().managedObjectContext();
    auto row = context.insertNewObject<Item>();
    EntityDescription::copyAttributes(*item, *row, true);
    context.save();
    return row;
}

std::vector<std::string> idsOf(const std::vector<ItemPtr>& items) {
    std::vector<std::string> ids;
    for (const auto& item : items) {
        ids.push_back(item && item->itemID ? *item->itemID : "<nil>");
    }
    return ids;
}

void writeBytes(const std::string& path, std::size_t size, char fill) {
    std::ofstream(path, std::ios::binary) << std::string(size, fill);
}

}  // namespace tb::test
