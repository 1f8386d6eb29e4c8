#pragma once

#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "tq_stack/rr.h"

#include <cstdint>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace ObjectAccess {

/// A ReadRange request: part of a list property, in practice a trend log's buffer.
class ReadRange {
public:
    /// Which part: by position (1), by sequence number (2) or by time (4), and how many items
    /// (negative: backwards from the reference).
    struct Range {
        Range() { reference.index = 0; }

        int32_t requestType = RR_BY_POSITION;
        union {
            uint32_t index;  // the reference index or sequence number
            BACNET_DATE_TIME time;
        } reference;
        int32_t count = 1;

        /// Request type, the reference that type uses, and the count.
        void get(BACnet_Read_Range_Data& out) const;
        /// Takes request type and count only.
        Range& operator=(const BACnet_Read_Range_Data& in);
    };

    ReadRange() = default;
    ReadRange(const DataType::BACnetObjectPropertyReference& reference, const Range& range)
        : _reference(reference), _range(range) {}
    /// The device part of the reference is dropped.
    ReadRange(const DataType::BACnetDeviceObjectPropertyReference& reference, const Range& range)
        : _reference(reference), _range(range) {}

    const DataType::BACnetObjectPropertyReference& getReference() const { return _reference; }
    const Range& getRange() const { return _range; }

    /// The whole confirmed request at `apdu` (room for one APDU); its length or below 0.
    int encode(uint8_t invokeId, uint8_t* apdu) const;
    /// The same into `buffer` at `offset`, sized as `ReadProperty::encode`.
    int encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const;
    /// The service data: the reference takes object, property and array index (the range
    /// is not taken); the codec's result.
    int decodeServiceRequest(const uint8_t* request, unsigned length);
    /// The whole request, with the header checks of `ReadProperty::decode` for readRange.
    int decode(const uint8_t* apdu, unsigned length, uint8_t& invokeId);

private:
    DataType::BACnetObjectPropertyReference _reference;
    Range _range;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
