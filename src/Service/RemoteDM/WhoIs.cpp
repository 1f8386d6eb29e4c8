#include "TQ_BACnet/Service/RemoteDM/WhoIs.h"

#include "../ServiceSupport.h"
#include "tq_stack/whois.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace RemoteDM {

int WhoIs::encode(TQ::Utility::OctetBuffer& buffer) const {
    return Detail::encodeWhole(buffer, 1,
                               [&](uint8_t* apdu) { return whois_encode_apdu(apdu, _low, _high); });
}

int WhoIs::decode(const TQ::Utility::OctetBuffer& buffer) {
    int32_t low = _low;
    int32_t high = _high;
    const int result =
        whois_decode_service_request(buffer.data(), static_cast<uint32_t>(buffer.size()), &low, &high);
    _low = low;
    _high = high;
    return result;
}

}  // namespace RemoteDM
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
