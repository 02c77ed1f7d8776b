#include "api/APIError.h"

namespace tb {

Error APIError::makeGeneric(std::string text) {
    return Error{kDomain, generic, std::move(text), {}};
}

Error APIError::makeUnknown() {
    return Error{kDomain, unknown, {}, {}};
}

}  // namespace tb
