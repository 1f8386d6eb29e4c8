#include "TQ_BACnet/DataLink/BVLL/BipPort.h"

#include "tq_stack/bip.h"

namespace TQ {
namespace BACnet {
namespace DataLink {
namespace BVLL {

int BipPort::getSocket() { return bip_socket(); }
void BipPort::setSocket(int socket) { bip_set_socket(socket); }
uint32_t BipPort::getAddress() { return bip_get_addr(); }
void BipPort::setAddress(uint32_t address) { bip_set_addr(address); }
uint16_t BipPort::getPort() { return bip_get_port(); }
void BipPort::setPort(uint16_t port) { bip_set_port(port); }
uint32_t BipPort::getBroadcastAddress() { return bip_get_broadcast_addr(); }
void BipPort::setBroadcastAddress(uint32_t address) { bip_set_broadcast_addr(address); }

}  // namespace BVLL
}  // namespace DataLink
}  // namespace BACnet
}  // namespace TQ
