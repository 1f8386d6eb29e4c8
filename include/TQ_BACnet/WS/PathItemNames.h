#pragma once

namespace TQ {
namespace BACnet {
namespace WS {

/// The path items of BACnet/WS, compared exactly and case-sensitively.
struct PathItemNames {
    static const char* const PI_947_BACNET_SRV;
    static const char* const PI_DOT_INFO;
    static const char* const PI_DOT_DEFS;
    static const char* const PI_DOT_AUTH;
    static const char* const PI_DOT_DATA;
    static const char* const PI_DOT_TREES;
    static const char* const PI_DOT_MULTI;
    static const char* const PI_DOT_SUBS;
    static const char* const PI_DOT_SUBSCRIPTIONS;
    static const char* const PI_DOT_DEFINITIONS;
    static const char* const PI_DOT_WELL_KNOWN;
    static const char* const PI_DOT_SELF;
    static const char* const PI_DOT_THIS;
    static const char* const PI_DOT_BLTD;
    static const char* const PI_DOT_BLT;
    static const char* const PI_DOT_DEVICE;
    static const char* const PI_DOT_LOCAL;
    static const char* const PI_DOT_BACNET;
    static const char* const PI_BACNETWS;
    /// The protocol's names of the AcknowledgeAlarm and GetEventInformation services.
    static const char* const PI_ACKNOWLEDGE_ALARM;
    static const char* const PI_GET_EVENT_INFORMATION;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
