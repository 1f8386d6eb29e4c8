#pragma once

#include "tq_stack/enums.h"
#include "tq_stack/values.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace WS {
class MarkupFactory;
}

class DataApplicationValue;

namespace DataType {

/// The packed 32-bit BACnet object identifier: object type in bits 31..22, instance in 21..0.
class ObjectIdentifier {
public:
    /// The catalogue's enumeration of object-type names.
    static constexpr unsigned OBJECT_TYPE_ENUM = 120;

    ObjectIdentifier() = default;
    explicit ObjectIdentifier(uint32_t packed) : _value(packed) {}
    ObjectIdentifier(BACNET_OBJECT_TYPE type, unsigned instance)
        : _value(createObjectIdentifier(type, instance)) {}
    ObjectIdentifier(const BACnet_Object_Id& id)
        : _value(createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(id.type), id.instance)) {}
    /// From a decoded primitive, which must be an object identifier (Poco assertion otherwise).
    /// `next`, when given, receives the primitive after `v` in its chain.
    ObjectIdentifier(const DataApplicationValue& v, const DataApplicationValue** next);
    /// Parses "type,instance" (type as number or object-type name) or the packed number.
    explicit ObjectIdentifier(const std::string& text);
    virtual ~ObjectIdentifier();

    ObjectIdentifier(const ObjectIdentifier&) = default;
    ObjectIdentifier& operator=(const ObjectIdentifier&) = default;
    ObjectIdentifier& operator=(const std::string& text);

    /// The type is deliberately not masked: a caller that passes a type above 1023 gets the
    /// bits it asked for, and the codec masks them when encoding.
    static uint32_t createObjectIdentifier(BACNET_OBJECT_TYPE type, unsigned instance) {
        return (static_cast<uint32_t>(type) << 22) | (instance & 0x3FFFFFu);
    }

    uint32_t getValue() const { return _value; }
    BACNET_OBJECT_TYPE getObjectType() const { return static_cast<BACNET_OBJECT_TYPE>(_value >> 22); }
    uint32_t getInstance() const { return _value & 0x3FFFFFu; }

    operator BACnet_Object_Id() const;

    /// The four content bytes (no tag), as the codec's object-identifier content decoder reads
    /// them: the codec's length, or its failure (below 1) with the value unchanged.
    int decode(const uint8_t* apdu, uint32_t length);
    /// The context-tagged form: the codec's length, 0 for another tag, below 0 for a broken
    /// encoding; the value is unchanged unless the result is positive.
    int decodeContext(const uint8_t* apdu, uint32_t length, uint8_t tag);
    /// For callers holding a whole APDU: at most one APDU (the codec's MAX_APDU) is read.
    int decode(const uint8_t* apdu) { return decode(apdu, MAX_APDU); }
    int decodeContext(const uint8_t* apdu, uint8_t tag) { return decodeContext(apdu, MAX_APDU, tag); }
    /// The counterparts of the decoders: four content bytes, resp. the context-tagged form
    /// (five bytes for tags below 15). The length that would be written for a null buffer.
    int encode(uint8_t* apdu) const;
    int encodeContext(uint8_t* apdu, uint8_t tag) const;

    /// The BACnet/WS path segment "[/]<object-type name>,<instance>", the name read from the
    /// object-type enumeration of the catalogue (the number in decimal for an unnamed type).
    std::string getPath(bool leadingSlash) const;
    /// One complete ObjectIdentifier markup "type,instance", the type by name when the factory
    /// uses names; `comment` goes along as the markup's comment.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker,
                const std::string& comment) const;

    bool operator==(const ObjectIdentifier& other) const { return _value == other._value; }
    bool operator!=(const ObjectIdentifier& other) const { return _value != other._value; }

private:
    uint32_t _value = 0;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
