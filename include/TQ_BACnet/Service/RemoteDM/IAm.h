#pragma once

#include "TQ_BACnet/DataType/ObjectIdentifier.h"

#include <cstdint>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace RemoteDM {

/// I-Am: a device announces its identifier, the largest APDU it accepts, its segmentation
/// and its vendor.
class IAm {
public:
    IAm() = default;
    IAm(const DataType::ObjectIdentifier& device, unsigned maxApdu, int segmentation, uint16_t vendorId)
        : _device(device), _maxApdu(maxApdu), _segmentation(segmentation), _vendorId(vendorId) {}

    const DataType::ObjectIdentifier& getDeviceIdentifier() const { return _device; }
    unsigned getMaxApdu() const { return _maxApdu; }
    int getSegmentation() const { return _segmentation; }
    uint16_t getVendorId() const { return _vendorId; }

    /// The whole unconfirmed request, into `buffer` as `WhoIs::encode`; the length or below 0.
    int encode(TQ::Utility::OctetBuffer& buffer) const;
    /// The whole unconfirmed request: -1 for fewer than 4 bytes or another PDU or service,
    /// else the codec's result plus the 2 header bytes.
    int decode(const TQ::Utility::OctetBuffer& buffer);

private:
    DataType::ObjectIdentifier _device;
    unsigned _maxApdu = 0;
    int _segmentation = 0;
    uint16_t _vendorId = 0;
};

}  // namespace RemoteDM
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
