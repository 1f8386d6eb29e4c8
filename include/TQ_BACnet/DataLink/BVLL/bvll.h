/* The socket calls a BACnet/IP port layer makes in place of recvfrom, select and sendto, and
 * the address change of a served device. Each forwards to SmoBVLL::staticSocket. */
#pragma once

#include <sys/select.h>
#include <sys/socket.h>

#include <cstdint>

struct BACnet_Device_Address;

extern "C" {
int bvllRcvFromSocket(int socket, uint8_t* buffer, unsigned length, int flags, struct sockaddr* source,
                      socklen_t* sourceLength);
int bvllWaitForData(int count, fd_set* read, fd_set* write, fd_set* except, struct timeval* timeout);
int bvllSndToSocket(int socket, const uint8_t* frame, unsigned length, int flags,
                    const struct sockaddr* destination, socklen_t destinationLength);
/* 0 for a null address or a device instance no device manager serves, 1 otherwise. */
int bvllUpdateBipAddress(unsigned deviceInstance, const struct BACnet_Device_Address* address);
}
