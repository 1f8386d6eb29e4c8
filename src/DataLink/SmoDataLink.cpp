#include "TQ_BACnet/DataLink/SmoDataLink.h"

namespace TQ {
namespace BACnet {
namespace DataLink {

SmoDataLink::SmoDataLink() = default;
SmoDataLink::~SmoDataLink() = default;

}  // namespace DataLink
}  // namespace BACnet
}  // namespace TQ
