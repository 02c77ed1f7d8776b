#pragma once

#include <cstdint>
#include <string>

namespace tb {

class AttributeDescription;
class ManagedObject;
class SqliteStatement;
enum class FieldKind : std::uint8_t;

// What the store does to one attribute's field, by the field's kind: read it from a column,
// bind it to a parameter, hash it, copy it. Used by the context, the schema and the
// by-name copy; no per-attribute code exists anywhere.
class FieldOps {
  public:
    // Sets the field from the column; NULL gives nil, or the C++ default for plain fields.
    static void read(const AttributeDescription& attribute,
                     void* field,
                     const SqliteStatement& statement,
                     int column);
    // Binds the field's value. Text and bytes are bound without a copy: the record must stay
    // unchanged until the statement is reset.
    static void bind(const AttributeDescription& attribute,
                     const void* field,
                     SqliteStatement& statement,
                     int index);

    // A 64-bit hash of the value: equal values hash equal, nil and empty differ.
    static std::uint64_t hash(const AttributeDescription& attribute, const void* field);
    // Folds the field hashes of a record, in attribute order, into one.
    static std::uint64_t combine(std::uint64_t seed, std::uint64_t fieldHash);
    static constexpr std::uint64_t kRecordSeed = 0x243F6A8885A308D3ull;
    // The hash of every attribute of the record, folded.
    static std::uint64_t hashRecord(const ManagedObject& record);

    static bool isNil(const AttributeDescription& attribute, const void* field);
    // True when a value of kind `from` can be copied into a field of kind `to`.
    static bool compatible(FieldKind from, FieldKind to);
    static void copy(const AttributeDescription& fromAttribute,
                     const void* from,
                     const AttributeDescription& toAttribute,
                     void* to);

    // The value as an SQL literal (for DEFAULT clauses).
    static std::string sqlLiteral(const AttributeDescription& attribute, const void* field);
};

}  // namespace tb
