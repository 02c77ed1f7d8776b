#pragma once

#include <cstdint>
#include <string_view>

namespace tb {

// The type of a stored attribute, which decides its column. The two array kinds are kept
// transformed: `integerArray` (waveform samples) as a JSON array of integers, `recordArray`
// (album tracks, playlist items) as a JSON array of the records' attributes by name.
enum class AttributeType : std::uint8_t {
    string,
    boolean,
    integer64,
    doubleValue,
    date,  // seconds since 1970
    data,
    integerArray,
    recordArray,
};

// "String", "Bool", "Int64", "Double", "Date", "Data", "IntegerArray", "RecordArray".
std::string_view attributeTypeName(AttributeType type);

}  // namespace tb
