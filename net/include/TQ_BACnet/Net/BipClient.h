#pragma once

#include "TQ_BACnet/Net/Client.h"

namespace TQ {
namespace BACnet {
namespace Net {

/// A BACnet/IP client in one piece: the port's sockets, its link and the client on top.
///
///     BipClient bacnet(options);           // interface or address, UDP port 47808
///     auto devices = bacnet.client().whoIs(2000);
///     Result r = bacnet.client().requestDevice(1234, SERVICE_CONFIRMED_READ_PROPERTY, request);
class BipClient {
public:
    explicit BipClient(const PortOptions& port = PortOptions(), const ClientOptions& options = ClientOptions())
        : _socket(port), _link(_socket, "BACnet/IP client"), _client(_link, options) {}

    Client& client() { return _client; }
    Link& link() { return _link; }
    BipSocket& socket() { return _socket; }

private:
    BipSocket _socket;
    Link _link;
    Client _client;
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
