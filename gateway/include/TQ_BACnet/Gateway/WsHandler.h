#pragma once

#include "TQ_BACnet/Gateway/Tokens.h"

#include <Poco/Net/HTTPRequestHandler.h>

namespace TQ {
namespace BACnet {
namespace Gateway {

class Gateway;

/// One BACnet/WS request: token, limits, path and options, the service against the device or
/// the stored tree, and the answer in the requested format and compression; every failure is
/// a web-service error with its HTTP status.
class WsHandler : public Poco::Net::HTTPRequestHandler {
public:
    WsHandler(Gateway& gateway, const Tokens& tokens) : _gateway(gateway), _tokens(tokens) {}
    void handleRequest(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response) override;

private:
    Gateway& _gateway;
    const Tokens& _tokens;
};

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
