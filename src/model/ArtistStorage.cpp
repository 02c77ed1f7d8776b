// The saved artist: the listener's own account, kept in the store between runs.

#include <memory>

#include "model/Artist.h"
#include "model/TBCoreDataManager.h"
#include "model/store/EntityDescription.h"
#include "model/store/ObjectContext.h"

namespace tb {

namespace {

std::vector<ArtistPtr> savedRows(ObjectContext& context) {
    return context.fetch<Artist>(FetchRequest::fetchRequestWithEntityName("Artist"))
        .value_or(std::vector<ArtistPtr>());
}

}  // namespace

ArtistPtr Artist::newObject(TBCoreDataManager& store) {
    ObjectContext* context = store.context();
    return context ? context->insertNewObject<Artist>() : nullptr;
}

ArtistPtr Artist::savedArtist(TBCoreDataManager& store) {
    ObjectContext* context = store.context();
    if (!context) {
        return nullptr;
    }
    auto request = FetchRequest::fetchRequestWithEntityName("Artist");
    request.fetchLimit = 1;
    const auto rows = context->fetch<Artist>(request);
    return rows && !rows->empty() ? rows->front() : nullptr;
}

void Artist::cacheObject(TBCoreDataManager& store) {
    ObjectContext* context = store.context();
    if (!context) {
        return;
    }
    for (const auto& row : savedRows(*context)) {
        if (row.get() != this) {
            context->deleteObject(row);
        }
    }
    if (isManaged()) {
        didChange();  // the saved artist itself, with whatever was set on it
    } else {
        EntityDescription::copyAttributes(*this, *context->insertNewObject<Artist>());
    }
    store.save(nullptr);
}

void Artist::removeAll(TBCoreDataManager& store) {
    ObjectContext* context = store.context();
    if (!context) {
        return;
    }
    for (const auto& row : savedRows(*context)) {
        context->deleteObject(row);
    }
    store.save(nullptr);
}

}  // namespace tb
