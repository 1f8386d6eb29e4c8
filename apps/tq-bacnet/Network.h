// The BACnet/IP side of tq-bacnet: the port the network options describe, and devices named
// on the command line.
#pragma once

#include "Cli.h"

#include "TQ_BACnet/Net/BipSocket.h"
#include "TQ_BACnet/Net/Client.h"
#include "TQ_BACnet/Net/DeviceOperations.h"
#include "TQ_BACnet/Net/Link.h"

#include <string>

namespace TQ {
namespace Apps {

/// An open port with its client: --interface, --port, --bbmd/--ttl, --timeout, --retries.
class Network {
public:
    explicit Network(const Args& args);

    BACnet::Net::DeviceOperations& operations() { return _operations; }
    /// Finds a device given by instance with a Who-Is for it; TimeoutError when it does not
    /// answer. Nothing to do for an address.
    void bind(const BACnet::Net::Target& device);
    /// How long a Who-Is waits for answers (--wait, seconds).
    unsigned waitMs() const { return _waitMs; }

private:
    BACnet::Net::BipSocket _socket;
    BACnet::Net::Link _link;
    BACnet::Net::Client _client;
    BACnet::Net::DeviceOperations _operations;
    unsigned _bindMs;
    unsigned _waitMs;
};

/// A device instance ("1234"), or a B/IP address ("127.0.0.2", "127.0.0.2:47808").
BACnet::Net::Target parseDevice(const std::string& text);
/// "127.0.0.2:47808" for a B/IP address; other MACs in hexadecimal; a router's network first.
std::string addressText(const BACNET_ADDRESS& address);
/// Raises the error that fits an outcome that is not done (TimeoutError, else InputError).
void check(const BACnet::Net::Outcome& outcome, const std::string& what);

}  // namespace Apps
}  // namespace TQ
