#pragma once

#include <cstdint>

namespace TQ {
namespace BACnet {
namespace DataLink {
namespace BVLL {

/// The process's BACnet/IP port state (socket, own address and port, broadcast address) as the
/// hooks see it. The codec that holds it is private to this library; a port layer in another
/// library reads and sets the state only through here, so the process has exactly one copy.
/// Addresses are `in_addr.s_addr` values and the port as in `sin_port` (network order).
class BipPort {
public:
    static int getSocket();
    static void setSocket(int socket);
    static uint32_t getAddress();
    static void setAddress(uint32_t address);
    static uint16_t getPort();
    static void setPort(uint16_t port);
    static uint32_t getBroadcastAddress();
    static void setBroadcastAddress(uint32_t address);
};

}  // namespace BVLL
}  // namespace DataLink
}  // namespace BACnet
}  // namespace TQ
