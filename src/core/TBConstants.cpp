#include "core/TBConstants.h"

#include "platform/SharedInstance.h"

namespace tb {

const ::tb::TBLinks& TBConstants::TBLinks() {
    return SharedInstance<::tb::TBLinks>::get();
}

}  // namespace tb
