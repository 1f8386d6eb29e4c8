// The device operations against simulated devices on loopback: each outcome a caller must tell
// apart (value, device error, reject, timeout, failure on this side) and the acknowledgements.
#include "NetTestSupport.h"

#include "../support/TQTestCatalogue.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/Net/DeviceOperations.h"

#include <gtest/gtest.h>

using namespace tq_net_test;
using TQ::BACnet::DataError;
using TQ::BACnet::ValueContainer;
using TQ::BACnet::DataType::BACnetObjectPropertyReference;
using TQ::BACnet::DataType::BACnetPropertyReference;
using TQ::BACnet::DataType::ObjectIdentifier;
using TQ::BACnet::DataType::ReadAccessSpecification;
namespace OA = TQ::BACnet::Service::ObjectAccess;

namespace {

BACnetObjectPropertyReference ref(BACNET_OBJECT_TYPE type, uint32_t instance, BACNET_PROPERTY_ID property,
                                  uint32_t index = BACNET_ARRAY_ALL) {
    return BACnetObjectPropertyReference(ObjectIdentifier(type, instance), property, index);
}

class DeviceOperationsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { TQTest::Catalogue::open(); }
    void SetUp() override {
        ClientOptions quick;
        quick.apduTimeoutMs = 200;
        quick.retries = 1;
        socket = std::make_unique<BipSocket>(portAt("127.0.0.1", port, true));
        link = std::make_unique<Link>(*socket, "client");
        client = std::make_unique<Client>(*link, quick);
        ops = std::make_unique<DeviceOperations>(*client, 300);
    }
    const uint16_t port = uint16_t(basePort() + 5);
    DeviceThread device{"127.0.0.2", port, 21};
    std::unique_ptr<BipSocket> socket;
    std::unique_ptr<Link> link;
    std::unique_ptr<Client> client;
    std::unique_ptr<DeviceOperations> ops;
};

TEST_F(DeviceOperationsTest, ReadPropertyOutcomes) {
    SimDeviceOptions muted;
    muted.mute = true;
    DeviceThread silent("127.0.0.3", port, 22, muted);
    const auto av1 = ref(OBJECT_ANALOG_VALUE, 1, PROP_PRESENT_VALUE);
    const struct { const char* name; Target target; BACnetObjectPropertyReference what; Outcome::Kind kind; DataError error; } cases[] = {
        {"by address", Target::at(bip("127.0.0.2", port)), av1, Outcome::Done, {}},
        {"by instance, bound by Who-Is", Target::device(21), av1, Outcome::Done, {}},
        {"unknown object", Target::device(21), ref(OBJECT_ANALOG_INPUT, 9, PROP_PRESENT_VALUE), Outcome::Error,
         DataError(ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT)},
        {"no such device", Target::device(4711), ref(OBJECT_DEVICE, 4711, PROP_OBJECT_NAME), Outcome::Failed, {}},
        {"device that stopped answering", Target::at(bip("127.0.0.3", port)), ref(OBJECT_DEVICE, 22, PROP_OBJECT_NAME), Outcome::Timeout, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ValueContainer value;
        const Outcome o = ops->readProperty(c.target, c.what, value);
        EXPECT_EQ(o.kind, c.kind) << o.describe();
        if (c.kind == Outcome::Error) {
            EXPECT_EQ(o.error, c.error);
        }
        if (c.kind == Outcome::Done) {
            EXPECT_FLOAT_EQ(value.getReal(false), 21.5f);
        }
    }
}

TEST_F(DeviceOperationsTest, WritesThatFail) {
    // A write that succeeds and reads back: through the gateway and the tool, end to end.
    const Target d = Target::device(21);
    const auto pv = ref(OBJECT_ANALOG_OUTPUT, 1, PROP_PRESENT_VALUE);

    const TQ::Utility::OctetBuffer text(std::string("75 02 00 78"));  // character string "x"
    const struct { const char* name; BACnetObjectPropertyReference what; uint8_t priority; Outcome::Kind kind; } cases[] = {
        {"read-only input", ref(OBJECT_ANALOG_INPUT, 1, PROP_PRESENT_VALUE), 0, Outcome::Error},
        {"priority 17 never leaves", pv, 17, Outcome::Failed},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ops->writeProperty(d, c.what, text, c.priority).kind, c.kind);
    }
    EXPECT_EQ(ops->writeProperty(d, pv, TQ::Utility::OctetBuffer(), 8).kind, Outcome::Failed);
}

TEST_F(DeviceOperationsTest, ReadPropertyMultipleAndReadRange) {
    OA::ReadPropertyMultiple rpm;
    ReadAccessSpecification ai(ObjectIdentifier(OBJECT_ANALOG_INPUT, 1));
    ai.addPropertyReference(BACnetPropertyReference(PROP_OBJECT_NAME, BACNET_ARRAY_ALL, 0));
    ai.addPropertyReference(BACnetPropertyReference(PROP_WEEKLY_SCHEDULE, BACNET_ARRAY_ALL, 0));
    rpm.addRAS(ai);
    OA::ReadPropertyMultipleAck ack;
    const Outcome o = ops->readPropertyMultiple(Target::device(21), rpm, ack);
    ASSERT_TRUE(o.ok()) << o.describe();
    ASSERT_EQ(ack.sizeRAR(), 1u);
    EXPECT_EQ(ack.beginRAR()->getPropertyValues().size(), 2u);
    EXPECT_FALSE(ops->readPropertyMultiple(Target::device(21), OA::ReadPropertyMultiple(), ack).ok());

    OA::ReadRange::Range last10;
    last10.requestType = RR_BY_POSITION;
    last10.reference.index = 100;
    last10.count = -10;
    OA::ReadRangeAck rr;
    ASSERT_TRUE(ops->readRange(Target::device(21), OA::ReadRange(ref(OBJECT_TREND_LOG, 1, PROP_LOG_BUFFER), last10), rr).ok());
    EXPECT_EQ(rr.getResult().itemCount, 10u);
    EXPECT_EQ(ops->readRange(Target::device(21), OA::ReadRange(ref(OBJECT_TREND_LOG, 7, PROP_LOG_BUFFER), last10), rr).kind,
              Outcome::Error);
}

TEST_F(DeviceOperationsTest, DiscoveryAndTimeSync) {
    const auto found = ops->whoIs(300);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].deviceInstance, 21u);
    const Target d = Target::device(21), nobody = Target::device(4711);
    EXPECT_TRUE(ops->timeSync(&d, Poco::Timestamp(), true).ok());
    EXPECT_TRUE(ops->timeSync(nullptr, Poco::Timestamp(), false).ok());
    EXPECT_EQ(ops->timeSync(&nobody, Poco::Timestamp(), false).kind, Outcome::Failed);
}

}  // namespace
