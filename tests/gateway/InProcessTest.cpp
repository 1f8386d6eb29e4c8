// The gateway library driven in process: a gateway on a port of its own (another subnet, as far
// as broadcasts go) finds the devices through a BBMD as a foreign device and serves them.
#include "../net/NetTestSupport.h"

#include "TQ_BACnet/Gateway/Gateway.h"
#include "TQ_BACnet/Gateway/Server.h"

#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/HTTPResponse.h>
#include <Poco/StreamCopier.h>
#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

using namespace tq_net_test;
namespace GW = TQ::BACnet::Gateway;

TEST(GatewayInProcess, FindsDevicesThroughTheBbmdAndServesThem) {
    const uint16_t port = uint16_t(basePort() + 3);
    DeviceThread a("127.0.0.2", port, 21), b("127.0.0.3", port, 22);
    BbmdThread bbmd("127.0.0.6", port);
    Poco::TemporaryFile db;
    GW::Config config = GW::Config::parse(R"({"listen":{"port":0},"bacnet":{"interface":"127.0.0.1","port":)" +
                                              std::to_string(port + 1) + R"(,"bbmd":"127.0.0.6:)" +
                                              std::to_string(port) + R"(","discoverMs":500},
            "tokens":[{"sha256":")" + GW::Config::hashToken("t") + R"(","rights":"read"}]})",
                                          "in-process");
    config.sqliteFile = db.path();
    GW::Gateway gateway(config);
    GW::Server server(gateway, config);
    server.start();
    EXPECT_EQ(gateway.discover(), (std::vector<uint32_t>{21, 22}));
    EXPECT_GE(bbmd.registrations.load(), 1u);

    Poco::Net::HTTPClientSession session("127.0.0.1", server.port());
    Poco::Net::HTTPRequest request("GET", "/bacnetws/.bacnet/.local/22/device,22/object-name?alt=json");
    request.set("Authorization", "Bearer t");
    session.sendRequest(request);
    Poco::Net::HTTPResponse response;
    std::string body;
    Poco::StreamCopier::copyToString(session.receiveResponse(response), body);
    EXPECT_EQ(response.getStatus(), 200);
    EXPECT_EQ(body, R"({"$value":"device 22"})");
    server.stop();
}
