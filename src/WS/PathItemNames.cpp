#include "TQ_BACnet/WS/PathItemNames.h"

#include "tq_stack/bactext.h"
#include "tq_stack/enums.h"

namespace TQ {
namespace BACnet {
namespace WS {

const char* const PathItemNames::PI_947_BACNET_SRV = "947-bacnet-srv";
const char* const PathItemNames::PI_DOT_INFO = ".info";
const char* const PathItemNames::PI_DOT_DEFS = ".defs";
const char* const PathItemNames::PI_DOT_AUTH = ".auth";
const char* const PathItemNames::PI_DOT_DATA = ".data";
const char* const PathItemNames::PI_DOT_TREES = ".trees";
const char* const PathItemNames::PI_DOT_MULTI = ".multi";
const char* const PathItemNames::PI_DOT_SUBS = ".subs";
const char* const PathItemNames::PI_DOT_SUBSCRIPTIONS = ".subscriptions";
const char* const PathItemNames::PI_DOT_DEFINITIONS = ".definitions";
const char* const PathItemNames::PI_DOT_WELL_KNOWN = ".well-known";
const char* const PathItemNames::PI_DOT_SELF = ".self";
const char* const PathItemNames::PI_DOT_THIS = ".this";
const char* const PathItemNames::PI_DOT_BLTD = ".bltd";
const char* const PathItemNames::PI_DOT_BLT = ".blt";
const char* const PathItemNames::PI_DOT_DEVICE = ".device";
const char* const PathItemNames::PI_DOT_LOCAL = ".local";
const char* const PathItemNames::PI_DOT_BACNET = ".bacnet";
const char* const PathItemNames::PI_BACNETWS = "bacnetws";
const char* const PathItemNames::PI_ACKNOWLEDGE_ALARM =
    bactext_confirmed_service_name(SERVICE_CONFIRMED_ACKNOWLEDGE_ALARM);
const char* const PathItemNames::PI_GET_EVENT_INFORMATION =
    bactext_confirmed_service_name(SERVICE_CONFIRMED_GET_EVENT_INFORMATION);

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
