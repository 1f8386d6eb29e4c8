#include "tq_stack/bip.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// The port layer's state; one BACnet/IP port per process.
struct BipPort {
    int socket = -1;
    uint32_t addr = 0;
    uint16_t port = 0;
    uint32_t broadcast = 0xFFFFFFFFu;
};

BipPort& bipPort() {
    static BipPort port;
    return port;
}

}  // namespace

int bip_socket(void) {
    return bipPort().socket;
}
void bip_set_socket(int sock) {
    bipPort().socket = sock;
}

uint32_t bip_get_addr(void) {
    return bipPort().addr;
}
void bip_set_addr(uint32_t net_address) {
    bipPort().addr = net_address;
}
uint16_t bip_get_port(void) {
    return bipPort().port;
}
void bip_set_port(uint16_t net_port) {
    bipPort().port = net_port;
}
uint32_t bip_get_broadcast_addr(void) {
    return bipPort().broadcast;
}
void bip_set_broadcast_addr(uint32_t net_address) {
    bipPort().broadcast = net_address;
}

bool bip_init(uint16_t udp_port) {
    bip_cleanup();
    const int sock = ::socket(AF_INET, SOCK_DGRAM, 0);
    if (sock < 0) return false;
    const int on = 1;
    // Another process of the gateway may hold the well-known port during a restart.
    if (::setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) < 0 ||
        ::setsockopt(sock, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) < 0) {
        ::close(sock);
        return false;
    }
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_ANY);
    local.sin_port = htons(udp_port);
    socklen_t length = sizeof local;
    if (::bind(sock, reinterpret_cast<sockaddr*>(&local), sizeof local) < 0 ||
        ::getsockname(sock, reinterpret_cast<sockaddr*>(&local), &length) < 0) {
        ::close(sock);
        return false;
    }
    bipPort().socket = sock;
    bipPort().port = local.sin_port;
    return true;
}

void bip_cleanup(void) {
    BipPort& port = bipPort();
    if (port.socket >= 0) ::close(port.socket);
    port.socket = -1;
}
