#pragma once

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace Net {

/// Where a BACnet/IP port listens.
struct PortOptions {
    /// An interface name ("eth0", "lo") or an IPv4 address; empty: the first interface that is up
    /// and not loopback, else loopback.
    std::string interface;
    uint16_t udpPort = 47808;
    /// The broadcast address; empty: the interface's (127.255.255.255 for the loopback network).
    std::string broadcast;
    /// Also receive broadcasts (a second socket bound to the broadcast address).
    bool listenBroadcast = true;
    /// The process's port: its state is published to the BVLL hooks and every frame passes
    /// through them. Only one may be open at a time; further ports in the same process (a test's
    /// simulated devices) use their sockets directly.
    bool processPort = true;
};

/// The UDP sockets of one BACnet/IP port. B/IP addresses are 6 octets: IPv4 address and UDP
/// port, both in network order.
class BipSocket {
public:
    /// Raises Poco::IOException when the address cannot be found or bound, and
    /// Poco::InvalidAccessException for a second process port.
    explicit BipSocket(const PortOptions& options);
    ~BipSocket();
    BipSocket(const BipSocket&) = delete;
    BipSocket& operator=(const BipSocket&) = delete;

    /// The frame's byte count, or negative as `sendto` fails.
    int send(const uint8_t to[6], const uint8_t* frame, unsigned length);
    /// Waits up to timeoutMs for one datagram; its length (0 when none came), the sender in `from`.
    int receive(uint8_t* buffer, unsigned capacity, uint8_t from[6], int timeoutMs);

    const uint8_t* address() const { return _mac; }
    const uint8_t* broadcastAddress() const { return _broadcast; }
    bool isProcessPort() const { return _processPort; }

private:
    int receiveFrom(int fd, uint8_t* buffer, unsigned capacity, uint8_t from[6]);

    int _unicast = -1;
    int _broadcastFd = -1;
    bool _processPort = false;
    uint8_t _mac[6] = {};
    uint8_t _broadcast[6] = {};
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
