#pragma once

#include "TQ_BACnet/DataWriteProperty.h"

#include <cstdint>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Service {
namespace ObjectAccess {

/// The WriteProperty request of a prepared write-property record (`DataWriteProperty::set`).
class WriteProperty {
public:
    /// The whole confirmed request at `offset` of `buffer`, sized as `ReadProperty::encode`;
    /// its length, or the encoder's result when below 1 (e.g. an empty value).
    static int encode(const DataWriteProperty& data, uint8_t invokeId, TQ::Utility::OctetBuffer& buffer,
                      unsigned offset);
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
