#pragma once

#include "TQ_BACnet/Net/BipSocket.h"
#include "TQ_BACnet/Net/DropLog.h"
#include "tq_stack/npdu.h"
#include "tq_stack/values.h"

#include <chrono>
#include <functional>
#include <cstdint>

namespace TQ {
namespace BACnet {
namespace Net {

using Clock = std::chrono::steady_clock;

/// One APDU taken from the network.
struct Received {
    /// The sender: its B/IP address as MAC (for a Forwarded-NPDU the original source), and for
    /// a device behind a router the network and address the router gave (SNET, SADR).
    BACNET_ADDRESS source;
    BACNET_NPDU_DATA npdu;
    bool broadcast;  ///< came as a broadcast (Original-Broadcast- or Forwarded-NPDU)
    const uint8_t* apdu;  ///< valid until the next receive
    unsigned apduLength;
};

/// The BACnet/IP link: BVLC and NPDU over a port's sockets, and the registration as a foreign
/// device with a BBMD. Every datagram is checked before anything is believed; what cannot be
/// taken is dropped (or answered as a node that is no BBMD must) and noted in `drops`.
class Link {
public:
    enum class Registration { None, Pending, Registered, Refused };

    Link(BipSocket& socket, const std::string& name = "BACnet/IP");

    /// A B/IP MAC of 6 octets is a unicast; an empty MAC a broadcast (through the BBMD while
    /// registered as a foreign device). A network other than 0 adds DNET/DADR for a router.
    bool send(const BACNET_ADDRESS& to, const uint8_t* apdu, unsigned length, bool expectingReply);
    /// The next APDU within timeoutMs; false when none came (frames that were handled or
    /// dropped meanwhile end the wait early as well).
    bool receive(Received& out, int timeoutMs);

    /// Takes one datagram as if it had arrived from `from` (the receive path without the
    /// socket). The datagram must stay valid while `out` is used.
    bool accept(const uint8_t* datagram, unsigned length, const uint8_t from[6], Received& out);
    /// Replaces the socket for everything sent (a harness that must not reach any network).
    using Transmit = std::function<void(const uint8_t to[6], const uint8_t* frame, unsigned length)>;
    void setTransmit(Transmit transmit) { _transmit = std::move(transmit); }

    /// Registers with the BBMD now and again before each time-to-live ends.
    void registerForeignDevice(const uint8_t bbmd[6], uint16_t timeToLive);
    Registration registration() const { return _registration; }
    unsigned registrations() const { return _registrationsSent; }

    /// An address for a broadcast on the local network, and for the global broadcast.
    static BACNET_ADDRESS localBroadcast();
    static BACNET_ADDRESS globalBroadcast();
    /// The B/IP address of this port as an address record (MAC of 6 octets, network 0).
    BACNET_ADDRESS ownAddress() const;

    BipSocket& socket() { return _socket; }
    DropLog& drops() { return _drops; }

private:
    bool take(const uint8_t* datagram, unsigned length, const uint8_t from[6], Received& out);
    void transmit(const uint8_t to[6], const uint8_t* frame, unsigned length);
    bool takeNpdu(const uint8_t* npdu, unsigned length, const uint8_t source[6], bool broadcast, Received& out);
    void sendResult(const uint8_t to[6], uint16_t code);
    void reregisterWhenDue();

    BipSocket& _socket;
    DropLog _drops;
    Transmit _transmit;
    bool _transmitFailed = false;
    uint8_t _rx[1500];
    uint8_t _tx[1500];
    uint8_t _bbmd[6] = {};
    uint16_t _ttl = 0;
    Registration _registration = Registration::None;
    unsigned _registrationsSent = 0;
    Clock::time_point _reregisterAt{};
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
