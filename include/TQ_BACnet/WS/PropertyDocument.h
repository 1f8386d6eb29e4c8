#pragma once

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "tq_stack/enums.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
class ValueContainer;
namespace DataType {
class ReadAccessResult;
}
namespace WS {

class MarkupFactory;
class MarkupOptions;

/// Read results as response bodies, for every host that answers with them (the gateway, the
/// command-line tool): property values of any structure, objects read by ReadPropertyMultiple
/// and values that could not be read.
class PropertyDocument {
public:
    /// A property's name as BACnet/WS writes it ("present-value"; a number when uncatalogued).
    static std::string propertyName(BACNET_PROPERTY_ID property);

    /// The value of `property` of `objectType` (of its element at `arrayIndex`, BACNET_ARRAY_ALL
    /// for the whole): primitives directly, arrays and lists element by element ("1", "2", ...),
    /// constructed values through the catalogue walk; an element of a catalogued SEQUENCE OF (a
    /// priority value) as a value of the element type. False when shown only in part (the
    /// factory's lastErrorCode and lastErrorText say why).
    static bool value(MarkupFactory& factory, BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property,
                      uint32_t arrayIndex, const ValueContainer& value, const std::string& name, bool root);
    /// The same as the whole document, every markup it opened closed.
    static bool write(MarkupFactory& factory, BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property,
                      uint32_t arrayIndex, const ValueContainer& value);
    /// A value that could not be read, as the "error-prefix" and "error-string" options say.
    static void failed(MarkupFactory& factory, const std::string& name, const std::string& text,
                       const MarkupOptions& options);
    /// One object of a ReadPropertyMultiple acknowledgement with its properties.
    static void object(MarkupFactory& factory, const DataType::ReadAccessResult& result,
                       const MarkupOptions& options, bool root);

    /// The descriptor of one element of a property: the element of an array or list, or the
    /// member type of a catalogued SEQUENCE OF (the priority array's priority value). False
    /// for a property without elements.
    static bool elementOf(const DataPropertyInObject0& property, DataPropertyInObject0& element);

    PropertyDocument() = delete;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
