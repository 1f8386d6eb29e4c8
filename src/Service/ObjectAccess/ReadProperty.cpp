#include "TQ_BACnet/Service/ObjectAccess/ReadProperty.h"

#include "../ServiceSupport.h"
#include "tq_stack/rp.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

int ReadProperty::encode(uint8_t invokeId, uint8_t* apdu) const {
    BACnet_Read_Property_Data data;
    _reference.get(data);
    return rp_encode_apdu(apdu, invokeId, &data);
}

int ReadProperty::encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const {
    return Detail::encodeAt(buffer, offset, 0, [&](uint8_t* apdu) { return encode(invokeId, apdu); });
}

int ReadProperty::decodeServiceRequest(const uint8_t* request, unsigned length) {
    BACnet_Read_Property_Data data;
    _reference.get(data);
    const int result = rp_decode_service_request(request, length, &data);
    _reference = data;
    return result;
}

int ReadProperty::decode(const uint8_t* apdu, unsigned length, uint8_t& invokeId) {
    const int header = Detail::checkRequestHeader(apdu, length, SERVICE_CONFIRMED_READ_PROPERTY, invokeId);
    return header < 1 ? header : decodeServiceRequest(apdu + 4, length - 4);
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
