#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tb {

class EntityDescription;
class ManagedObject;
class ManagedObjectModel;

// The entities of the context's model, numbered in model order, with what the context keeps
// of each: its quoted table name and the hashes of its default values.
class ContextEntities {
  public:
    struct Entry {
        std::size_t index = 0;
        const EntityDescription* entity = nullptr;
        std::string table;
        std::vector<std::uint64_t> defaultHashes;
    };

    explicit ContextEntities(const ManagedObjectModel& model);
    ~ContextEntities();

    std::size_t size() const { return entries_.size(); }
    Entry& at(std::size_t index) { return *entries_[index]; }
    // Null when the model has no entity of that name.
    Entry* named(std::string_view name);
    // Stops the process when the entity is not the model's.
    Entry& of(const EntityDescription& entity);
    Entry& of(const ManagedObject& record);

  private:
    std::vector<std::unique_ptr<Entry>> entries_;
};

}  // namespace tb
