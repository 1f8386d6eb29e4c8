// Constructed values that render by walking their type's definition in the catalogue: each
// class only breaks itself into primitives, the walk names and shapes the members.
#include "TQ_BACnet/DataType/BACnetAddressBinding.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <Poco/NumberFormatter.h>

namespace TQ {
namespace BACnet {
namespace DataType {

using WS::MarkupFactory;

namespace {
/// The catalogue's enumeration of property identifiers, which names them.
constexpr auto PROPERTY_IDENTIFIERS = static_cast<BACnetDataType>(1090);
}  // namespace

bool BACnetComplex::markupFromCatalogue(MarkupFactory& factory, const std::string& name) const {
    // One scratch run per thread: a log of many records renders without an allocation each. No
    // walk renders a class of its own, so the run is never in use twice.
    thread_local std::vector<DataApplicationValue> primitives;
    primitives.clear();
    getBACnetPrimitives(primitives);
    if (primitives.empty()) return false;
    for (size_t i = 0; i + 1 < primitives.size(); ++i) primitives[i].next = &primitives[i + 1];
    primitives.back().next = nullptr;
    const BACnet_Application_Data_Value* cursor = &primitives.front();
    return factory.markup2(getBACnetDataType(), &cursor, name, false, Poco::Nullable<unsigned char>());
}

void BACnetObjectPropertyReference::markup(MarkupFactory& factory, const std::string& name, bool) const {
    markupFromCatalogue(factory, name);
}

void BACnetDeviceObjectPropertyReference::markup(MarkupFactory& factory, const std::string& name, bool) const {
    markupFromCatalogue(factory, name);
}

void BACnetDeviceObjectReference::markup(MarkupFactory& factory, const std::string& name, bool) const {
    markupFromCatalogue(factory, name);
}

void BACnetAddressBinding::markup(MarkupFactory& factory, const std::string& name, bool) const {
    markupFromCatalogue(factory, name);
}

void BACnetLogRecord::markup(MarkupFactory& factory, const std::string& name, bool) const {
    markupFromCatalogue(factory, name);
}

namespace Proprietary {
namespace Vendor947 {
void BACnetTrendLogLastUploaded::markup(MarkupFactory& factory, const std::string& name, bool) const {
    markupFromCatalogue(factory, name);
}
}  // namespace Vendor947
}  // namespace Proprietary

void Error::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    DataError::markup(factory, name, name, name, arrayMarker);
}

void BACnetDeviceObjectPropertyReference::markupForAzure(MarkupFactory& factory, const std::string& name) const {
    std::string text = Poco::NumberFormatter::format(deviceIdentifier.instance);
    std::string part;
    text += ';';
    factory.markupEnumOrBitStringValue(BACNET_DT_OBJECT_TYPE, objectIdentifier.type, part);
    text += part;
    text += ',';
    Poco::NumberFormatter::append(text, objectIdentifier.instance);
    text += ';';
    factory.markupEnumOrBitStringValue(PROPERTY_IDENTIFIERS, static_cast<int>(propertyIdentifier), part);
    text += part;
    factory.markup(MarkupFactory::BT_STRING, name, text, true, false, BACNET_DT_NULL, false);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
