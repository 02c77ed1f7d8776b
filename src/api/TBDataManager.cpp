#include "api/TBDataManager.h"

#include "app/AppContext.h"
#include "model/store/ManagedObjectModel.h"
#include "model/store/ObjectContext.h"
#include "model/store/PersistentStoreCoordinator.h"

namespace tb {

// The construction of the whole class. The store half builds nothing here: its objects are
// made on first use (startup). The catalogue half sets up its own members here.
TBDataManager::TBDataManager(AppContext& context) : context_(context) {}

TBDataManager::~TBDataManager() = default;

TBDataManager& TBDataManager::sharedManager() {
    return AppContext::current().singleton<TBDataManager>();
}

}  // namespace tb
