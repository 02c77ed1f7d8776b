#include "model/store/AttributeType.h"

namespace tb {

std::string_view attributeTypeName(AttributeType type) {
    switch (type) {
        case AttributeType::string:
            return "String";
        case AttributeType::boolean:
            return "Bool";
        case AttributeType::integer64:
            return "Int64";
        case AttributeType::doubleValue:
            return "Double";
        case AttributeType::date:
            return "Date";
        case AttributeType::data:
            return "Data";
        case AttributeType::integerArray:
            return "IntegerArray";
        case AttributeType::recordArray:
            return "RecordArray";
    }
    return "Unknown";
}

}  // namespace tb
