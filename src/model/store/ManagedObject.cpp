#include "model/store/ManagedObject.h"

namespace tb {

ManagedObject::~ManagedObject() = default;

}  // namespace tb
