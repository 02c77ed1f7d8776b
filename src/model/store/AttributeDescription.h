#pragma once

#include <memory>
#include <string>

#include "model/store/AttributeType.h"
#include "model/store/FieldAccess.h"

namespace tb {

// One row of an entity's attribute table: the attribute's name (also its column), its type,
// how its C++ field holds it, and where that field is in a record. The default is whatever a
// freshly made record holds (see EntityDescription::prototype()).
class AttributeDescription {
  public:
    AttributeDescription(std::string name,
                         AttributeType type,
                         FieldKind kind,
                         std::unique_ptr<FieldLocator> locator,
                         std::unique_ptr<RecordListAccess> recordList);

    const std::string& name() const { return name_; }
    AttributeType type() const { return type_; }
    FieldKind kind() const { return kind_; }
    // The store keeps an index on this attribute's column (for lookups by id).
    bool isIndexed() const { return indexed_; }
    void setIndexed(bool indexed) { indexed_ = indexed; }
    // The field of this attribute in `record`, a record of the attribute's entity.
    void* field(const ManagedObject& record) const { return locator_->locate(record); }
    // The element access of a record array; null for every other kind.
    const RecordListAccess* recordList() const { return recordList_.get(); }
    // The default as an SQL literal, for the column's DEFAULT clause ("0", "NULL").
    const std::string& defaultSQL() const { return defaultSQL_; }
    void setDefaultSQL(std::string literal) { defaultSQL_ = std::move(literal); }

  private:
    std::string name_;
    AttributeType type_;
    FieldKind kind_;
    bool indexed_ = false;
    std::unique_ptr<FieldLocator> locator_;
    std::unique_ptr<RecordListAccess> recordList_;
    std::string defaultSQL_ = "NULL";
};

}  // namespace tb
