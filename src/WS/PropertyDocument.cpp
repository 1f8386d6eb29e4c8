#include "TQ_BACnet/WS/PropertyDocument.h"

#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ/Utility/OctetBuffer.h"

namespace TQ {
namespace BACnet {
namespace WS {

bool PropertyDocument::write(MarkupFactory& factory, const ValueContainer& value, const std::string& name) {
    bool whole = true;
    if (value.getDataType() == BACNET_DT_NULL ||
        (value.isPrimitive() && value.getStructure() == BACNET_DTS_SINGLE_VALUE)) {
        DataApplicationValue single;
        if (value.getDataType() != BACNET_DT_NULL) value.getValue(single);
        single.markup(factory, name, false, value.getDataType(), true, -1, true);
    } else {
        // One walk for every other shape: the catalogue knows arrays, lists and members.
        TQ::Utility::OctetBuffer bytes;
        if (value.encode2(bytes) < 0) return false;
        const DataType::ANY any(value.getDescriptor(), bytes);
        whole = any.markup(factory, name, false, true, -1) == 1;
    }
    factory.closeAllOpenMarkups();
    return whole;
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
