#include "TQ_BACnet/DataLink/BVLL/bvll.h"

#include "TQ_BACnet/DataLink/BVLL/SmoBVLL.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"

using TQ::BACnet::DataLink::BVLL::SmoBVLL;

extern "C" {

int bvllRcvFromSocket(int socket, uint8_t* buffer, unsigned length, int flags, sockaddr* source,
                      socklen_t* sourceLength) {
    return SmoBVLL::staticSocket.rcv(socket, buffer, length, flags, source, sourceLength);
}

int bvllWaitForData(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
    return SmoBVLL::staticSocket.wait(count, read, write, except, timeout);
}

int bvllSndToSocket(int socket, const uint8_t* frame, unsigned length, int flags, const sockaddr* destination,
                    socklen_t destinationLength) {
    return SmoBVLL::staticSocket.snd(socket, frame, length, flags, destination, destinationLength);
}

int bvllUpdateBipAddress(unsigned deviceInstance, const BACnet_Device_Address* address) {
    if (!address) return 0;
    return SmoBVLL::staticSocket.updateBipAddress(deviceInstance, TQ::BACnet::DataType::BACnetAddress(*address))
               ? 1
               : 0;
}
}
