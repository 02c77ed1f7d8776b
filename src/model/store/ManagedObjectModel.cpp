#include "model/store/ManagedObjectModel.h"

#include <utility>

#include "model/store/EntityDescription.h"
#include "platform/Fatal.h"

namespace tb {

ManagedObjectModel::ManagedObjectModel(std::vector<const EntityDescription*> entities)
    : entities_(std::move(entities)) {
    for (std::size_t i = 0; i < entities_.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (entities_[i]->name() == entities_[j]->name()) {
                TB_FATAL("The model holds two entities named " + entities_[i]->name());
            }
        }
    }
}

const EntityDescription* ManagedObjectModel::entityNamed(std::string_view name) const {
    for (const EntityDescription* entity : entities_) {
        if (entity->name() == name) {
            return entity;
        }
    }
    return nullptr;
}

}  // namespace tb
