#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/store/AttributeDescription.h"
#include "model/store/ManagedObject.h"

namespace tb {

// An entity of the store: its name (also its table), its attribute table, and the factory
// of its records. Made once per entity by an EntityBuilder and never changed after.
class EntityDescription {
  public:
    using Factory = std::unique_ptr<ManagedObject> (*)();
    using SharedFactory = std::shared_ptr<ManagedObject> (*)();

    EntityDescription(std::string name, Factory factory, SharedFactory sharedFactory);
    ~EntityDescription();
    EntityDescription(EntityDescription&&) noexcept;
    EntityDescription& operator=(EntityDescription&&) noexcept;

    const std::string& name() const { return name_; }
    const std::vector<AttributeDescription>& attributes() const { return attributes_; }
    // Null (or -1) when the entity has no attribute of that name.
    const AttributeDescription* attributeNamed(std::string_view name) const;
    int indexOfAttribute(std::string_view name) const;

    // A new record of this entity, attached to nothing.
    std::unique_ptr<ManagedObject> makeRecord() const { return factory_(); }
    std::shared_ptr<ManagedObject> newDetachedRecord() const { return sharedFactory_(); }
    // A record with every attribute at its default.
    const ManagedObject& prototype() const { return *prototype_; }

    // Copies every attribute of `to`'s entity that `from`'s entity has under the same name.
    // With `skipNil`, a nil value (an empty optional, an empty record array) is not copied,
    // so the target keeps what it had. Works across entities (Item to its bookmark mirror
    // and back); two attributes of one name but unrelated types are a fault of the model.
    static void copyAttributes(const ManagedObject& from, ManagedObject& to, bool skipNil = false);

    // Used by EntityBuilder while the entity is made.
    AttributeDescription& addAttribute(AttributeDescription attribute);
    void indexAttribute(std::string_view name);
    void finish();

  private:
    struct CopyPlans;
    const std::vector<std::pair<int, int>>& copyPlanFrom(const EntityDescription& source) const;

    std::string name_;
    Factory factory_;
    SharedFactory sharedFactory_;
    std::vector<AttributeDescription> attributes_;
    std::vector<std::pair<std::string_view, int>> sortedNames_;
    std::unique_ptr<ManagedObject> prototype_;
    std::unique_ptr<CopyPlans> copyPlans_;
};

}  // namespace tb
