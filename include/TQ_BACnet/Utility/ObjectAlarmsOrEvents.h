#pragma once

#include "tq_stack/enums.h"

namespace TQ {
namespace BACnet {
namespace Utility {

/// True for the installation's alarms-and-events object type (200) only.
bool isObjectAlarmsOrEvents(BACNET_OBJECT_TYPE type);

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
