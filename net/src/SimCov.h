// The change-of-value subscriptions of the simulated device: SubscribeCOV answered, notifications
// sent when a subscribed object's present value or status flags change, confirmed ones repeated
// until acknowledged, subscriptions forgotten when their lifetime ends.
#pragma once

#include "SimServices.h"
#include "TQ_BACnet/Net/Link.h"
#include "TQ_BACnet/Net/SimDevice.h"

#include <atomic>
#include <map>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Net {

class SimCov {
public:
    SimCov(SimObjects& objects, const SimDeviceOptions& options);

    /// A SubscribeCOV (or its cancellation) from `from`. A new or renewed subscription gets its
    /// first notification at the next `check`.
    Response subscribe(const BACNET_ADDRESS& from, const uint8_t* data, unsigned length);
    /// Notifies what changed, repeats unanswered confirmed notifications, drops what expired.
    void check(const SimDevice::Sender& send);
    /// Takes the answer to a confirmed notification; false when the frame answers none.
    bool answered(const Received& frame);

    unsigned subscriptions() const { return _count; }
    unsigned acknowledged() const { return _acknowledged; }

private:
    struct Subscription {
        BACNET_ADDRESS subscriber{};
        uint32_t processId = 0;
        BACNET_OBJECT_TYPE type = OBJECT_ANALOG_INPUT;
        uint32_t instance = 0;
        bool confirmed = false;
        bool expires = false;
        Clock::time_point expiresAt{};
        bool due = true;  ///< the first notification is still to go
        Encoded presentValue, statusFlags;
    };
    struct Pending {
        BACNET_ADDRESS peer{};
        Encoded apdu;
        unsigned retriesLeft = 0;
        Clock::time_point deadline{};
    };
    std::vector<Subscription>::iterator find(const BACNET_ADDRESS& from, uint32_t processId, uint32_t type,
                                             uint32_t instance);
    void notify(Subscription& s, const SimDevice::Sender& send, Clock::time_point now);

    SimObjects& _objects;
    SimDeviceOptions _options;
    std::vector<Subscription> _subscriptions;
    std::map<uint8_t, Pending> _pending;  ///< confirmed notifications by invoke id
    uint8_t _nextInvokeId = 0;
    std::atomic<unsigned> _count{0};
    std::atomic<unsigned> _acknowledged{0};
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
