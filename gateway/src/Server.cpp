#include "TQ_BACnet/Gateway/Server.h"

#include "TQ_BACnet/Gateway/Gateway.h"
#include "TQ_BACnet/Gateway/WsHandler.h"

#include <Poco/Net/Context.h>
#include <Poco/Net/HTTPRequestHandlerFactory.h>
#include <Poco/Net/HTTPServer.h>
#include <Poco/Net/HTTPServerParams.h>
#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/SSLManager.h>
#include <Poco/Net/SecureServerSocket.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/ThreadPool.h>

namespace TQ {
namespace BACnet {
namespace Gateway {

extern const char* const kWebPage;

namespace {

class PageHandler : public Poco::Net::HTTPRequestHandler {
public:
    void handleRequest(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response) override {
        if (request.getMethod() != "GET" && request.getMethod() != "HEAD") {
            response.setStatus(Poco::Net::HTTPResponse::HTTP_METHOD_NOT_ALLOWED);
            response.setContentLength(0);
            response.send();
            return;
        }
        const std::string page(kWebPage);
        response.setContentType("text/html; charset=utf-8");
        response.set("Cache-Control", "no-cache");
        response.setContentLength(std::streamsize(page.size()));
        response.send() << page;
    }
};

class Factory : public Poco::Net::HTTPRequestHandlerFactory {
public:
    Factory(Gateway& gateway, const Config& config) : _gateway(gateway), _tokens(config.tokens) {}
    Poco::Net::HTTPRequestHandler* createRequestHandler(const Poco::Net::HTTPServerRequest& request) override {
        const std::string& uri = request.getURI();
        if (uri == "/" || uri == "/index.html") return new PageHandler;
        return new WsHandler(_gateway, _tokens);
    }

private:
    Gateway& _gateway;
    Tokens _tokens;
};

Poco::ThreadPool& pool(unsigned threads) {
    // Poco's server takes its workers from a pool that must outlive it: one per process.
    static Poco::ThreadPool workers(2, int(threads) + 2);
    return workers;
}

Poco::Net::ServerSocket listening(const Config& config) {
    const Poco::Net::SocketAddress address(config.listenAddress, config.listenPort);
    if (config.tlsCertificate.empty()) return Poco::Net::ServerSocket(address, 128);
    Poco::Net::initializeSSL();
    Poco::Net::Context::Ptr context =
        new Poco::Net::Context(Poco::Net::Context::TLS_SERVER_USE, config.tlsKey, config.tlsCertificate, "",
                               Poco::Net::Context::VERIFY_NONE);
    return Poco::Net::SecureServerSocket(address, 128, context);
}

}  // namespace

Server::Server(Gateway& gateway, const Config& config) {
    auto* params = new Poco::Net::HTTPServerParams;
    params->setMaxThreads(int(config.threads));
    params->setMaxQueued(int(config.maxQueued));
    // A client that sends nothing for this long loses its connection and its worker.
    params->setTimeout(Poco::Timespan(Poco::Timespan::TimeDiff(config.clientTimeoutMs) * 1000));
    params->setKeepAlive(true);
    params->setKeepAliveTimeout(Poco::Timespan(Poco::Timespan::TimeDiff(config.clientTimeoutMs) * 1000));
    params->setMaxKeepAliveRequests(0);
    params->setServerName("tq-gateway");
    _server = std::make_unique<Poco::Net::HTTPServer>(new Factory(gateway, config), pool(config.threads),
                                                      listening(config), params);
}

Server::~Server() { stop(); }

void Server::start() { _server->start(); }

void Server::stop() {
    if (_server) _server->stopAll(true);
}

uint16_t Server::port() const { return _server->port(); }

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
