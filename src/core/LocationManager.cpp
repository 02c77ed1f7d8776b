#include "core/LocationManager.h"

#include "app/AppContext.h"

namespace tb {

LocationManager& LocationManager::shared() {
    return AppContext::current().singleton<LocationManager>();
}

}  // namespace tb
