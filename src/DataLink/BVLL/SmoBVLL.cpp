#include "TQ_BACnet/DataLink/BVLL/SmoBVLL.h"

#include "TQ/BACnet/Server/LboDeviceManager.h"
#include "TQ/Utility/LogHelper.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "tq_stack/bip.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <thread>

namespace TQ {
namespace BACnet {
namespace DataLink {
namespace BVLL {

namespace {

// The source length reported for a locally delivered frame: family, port and address only.
constexpr unsigned kLocalSourceLength = 10;

bool isIpv4(const sockaddr* address, unsigned length) {
    return address && length >= sizeof(sockaddr_in) && address->sa_family == AF_INET;
}

bool isOwn(const sockaddr_in& to, uint32_t address) {
    return to.sin_addr.s_addr == address && to.sin_port == bip_get_port();
}

}  // namespace

SmoBVLL SmoBVLL::staticSocket;

SmoBVLL::SmoBVLL() = default;
SmoBVLL::~SmoBVLL() = default;

int SmoBVLL::snd(int socket, const uint8_t* frame, unsigned length, int flags, const sockaddr* destination,
                 unsigned destinationLength) {
    if (isIpv4(destination, destinationLength)) {
        sockaddr_in to;
        std::memcpy(&to, destination, sizeof to);
        if (isOwn(to, bip_get_addr()) || (socket < 0 && isOwn(to, bip_get_broadcast_addr()))) {
            _queue.emplace_back(frame, length);
            return int(length);
        }
    }
    return int(::sendto(socket, frame, length, flags, destination, destinationLength));
}

int SmoBVLL::rcv(int socket, uint8_t* buffer, unsigned length, int flags, sockaddr* source,
                 unsigned* sourceLength) {
    if (_queue.empty()) {
        if (socket < 0) return 0;
        socklen_t sl = sourceLength ? *sourceLength : 0;
        const int n = int(::recvfrom(socket, buffer, length, flags, source, sourceLength ? &sl : nullptr));
        if (sourceLength) *sourceLength = sl;
        return n;
    }
    TQ::Utility::OctetBuffer& front = _queue.front();
    const std::size_t copied = std::min<std::size_t>(length, front.size());
    if (copied) std::memcpy(buffer, front.data(), copied);
    if (copied == front.size()) {
        _queue.pop_front();
    } else {
        front.eraseFront(copied);
        std::cout << TQ::Utility::LogHelper::timeStamp() << "SmoBVLL::rcv() Receive SOMETHING IS LEFT "
                  << std::endl;
    }
    if (source) {
        sockaddr_in own{};
        own.sin_family = AF_INET;
        own.sin_addr.s_addr = bip_get_addr();
        own.sin_port = bip_get_port();
        // The caller's record is at least a sockaddr (16 bytes), like sockaddr_in.
        std::memcpy(source, &own, sizeof own);
    }
    if (sourceLength) *sourceLength = kLocalSourceLength;
    return int(copied);
}

int SmoBVLL::wait(int count, fd_set* read, fd_set*, fd_set*, timeval* timeout) {
    if (!_queue.empty()) return 1;
    if (bip_socket() >= 0) return ::select(count, read, nullptr, nullptr, timeout);
    if (timeout)
        std::this_thread::sleep_for(
            std::chrono::milliseconds(timeout->tv_sec * 1000 + timeout->tv_usec / 1000));
    return 0;
}

bool SmoBVLL::bacnetToInternetAddress(const DataType::BACnetAddress& address, sockaddr_in& out) {
    if (address.getMACLength() != 6) return false;
    out = sockaddr_in{};
    out.sin_family = AF_INET;
    std::memcpy(&out.sin_addr.s_addr, address.getMAC(), 4);
    std::memcpy(&out.sin_port, address.getMAC() + 4, 2);
    return true;
}

bool SmoBVLL::updateBipAddress(unsigned deviceInstance, const DataType::BACnetAddress& address) {
    if (!TQ::BACnet::Server::LboDeviceManager::findDeviceManager(deviceInstance, false)) return false;
    sockaddr_in to;
    if (!bacnetToInternetAddress(address, to)) return true;
    const uint32_t oldAddress = bip_get_addr();
    const uint32_t newAddress = to.sin_addr.s_addr;
    if (newAddress == oldAddress) return true;
    ifaddrs* list = nullptr;
    const ifaddrs* match = nullptr;
    if (::getifaddrs(&list) == 0) {
        for (const ifaddrs* i = list; i && !match; i = i->ifa_next) {
            if (i->ifa_addr && i->ifa_addr->sa_family == AF_INET && i->ifa_flags != 0 &&
                reinterpret_cast<const sockaddr_in*>(i->ifa_addr)->sin_addr.s_addr == newAddress)
                match = i;
        }
    }
    if (match) {
        // Interfaces without a broadcast address (loopback, point-to-point) keep the old one.
        const uint32_t oldBroadcast = bip_get_broadcast_addr();
        uint32_t newBroadcast = oldBroadcast;
        if ((match->ifa_flags & IFF_BROADCAST) && match->ifa_broadaddr)
            newBroadcast = reinterpret_cast<const sockaddr_in*>(match->ifa_broadaddr)->sin_addr.s_addr;
        std::cout << std::hex << std::uppercase << "BVLL ADDRESS CHANGE from: " << oldAddress
                  << ", to: " << newAddress << ", broadcast addr. from: " << oldBroadcast
                  << ", to: " << newBroadcast << std::dec << std::nouppercase << std::endl;
        bip_set_addr(newAddress);
        bip_set_broadcast_addr(newBroadcast);
    } else {
        bip_set_addr(newAddress);
    }
    if (list) ::freeifaddrs(list);
    return true;
}

void SmoBVLL::debugPrintAddress(const sockaddr* address, unsigned length, const std::string& prefix) {
    if (!address) return;
    const auto* sin = reinterpret_cast<const sockaddr_in*>(address);
    std::cout << std::hex << prefix << " pAddr->sa_data=" << std::setfill('0');
    for (char c : address->sa_data) std::cout << std::setw(2) << unsigned(static_cast<unsigned char>(c));
    std::cout << std::setfill(' ') << ", sa_family=" << address->sa_family << "\n          pSin->sin_addr="
              << sin->sin_addr.s_addr << ", pSin->sin_port=" << sin->sin_port << ", addrLen=" << length
              << "\n          bip_get_addr()=" << bip_get_addr() << ", bip_get_port()=" << bip_get_port()
              << "\n          bip_get_broadcast_addr()=" << bip_get_broadcast_addr() << std::dec << std::endl;
}

}  // namespace BVLL
}  // namespace DataLink
}  // namespace BACnet
}  // namespace TQ
