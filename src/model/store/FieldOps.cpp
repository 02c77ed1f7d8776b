#include "model/store/FieldOps.h"

#include <bit>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "model/store/AttributeDescription.h"
#include "model/store/EntityDescription.h"
#include "model/store/IntegerArrayText.h"
#include "model/store/ManagedObject.h"
#include "model/store/PredicateArgument.h"
#include "model/store/RecordJson.h"
#include "model/store/SqliteStatement.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

using OptionalString = std::optional<std::string>;
using OptionalBool = std::optional<bool>;
using OptionalInt = std::optional<std::int64_t>;
using OptionalReal = std::optional<double>;
using OptionalData = std::optional<Data>;
using OptionalInts = std::optional<std::vector<std::int64_t>>;

constexpr std::uint64_t kNilHash = 0x6A09E667F3BCC908ull;

template <class T>
T& as(void* field) {
    return *static_cast<T*>(field);
}

template <class T>
const T& as(const void* field) {
    return *static_cast<const T*>(field);
}

// Every step of the hashing is one-to-one in the value it adds (an odd multiplier, a
// rotation, an xor), so changing any one field always changes the record's hash; only
// text is hashed many-to-one, at 64 bits.
constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;

std::uint64_t hashBytes(std::string_view bytes) {
    return std::hash<std::string_view>{}(bytes);
}

std::uint64_t hashInt(std::int64_t value) {
    return static_cast<std::uint64_t>(value) * 0xD6E8FEB86659FD93ull + 0x3C6EF372FE94F82Bull;
}

std::uint64_t hashReal(double value) {
    return std::bit_cast<std::uint64_t>(value) * 0xBF58476D1CE4E5B9ull + 0xA54FF53A5F1D36F1ull;
}

std::uint64_t hashInts(const std::vector<std::int64_t>& values) {
    std::uint64_t seed = 0x510E527FADE682D1ull;
    for (std::int64_t value : values) {
        seed = FieldOps::combine(seed, hashInt(value));
    }
    return FieldOps::combine(seed, values.size());
}

std::string quoted(const std::string& text) {
    return PredicateArgument::literal(text, PredicateArgument::Style::sql);
}

std::string realLiteral(double value) {
    return PredicateArgument::literal(value, PredicateArgument::Style::sql);
}

}  // namespace

void FieldOps::read(const AttributeDescription& attribute,
                    void* field,
                    const SqliteStatement& statement,
                    int column) {
    // Plain numbers read NULL as 0 without asking; text comes with its NULL in one call.
    switch (attribute.kind()) {
        case FieldKind::optionalString: {
            auto& value = as<OptionalString>(field);
            auto text = statement.columnTextIfNotNull(column);
            if (!text) {
                value.reset();
            } else if (value) {
                value->assign(*text);
            } else {
                value.emplace(*text);
            }
            return;
        }
        case FieldKind::string:
            as<std::string>(field).assign(statement.columnText(column));
            return;
        case FieldKind::boolean:
            as<bool>(field) = statement.columnInt64(column) != 0;
            return;
        case FieldKind::integer:
            as<std::int64_t>(field) = statement.columnInt64(column);
            return;
        case FieldKind::real:
            as<double>(field) = statement.columnDouble(column);
            return;
        default:
            break;
    }
    bool null = statement.columnIsNull(column);
    switch (attribute.kind()) {
        case FieldKind::optionalBoolean:
            as<OptionalBool>(field) =
                null ? OptionalBool() : OptionalBool(statement.columnInt64(column) != 0);
            return;
        case FieldKind::optionalInteger:
            as<OptionalInt>(field) =
                null ? OptionalInt() : OptionalInt(statement.columnInt64(column));
            return;
        case FieldKind::optionalReal:
            as<OptionalReal>(field) =
                null ? OptionalReal() : OptionalReal(statement.columnDouble(column));
            return;
        case FieldKind::optionalData: {
            auto& value = as<OptionalData>(field);
            if (null) {
                value.reset();
            } else {
                value.emplace();
                value->bytes.assign(statement.columnBlob(column));
            }
            return;
        }
        case FieldKind::optionalIntegerArray:
            as<OptionalInts>(field) =
                null ? OptionalInts() : IntegerArrayText::decode(statement.columnText(column));
            return;
        case FieldKind::recordArray: {
            const RecordListAccess& list = *attribute.recordList();
            list.clear(field);
            if (!null) {
                RecordJson::decode(statement.columnText(column), list, field);
            }
            return;
        }
        case FieldKind::optionalString:
        case FieldKind::string:
        case FieldKind::boolean:
        case FieldKind::integer:
        case FieldKind::real:
            return;  // read above
    }
}

