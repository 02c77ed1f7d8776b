#include "model/store/ContextEntities.h"

#include "model/store/EntityDescription.h"
#include "model/store/FieldOps.h"
#include "model/store/ManagedObjectModel.h"
#include "model/store/PredicateCompiler.h"
#include "platform/Fatal.h"

namespace tb {

ContextEntities::ContextEntities(const ManagedObjectModel& model) {
    for (const EntityDescription* entity : model.entities()) {
        auto entry = std::make_unique<Entry>();
        entry->index = entries_.size();
        entry->entity = entity;
        entry->table = PredicateCompiler::quoteIdentifier(entity->name());
        for (const AttributeDescription& attribute : entity->attributes()) {
            entry->defaultHashes.push_back(
                FieldOps::hash(attribute, attribute.field(entity->prototype())));
        }
        entries_.push_back(std::move(entry));
    }
}

ContextEntities::~ContextEntities() = default;

ContextEntities::Entry* ContextEntities::named(std::string_view name) {
    for (auto& entry : entries_) {
        if (entry->entity->name() == name) {
            return entry.get();
        }
    }
    return nullptr;
}

ContextEntities::Entry& ContextEntities::of(const EntityDescription& entity) {
    for (auto& entry : entries_) {
        if (entry->entity == &entity) {
            return *entry;
        }
    }
    TB_FATAL("The entity " + entity.name() + " is not in the store's model");
}

ContextEntities::Entry& ContextEntities::of(const ManagedObject& record) {
    return of(record.entity());
}

}  // namespace tb
