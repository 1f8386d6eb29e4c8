#include "Values.h"

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataErrorRef.h"

#include "TQ_BACnet/WS/DataWsError.h"
#include "TQ_BACnet/WS/EncoderJSON.h"

#include <Poco/Exception.h>

namespace TQ {
namespace Apps {

PropertyOf propertyOf(const Args& args) {
    if (!args.has("object") || !args.has("property")) throw UsageError("--object and --property are required");
    PropertyOf of{parseObjectType(args.get("object")), parseProperty(args.get("property")), -1};
    of.arrayIndex = static_cast<int>(args.getNumber("index", -1, 0, 0xFFFFFFFEL));
    return of;
}

Utility::OctetBuffer bytesOf(const std::string& hex) {
    Utility::OctetBuffer bytes;
    try {
        bytes.setHexString(hex);
    } catch (const Poco::SyntaxException&) {
        throw InputError("not hexadecimal bytes (two digits per byte): \"" + hex + "\"");
    }
    return bytes;
}

BACnet::ValueContainer decodeValue(const Utility::OctetBuffer& bytes, const PropertyOf& of) {
    BACnet::DataPropertyInObject0 descriptor = describe(of.objectType, of.property);
    int arrayIndex = of.arrayIndex;
    if (arrayIndex > 0) {
        // One element is a value of the element type (a priority value, not a priority array).
        descriptor = elementOf(descriptor);
        arrayIndex = -1;
    }
    BACnet::ValueContainer value;
    BACnet::DataError error;
    BACNET_ERROR_CLASS errorClass = BACnet::DataError::NO_ERROR_CLASS;
    BACNET_ERROR_CODE errorCode = BACnet::DataError::NO_ERROR_CODE;
    BACnet::DataErrorRef errorRef(errorClass, errorCode);
    const int length = static_cast<int>(bytes.size());
    // A single value, or one element of an array, is one value: anything after it is surplus.
    const bool one = descriptor.structure == BACnet::BACNET_DTS_SINGLE_VALUE || arrayIndex >= 0;
    const int used = value.decode(bytes.data(), length, one ? 1 : 0, descriptor, arrayIndex, errorRef);
    if (used < 0) {
        error.setError(errorClass, errorCode);
        throw InputError("the bytes do not decode as " + propertyName(of.property) + " of " +
                         objectTypeName(of.objectType) + ": " + error.getString(false));
    }
    if (used != length) {
        const int surplus = length - used;
        throw InputError(std::to_string(surplus) + (surplus == 1 ? " byte" : " bytes") +
                         " left over after the value, from byte " + std::to_string(used));
    }
    return value;
}

BACnet::ValueContainer valueFromText(const std::string& text, const PropertyOf& of) {
    const BACnet::DataPropertyInObject0 descriptor = describe(of.objectType, of.property);
    BACnet::ValueContainer value;
    if (!value.setText(descriptor.datatype, descriptor.tag, text, false)) {
        throw InputError("\"" + text + "\" is no value of " + propertyName(of.property) + " of " +
                         objectTypeName(of.objectType));
    }
    return value;
}

std::string encodedJsonHex(const std::string& json, const PropertyOf& of) {
    BACnet::DataPropertyInObject0 descriptor = describe(of.objectType, of.property);
    if (of.arrayIndex > 0) descriptor = elementOf(descriptor);
    Utility::OctetBuffer bytes(BACnet::ValueContainer::MAX_ENCODED);
    BACnet::WS::DataWsError error;
    BACnet::WS::EncoderJSON encoder;
    // A bare scalar ("21.5", "\"offnormal\"") is taken as the value of the compact form.
    const size_t first = json.find_first_not_of(" \t\r\n");
    const bool bare = first != std::string::npos && json[first] != '{' && json[first] != '[';
    const int length = encoder.encode(descriptor, bare ? "{\"$value\":" + json + "}" : json, bytes, 0, error);
    if (length < 0) {
        throw InputError("the JSON is no value of " + propertyName(of.property) + " of " +
                         objectTypeName(of.objectType) + ": " + error.getWsErrorText());
    }
    bytes.resize(static_cast<std::size_t>(length));
    return bytes.getHexString(false);
}

std::string encodedHex(const BACnet::ValueContainer& value) {
    Utility::OctetBuffer bytes;
    if (value.encode2(bytes) < 0) throw InputError("the value does not encode");
    return bytes.getHexString(false);
}

}  // namespace Apps
}  // namespace TQ
