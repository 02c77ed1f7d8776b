#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace tb {

class ManagedObject;
class RecordListAccess;

// The stored form of a record array attribute (album tracks, playlist items): a JSON array
// with one object per record, holding its attributes by name. Values at their defaults are
// left out; bytes are Base64 text.
class RecordJson {
  public:
    static std::string encode(const RecordListAccess& list, const void* field);
    // Every attribute of the record by name, nil ones as null and record arrays in full:
    // what a record holds, for showing it outside the app.
    static nlohmann::json object(const ManagedObject& record);
    // Appends the records read from `text` to the field. Malformed text adds nothing;
    // unknown names and values of the wrong type are skipped.
    static void decode(std::string_view text, const RecordListAccess& list, void* field);
};

}  // namespace tb
