#include "model/store/IdentityMap.h"

#include <algorithm>

namespace tb {

IdentityMap::IdentityMap(std::size_t entities) : rows_(entities) {}

std::shared_ptr<ManagedObject> IdentityMap::find(std::size_t entity, std::int64_t rowID) {
    Rows& rows = rows_[entity];
    auto it = rows.find(rowID);
    if (it == rows.end()) {
        return nullptr;
    }
    auto record = it->second.lock();
    if (!record) {
        rows.erase(it);
        --entries_;
    }
    return record;
}

void IdentityMap::add(std::size_t entity,
                      std::int64_t rowID,
                      const std::shared_ptr<ManagedObject>& record) {
    auto [it, added] = rows_[entity].insert_or_assign(rowID, record);
    (void)it;
    if (added && ++entries_ >= nextSweep_) {
        sweep();
    }
}

void IdentityMap::erase(std::size_t entity, std::int64_t rowID) {
    entries_ -= rows_[entity].erase(rowID);
}

std::vector<std::shared_ptr<ManagedObject>> IdentityMap::takeAll() {
    std::vector<std::shared_ptr<ManagedObject>> all;
    for (std::size_t entity = 0; entity < rows_.size(); ++entity) {
        auto records = live(entity);
        all.insert(all.end(), records.begin(), records.end());
        rows_[entity].clear();
    }
    entries_ = 0;
    return all;
}

std::vector<std::shared_ptr<ManagedObject>> IdentityMap::live(std::size_t entity) {
    std::vector<std::shared_ptr<ManagedObject>> records;
    for (const auto& [rowID, weak] : rows_[entity]) {
        if (auto record = weak.lock()) {
            records.push_back(std::move(record));
        }
    }
    return records;
}

std::size_t IdentityMap::size() const {
    return entries_;
}

void IdentityMap::sweep() {
    for (Rows& rows : rows_) {
        std::erase_if(rows, [](const auto& entry) { return entry.second.expired(); });
    }
    entries_ = 0;
    for (const Rows& rows : rows_) {
        entries_ += rows.size();
    }
    nextSweep_ = std::max(kFirstSweep, entries_ * 2);
}

}  // namespace tb
