#pragma once

#include "TQ_BACnet/Net/DeviceOperations.h"

#include <cstdint>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Net {

/// One value of a COV notification: a BACnetPropertyValue with its value as encoded.
struct CovValue {
    BACNET_PROPERTY_ID property = PROP_PRESENT_VALUE;
    uint32_t index = BACNET_ARRAY_ALL;
    std::vector<uint8_t> value;
    uint8_t priority = 0;  ///< 0: none given
};

/// A ConfirmedCOVNotification or UnconfirmedCOVNotification as it arrived.
struct CovNotification {
    BACNET_ADDRESS source{};
    bool confirmed = false;
    uint32_t processId = 0;
    uint32_t device = 0;  ///< the initiating device's instance
    BACNET_OBJECT_TYPE objectType = OBJECT_ANALOG_INPUT;
    uint32_t objectInstance = 0;
    uint32_t timeRemaining = 0;  ///< seconds; 0 for a subscription without lifetime
    std::vector<CovValue> values;

    /// The value of `property` (without array index) or null.
    const CovValue* find(BACNET_PROPERTY_ID property) const;
};

/// SubscribeCOV requests ready for `Client::submit`, and a notified value typed through the
/// catalogue as a ReadProperty of that property would have given it.
struct Cov {
    /// lifetimeS 0: a subscription that does not expire.
    static Request subscribeRequest(uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance, bool confirmed,
                                    uint32_t lifetimeS);
    static Request cancelRequest(uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance);
    /// Either notification's service data (after the APDU header); false when it does not decode.
    static bool decode(const uint8_t* data, unsigned length, CovNotification& out);
    static Outcome value(const CovNotification& notification, const CovValue& value, ValueContainer& out);
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
