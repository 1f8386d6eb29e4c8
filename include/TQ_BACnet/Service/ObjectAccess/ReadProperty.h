#pragma once

#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"

#include <cstdint>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace ObjectAccess {

/// A ReadProperty request: which property (and array element) of which object.
class ReadProperty {
public:
    ReadProperty() = default;
    explicit ReadProperty(const DataType::BACnetObjectPropertyReference& reference) : _reference(reference) {}
    /// The device part of the reference is dropped.
    explicit ReadProperty(const DataType::BACnetDeviceObjectPropertyReference& reference)
        : _reference(reference) {}

    const DataType::BACnetObjectPropertyReference& getReference() const { return _reference; }
    void setReference(const DataType::BACnetObjectPropertyReference& reference) { _reference = reference; }

    /// The whole confirmed request at `apdu` (room for one APDU); its length or below 0.
    int encode(uint8_t invokeId, uint8_t* apdu) const;
    /// The same at `offset` of `buffer`, which grows by one APDU and is then trimmed to the
    /// request; a failure is returned with the buffer one APDU past offset. A buffer over
    /// foreign storage that is too small raises Poco::InvalidAccessException.
    int encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const;
    /// The service data (after the 4-octet header); the reference takes what was decoded
    /// even when the result is negative.
    int decodeServiceRequest(const uint8_t* request, unsigned length);
    /// The whole request: -1 for another PDU type or service, 0 for a header alone.
    int decode(const uint8_t* apdu, unsigned length, uint8_t& invokeId);

private:
    DataType::BACnetObjectPropertyReference _reference;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
