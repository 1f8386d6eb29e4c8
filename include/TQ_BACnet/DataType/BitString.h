#pragma once

#include "TQ/Utility/BitBuffer.h"

namespace TQ {
namespace BACnet {
namespace DataType {

/// The value of a BIT STRING: the host's bit buffer (bit 0 is the most significant bit of the
/// first byte, as on the wire).
class BitString : public TQ::Utility::BitBuffer {
public:
    using TQ::Utility::BitBuffer::BitBuffer;
    BitString() = default;
    BitString(const BitString&) = default;
    BitString(BitString&&) = default;
    BitString& operator=(const BitString&) = default;
    BitString& operator=(BitString&&) = default;
    ~BitString() override;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
