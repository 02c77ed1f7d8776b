#pragma once

#include <string_view>
#include <vector>

namespace tb {

class EntityDescription;

// The set of entities a store holds, found by name. The entity descriptions are static
// tables owned by their record types.
class ManagedObjectModel {
  public:
    ManagedObjectModel() = default;
    explicit ManagedObjectModel(std::vector<const EntityDescription*> entities);

    const std::vector<const EntityDescription*>& entities() const { return entities_; }
    // Null when the model has no entity of that name.
    const EntityDescription* entityNamed(std::string_view name) const;

  private:
    std::vector<const EntityDescription*> entities_;
};

}  // namespace tb