void FieldOps::bind(const AttributeDescription& attribute,
                    const void* field,
                    SqliteStatement& statement,
                    int index) {
    switch (attribute.kind()) {
        case FieldKind::optionalString: {
            const auto& value = as<OptionalString>(field);
            value ? statement.bindTextNoCopy(index, *value) : statement.bindNull(index);
            return;
        }
        case FieldKind::string:
            statement.bindTextNoCopy(index, as<std::string>(field));
            return;
        case FieldKind::boolean:
            statement.bindInt64(index, as<bool>(field) ? 1 : 0);
            return;
        case FieldKind::optionalBoolean: {
            const auto& value = as<OptionalBool>(field);
            value ? statement.bindInt64(index, *value ? 1 : 0) : statement.bindNull(index);
            return;
        }
        case FieldKind::integer:
            statement.bindInt64(index, as<std::int64_t>(field));
            return;
        case FieldKind::optionalInteger: {
            const auto& value = as<OptionalInt>(field);
            value ? statement.bindInt64(index, *value) : statement.bindNull(index);
            return;
        }
        case FieldKind::real:
            statement.bindDouble(index, as<double>(field));
            return;
        case FieldKind::optionalReal: {
            const auto& value = as<OptionalReal>(field);
            value ? statement.bindDouble(index, *value) : statement.bindNull(index);
            return;
        }
        case FieldKind::optionalData: {
            const auto& value = as<OptionalData>(field);
            value ? statement.bindBlobNoCopy(index, value->bytes) : statement.bindNull(index);
            return;
        }
        case FieldKind::optionalIntegerArray: {
            const auto& value = as<OptionalInts>(field);
            value ? statement.bindText(index, IntegerArrayText::encode(*value))
                  : statement.bindNull(index);
            return;
        }
        case FieldKind::recordArray: {
            const RecordListAccess& list = *attribute.recordList();
            if (list.size(field) == 0) {
                statement.bindNull(index);
            } else {
                statement.bindText(index, RecordJson::encode(list, field));
            }
            return;
        }
    }
}

std::uint64_t FieldOps::hash(const AttributeDescription& attribute, const void* field) {
    switch (attribute.kind()) {
        case FieldKind::optionalString: {
            const auto& value = as<OptionalString>(field);
            return value ? hashBytes(*value) : kNilHash;
        }
        case FieldKind::string:
            return hashBytes(as<std::string>(field));
        case FieldKind::boolean:
            return hashInt(as<bool>(field) ? 1 : 0);
        case FieldKind::optionalBoolean: {
            const auto& value = as<OptionalBool>(field);
            return value ? hashInt(*value ? 1 : 0) : kNilHash;
        }
        case FieldKind::integer:
            return hashInt(as<std::int64_t>(field));
        case FieldKind::optionalInteger: {
            const auto& value = as<OptionalInt>(field);
            return value ? hashInt(*value) : kNilHash;
        }
        case FieldKind::real:
            return hashReal(as<double>(field));
        case FieldKind::optionalReal: {
            const auto& value = as<OptionalReal>(field);
            return value ? hashReal(*value) : kNilHash;
        }
        case FieldKind::optionalData: {
            const auto& value = as<OptionalData>(field);
            return value ? hashBytes(value->bytes) ^ 0x1F83D9ABFB41BD6Bull : kNilHash;
        }
        case FieldKind::optionalIntegerArray: {
            const auto& value = as<OptionalInts>(field);
            return value ? hashInts(*value) : kNilHash;
        }
        case FieldKind::recordArray: {
            const RecordListAccess& list = *attribute.recordList();
            std::size_t size = list.size(field);
            if (size == 0) {
                return kNilHash;
            }
            std::uint64_t seed = 0x5BE0CD19137E2179ull;
            for (std::size_t i = 0; i < size; ++i) {
                const ManagedObject* element = list.at(field, i);
                seed = combine(seed, element ? hashRecord(*element) : kNilHash);
            }
            return combine(seed, size);
        }
    }
    return kNilHash;
}

std::uint64_t FieldOps::combine(std::uint64_t seed, std::uint64_t fieldHash) {
    // The rotation makes the order count: the same values in other attributes hash apart.
    return (std::rotl(seed, 23) ^ fieldHash) * kMultiplier;
}

std::uint64_t FieldOps::hashRecord(const ManagedObject& record) {
    std::uint64_t seed = kRecordSeed;
    for (const AttributeDescription& attribute : record.entity().attributes()) {
        seed = combine(seed, hash(attribute, attribute.field(record)));
    }
    return seed;
}

bool FieldOps::isNil(const AttributeDescription& attribute, const void* field) {
    switch (attribute.kind()) {
        case FieldKind::optionalString:
            return !as<OptionalString>(field).has_value();
        case FieldKind::optionalBoolean:
            return !as<OptionalBool>(field).has_value();
        case FieldKind::optionalInteger:
            return !as<OptionalInt>(field).has_value();
        case FieldKind::optionalReal:
            return !as<OptionalReal>(field).has_value();
        case FieldKind::optionalData:
            return !as<OptionalData>(field).has_value();
        case FieldKind::optionalIntegerArray:
            return !as<OptionalInts>(field).has_value();
        case FieldKind::recordArray:
            return attribute.recordList()->size(field) == 0;
        case FieldKind::string:
        case FieldKind::boolean:
        case FieldKind::integer:
        case FieldKind::real:
            return false;
    }
    return false;
}

