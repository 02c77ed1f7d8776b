#include "model/store/EntityDescription.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>

#include "model/store/FieldOps.h"
#include "model/store/ManagedObject.h"
#include "platform/Fatal.h"

namespace tb {

// Which attribute of a source entity feeds which attribute of this one, per source entity.
// Built on first use; the entities are immutable, so a plan never goes stale.
struct EntityDescription::CopyPlans {
    std::mutex mutex;
    // A deque: a plan handed out stays where it is while others are added.
    std::deque<std::pair<const EntityDescription*, std::vector<std::pair<int, int>>>> plans;
};

EntityDescription::EntityDescription(std::string name, Factory factory, SharedFactory sharedFactory)
    : name_(std::move(name)),
      factory_(factory),
      sharedFactory_(sharedFactory),
      copyPlans_(std::make_unique<CopyPlans>()) {}

EntityDescription::~EntityDescription() = default;
EntityDescription::EntityDescription(EntityDescription&&) noexcept = default;
EntityDescription& EntityDescription::operator=(EntityDescription&&) noexcept = default;

AttributeDescription& EntityDescription::addAttribute(AttributeDescription attribute) {
    if (attributeNamed(attribute.name()) || attribute.name().empty()) {
        TB_FATAL("Entity " + name_ + ": attribute '" + attribute.name() + "' is declared twice");
    }
    bool realField =
        attribute.kind() == FieldKind::real || attribute.kind() == FieldKind::optionalReal;
    if (attribute.type() == AttributeType::date && !realField) {
        TB_FATAL("Entity " + name_ + ": date attribute '" + attribute.name() +
                 "' must be held in a double");
    }
    attributes_.push_back(std::move(attribute));
    sortedNames_.clear();
    return attributes_.back();
}

void EntityDescription::indexAttribute(std::string_view name) {
    int index = indexOfAttribute(name);
    if (index < 0) {
        TB_FATAL("Entity " + name_ + ": no attribute '" + std::string(name) + "' to index");
    }
    attributes_[static_cast<std::size_t>(index)].setIndexed(true);
}

void EntityDescription::finish() {
    sortedNames_.clear();
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        sortedNames_.emplace_back(attributes_[i].name(), static_cast<int>(i));
    }
    std::sort(sortedNames_.begin(), sortedNames_.end());
    prototype_ = factory_();
    for (AttributeDescription& attribute : attributes_) {
        attribute.setDefaultSQL(FieldOps::sqlLiteral(attribute, attribute.field(*prototype_)));
    }
}

int EntityDescription::indexOfAttribute(std::string_view name) const {
    if (sortedNames_.empty()) {
        for (std::size_t i = 0; i < attributes_.size(); ++i) {
            if (attributes_[i].name() == name) {
                return static_cast<int>(i);
            }
        }
        return -1;
    }
    auto it =
        std::lower_bound(sortedNames_.begin(), sortedNames_.end(), name,
                         [](const auto& entry, std::string_view key) { return entry.first < key; });
    return it != sortedNames_.end() && it->first == name ? it->second : -1;
}

const AttributeDescription* EntityDescription::attributeNamed(std::string_view name) const {
    int index = indexOfAttribute(name);
    return index < 0 ? nullptr : &attributes_[static_cast<std::size_t>(index)];
}

const std::vector<std::pair<int, int>>& EntityDescription::copyPlanFrom(
    const EntityDescription& source) const {
    std::lock_guard lock(copyPlans_->mutex);
    for (const auto& [entity, plan] : copyPlans_->plans) {
        if (entity == &source) {
            return plan;
        }
    }
    std::vector<std::pair<int, int>> plan;
    for (std::size_t to = 0; to < attributes_.size(); ++to) {
        int from = source.indexOfAttribute(attributes_[to].name());
        if (from < 0) {
            continue;
        }
        const AttributeDescription& fromAttribute =
            source.attributes()[static_cast<std::size_t>(from)];
        if (!FieldOps::compatible(fromAttribute.kind(), attributes_[to].kind())) {
            TB_FATAL("copyAttributes: " + source.name() + "." + fromAttribute.name() + " (" +
                     std::string(attributeTypeName(fromAttribute.type())) +
                     ") can't be copied to " + name_ + "." + attributes_[to].name() + " (" +
                     std::string(attributeTypeName(attributes_[to].type())) + ")");
        }
        plan.emplace_back(from, static_cast<int>(to));
    }
    copyPlans_->plans.emplace_back(&source, std::move(plan));
    return copyPlans_->plans.back().second;
}

void EntityDescription::copyAttributes(const ManagedObject& from, ManagedObject& to, bool skipNil) {
    const EntityDescription& source = from.entity();
    const EntityDescription& target = to.entity();
    for (auto [fromIndex, toIndex] : target.copyPlanFrom(source)) {
        const AttributeDescription& fromAttribute =
            source.attributes()[static_cast<std::size_t>(fromIndex)];
        const AttributeDescription& toAttribute =
            target.attributes()[static_cast<std::size_t>(toIndex)];
        const void* value = fromAttribute.field(from);
        if (skipNil && FieldOps::isNil(fromAttribute, value)) {
            continue;
        }
        FieldOps::copy(fromAttribute, value, toAttribute, toAttribute.field(to));
    }
    // A row's record copied into is written by the next save. A record still being made
    // while reading (see ObjectContext::makeObject) is not changed by being filled in.
    if (!to.isProvisional()) {
        to.didChange();
    }
}

}  // namespace tb
