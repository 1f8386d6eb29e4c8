#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/ValueContainer.h"

#include <cstdint>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace ObjectAccess {

class ReadProperty;

/// The acknowledgement of a ReadProperty: the property read and its value, typed by the
/// catalogue's descriptor of the property.
class ReadPropertyAck {
public:
    ReadPropertyAck() = default;

    const DataType::BACnetObjectPropertyReference& getReference() const { return _reference; }
    void setReference(const DataType::BACnetObjectPropertyReference& reference) { _reference = reference; }
    const ValueContainer& getValue() const { return _value; }
    ValueContainer& getValue() { return _value; }

    /// The whole complex ACK at `apdu` (room for one APDU); its length or below 0.
    int encode(uint8_t invokeId, uint8_t* apdu) const;
    /// The same into `buffer` at `offset`, sized as `ReadProperty::encode`.
    int encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const;
    /// The service data (after the 3-octet header): the reference, then the value through
    /// `ValueContainer::decode`, whose result is returned. A codec failure is returned as it
    /// is (error services / invalid-tag); a value that does not decode reports the
    /// container's error. `error` may be null.
    int decodeServiceRequest(const uint8_t* request, unsigned length, DataError* error);
    /// The whole complex ACK: -1 for another PDU type or service (an Error PDU for
    /// readProperty gives the server's class and code in `error`), 0 for a header alone.
    /// `invokeId` and `error` may be null.
    int decode(const uint8_t* apdu, unsigned length, uint8_t* invokeId, DataError* error);
    /// `decode`, accepted only when it answers `request`: another object, property or array
    /// index is -1 with error services / inconsistent-parameters. On any failure this
    /// acknowledgement keeps what it held.
    int decode(const ReadProperty& request, const uint8_t* apdu, unsigned length, uint8_t* invokeId,
               DataError* error);

private:
    DataType::BACnetObjectPropertyReference _reference;
    ValueContainer _value;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
