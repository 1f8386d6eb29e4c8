#include "TQ_BACnet/Service/RemoteDM/IAm.h"

#include "../ServiceSupport.h"
#include "tq_stack/iam.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace RemoteDM {

int IAm::encode(TQ::Utility::OctetBuffer& buffer) const {
    return Detail::encodeWhole(buffer, 0, [&](uint8_t* apdu) {
        return iam_encode_apdu(apdu, _device.getInstance(), _maxApdu, _segmentation, _vendorId);
    });
}

int IAm::decode(const TQ::Utility::OctetBuffer& buffer) {
    const uint8_t* apdu = buffer.data();
    if (buffer.size() < 4 || apdu[0] != Detail::UNCONFIRMED_REQUEST || apdu[1] != SERVICE_UNCONFIRMED_I_AM)
        return -1;
    uint32_t instance = 0;
    unsigned maxApdu = 0;
    int segmentation = 0;
    uint16_t vendor = 0;
    const int result = iam_decode_service_request(apdu + 2, static_cast<uint32_t>(buffer.size() - 2),
                                                  &instance, &maxApdu, &segmentation, &vendor);
    if (result < 0) return result;
    _device = DataType::ObjectIdentifier(
        DataType::ObjectIdentifier::createObjectIdentifier(OBJECT_DEVICE, instance));
    _maxApdu = maxApdu;
    _segmentation = segmentation;
    _vendorId = vendor;
    return result + 2;
}

}  // namespace RemoteDM
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
