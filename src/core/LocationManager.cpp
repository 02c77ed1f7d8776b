#include "core/LocationManager.h"

#include "platform/SharedInstance.h"

namespace tb {

LocationManager& LocationManager::shared() {
    return SharedInstance<LocationManager>::get();
}

}  // namespace tb
