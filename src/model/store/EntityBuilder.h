#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "model/store/EntityDescription.h"
#include "model/store/FieldAccess.h"

namespace tb {

// Builds the attribute table of the record type T from pointers to its members:
//
//     EntityBuilder<CachedItem> entity("CachedItem");
//     entity.attribute("itemID", &CachedItem::itemID).indexed();
//     entity.attribute("lastUsed", &CachedItem::lastUsed, AttributeType::date);
//     return std::move(entity).build();
//
// The type follows from the member's C++ type; a double can be declared a date instead.
template <class T>
class EntityBuilder {
  public:
    explicit EntityBuilder(std::string name)
        : entity_(std::move(name), &EntityBuilder::make, &EntityBuilder::makeShared) {}

    template <class C, class M>
    EntityBuilder& attribute(std::string name, M C::*member) {
        return attribute(std::move(name), member, defaultType(FieldTraits<M>::kind));
    }

    template <class C, class M>
    EntityBuilder& attribute(std::string name, M C::*member, AttributeType type) {
        static_assert(std::is_base_of_v<C, T>, "the member must belong to the record type");
        last_ = &entity_.addAttribute(AttributeDescription(
            std::move(name), type, FieldTraits<M>::kind,
            std::make_unique<MemberLocator<T, C, M>>(member), RecordListFor<M>::make()));
        return *this;
    }

    // Marks the attribute added last as indexed.
    EntityBuilder& indexed() {
        last_->setIndexed(true);
        return *this;
    }

    // Marks the named attribute as indexed.
    EntityBuilder& indexed(std::string_view name) {
        entity_.indexAttribute(name);
        return *this;
    }

    EntityDescription build() && {
        entity_.finish();
        return std::move(entity_);
    }

  private:
    static std::unique_ptr<ManagedObject> make() { return std::make_unique<T>(); }
    static std::shared_ptr<ManagedObject> makeShared() { return std::make_shared<T>(); }

    static AttributeType defaultType(FieldKind kind) {
        switch (kind) {
            case FieldKind::optionalString:
            case FieldKind::string:
                return AttributeType::string;
            case FieldKind::boolean:
            case FieldKind::optionalBoolean:
                return AttributeType::boolean;
            case FieldKind::integer:
            case FieldKind::optionalInteger:
                return AttributeType::integer64;
            case FieldKind::real:
            case FieldKind::optionalReal:
                return AttributeType::doubleValue;
            case FieldKind::optionalData:
                return AttributeType::data;
            case FieldKind::optionalIntegerArray:
                return AttributeType::integerArray;
            case FieldKind::recordArray:
                return AttributeType::recordArray;
        }
        return AttributeType::string;
    }

    EntityDescription entity_;
    AttributeDescription* last_ = nullptr;
};

}  // namespace tb
