#include <utility>

#include "model/Item.h"
#include "model/ItemAttributesTable.h"

namespace tb {

const EntityDescription& Item::entityDescription() {
    static const EntityDescription entity = [] {
        EntityBuilder<Item> item("Item");
        describeItemAttributes(item);
        item.attribute("georestricted", &Item::georestricted);
        item.indexed("itemID");
        return std::move(item).build();
    }();
    return entity;
}

}  // namespace tb
