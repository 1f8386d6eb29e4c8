#include "TQ_BACnet/Service/ObjectAccess/ReadRange.h"

#include "../ServiceSupport.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

void ReadRange::Range::get(BACnet_Read_Range_Data& out) const {
    out.request_type = requestType;
    if (requestType == RR_BY_POSITION)
        out.range.ref_index = reference.index;
    else if (requestType == RR_BY_SEQUENCE)
        out.range.ref_seq_num = reference.index;
    else if (requestType == RR_BY_TIME)
        out.range.ref_time = reference.time;
    out.count = count;
}

ReadRange::Range& ReadRange::Range::operator=(const BACnet_Read_Range_Data& in) {
    requestType = in.request_type;
    count = in.count;
    return *this;
}

int ReadRange::encode(uint8_t invokeId, uint8_t* apdu) const {
    BACnet_Read_Range_Data data{};
    _reference.get(data);
    _range.get(data);
    return rr_encode_apdu(apdu, invokeId, &data);
}

int ReadRange::encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const {
    return Detail::encodeAt(buffer, offset, 0, [&](uint8_t* apdu) { return encode(invokeId, apdu); });
}

int ReadRange::decodeServiceRequest(const uint8_t* request, unsigned length) {
    BACnet_Read_Range_Data data{};
    _reference.get(data);
    const int result = rr_decode_service_request(request, length, &data);
    _reference = data;
    return result;
}

int ReadRange::decode(const uint8_t* apdu, unsigned length, uint8_t& invokeId) {
    const int header = Detail::checkRequestHeader(apdu, length, SERVICE_CONFIRMED_READ_RANGE, invokeId);
    return header < 1 ? header : decodeServiceRequest(apdu + 4, length - 4);
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
