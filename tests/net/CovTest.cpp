// COV subscriptions between a client and the simulated device on loopback: notifications follow
// writes (confirmed and unconfirmed), a renewed subscription outlives its lifetime, a cancelled
// or expired one is silent, and what cannot be subscribed is refused.
#include "NetTestSupport.h"

#include "TQ_BACnet/Net/Cov.h"
#include "TQ_BACnet/Net/DeviceOperations.h"
#include "tq_stack/codec.h"

#include <gtest/gtest.h>

using namespace tq_net_test;
using TQ::BACnet::ValueContainer;
using TQ::BACnet::DataType::BACnetObjectPropertyReference;
using TQ::BACnet::DataType::ObjectIdentifier;

namespace {

class CovTest : public ::testing::Test {
protected:
    CovTest() : socket(portAt("127.0.0.9", port)), link(socket, "subscriber"), client(link, quick()) {
        client.onCovNotification([this](const CovNotification& n) { notes.push_back(n); });
    }
    static ClientOptions quick() {
        ClientOptions o;
        o.apduTimeoutMs = 1000;
        o.retries = 2;
        return o;
    }
    // Polls until `count` notifications came or `ms` passed.
    bool waitFor(std::size_t count, int ms = 3000) {
        const auto end = Clock::now() + std::chrono::milliseconds(ms);
        while (notes.size() < count && Clock::now() < end) client.poll(20);
        return notes.size() >= count;
    }
    void write(const BACNET_ADDRESS& to, float value) {
        ValueContainer v;
        v.setReal(value);
        ASSERT_TRUE(DeviceOperations(client).writeProperty(Target::at(to), pv, v, 0).ok());
    }
    // The value as sent (typing it through the catalogue is the gateway test's part).
    static float presentValue(const CovNotification& n) {
        const CovValue* found = n.find(PROP_PRESENT_VALUE);
        float f = -1;
        if (found) decode_application_real(found->value.data(), uint32_t(found->value.size()), &f);
        return f;
    }

    const uint16_t port = basePort();
    const BACNET_ADDRESS device = bip("127.0.0.2", port);
    const BACnetObjectPropertyReference pv{ObjectIdentifier(OBJECT_ANALOG_VALUE, 1), PROP_PRESENT_VALUE,
                                           BACNET_ARRAY_ALL};
    BipSocket socket;
    Link link;
    Client client;
    std::vector<CovNotification> notes;
};

}  // namespace

TEST_F(CovTest, NotificationsFollowWritesUntilCancelled) {
    DeviceThread sim("127.0.0.2", port, 51);
    for (const bool confirmed : {false, true}) {
        SCOPED_TRACE(confirmed ? "confirmed" : "unconfirmed");
        notes.clear();
        ASSERT_EQ(Result::SimpleAck, client.subscribeCov(device, 7, OBJECT_ANALOG_VALUE, 1, confirmed, 0).kind);
        // The first notification tells the value at once.
        ASSERT_TRUE(waitFor(1));
        EXPECT_EQ(confirmed, notes[0].confirmed);
        EXPECT_EQ(7u, notes[0].processId);
        EXPECT_EQ(51u, notes[0].device);
        EXPECT_EQ(0u, notes[0].timeRemaining);
        EXPECT_NE(nullptr, notes[0].find(PROP_STATUS_FLAGS));
        write(device, confirmed ? 42.5f : 17.25f);
        ASSERT_TRUE(waitFor(2));
        EXPECT_FLOAT_EQ(confirmed ? 42.5f : 17.25f, presentValue(notes[1]));
        EXPECT_EQ(1u, sim.device.covSubscriptions());
    }
    // Both confirmed notifications were acknowledged by the client.
    for (int i = 0; i < 50 && sim.device.covAcknowledged() < 2; ++i) client.poll(20);
    EXPECT_EQ(2u, sim.device.covAcknowledged());

    ASSERT_EQ(Result::SimpleAck, client.cancelCov(device, 7, OBJECT_ANALOG_VALUE, 1).kind);
    EXPECT_EQ(0u, sim.device.covSubscriptions());
    notes.clear();
    write(device, 1.0f);
    EXPECT_FALSE(waitFor(1, 300));
}

