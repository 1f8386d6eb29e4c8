// The gateway library driven in process: a gateway on a port of its own (another subnet, as far
// as broadcasts go) finds the devices through a BBMD as a foreign device and serves them.
#include "../net/NetTestSupport.h"

#include "TQ_BACnet/Gateway/Gateway.h"
#include "TQ_BACnet/Net/DeviceOperations.h"
#include "TQ_BACnet/Gateway/Server.h"

#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/HTTPResponse.h>
#include <Poco/StreamCopier.h>
#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

using namespace tq_net_test;
namespace GW = TQ::BACnet::Gateway;

namespace {

const TQ::BACnet::DataType::BACnetObjectPropertyReference kPv(TQ::BACnet::DataType::ObjectIdentifier(OBJECT_ANALOG_VALUE, 1),
                                                              PROP_PRESENT_VALUE, BACNET_ARRAY_ALL);

// A configuration of the given sections with one read token, on a database of its own.
GW::Config configWith(const std::string& sections, const Poco::TemporaryFile& db) {
    GW::Config config = GW::Config::parse(
        "{" + sections + R"(,"tokens":[{"sha256":")" + GW::Config::hashToken("t") + R"(","rights":"read"}]})", "in-process");
    config.sqliteFile = db.path();
    return config;
}

// Another client, on a port of its own, writes `value` to the device's analog value directly; the
// gateway's stored value follows by polling.
void expectPolledAfterWrite(GW::Gateway& gateway, uint16_t port, const char* ip, uint32_t device, float value,
                            const std::string& text) {
    BipSocket socket(portAt("127.0.0.9", port));
    Link link(socket, "other client");
    Client other(link);
    TQ::BACnet::ValueContainer v;
    v.setReal(value);
    ASSERT_TRUE(DeviceOperations(other).writeProperty(Target::at(bip(ip, port)), kPv, v, 0).ok());
    const int row = gateway.store().propertyRow(device, kPv.getObjectIdentifier(), PROP_PRESENT_VALUE);
    ASSERT_GE(row, 0);
    std::string stored;
    for (int i = 0; i < 100 && !(gateway.store().freshValue(row, 60000, stored) && stored == text); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(stored, text);
}

}  // namespace

TEST(GatewayInProcess, FindsDevicesThroughTheBbmdAndServesThem) {
    const uint16_t port = uint16_t(basePort() + 3);
    DeviceThread a("127.0.0.2", port, 21), b("127.0.0.3", port, 22);
    BbmdThread bbmd("127.0.0.6", port);
    Poco::TemporaryFile db;
    const GW::Config config = configWith(R"("listen":{"port":0},"bacnet":{"interface":"127.0.0.1","port":)" +
                                             std::to_string(port + 1) + R"(,"bbmd":"127.0.0.6:)" + std::to_string(port) +
                                             R"(","discoverMs":500})", db);
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

// A value changed on the device behind the gateway's back reaches the stored tree by polling,
// and a read then answers from the store.
TEST(GatewayInProcess, PollingKeepsTheStoredValueFresh) {
    const uint16_t port = uint16_t(basePort() + 5);
    DeviceThread device("127.0.0.2", port, 31);
    Poco::TemporaryFile db;
    GW::Gateway gateway(configWith(R"("bacnet":{"interface":"127.0.0.1","port":)" + std::to_string(port) +
                                   R"(,"discoverMs":300},"database":{"maxAgeMs":60000},
            "polling":[{"device":31,"object":"analog-value,1","property":"present-value","intervalMs":100}])", db));
    ASSERT_EQ(gateway.discover(), std::vector<uint32_t>{31});
    gateway.startPolling();
    expectPolledAfterWrite(gateway, port, "127.0.0.2", 31, 77.25f, "77.25");
    TQ::BACnet::ValueContainer read;
    bool fromStore = false;
    ASSERT_TRUE(gateway.readProperty(31, kPv, read, true, &fromStore).ok());
    EXPECT_TRUE(fromStore);
    EXPECT_FLOAT_EQ(read.getReal(false), 77.25f);
}

// A device on the polling list that goes away is set aside with back-off; the other device's
// values keep arriving.
TEST(GatewayInProcess, ADeviceThatStopsAnsweringRestsWhileOthersArePolled) {
    const uint16_t port = uint16_t(basePort() + 7);
    auto gone = std::make_unique<DeviceThread>("127.0.0.2", port, 41);
    DeviceThread alive("127.0.0.3", port, 42);
    Poco::TemporaryFile db;
    GW::Gateway gateway(configWith(R"("bacnet":{"interface":"127.0.0.1","port":)" + std::to_string(port) +
                                   R"(,"discoverMs":300,"apduTimeoutMs":100,"retries":0},
            "database":{"maxAgeMs":60000},"polling":[
              {"device":41,"object":"analog-value,1","property":"present-value","intervalMs":100},
              {"device":42,"object":"analog-value,1","property":"present-value","intervalMs":100}])", db));
    ASSERT_EQ(gateway.discover(), (std::vector<uint32_t>{41, 42}));
    gone.reset();
    gateway.startPolling();
    for (int i = 0; i < 100 && !gateway.isResting(41); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_TRUE(gateway.isResting(41));
    EXPECT_FALSE(gateway.isResting(42));

    expectPolledAfterWrite(gateway, port, "127.0.0.3", 42, 5.5f, "5.5");
}
