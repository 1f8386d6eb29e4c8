#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"

#include <cstdint>
#include <vector>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace ObjectAccess {

class ReadPropertyMultiple;

/// The acknowledgement of a ReadPropertyMultiple: per object what each property read, a typed
/// value or the server's Error in its place. Only the client side: decoded, never encoded.
class ReadPropertyMultipleAck {
public:
    using const_iterator = std::vector<DataType::ReadAccessResult>::const_iterator;

    ReadPropertyMultipleAck() = default;

    const_iterator beginRAR() const { return _results.begin(); }
    const_iterator endRAR() const { return _results.end(); }
    std::size_t sizeRAR() const { return _results.size(); }
    void clearRAR() { _results.clear(); }

    /// Not supported: -1.
    int encode(uint8_t invokeId, uint8_t* apdu) const;
    /// Not supported: the buffer grows to offset + one APDU and -1 is returned.
    int encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const;
    /// The service data (after the 3-octet header): the earlier results are dropped, then one
    /// result per object is appended. The codec's result; on failure (error services /
    /// invalid-tag) nothing is appended.
    int decodeServiceRequest(const uint8_t* request, unsigned length, DataError* error);
    /// The whole complex ACK: -1 for another PDU type or service (an Error PDU for
    /// readPropertyMultiple gives the server's class and code in `error`), 0 for a header alone.
    int decode(const uint8_t* apdu, unsigned length, uint8_t* invokeId, DataError* error);
    /// `decode`, accepted only when it answers `request`: the same objects in the same order,
    /// and for each the properties asked for in that order (an object asked for all, required
    /// or optional properties may answer with any). Otherwise -1 with error services /
    /// inconsistent-parameters, and this acknowledgement keeps what it held.
    int decode(const ReadPropertyMultiple& request, const uint8_t* apdu, unsigned length, uint8_t* invokeId,
               DataError* error);

private:
    std::vector<DataType::ReadAccessResult> _results;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
