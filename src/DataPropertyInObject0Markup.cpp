#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"

namespace TQ {
namespace BACnet {

void DataPropertyInObject0::markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker,
                                   bool root, int level) const {
    DataType::ANY itself;
    getAsANY(itself);
    itself.markup(factory, name, arrayMarker, root, level);
}

}  // namespace BACnet
}  // namespace TQ
