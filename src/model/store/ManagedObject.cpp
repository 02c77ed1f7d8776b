#include "model/store/ManagedObject.h"

#include "model/store/ObjectContext.h"

namespace tb {

ManagedObject::~ManagedObject() = default;

void ManagedObject::didChange() {
    if (context_) {
        context_->objectDidChange(*this);
    }
}

}  // namespace tb
