// The saved artist: the listener's own account, kept in the store between runs.

#include <memory>

#include "api/TBDataManager.h"
#include "model/Artist.h"
#include "model/TBCoreDataManager.h"
#include "model/store/EntityDescription.h"
#include "model/store/ObjectContext.h"

namespace tb {

namespace {

ObjectContext* store() {
    return TBDataManager::sharedManager().managedObjectContext().get();
}

std::vector<ArtistPtr> savedRows(ObjectContext& context) {
    return context.fetch<Artist>(FetchRequest::fetchRequestWithEntityName("Artist"))
        .value_or(std::vector<ArtistPtr>());
}

}  // namespace

ArtistPtr Artist::newObject() {
    ObjectContext* context = store();
    return context ? context->insertNewObject<Artist>() : nullptr;
}

ArtistPtr Artist::savedArtist() {
    ObjectContext* context = store();
    if (!context) {
        return nullptr;
    }
    auto request = FetchRequest::fetchRequestWithEntityName("Artist");
    request.fetchLimit = 1;
    const auto rows = context->fetch<Artist>(request);
    return rows && !rows->empty() ? rows->front() : nullptr;
}

void Artist::cacheObject() {
    ObjectContext* context = store();
    if (!context) {
        return;
    }
    for (const auto& row : savedRows(*context)) {
        if (row.get() != this) {
            context->deleteObject(row);
        }
    }
    if (!isManaged()) {
        EntityDescription::copyAttributes(*this, *context->insertNewObject<Artist>());
    }
    TBCoreDataManager::sharedManager().save(nullptr);
}

void Artist::removeAll() {
    ObjectContext* context = store();
    if (!context) {
        return;
    }
    for (const auto& row : savedRows(*context)) {
        context->deleteObject(row);
    }
    TBCoreDataManager::sharedManager().save(nullptr);
}

}  // namespace tb
