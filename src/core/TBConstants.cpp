#include "core/TBConstants.h"

#include "app/AppContext.h"

namespace tb {

const ::tb::TBLinks& TBConstants::TBLinks() {
    return AppContext::current().singleton<::tb::TBLinks>();
}

}  // namespace tb
