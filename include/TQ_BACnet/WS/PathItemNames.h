#pragma once

namespace TQ {
namespace BACnet {
namespace WS {

/// The path items of BACnet/WS, compared exactly and case-sensitively. Literals, so that a
/// comparison knows their length without measuring it.
struct PathItemNames {
    static constexpr const char* PI_947_BACNET_SRV = "947-bacnet-srv";
    static constexpr const char* PI_DOT_INFO = ".info";
    static constexpr const char* PI_DOT_DEFS = ".defs";
    static constexpr const char* PI_DOT_AUTH = ".auth";
    static constexpr const char* PI_DOT_DATA = ".data";
    static constexpr const char* PI_DOT_TREES = ".trees";
    static constexpr const char* PI_DOT_MULTI = ".multi";
    static constexpr const char* PI_DOT_SUBS = ".subs";
    static constexpr const char* PI_DOT_SUBSCRIPTIONS = ".subscriptions";
    static constexpr const char* PI_DOT_DEFINITIONS = ".definitions";
    static constexpr const char* PI_DOT_WELL_KNOWN = ".well-known";
    static constexpr const char* PI_DOT_SELF = ".self";
    static constexpr const char* PI_DOT_THIS = ".this";
    static constexpr const char* PI_DOT_BLTD = ".bltd";
    static constexpr const char* PI_DOT_BLT = ".blt";
    static constexpr const char* PI_DOT_DEVICE = ".device";
    static constexpr const char* PI_DOT_LOCAL = ".local";
    static constexpr const char* PI_DOT_BACNET = ".bacnet";
    static constexpr const char* PI_BACNETWS = "bacnetws";
    /// The protocol's names of the AcknowledgeAlarm and GetEventInformation services.
    static const char* const PI_ACKNOWLEDGE_ALARM;
    static const char* const PI_GET_EVENT_INFORMATION;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
