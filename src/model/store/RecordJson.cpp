#include "model/store/RecordJson.h"

#include <cstdint>
#include <optional>
#include <vector>

#include <nlohmann/json.hpp>

#include "model/store/AttributeDescription.h"
#include "model/store/EntityDescription.h"
#include "model/store/FieldOps.h"
#include "model/store/ManagedObject.h"
#include "platform/Base64.h"
#include "platform/JsonLimits.h"

namespace tb {

namespace {

using json = nlohmann::json;

json encodeRecord(const ManagedObject& record, bool withDefaults);

json encodeList(const RecordListAccess& list, const void* field, bool withDefaults) {
    json array = json::array();
    for (std::size_t i = 0; i < list.size(field); ++i) {
        const ManagedObject* element = list.at(field, i);
        if (element) {
            array.push_back(encodeRecord(*element, withDefaults));
        }
    }
    return array;
}

bool isDefault(const AttributeDescription& attribute,
               const void* field,
               const ManagedObject& record) {
    return FieldOps::hash(attribute, field) ==
           FieldOps::hash(attribute, attribute.field(record.entity().prototype()));
}

json encodeRecord(const ManagedObject& record, bool withDefaults) {
    json object = json::object();
    for (const AttributeDescription& attribute : record.entity().attributes()) {
        const void* field = attribute.field(record);
        if (!withDefaults &&
            (FieldOps::isNil(attribute, field) || isDefault(attribute, field, record))) {
            continue;
        }
        json& value = object[attribute.name()];
        if (FieldOps::isNil(attribute, field) && attribute.kind() != FieldKind::recordArray) {
            continue;  // stays null
        }
        switch (attribute.kind()) {
            case FieldKind::optionalString:
                value = **static_cast<const std::optional<std::string>*>(field);
                break;
            case FieldKind::string:
                value = *static_cast<const std::string*>(field);
                break;
            case FieldKind::boolean:
                value = *static_cast<const bool*>(field);
                break;
            case FieldKind::optionalBoolean:
                value = **static_cast<const std::optional<bool>*>(field);
                break;
            case FieldKind::integer:
                value = *static_cast<const std::int64_t*>(field);
                break;
            case FieldKind::optionalInteger:
                value = **static_cast<const std::optional<std::int64_t>*>(field);
                break;
            case FieldKind::real:
                value = *static_cast<const double*>(field);
                break;
            case FieldKind::optionalReal:
                value = **static_cast<const std::optional<double>*>(field);
                break;
            case FieldKind::optionalData:
                value = base64Encode(static_cast<const std::optional<Data>*>(field)->value().bytes);
                break;
            case FieldKind::optionalIntegerArray:
                value = **static_cast<const std::optional<std::vector<std::int64_t>>*>(field);
                break;
            case FieldKind::recordArray:
                value = encodeList(*attribute.recordList(), field, withDefaults);
                break;
        }
    }
    return object;
}

void decodeList(const json& array, const RecordListAccess& list, void* field);

void decodeValue(const AttributeDescription& attribute, void* field, const json& value) {
    switch (attribute.kind()) {
        case FieldKind::optionalString:
            if (value.is_string()) {
                *static_cast<std::optional<std::string>*>(field) = value.get<std::string>();
            }
            return;
        case FieldKind::string:
            if (value.is_string()) {
                *static_cast<std::string*>(field) = value.get<std::string>();
            }
            return;
        case FieldKind::boolean:
            if (value.is_boolean()) {
                *static_cast<bool*>(field) = value.get<bool>();
            }
            return;
        case FieldKind::optionalBoolean:
            if (value.is_boolean()) {
                *static_cast<std::optional<bool>*>(field) = value.get<bool>();
            }
            return;
        case FieldKind::integer:
            if (value.is_number_integer()) {
                *static_cast<std::int64_t*>(field) = value.get<std::int64_t>();
            }
            return;
        case FieldKind::optionalInteger:
            if (value.is_number_integer()) {
                *static_cast<std::optional<std::int64_t>*>(field) = value.get<std::int64_t>();
            }
            return;
        case FieldKind::real:
            if (value.is_number()) {
                *static_cast<double*>(field) = value.get<double>();
            }
            return;
        case FieldKind::optionalReal:
            if (value.is_number()) {
                *static_cast<std::optional<double>*>(field) = value.get<double>();
            }
            return;
        case FieldKind::optionalData:
            if (value.is_string()) {
                if (auto bytes = base64Decode(value.get<std::string>())) {
                    *static_cast<std::optional<Data>*>(field) = Data{std::move(*bytes)};
                }
            }
            return;
        case FieldKind::optionalIntegerArray:
            if (value.is_array()) {
                std::vector<std::int64_t> values;
                for (const json& element : value) {
                    if (!element.is_number_integer()) {
                        return;
                    }
                    values.push_back(element.get<std::int64_t>());
                }
                *static_cast<std::optional<std::vector<std::int64_t>>*>(field) = std::move(values);
            }
            return;
        case FieldKind::recordArray:
            if (value.is_array()) {
                attribute.recordList()->clear(field);
                decodeList(value, *attribute.recordList(), field);
            }
            return;
    }
}

void decodeList(const json& array, const RecordListAccess& list, void* field) {
    const EntityDescription& entity = list.elementEntity();
    for (const json& object : array) {
        if (!object.is_object()) {
            continue;
        }
        auto record = entity.newDetachedRecord();
        for (auto it = object.begin(); it != object.end(); ++it) {
            if (const AttributeDescription* attribute = entity.attributeNamed(it.key())) {
                decodeValue(*attribute, attribute->field(*record), it.value());
            }
        }
        list.append(field, std::move(record));
    }
}

}  // namespace

std::string RecordJson::encode(const RecordListAccess& list, const void* field) {
    return encodeList(list, field, false).dump(-1, ' ', false, json::error_handler_t::replace);
}

nlohmann::json RecordJson::object(const ManagedObject& record) {
    return encodeRecord(record, true);
}

void RecordJson::decode(std::string_view text, const RecordListAccess& list, void* field) {
    if (!jsonNestingWithin(text)) {
        return;
    }
    json array = json::parse(text, nullptr, false);
    if (!array.is_array()) {
        return;
    }
    decodeList(array, list, field);
}

}  // namespace tb
