#include "TQ_BACnet/Net/BipSocket.h"

#include "TQ_BACnet/DataLink/BVLL/BipPort.h"
#include "TQ_BACnet/DataLink/BVLL/bvll.h"

#include <Poco/Exception.h>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace Net {

using DataLink::BVLL::BipPort;

namespace {

bool gProcessPortOpen = false;

struct Interface {
    uint32_t address = 0;
    uint32_t broadcast = 0;
};

uint32_t loopbackBroadcast() { return inet_addr("127.255.255.255"); }

bool isLoopback(uint32_t address) { return (ntohl(address) >> 24) == 127; }

// By name or address; the first interface that is up and not loopback when `which` is empty.
bool findInterface(const std::string& which, Interface& out) {
    in_addr literal{};
    const bool byAddress = !which.empty() && inet_pton(AF_INET, which.c_str(), &literal) == 1;
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) return false;
    bool found = false;
    for (const ifaddrs* i = list; i && !found; i = i->ifa_next) {
        if (!i->ifa_addr || i->ifa_addr->sa_family != AF_INET || !(i->ifa_flags & IFF_UP)) continue;
        const uint32_t a = reinterpret_cast<const sockaddr_in*>(i->ifa_addr)->sin_addr.s_addr;
        const bool match = byAddress       ? a == literal.s_addr
                           : which.empty() ? (i->ifa_flags & IFF_LOOPBACK) == 0
                                           : which == i->ifa_name;
        if (!match) continue;
        out.address = a;
        out.broadcast = (i->ifa_flags & IFF_BROADCAST) && i->ifa_broadaddr
                            ? reinterpret_cast<const sockaddr_in*>(i->ifa_broadaddr)->sin_addr.s_addr
                            : loopbackBroadcast();
        found = true;
    }
    ::freeifaddrs(list);
    // Every 127.x address is the loopback interface's, whether or not it is listed.
    if (!found && byAddress && isLoopback(literal.s_addr)) {
        out = Interface{literal.s_addr, loopbackBroadcast()};
        found = true;
    }
    if (!found && which.empty()) return findInterface("127.0.0.1", out);
    return found;
}

void toMac(uint32_t address, uint16_t port, uint8_t mac[6]) {
    std::memcpy(mac, &address, 4);
    std::memcpy(mac + 4, &port, 2);
}

sockaddr_in fromMac(const uint8_t mac[6]) {
    sockaddr_in to{};
    to.sin_family = AF_INET;
    std::memcpy(&to.sin_addr.s_addr, mac, 4);
    std::memcpy(&to.sin_port, mac + 4, 2);
    return to;
}

int udpBound(uint32_t address, uint16_t port, bool shared) {
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    const int on = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    if (shared) ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in at{};
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = address;
    at.sin_port = port;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&at), sizeof at) < 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

}  // namespace

BipSocket::BipSocket(const PortOptions& options) {
    if (options.processPort && gProcessPortOpen)
        throw Poco::InvalidAccessException("BipSocket: the process port is already open");
    Interface itf;
    if (!findInterface(options.interface, itf))
        throw Poco::IOException("BipSocket: no IPv4 interface", options.interface);
    if (!options.broadcast.empty() && inet_pton(AF_INET, options.broadcast.c_str(), &itf.broadcast) != 1)
        throw Poco::IOException("BipSocket: bad broadcast address", options.broadcast);
    _unicast = udpBound(itf.address, htons(options.udpPort), false);
    if (_unicast < 0) throw Poco::IOException("BipSocket: cannot bind", options.interface, errno);
    sockaddr_in bound{};
    socklen_t length = sizeof bound;
    ::getsockname(_unicast, reinterpret_cast<sockaddr*>(&bound), &length);
    toMac(itf.address, bound.sin_port, _mac);
    toMac(itf.broadcast, bound.sin_port, _broadcast);
    // Without it the port still works; it only misses broadcasts.
    if (options.listenBroadcast && itf.broadcast != itf.address)
        _broadcastFd = udpBound(itf.broadcast, bound.sin_port, true);
    _processPort = options.processPort;
    if (_processPort) {
        gProcessPortOpen = true;
        BipPort::setSocket(_unicast);
        BipPort::setAddress(itf.address);
        BipPort::setPort(bound.sin_port);
        BipPort::setBroadcastAddress(itf.broadcast);
    }
}

BipSocket::~BipSocket() {
    if (_processPort) {
        BipPort::setSocket(-1);
        gProcessPortOpen = false;
    }
    if (_broadcastFd >= 0) ::close(_broadcastFd);
    ::close(_unicast);
}

int BipSocket::send(const uint8_t to[6], const uint8_t* frame, unsigned length) {
    const sockaddr_in dest = fromMac(to);
    const auto* sa = reinterpret_cast<const sockaddr*>(&dest);
    if (_processPort) return bvllSndToSocket(_unicast, frame, length, 0, sa, sizeof dest);
    return int(::sendto(_unicast, frame, length, 0, sa, sizeof dest));
}

int BipSocket::receiveFrom(int fd, uint8_t* buffer, unsigned capacity, uint8_t from[6]) {
    sockaddr_in source{};
    socklen_t length = sizeof source;
    auto* sa = reinterpret_cast<sockaddr*>(&source);
    const int n = _processPort ? bvllRcvFromSocket(fd, buffer, capacity, MSG_DONTWAIT, sa, &length)
                               : int(::recvfrom(fd, buffer, capacity, MSG_DONTWAIT, sa, &length));
    if (n > 0) toMac(source.sin_addr.s_addr, source.sin_port, from);
    return n > 0 ? n : 0;
}

int BipSocket::receive(uint8_t* buffer, unsigned capacity, uint8_t from[6], int timeoutMs) {
    const int fds[2] = {_unicast, _broadcastFd};
    if (_processPort) {
        fd_set read;
        FD_ZERO(&read);
        FD_SET(_unicast, &read);
        if (_broadcastFd >= 0) FD_SET(_broadcastFd, &read);
        timeval timeout{timeoutMs / 1000, (timeoutMs % 1000) * 1000};
        const int count = (_broadcastFd > _unicast ? _broadcastFd : _unicast) + 1;
        if (bvllWaitForData(count, &read, nullptr, nullptr, &timeout) <= 0) return 0;
        // A locally queued frame leaves the set untouched: the first receive returns it.
        for (int fd : fds)
            if (fd >= 0 && FD_ISSET(fd, &read))
                if (const int n = receiveFrom(fd, buffer, capacity, from)) return n;
        return 0;
    }
    pollfd set[2] = {{_unicast, POLLIN, 0}, {_broadcastFd, POLLIN, 0}};
    if (::poll(set, _broadcastFd >= 0 ? 2 : 1, timeoutMs) <= 0) return 0;
    for (const pollfd& p : set)
        if (p.fd >= 0 && (p.revents & POLLIN))
            if (const int n = receiveFrom(p.fd, buffer, capacity, from)) return n;
    return 0;
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
