#pragma once

#include "TQ_BACnet/DataType/ReadAccessSpecification.h"

#include <cstdint>
#include <vector>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace ObjectAccess {

/// A ReadPropertyMultiple request: the objects to read and, for each, its properties, in the
/// order they are sent. Only the client side: the request is encoded, never decoded.
class ReadPropertyMultiple {
public:
    using const_iterator = std::vector<DataType::ReadAccessSpecification>::const_iterator;

    ReadPropertyMultiple() = default;

    const_iterator beginRAS() const { return _readAccesses.begin(); }
    const_iterator endRAS() const { return _readAccesses.end(); }
    std::size_t sizeRAS() const { return _readAccesses.size(); }
    void clearRAS() { _readAccesses.clear(); }
    void addRAS(const DataType::ReadAccessSpecification& readAccess) { _readAccesses.push_back(readAccess); }

    /// The whole confirmed request at `apdu`, at most `maxApdu` bytes; its length or below 0.
    /// An empty request: 0, nothing written.
    int encode(uint8_t invokeId, uint8_t* apdu, int maxApdu) const;
    /// The same into `buffer` at `offset` (one APDU at most), sized as `ReadProperty::encode`.
    int encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const;
    /// Not supported: -1.
    int decodeServiceRequest(const uint8_t* request, unsigned length);
    /// The header checks of `ReadProperty::decode` for readPropertyMultiple; a request with
    /// service data is -1 (not supported), a header alone 0.
    int decode(const uint8_t* apdu, unsigned length, uint8_t& invokeId);

private:
    std::vector<DataType::ReadAccessSpecification> _readAccesses;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
