#include "model/store/AttributeDescription.h"

#include <utility>

namespace tb {

AttributeDescription::AttributeDescription(std::string name,
                                           AttributeType type,
                                           FieldKind kind,
                                           std::unique_ptr<FieldLocator> locator,
                                           std::unique_ptr<RecordListAccess> recordList)
    : name_(std::move(name)),
      type_(type),
      kind_(kind),
      locator_(std::move(locator)),
      recordList_(std::move(recordList)) {}

}  // namespace tb
