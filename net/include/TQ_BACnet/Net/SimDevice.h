#pragma once

#include "TQ_BACnet/Net/Link.h"
#include "TQ_BACnet/Net/SimObjects.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>

namespace TQ {
namespace BACnet {
namespace Net {

class TreeStore;
class SimCov;

struct SimDeviceOptions {
    /// Confirmed requests ignored before the first one is answered (a lossy link).
    unsigned dropFirstRequests = 0;
    /// Answer nothing at all (a device that went away).
    bool mute = false;
    /// Segments sent before waiting for a Segment-ACK.
    uint8_t windowSize = 8;
    unsigned segmentTimeoutMs = 2000;
    unsigned segmentRetries = 3;
    /// Refuse every SubscribeCOV with an Error (resources), as a device whose subscriptions are
    /// full does; cancellations are still taken.
    bool refuseCov = false;
    /// Take subscriptions but never notify (as when notifications cannot reach the subscriber).
    bool silentCov = false;
};

/// A BACnet/IP device on a link: answers Who-Is, ReadProperty, ReadPropertyMultiple,
/// WriteProperty, ReadRange, CreateObject, DeleteObject and SubscribeCOV from its objects,
/// rejects other confirmed services, and segments answers larger than the client accepts when
/// the client takes segmented answers. Subscribers get a COV notification (confirmed or not, as
/// they asked) when a subscribed object's present value or status flags change.
class SimDevice {
public:
    SimDevice(Link& link, SimObjects& objects, const SimDeviceOptions& options = SimDeviceOptions());
    ~SimDevice();

    /// Handles what arrives within timeoutMs, and the segment timers.
    void poll(int timeoutMs);
    /// Polls until `stop` is set.
    void run(const std::atomic<bool>& stop);
    /// Answers one APDU as if it had arrived (a router's simulated network calls this).
    void handle(const Received& frame);
    /// Announces the device (I-Am) to the local broadcast.
    void announce();

    /// Where answers go; by default the link. A router in front of the device replaces it.
    using Sender = std::function<void(const BACNET_ADDRESS& to, const uint8_t* apdu, unsigned length)>;
    void setSender(Sender sender) { _send = std::move(sender); }

    /// Objects are created and deleted in `store` first (not owned; null: memory only).
    void setStore(TreeStore* store) { _store = store; }

    unsigned requestsSeen() const { return _requests; }
    /// COV subscriptions held, and confirmed notifications acknowledged (from any thread).
    unsigned covSubscriptions() const;
    unsigned covAcknowledged() const;

private:
    struct Outgoing;
    void confirmed(const Received& frame);
    void whoIs(const Received& frame, const uint8_t* data, unsigned length);
    void respond(const Received& frame, uint8_t invokeId, uint8_t service, unsigned maxApdu, bool segmentedOk,
                 unsigned maxSegments, const Encoded& data);
    void segmentAck(const Received& frame);
    void sendSegments(Outgoing& o, unsigned first, unsigned count);
    void checkTimers();

    Link& _link;
    SimObjects& _objects;
    SimDeviceOptions _options;
    Sender _send;
    TreeStore* _store = nullptr;
    unsigned _requests = 0;
    std::map<uint64_t, std::unique_ptr<Outgoing>> _outgoing;
    std::unique_ptr<SimCov> _cov;
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
