#pragma once

#include "TQ/Utility/OctetBuffer.h"

namespace TQ {
namespace BACnet {
namespace DataType {

/// The value of an OCTET STRING: the host's byte buffer under the name the value model uses.
class OctetString : public TQ::Utility::OctetBuffer {
public:
    using TQ::Utility::OctetBuffer::OctetBuffer;
    OctetString() = default;
    OctetString(const OctetString&) = default;
    OctetString(OctetString&&) = default;
    OctetString& operator=(const OctetString&) = default;
    OctetString& operator=(OctetString&&) = default;
    ~OctetString() override;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
