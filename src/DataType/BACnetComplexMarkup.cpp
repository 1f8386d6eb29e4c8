#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace DataType {

// Kept apart from the codec defaults: only rendering needs the web-services layer.
void BACnetComplex::markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    factory.markup(WS::MarkupFactory::BT_ANY, name, "Not implemented", true, arrayMarker, getBACnetDataType(),
                   false);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
