#include "TQ_BACnet/Service/ObjectAccess/ReadRangeAck.h"

#include "../ServiceSupport.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRange.h"
#include "tq_stack/strings.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

namespace {
// BACnetResultFlags: three bits in the first octet, five unused.
constexpr uint8_t kFlagBits = 3;
}  // namespace

int ReadRangeAck::Result::get(BACnet_Read_Range_Data& out, uint8_t* itemData) const {
    bitstring_init(&out.result_flags);
    bitstring_set_octet(&out.result_flags, 0, resultFlags);
    bitstring_set_bits_used(&out.result_flags, 1, 8 - kFlagBits);
    out.item_count = itemCount;
    out.first_sequence = static_cast<uint32_t>(firstSequence);
    out.application_data_len = items.encode(itemData);
    out.application_data = itemData;
    return out.application_data_len;
}

int ReadRangeAck::encode(uint8_t invokeId, uint8_t* apdu) const {
    BACnet_Read_Range_Data data{};
    _reference.get(data);
    uint8_t items[Detail::APDU_SIZE];
    if (_result.get(data, items) < 0) return -1;
    return rr_ack_encode_apdu(apdu, invokeId, &data);
}

int ReadRangeAck::encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const {
    return Detail::encodeAt(buffer, offset, 0, [&](uint8_t* apdu) { return encode(invokeId, apdu); });
}

int ReadRangeAck::decodeServiceRequest(const uint8_t* request, unsigned length, DataError* error) {
    BACnet_Read_Range_Data data{};
    _reference.get(data);
    const int result = rr_ack_decode_service_request(request, length, &data);
    if (result < 0) return Detail::malformed(result, error);
    _reference = data;
    _result.resultFlags = bitstring_octet(&data.result_flags, 0);
    _result.itemCount = data.item_count;
    _result.firstSequence = static_cast<int32_t>(data.first_sequence);
    return Detail::decodeValue(_result.items, data.application_data, data.application_data_len,
                               data.object_type, data.object_property, data.array_index, error);
}

int ReadRangeAck::decode(const uint8_t* apdu, unsigned length, uint8_t* invokeId, DataError* error) {
    const int header = Detail::checkAckHeader(apdu, length, SERVICE_CONFIRMED_READ_RANGE, invokeId, error);
    return header < 1 ? header : decodeServiceRequest(apdu + 3, length - 3, error);
}

int ReadRangeAck::decode(const ReadRange& request, const uint8_t* apdu, unsigned length, uint8_t* invokeId,
                         DataError* error) {
    const int header = Detail::checkAckHeader(apdu, length, SERVICE_CONFIRMED_READ_RANGE, invokeId, error);
    if (header < 1) return header < 0 ? header : Detail::malformed(-1, error);
    ReadRangeAck answer;
    const int result = answer.decodeServiceRequest(apdu + 3, length - 3, error);
    if (result < 0) return result;
    if (answer._reference != request.getReference() ||
        Detail::countValues(answer._result.items) != answer._result.itemCount) {
        if (error) error->setError(ERROR_CLASS_SERVICES, ERROR_CODE_INCONSISTENT_PARAMETERS);
        return -1;
    }
    *this = answer;
    return result;
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