TEST_F(CovTest, ARenewedSubscriptionOutlivesItsLifetimeAndAnotherExpires) {
    DeviceThread sim("127.0.0.2", port + 1, 52);
    const BACNET_ADDRESS at = bip("127.0.0.2", port + 1);
    ASSERT_EQ(Result::SimpleAck, client.subscribeCov(at, 1, OBJECT_ANALOG_VALUE, 1, false, 1).kind);
    ASSERT_EQ(Result::SimpleAck, client.subscribeCov(at, 2, OBJECT_ANALOG_VALUE, 1, false, 1).kind);
    ASSERT_TRUE(waitFor(2));
    EXPECT_EQ(1u, notes[0].timeRemaining);
    // Renewed at 80 % of the lifetime, twice: 1.6 s later the other one is gone.
    for (int round = 0; round < 2; ++round) {
        waitFor(1000, 800);
        ASSERT_EQ(Result::SimpleAck, client.subscribeCov(at, 1, OBJECT_ANALOG_VALUE, 1, false, 1).kind);
    }
    // The last renewal's first notification comes meanwhile.
    waitFor(1000, 300);
    EXPECT_EQ(1u, sim.device.covSubscriptions());
    notes.clear();
    write(at, 3.5f);
    ASSERT_TRUE(waitFor(1));
    EXPECT_FALSE(waitFor(2, 300));
    EXPECT_EQ(1u, notes[0].processId);
    EXPECT_FLOAT_EQ(3.5f, presentValue(notes[0]));
}

TEST_F(CovTest, WhatCannotBeSubscribedIsRefused) {
    DeviceThread sim("127.0.0.2", port + 2, 53);
    SimDeviceOptions full;
    full.refuseCov = true;
    DeviceThread busy("127.0.0.3", port + 2, 54, full);
    const struct {
        BACNET_ADDRESS to;
        BACNET_OBJECT_TYPE type;
        uint32_t instance;
        BACNET_ERROR_CLASS errorClass;
        BACNET_ERROR_CODE errorCode;
    } cases[] = {
        {bip("127.0.0.2", port + 2), OBJECT_ANALOG_VALUE, 99, ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT},
        {bip("127.0.0.2", port + 2), OBJECT_TREND_LOG, 1, ERROR_CLASS_OBJECT,
         ERROR_CODE_OPTIONAL_FUNCTIONALITY_NOT_SUPPORTED},
        {bip("127.0.0.3", port + 2), OBJECT_ANALOG_VALUE, 1, ERROR_CLASS_RESOURCES,
         ERROR_CODE_NO_SPACE_TO_ADD_LIST_ELEMENT},
    };
    for (const auto& c : cases) {
        const Result r = client.subscribeCov(c.to, 1, c.type, c.instance, true, 60);
        EXPECT_EQ(Result::Error, r.kind);
        EXPECT_EQ(c.errorClass, r.errorClass);
        EXPECT_EQ(c.errorCode, r.errorCode);
    }
    EXPECT_EQ(0u, sim.device.covSubscriptions() + busy.device.covSubscriptions());
    // A notification that does not decode is rejected, not acknowledged.
    BipSocket otherSocket(portAt("127.0.0.10", port + 2));
    Link otherLink(otherSocket, "sender");
    Client sender(otherLink, quick());
    const uint8_t garbage[] = {0x09, 0x01, 0x4E};
    const int h = sender.submit(link.ownAddress(), SERVICE_CONFIRMED_COV_NOTIFICATION, garbage, sizeof garbage);
    for (int i = 0; i < 200 && !sender.isDone(h); ++i) {
        client.poll(5);
        sender.poll(5);
    }
    EXPECT_EQ(Result::Reject, sender.take(h).kind);
    EXPECT_TRUE(notes.empty());
}
