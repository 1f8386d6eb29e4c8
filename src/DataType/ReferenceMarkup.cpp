// How the references render for the web services.
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

using WS::MarkupFactory;

void BACnetPropertyReference::markup(MarkupFactory&, const std::string&, bool) const {
    throw Poco::NotImplementedException("BACnetPropertyReference::markup");
}

void BACnetPropertyValue::markup(MarkupFactory&, const std::string&, bool) const {
    throw Poco::NotImplementedException("BACnetPropertyValue::markup");
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
