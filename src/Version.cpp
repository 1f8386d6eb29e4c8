#include "TQ_BACnet/Version.h"

namespace TQ {
namespace BACnet {

const char* version() {
    return TQ_BACNET_VERSION;
}

}  // namespace BACnet
}  // namespace TQ
