#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/ValueContainer.h"

#include <string>

namespace TQ {
namespace BACnet {
namespace DataType {
class ReadAccessResult;
}
namespace WS {
class MarkupFactory;
class MarkupOptions;
}  // namespace WS
namespace Gateway {

/// How the gateway's answers render through a markup factory: property values of any
/// structure, objects read by ReadPropertyMultiple, and values that failed.
namespace Render {

/// A property's name as BACnet/WS writes it ("present-value"; a number when uncatalogued).
std::string propertyName(BACNET_PROPERTY_ID property);
/// A property value (of the element at `arrayIndex`, BACNET_ARRAY_ALL for the whole): primitives
/// directly, arrays and lists element by element ("1", "2", ...), constructed values through
/// the catalogue.
void value(WS::MarkupFactory& factory, BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property,
           uint32_t arrayIndex, const ValueContainer& value, const std::string& name, bool root);
/// A value that could not be read, as the "error-prefix" and "error-string" options say.
void failed(WS::MarkupFactory& factory, const std::string& name, const std::string& text,
            const WS::MarkupOptions& options);
/// One object of a ReadPropertyMultiple acknowledgement with its properties.
void object(WS::MarkupFactory& factory, const DataType::ReadAccessResult& result, const WS::MarkupOptions& options,
            bool root);

}  // namespace Render
}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
