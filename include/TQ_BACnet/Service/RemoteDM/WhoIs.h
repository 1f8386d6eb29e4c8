#pragma once

#include <cstdint>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace RemoteDM {

/// Who-Is: asks the devices whose instance lies in [low, high] to announce themselves; -1
/// for both limits asks every device.
class WhoIs {
public:
    WhoIs(int low = -1, int high = -1) : _low(low), _high(high) {}

    int getLowLimit() const { return _low; }
    int getHighLimit() const { return _high; }

    /// The whole unconfirmed request at the start of `buffer`: a buffer with less than one
    /// APDU of room gets fresh storage, then the size becomes the length. The length, or the
    /// encoder's result when below 1 (the buffer then one APDU long). A buffer over foreign
    /// storage that is too small raises Poco::InvalidAccessException.
    int encode(TQ::Utility::OctetBuffer& buffer) const;
    /// The service data (without the 2-octet header) in `buffer`; the codec's result.
    int decode(const TQ::Utility::OctetBuffer& buffer);

private:
    int _low;
    int _high;
};

}  // namespace RemoteDM
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
