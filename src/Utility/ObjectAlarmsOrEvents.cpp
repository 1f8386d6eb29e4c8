#include "TQ_BACnet/Utility/ObjectAlarmsOrEvents.h"

namespace TQ {
namespace BACnet {
namespace Utility {

namespace {
// The installation's alarms-and-events object; its meaning is data of the host.
constexpr unsigned ALARMS_OR_EVENTS_TYPE = 200;
}  // namespace

bool isObjectAlarmsOrEvents(BACNET_OBJECT_TYPE type) {
    return type == ALARMS_OR_EVENTS_TYPE;
}

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
