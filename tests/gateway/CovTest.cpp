// The gateway keeps its polling list fresh by COV subscriptions: a write to the device reaches
// the stored value by notification with no poll, a short lifetime is renewed, a device that
// refuses or never notifies is polled, and the subscriptions are cancelled when the gateway stops.
#include "../net/NetTestSupport.h"

#include "TQ_BACnet/Gateway/Gateway.h"
#include "TQ_BACnet/Net/DeviceOperations.h"

#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

using namespace tq_net_test;
namespace GW = TQ::BACnet::Gateway;
using TQ::BACnet::ValueContainer;
using TQ::BACnet::DataType::BACnetObjectPropertyReference;
using TQ::BACnet::DataType::ObjectIdentifier;

namespace {

const BACnetObjectPropertyReference kPv(ObjectIdentifier(OBJECT_ANALOG_VALUE, 1), PROP_PRESENT_VALUE,
                                        BACNET_ARRAY_ALL);

GW::Config config(uint16_t port, uint32_t device, const std::string& cov, unsigned intervalMs,
                  const Poco::TemporaryFile& db) {
    GW::Config c = GW::Config::parse(
        R"({"bacnet":{"interface":"127.0.0.1","port":)" + std::to_string(port) +
            R"(,"discoverMs":300},"database":{"maxAgeMs":300},"cov":)" + cov + R"(,
            "polling":[{"device":)" + std::to_string(device) +
            R"(,"object":"analog-value,1","property":"present-value","intervalMs":)" + std::to_string(intervalMs) +
            R"(}],"tokens":[{"sha256":")" + GW::Config::hashToken("t") + R"(","rights":"read"}]})",
        "cov test");
    c.sqliteFile = db.path();
    return c;
}

// Another client writes to the device behind the gateway's back.
void writeBehind(uint16_t port, const std::string& ip, float value) {
    BipSocket socket(portAt("127.0.0.9", port));
    Link link(socket, "other client");
    Client other(link);
    ValueContainer v;
    v.setReal(value);
    ASSERT_TRUE(DeviceOperations(other).writeProperty(Target::at(bip(ip, port)), kPv, v, 0).ok());
}

bool stored(GW::Gateway& gateway, uint32_t device, const std::string& expected) {
    const int row = gateway.store().propertyRow(device, kPv.getObjectIdentifier(), PROP_PRESENT_VALUE);
    std::string text;
    for (int i = 0; i < 100 && !(gateway.store().freshValue(row, 600000, text) && text == expected); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return text == expected;
}

template <class F>
bool eventually(F condition) {
    for (int i = 0; i < 100 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return condition();
}

}  // namespace

TEST(GatewayCov, AWriteReachesTheStoreByNotificationWithoutPolling) {
    const uint16_t port = uint16_t(basePort() + 1);
    DeviceThread device("127.0.0.2", port, 61);
    Poco::TemporaryFile db;
    auto gateway = std::make_unique<GW::Gateway>(config(port, 61, R"({"confirmed":true})", 86400000, db));
    ASSERT_EQ(gateway->discover(), std::vector<uint32_t>{61});
    const unsigned before = device.device.requestsSeen();
    gateway->startPolling();
    ASSERT_TRUE(eventually([&] { return device.device.covSubscriptions() == 1; }));
    writeBehind(port, "127.0.0.2", 77.25f);
    EXPECT_TRUE(stored(*gateway, 61, "77.25"));
    // Older than maxAgeMs, the value still answers a read: the subscription vouches for it.
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    ValueContainer read;
    bool fromStore = false;
    ASSERT_TRUE(gateway->readProperty(61, kPv, read, true, &fromStore).ok());
    EXPECT_TRUE(fromStore);
    EXPECT_FLOAT_EQ(77.25f, read.getReal(false));
    // The subscription and the other client's write; not one ReadProperty.
    EXPECT_EQ(before + 2, device.device.requestsSeen());
    EXPECT_GE(device.device.covAcknowledged(), 2u);
    gateway.reset();
    EXPECT_EQ(0u, device.device.covSubscriptions());
}

TEST(GatewayCov, AShortLifetimeIsRenewedAndRefusingOrSilentDevicesArePolled) {
    const uint16_t port = uint16_t(basePort() + 3);
    DeviceThread subscribed("127.0.0.2", port, 62);
    SimDeviceOptions full, silent;
    full.refuseCov = true;
    silent.silentCov = true;
    DeviceThread refusing("127.0.0.3", port, 63, full), mute("127.0.0.4", port, 64, silent);
    Poco::TemporaryFile db;
    GW::Config c = config(port, 62, R"({"lifetime":1})", 86400000, db);
    for (uint32_t device : {63, 64}) {
        c.polling.push_back(c.polling[0]);
        c.polling.back().device = device;
        c.polling.back().intervalMs = 100;
    }
    GW::Gateway gateway(c);
    ASSERT_EQ(gateway.discover(), (std::vector<uint32_t>{62, 63, 64}));
    gateway.startPolling();
    // Three lifetimes later the subscription still holds and still notifies.
    std::this_thread::sleep_for(std::chrono::seconds(3));
    EXPECT_EQ(1u, subscribed.device.covSubscriptions());
    writeBehind(port, "127.0.0.2", 12.5f);
    EXPECT_TRUE(stored(gateway, 62, "12.5"));
    writeBehind(port, "127.0.0.3", 5.5f);
    EXPECT_TRUE(stored(gateway, 63, "5.5"));
    writeBehind(port, "127.0.0.4", 6.5f);
    EXPECT_TRUE(stored(gateway, 64, "6.5"));
}

TEST(GatewayCov, BadOptionsAreNamed) {
    const std::string tokens = R"(,"tokens":[{"sha256":")" + std::string(64, 'a') + R"("}]})";
    for (const auto& c : {std::make_pair(R"({"cov":{"lifetime":0})", R"("cov.lifetime": expected 1 to 86400, not 0)"),
                          std::make_pair(R"({"polling":[{"object":"a","property":"b","cov":1}])",
                                         R"("polling[0].cov": expected true or false)")}) {
        try {
            GW::Config::parse(c.first + tokens, "f.json");
            ADD_FAILURE() << c.first;
        } catch (const Poco::DataFormatException& e) {
            EXPECT_NE(std::string::npos, e.message().find(c.second)) << e.message();
        }
    }
}
