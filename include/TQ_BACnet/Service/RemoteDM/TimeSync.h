#pragma once

#include "TQ_BACnet/DataType/ObjectIdentifier.h"

#include <Poco/Timestamp.h>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace RemoteDM {

/// TimeSynchronization, or with `utc` UTCTimeSynchronization. Both carry the moment as local
/// date and time, and are read back as local time: what the encoder writes, the decoder reads.
class TimeSync {
public:
    TimeSync() : _moment(0) {}
    TimeSync(Poco::Timestamp moment, bool utc) : _moment(moment), _utc(utc) {}

    const DataType::ObjectIdentifier& getObjectIdentifier() const { return _object; }
    Poco::Timestamp getTimestamp() const { return _moment; }
    bool isUtc() const { return _utc; }

    /// The whole unconfirmed request, into `buffer` as `WhoIs::encode`; the length or below 0.
    int encode(TQ::Utility::OctetBuffer& buffer) const;
    /// The whole unconfirmed request: -1 for another PDU or service or broken data, else the
    /// bytes consumed including the 2 header bytes.
    int decode(const TQ::Utility::OctetBuffer& buffer);

private:
    DataType::ObjectIdentifier _object;
    Poco::Timestamp _moment;
    bool _utc = false;
};

}  // namespace RemoteDM
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
