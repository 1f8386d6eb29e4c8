#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyAck.h"

#include "../ServiceSupport.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadProperty.h"
#include "tq_stack/rp.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

int ReadPropertyAck::encode(uint8_t invokeId, uint8_t* apdu) const {
    BACnet_Read_Property_Data data;
    _reference.get(data);
    uint8_t value[Detail::APDU_SIZE];
    data.application_data_len = _value.encode(value);
    data.application_data = value;
    return rp_ack_encode_apdu(apdu, invokeId, &data);
}

int ReadPropertyAck::encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const {
    return Detail::encodeAt(buffer, offset, 0, [&](uint8_t* apdu) { return encode(invokeId, apdu); });
}

int ReadPropertyAck::decodeServiceRequest(const uint8_t* request, unsigned length, DataError* error) {
    BACnet_Read_Property_Data data;
    _reference.get(data);
    const int result = rp_ack_decode_service_request(request, length, &data);
    if (result < 0) return Detail::malformed(result, error);
    _reference = data;
    return Detail::decodeValue(_value, data.application_data, data.application_data_len, data.object_type,
                               data.object_property, data.array_index, error);
}

int ReadPropertyAck::decode(const uint8_t* apdu, unsigned length, uint8_t* invokeId, DataError* error) {
    const int header = Detail::checkAckHeader(apdu, length, SERVICE_CONFIRMED_READ_PROPERTY, invokeId, error);
    return header < 1 ? header : decodeServiceRequest(apdu + 3, length - 3, error);
}

int ReadPropertyAck::decode(const ReadProperty& request, const uint8_t* apdu, unsigned length,
                            uint8_t* invokeId, DataError* error) {
    const int header = Detail::checkAckHeader(apdu, length, SERVICE_CONFIRMED_READ_PROPERTY, invokeId, error);
    if (header < 1) return header < 0 ? header : Detail::malformed(-1, error);
    ReadPropertyAck answer;
    const int result = answer.decodeServiceRequest(apdu + 3, length - 3, error);
    if (result < 0) return result;
    if (answer._reference != request.getReference()) {
        if (error) error->setError(ERROR_CLASS_SERVICES, ERROR_CODE_INCONSISTENT_PARAMETERS);
        return -1;
    }
    *this = std::move(answer);
    return result;
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
