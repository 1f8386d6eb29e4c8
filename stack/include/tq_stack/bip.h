// The BACnet/IP port of the process: its UDP socket, own IPv4 address, own UDP port and
// broadcast address. Addresses are in_addr.s_addr values and the port is as it stands in
// sin_port, both in network byte order and compared as stored. Not thread safe: the host's
// port layer owns these globals.
#pragma once

#include <cstdint>

// The socket descriptor, -1 while the port is closed.
int bip_socket(void);
void bip_set_socket(int sock);

uint32_t bip_get_addr(void);
void bip_set_addr(uint32_t net_address);
uint16_t bip_get_port(void);
void bip_set_port(uint16_t net_port);
uint32_t bip_get_broadcast_addr(void);
void bip_set_broadcast_addr(uint32_t net_address);

// Opens a UDP socket with broadcast enabled, bound to all interfaces on udp_port (host byte
// order; 0 picks a free port), and records socket and port. An open port is closed first.
// False when the socket cannot be made or bound.
bool bip_init(uint16_t udp_port);
// Closes the socket (if open); address, port and broadcast address stay.
void bip_cleanup(void);
