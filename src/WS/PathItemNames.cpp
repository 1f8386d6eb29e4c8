#include "TQ_BACnet/WS/PathItemNames.h"

#include "tq_stack/bactext.h"
#include "tq_stack/enums.h"

namespace TQ {
namespace BACnet {
namespace WS {

const char* const PathItemNames::PI_ACKNOWLEDGE_ALARM =
    bactext_confirmed_service_name(SERVICE_CONFIRMED_ACKNOWLEDGE_ALARM);
const char* const PathItemNames::PI_GET_EVENT_INFORMATION =
    bactext_confirmed_service_name(SERVICE_CONFIRMED_GET_EVENT_INFORMATION);

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
