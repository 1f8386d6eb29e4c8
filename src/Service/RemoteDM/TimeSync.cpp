#include "TQ_BACnet/Service/RemoteDM/TimeSync.h"

#include "../ServiceSupport.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "tq_stack/timesync.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace Service {
namespace RemoteDM {

int TimeSync::encode(TQ::Utility::OctetBuffer& buffer) const {
    DataType::BACnetDateTime local;
    local.setTimestamp(_moment);
    return Detail::encodeWhole(buffer, 0, [&](uint8_t* apdu) {
        return _utc ? timesync_utc_encode_apdu(apdu, &local.date, &local.time)
                    : timesync_encode_apdu(apdu, &local.date, &local.time);
    });
}

int TimeSync::decode(const TQ::Utility::OctetBuffer& buffer) {
    const uint8_t* apdu = buffer.data();
    if (buffer.size() < 2 || apdu[0] != Detail::UNCONFIRMED_REQUEST) return -1;
    if (apdu[1] != SERVICE_UNCONFIRMED_UTC_TIME_SYNCHRONIZATION &&
        apdu[1] != SERVICE_UNCONFIRMED_TIME_SYNCHRONIZATION)
        return -1;
    if (buffer.size() == 2) return -1;
    BACnet_DateTime moment{};
    const int result = timesync_decode_service_request(apdu + 2, static_cast<uint32_t>(buffer.size() - 2),
                                                       &moment.date, &moment.time);
    if (result < 0) return -1;
    try {
        // A date or time with unspecified (255) or impossible fields names no moment.
        _moment = DataType::BACnetDateTime::getTimestamp(moment);
    } catch (const Poco::Exception&) {
        return -1;
    }
    _utc = apdu[1] == SERVICE_UNCONFIRMED_UTC_TIME_SYNCHRONIZATION;
    return result + 2;
}

}  // namespace RemoteDM
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
