#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/ValueContainer.h"
#include "tq_stack/rr.h"

#include <cstdint>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace ObjectAccess {

class ReadRange;

/// The acknowledgement of a ReadRange: the items read, typed by the catalogue's descriptor
/// of the property (a trend log's buffer becomes log records).
class ReadRangeAck {
public:
    struct Result {
        Result() = default;
        Result(uint8_t flags, unsigned itemCount, int firstSequence)
            : resultFlags(flags), itemCount(itemCount), firstSequence(firstSequence) {}

        uint8_t resultFlags = 0;  // bits RESULT_FLAG_FIRST_ITEM, _LAST_ITEM, _MORE_ITEMS
        uint32_t itemCount = 0;
        int32_t firstSequence = 0;
        ValueContainer items;

        /// Flags, count, first sequence number and the items encoded into `itemData` (room
        /// for one APDU), which becomes the record's item data; the encoded length.
        int get(BACnet_Read_Range_Data& out, uint8_t* itemData) const;
    };

    ReadRangeAck() = default;

    const DataType::BACnetObjectPropertyReference& getReference() const { return _reference; }
    void setReference(const DataType::BACnetObjectPropertyReference& reference) { _reference = reference; }
    const Result& getResult() const { return _result; }
    Result& getResult() { return _result; }

    /// The whole complex ACK at `apdu` (room for one APDU); its length or below 0.
    int encode(uint8_t invokeId, uint8_t* apdu) const;
    /// The same into `buffer` at `offset`, sized as `ReadProperty::encode`.
    int encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const;
    /// The service data (after the 3-octet header): reference, result flags, item count and
    /// first sequence number, then the items through `ValueContainer::decode`, whose result
    /// is returned. Codec failures as `ReadPropertyAck::decodeServiceRequest`.
    int decodeServiceRequest(const uint8_t* request, unsigned length, DataError* error);
    /// The whole complex ACK, with the header checks of `ReadPropertyAck::decode` for readRange.
    int decode(const uint8_t* apdu, unsigned length, uint8_t* invokeId, DataError* error);
    /// `decode`, accepted only when it answers `request` (same object, property and array
    /// index) and its item count equals the items it holds; otherwise -1 with error services
    /// / inconsistent-parameters, and this acknowledgement keeps what it held.
    int decode(const ReadRange& request, const uint8_t* apdu, unsigned length, uint8_t* invokeId,
               DataError* error);

private:
    DataType::BACnetObjectPropertyReference _reference;
    Result _result;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
