#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/BitString.h"

namespace TQ {
namespace BACnet {
namespace DataType {

// Out of line so that the classes' type information lives in this library only.
OctetString::~OctetString() = default;
BitString::~BitString() = default;

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