namespace {

// The plain kind of an optional kind, or the kind itself.
FieldKind plainKind(FieldKind kind) {
    switch (kind) {
        case FieldKind::optionalString:
            return FieldKind::string;
        case FieldKind::optionalBoolean:
            return FieldKind::boolean;
        case FieldKind::optionalInteger:
            return FieldKind::integer;
        case FieldKind::optionalReal:
            return FieldKind::real;
        default:
            return kind;
    }
}

// Copies between a field and its optional counterpart: nil becomes the plain default.
template <class T>
void copyOptionalOrPlain(FieldKind fromKind, const void* from, FieldKind toKind, void* to) {
    std::optional<T> value;
    if (fromKind == plainKind(fromKind)) {
        value = as<T>(from);
    } else {
        value = as<std::optional<T>>(from);
    }
    if (toKind == plainKind(toKind)) {
        as<T>(to) = value.value_or(T{});
    } else {
        as<std::optional<T>>(to) = std::move(value);
    }
}

}  // namespace

bool FieldOps::compatible(FieldKind from, FieldKind to) {
    return from == to || plainKind(from) == plainKind(to);
}

void FieldOps::copy(const AttributeDescription& fromAttribute,
                    const void* from,
                    const AttributeDescription& toAttribute,
                    void* to) {
    FieldKind fromKind = fromAttribute.kind();
    FieldKind toKind = toAttribute.kind();
    if (fromKind == FieldKind::recordArray && toKind == FieldKind::recordArray) {
        const RecordListAccess& source = *fromAttribute.recordList();
        const RecordListAccess& target = *toAttribute.recordList();
        if (&source.elementEntity() == &target.elementEntity()) {
            target.assign(to, from);
            return;
        }
        // Different element types: copy each element by name into a new element record.
        target.clear(to);
        for (std::size_t i = 0; i < source.size(from); ++i) {
            const ManagedObject* element = source.at(from, i);
            if (!element) {
                continue;
            }
            auto copy = target.elementEntity().newDetachedRecord();
            EntityDescription::copyAttributes(*element, *copy);
            target.append(to, std::move(copy));
        }
        return;
    }
    switch (plainKind(toKind)) {
        case FieldKind::string:
            copyOptionalOrPlain<std::string>(fromKind, from, toKind, to);
            return;
        case FieldKind::boolean:
            copyOptionalOrPlain<bool>(fromKind, from, toKind, to);
            return;
        case FieldKind::integer:
            copyOptionalOrPlain<std::int64_t>(fromKind, from, toKind, to);
            return;
        case FieldKind::real:
            copyOptionalOrPlain<double>(fromKind, from, toKind, to);
            return;
        case FieldKind::optionalData:
            as<OptionalData>(to) = as<OptionalData>(from);
            return;
        case FieldKind::optionalIntegerArray:
            as<OptionalInts>(to) = as<OptionalInts>(from);
            return;
        default:
            TB_FATAL("copyAttributes: no copy from " +
                     std::string(attributeTypeName(fromAttribute.type())) + " to " +
                     std::string(attributeTypeName(toAttribute.type())) + " for '" +
                     toAttribute.name() + "'");
    }
}

std::string FieldOps::sqlLiteral(const AttributeDescription& attribute, const void* field) {
    if (isNil(attribute, field)) {
        return "NULL";
    }
    switch (attribute.kind()) {
        case FieldKind::optionalString:
            return quoted(*as<OptionalString>(field));
        case FieldKind::string:
            return quoted(as<std::string>(field));
        case FieldKind::boolean:
            return as<bool>(field) ? "1" : "0";
        case FieldKind::optionalBoolean:
            return *as<OptionalBool>(field) ? "1" : "0";
        case FieldKind::integer:
            return std::to_string(as<std::int64_t>(field));
        case FieldKind::optionalInteger:
            return std::to_string(*as<OptionalInt>(field));
        case FieldKind::real:
            return realLiteral(as<double>(field));
        case FieldKind::optionalReal:
            return realLiteral(*as<OptionalReal>(field));
        case FieldKind::optionalData: {
            constexpr char hex[] = "0123456789ABCDEF";
            std::string literal = "X'";
            for (unsigned char c : as<OptionalData>(field)->bytes) {
                literal += hex[c >> 4];
                literal += hex[c & 15];
            }
            return literal + "'";
        }
        case FieldKind::optionalIntegerArray:
            return quoted(IntegerArrayText::encode(*as<OptionalInts>(field)));
        case FieldKind::recordArray:
            return quoted(RecordJson::encode(*attribute.recordList(), field));
    }
    return "NULL";
}

}  // namespace tb
