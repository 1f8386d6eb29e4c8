#pragma once

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataLink/SmoDataLink.h"

#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>

#include <cstdint>
#include <deque>
#include <string>

namespace TQ {
namespace BACnet {
namespace DataType {
class BACnetAddress;
}
namespace DataLink {
namespace BVLL {

/// The socket calls of the process's BACnet/IP port, with local delivery: a frame sent to the
/// port's own address (or, while no socket is open, to its broadcast address) is queued and
/// handed back by the next receive as if it had arrived from the own address. The socket and
/// the addresses are the port state of the codec (see `BipPort`); this class holds only the queue.
///
/// Not thread safe: the port layer serialises `rcv`, `wait` and `snd`.
class SmoBVLL : public SmoDataLink {
public:
    SmoBVLL();
    ~SmoBVLL();

    /// A queued frame first (its source the own address; a frame longer than `length` is
    /// delivered in pieces); otherwise `recvfrom`, or 0 without a socket.
    int rcv(int socket, uint8_t* buffer, unsigned length, int flags, sockaddr* source, unsigned* sourceLength);
    /// 1 at once while frames are queued; otherwise `select` on the read set (write and
    /// exception sets are not passed on), or a sleep of `timeout` and 0 without a socket.
    int wait(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout);
    /// Queues frames for the own address (and for the broadcast address while no socket is
    /// open) and returns `length`; anything else goes to `sendto`.
    int snd(int socket, const uint8_t* frame, unsigned length, int flags, const sockaddr* destination,
            unsigned destinationLength);
    /// Moves the port to the address of `address` when a device manager serves
    /// `deviceInstance`; false only when none does.
    bool updateBipAddress(unsigned deviceInstance, const DataType::BACnetAddress& address);

    /// A 6-byte BACnet/IP MAC (4 address bytes, 2 port bytes, network order) as a socket address.
    static bool bacnetToInternetAddress(const DataType::BACnetAddress& address, sockaddr_in& out);
    static void debugPrintAddress(const sockaddr* address, unsigned length, const std::string& prefix);

    /// Frames waiting for local delivery.
    std::size_t queued() const { return _queue.size(); }

    /// The instance behind the exported C functions.
    static SmoBVLL staticSocket;

private:
    std::deque<TQ::Utility::OctetBuffer> _queue;
};

}  // namespace BVLL
}  // namespace DataLink
}  // namespace BACnet
}  // namespace TQ
