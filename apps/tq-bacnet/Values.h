// Property values at the command line: hexadecimal bytes to a decoded container and back.
#pragma once

#include "Catalogue.h"

#include "TQ_BACnet/ValueContainer.h"
#include "TQ/Utility/OctetBuffer.h"

#include <string>

namespace TQ {
namespace Apps {

/// The property a value belongs to: object type, property identifier, array index (-1: none).
struct PropertyOf {
    BACNET_OBJECT_TYPE objectType;
    BACNET_PROPERTY_ID property;
    int arrayIndex;
};

/// Reads --object, --property and --index.
PropertyOf propertyOf(const Args& args);
/// Bytes from hexadecimal text; InputError naming the fault.
Utility::OctetBuffer bytesOf(const std::string& hex);
/// Decodes the whole of `bytes` as the value of `of`; InputError with the BACnet error's names
/// when it does not decode or bytes are left over.
BACnet::ValueContainer decodeValue(const Utility::OctetBuffer& bytes, const PropertyOf& of);
/// The container's stored text form, read for the property; InputError when it does not fit.
BACnet::ValueContainer valueFromText(const std::string& text, const PropertyOf& of);
/// A BACnet/WS JSON body (compact or "$base"/"$value" form) encoded for the property, as
/// hexadecimal; InputError with the web-service error's text when it does not fit.
std::string encodedJsonHex(const std::string& json, const PropertyOf& of);
/// The encoded bytes of a container, as hexadecimal.
std::string encodedHex(const BACnet::ValueContainer& value);

}  // namespace Apps
}  // namespace TQ
