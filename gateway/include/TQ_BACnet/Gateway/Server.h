#pragma once

#include "TQ_BACnet/Gateway/Config.h"

#include <memory>

namespace Poco {
namespace Net {
class HTTPServer;
}
}  // namespace Poco

namespace TQ {
namespace BACnet {
namespace Gateway {

class Gateway;

/// The HTTP side: Poco's HTTP server (HTTPS when the configuration names a certificate and
/// key) with the BACnet/WS handler and the web page, bounded as the configuration says.
class Server {
public:
    /// Listens at once; Poco::Net exceptions when the address cannot be bound.
    Server(Gateway& gateway, const Config& config);
    ~Server();
    void start();
    void stop();
    /// The port listened on (the configured one, or the one given for port 0).
    uint16_t port() const;

private:
    std::unique_ptr<Poco::Net::HTTPServer> _server;
};

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
