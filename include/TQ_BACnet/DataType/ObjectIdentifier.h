#pragma once

#include "tq_stack/enums.h"
#include "tq_stack/values.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {

class DataApplicationValue;

namespace DataType {

/// The packed 32-bit BACnet object identifier: object type in bits 31..22, instance in 21..0.
class ObjectIdentifier {
public:
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

    /// The codec's length, or its failure (below 1) with the value unchanged.
    int decode(const uint8_t* apdu, uint32_t length);
    int decodeContext(const uint8_t* apdu, uint32_t length, uint8_t tag);

    bool operator==(const ObjectIdentifier& other) const { return _value == other._value; }
    bool operator!=(const ObjectIdentifier& other) const { return _value != other._value; }

private:
    uint32_t _value = 0;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
