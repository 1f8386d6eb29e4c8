// The runtime end to end on real loopback sockets: the client on the process port (through the
// BVLL hooks), simulated devices, a router and a BBMD on threads of their own.
#include "NetTestSupport.h"
#include "TQTestCodec.h"

#include "TQ_BACnet/DataLink/BVLL/SmoBVLL.h"
#include "TQ_BACnet/Net/BipClient.h"
#include "tq_stack/codec.h"
#include "tq_stack/create_object.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rr.h"
#include "tq_stack/strings.h"
#include "tq_stack/wp.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <csignal>
#include <set>
#include <spawn.h>
#include <sys/wait.h>

using namespace tq_net_test;
using TQ::BACnet::DataLink::BVLL::SmoBVLL;

namespace {

using TQTest::Bytes;

template <typename Encode>
Bytes encoded(Encode encode) {
    return TQTest::encodedBy(encode);
}
using TQTest::requestOf;

Bytes rpRequest(uint32_t type, uint32_t instance, uint32_t property, uint32_t index = BACNET_ARRAY_ALL) {
    BACNET_READ_PROPERTY_DATA rp = TQTest::rpData(BACNET_OBJECT_TYPE(type), instance, BACNET_PROPERTY_ID(property));
    rp.array_index = index;
    return encoded([&](uint8_t* p) { return rp_encode_service_request(p, &rp); });
}

Bytes wpRequest(uint32_t type, uint32_t instance, uint32_t property, const Bytes& value, uint8_t priority = 0) {
    auto wp = std::make_unique<BACNET_WRITE_PROPERTY_DATA>();
    wp->object_type = BACNET_OBJECT_TYPE(type);
    wp->object_instance = instance;
    wp->object_property = BACNET_PROPERTY_ID(property);
    wp->array_index = BACNET_ARRAY_ALL;
    std::copy(value.begin(), value.end(), wp->application_data);
    wp->application_data_len = int(value.size());
    wp->priority = priority;
    return encoded([&](uint8_t* p) { return wp_encode_service_request(p, wp.get()); });
}

Bytes real(float v) { return encoded([v](uint8_t* p) { return encode_application_real(p, v); }); }
Bytes text(const char* s) {
    BACNET_CHARACTER_STRING c;
    characterstring_init_ansi(&c, s);
    return encoded([&c](uint8_t* p) { return encode_application_character_string(p, &c); });
}

// The value bytes of a ReadProperty-ACK.
Bytes valueOf(const Result& r) {
    BACNET_READ_PROPERTY_DATA ack{};
    if (r.kind != Result::ComplexAck ||
        rp_ack_decode_service_request(r.data.data(), uint32_t(r.data.size()), &ack) < 0)
        return {};
    return Bytes(ack.application_data, ack.application_data + ack.application_data_len);
}

float realOf(const Result& r) {
    const Bytes v = valueOf(r);
    float f = -1;
    decode_application_real(v.data(), uint32_t(v.size()), &f);
    return f;
}

class LoopbackTest : public ::testing::Test {
protected:
    const uint16_t port = basePort();

    // Short enough for the tests, long enough for a loaded machine.
    static ClientOptions quick(unsigned timeoutMs = 1000) {
        ClientOptions o;
        o.apduTimeoutMs = timeoutMs;
        o.retries = 2;
        return o;
    }

    void open(const std::string& ip = "127.0.0.1", uint16_t udpPort = 0, ClientOptions options = quick()) {
        bacnet = std::make_unique<BipClient>(portAt(ip, udpPort ? udpPort : port, true), options);
        socket = &bacnet->socket();
        link = &bacnet->link();
        client = &bacnet->client();
    }
    void TearDown() override { bacnet.reset(); }
    Result read(const BACNET_ADDRESS& to, uint32_t type, uint32_t instance, uint32_t property,
                uint32_t index = BACNET_ARRAY_ALL) {
        return client->request(to, SERVICE_CONFIRMED_READ_PROPERTY, rpRequest(type, instance, property, index));
    }

    std::unique_ptr<BipClient> bacnet;
    BipSocket* socket = nullptr;
    Link* link = nullptr;
    Client* client = nullptr;
};

// A frame the port sends to its own address must come back through local delivery: it does
// only if the hooks and the port see the same port state.
TEST_F(LoopbackTest, PortAndHooksShareOnePortState) {
    open();
    const uint8_t apdu[] = {0x10, 0x08};
    ASSERT_TRUE(link->send(link->ownAddress(), apdu, sizeof apdu, false));
    EXPECT_EQ(SmoBVLL::staticSocket.queued(), 1u);
    Received r;
    ASSERT_TRUE(link->receive(r, 0));
    EXPECT_EQ(Bytes(r.apdu, r.apdu + r.apduLength), Bytes(apdu, apdu + 2));
    EXPECT_EQ(Bytes(r.source.mac, r.source.mac + 6), Bytes(socket->address(), socket->address() + 6));
    EXPECT_THROW(BipSocket second(portAt("127.0.0.1", port + 1, true)), Poco::InvalidAccessException);
}

TEST_F(LoopbackTest, DiscoversThreeDevicesAndReadsByInstance) {
    DeviceThread a("127.0.0.2", port, 101), b("127.0.0.3", port, 102), c("127.0.0.4", port, 103);
    open();
    std::set<uint32_t> found;
    for (const IAm& iam : client->whoIs(500)) {
        found.insert(iam.deviceInstance);
        EXPECT_EQ(iam.address.mac[3], uint8_t(iam.deviceInstance - 99)) << iam.deviceInstance;
        EXPECT_EQ(iam.maxApdu, 1476u);
    }
    EXPECT_EQ(found, (std::set<uint32_t>{101, 102, 103}));
    // A ranged Who-Is wakes only the device asked for.
    const auto one = client->whoIs(300, 102, 102);
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].deviceInstance, 102u);
    const Result r = client->requestDevice(103, SERVICE_CONFIRMED_READ_PROPERTY,
                                           rpRequest(OBJECT_DEVICE, 103, PROP_OBJECT_NAME));
    EXPECT_EQ(valueOf(r), text("device 103"));
    EXPECT_EQ(client->requestDevice(999, SERVICE_CONFIRMED_READ_PROPERTY, rpRequest(OBJECT_DEVICE, 999, 77)).kind,
              Result::Failed);
}

TEST_F(LoopbackTest, ReadsWritesAndTheirErrors) {
    DeviceThread d("127.0.0.2", port, 7);
    open();
    const BACNET_ADDRESS to = bip("127.0.0.2", port);
    // Commanding the output: priority 8 wins over the default, relinquishing returns to it.
    EXPECT_EQ(client->request(to, SERVICE_CONFIRMED_WRITE_PROPERTY,
                              wpRequest(OBJECT_ANALOG_OUTPUT, 1, PROP_PRESENT_VALUE, real(55.5f), 8)).kind,
              Result::SimpleAck);
    EXPECT_EQ(realOf(read(to, OBJECT_ANALOG_OUTPUT, 1, PROP_PRESENT_VALUE)), 55.5f);
    EXPECT_EQ(valueOf(read(to, OBJECT_ANALOG_OUTPUT, 1, PROP_PRIORITY_ARRAY, 8)), real(55.5f));
    EXPECT_EQ(valueOf(read(to, OBJECT_ANALOG_OUTPUT, 1, PROP_PRIORITY_ARRAY, 7)), Bytes{0x00});
    client->request(to, SERVICE_CONFIRMED_WRITE_PROPERTY,
                    wpRequest(OBJECT_ANALOG_OUTPUT, 1, PROP_PRESENT_VALUE, Bytes{0x00}, 8));
    EXPECT_EQ(realOf(read(to, OBJECT_ANALOG_OUTPUT, 1, PROP_PRESENT_VALUE)), 21.5f);

    const uint8_t RP = SERVICE_CONFIRMED_READ_PROPERTY, WP = SERVICE_CONFIRMED_WRITE_PROPERTY;
    const auto E = Result::Error, R = Result::Reject;
    const uint32_t P = ERROR_CLASS_PROPERTY;
    struct Case { const char* name; uint8_t service; Bytes data; Result::Kind kind; uint32_t classOrReason, code; } cases[] = {
        {"unknown object", RP, rpRequest(OBJECT_ANALOG_INPUT, 99, PROP_PRESENT_VALUE), E, ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT},
        {"unknown property", RP, rpRequest(OBJECT_ANALOG_INPUT, 1, PROP_WEEKLY_SCHEDULE), E, P, ERROR_CODE_UNKNOWN_PROPERTY},
        {"index beyond the array", RP, rpRequest(OBJECT_ANALOG_OUTPUT, 1, PROP_PRIORITY_ARRAY, 17), E, P, ERROR_CODE_INVALID_ARRAY_INDEX},
        {"index on a single value", RP, rpRequest(OBJECT_ANALOG_INPUT, 1, PROP_PRESENT_VALUE, 1), E, P, ERROR_CODE_PROPERTY_IS_NOT_AN_ARRAY},
        {"input is read-only", WP, wpRequest(OBJECT_ANALOG_INPUT, 1, PROP_PRESENT_VALUE, real(1)), E, P, ERROR_CODE_WRITE_ACCESS_DENIED},
        {"wrong datatype", WP, wpRequest(OBJECT_ANALOG_VALUE, 1, PROP_PRESENT_VALUE, text("x")), E, P, ERROR_CODE_INVALID_DATA_TYPE},
        {"state out of range", WP, wpRequest(OBJECT_MULTI_STATE_VALUE, 1, PROP_PRESENT_VALUE, Bytes{0x21, 0x04}), E, P,
         ERROR_CODE_VALUE_OUT_OF_RANGE},
        {"priority 17", WP, wpRequest(OBJECT_ANALOG_OUTPUT, 1, PROP_PRESENT_VALUE, real(1), 16), R, REJECT_REASON_PARAMETER_OUT_OF_RANGE, 0},
        {"unknown service", SERVICE_CONFIRMED_PRIVATE_TRANSFER, Bytes{0x09, 0x01}, R, REJECT_REASON_UNRECOGNIZED_SERVICE, 0},
        {"malformed request", RP, Bytes{0x0C, 0x00}, R, REJECT_REASON_INVALID_TAG, 0},
    };
    cases[7].data.back() = 0x11;  // the priority's content octet: 17
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Result r = client->request(to, c.service, c.data);
        EXPECT_EQ(r.kind, c.kind);
        EXPECT_EQ(c.kind == E ? uint32_t(r.errorClass) : r.reason, c.classOrReason);
        if (c.kind == E) { EXPECT_EQ(uint32_t(r.errorCode), c.code); }
    }
}

TEST_F(LoopbackTest, ReadPropertyMultipleMixesValuesAndErrors) {
    DeviceThread d("127.0.0.2", port, 7);
    open();
    BACNET_PROPERTY_REFERENCE missing{PROP_WEEKLY_SCHEDULE, BACNET_ARRAY_ALL, nullptr, false, {}, {}, nullptr};
    BACNET_PROPERTY_REFERENCE value{PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, nullptr, false, {}, {}, &missing};
    BACNET_READ_ACCESS_DATA unknownObject{OBJECT_ANALOG_INPUT, 42, &value, nullptr};
    BACNET_PROPERTY_REFERENCE all{PROP_ALL, BACNET_ARRAY_ALL, nullptr, false, {}, {}, nullptr};
    BACNET_READ_ACCESS_DATA device{OBJECT_DEVICE, 7, &all, &unknownObject};
    BACNET_READ_ACCESS_DATA ai{OBJECT_ANALOG_INPUT, 1, &value, &device};
    const Bytes request = requestOf([&](uint8_t* p) { return rpm_encode_apdu(p, MAX_APDU, 0, &ai); });
    const Result r = client->request(bip("127.0.0.2", port), SERVICE_CONFIRMED_READ_PROP_MULTIPLE, request);
    ASSERT_EQ(r.kind, Result::ComplexAck);
    BACNET_READ_ACCESS_DATA ack{};
    ASSERT_GT(rpm_ack_decode_service_request(r.data.data(), uint32_t(r.data.size()), &ack), 0);
    const BACNET_PROPERTY_REFERENCE* p = ack.listOfProperties;
    ASSERT_TRUE(p && p->value && !p->has_error && p->next && p->next->has_error);
    EXPECT_EQ(p->next->error_code, ERROR_CODE_UNKNOWN_PROPERTY);
    unsigned deviceProperties = 0;
    for (const BACNET_PROPERTY_REFERENCE* q = ack.next->listOfProperties; q; q = q->next) ++deviceProperties;
    EXPECT_GE(deviceProperties, 20u);
    const BACNET_PROPERTY_REFERENCE* u = ack.next->next->listOfProperties;
    ASSERT_TRUE(u && u->has_error);
    EXPECT_EQ(u->error_code, ERROR_CODE_UNKNOWN_OBJECT);
    rpm_ack_free_all(&ack);
}

TEST_F(LoopbackTest, CreatesAndDeletesObjects) {
    DeviceThread d("127.0.0.2", port, 7);
    open();
    const BACNET_ADDRESS to = bip("127.0.0.2", port);
    const Bytes name = text("new value"), badValue = text("not a real");
    BACNET_PROPERTY_VALUE_REF values[2] = {
        {PROP_OBJECT_NAME, BACNET_ARRAY_ALL, name.data(), uint32_t(name.size()), 0},
        {PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, badValue.data(), uint32_t(badValue.size()), 0}};
    auto create = [&](bool byId, uint32_t instance, unsigned count) {
        BACNET_CREATE_OBJECT_DATA c{byId, OBJECT_ANALOG_VALUE, instance, values, 2, count};
        return client->request(to, SERVICE_CONFIRMED_CREATE_OBJECT,
                               requestOf([&](uint8_t* p) { return create_object_encode_apdu(p, 0, &c); }));
    };
    auto del = [&](uint32_t type, uint32_t instance) {
        return client->request(to, SERVICE_CONFIRMED_DELETE_OBJECT, requestOf([&](uint8_t* p) {
                                   return delete_object_encode_apdu(p, 0, BACNET_OBJECT_TYPE(type), instance);
                               }));
    };
    Result r = create(false, 0, 1);
    ASSERT_EQ(r.kind, Result::ComplexAck);
    BACNET_OBJECT_TYPE type;
    uint32_t instance = 0;
    ASSERT_GT(create_object_ack_decode(r.data.data(), uint32_t(r.data.size()), &type, &instance), 0);
    EXPECT_EQ(type, OBJECT_ANALOG_VALUE);
    EXPECT_EQ(valueOf(read(to, OBJECT_ANALOG_VALUE, instance, PROP_OBJECT_NAME)), name);

    r = create(true, 500, 2);  // the second initial value has the wrong datatype
    EXPECT_EQ(r.kind, Result::Error);
    EXPECT_EQ(r.firstFailedElement, 2u);
    EXPECT_EQ(r.errorCode, ERROR_CODE_INVALID_DATA_TYPE);
    EXPECT_EQ(read(to, OBJECT_ANALOG_VALUE, 500, PROP_OBJECT_NAME).errorCode, ERROR_CODE_UNKNOWN_OBJECT);
    r = create(true, instance, 0);
    EXPECT_EQ(r.errorCode, ERROR_CODE_OBJECT_IDENTIFIER_ALREADY_EXISTS);
    EXPECT_EQ(r.firstFailedElement, 0u);

    EXPECT_EQ(del(OBJECT_ANALOG_VALUE, instance).kind, Result::SimpleAck);
    EXPECT_EQ(del(OBJECT_ANALOG_VALUE, instance).errorCode, ERROR_CODE_UNKNOWN_OBJECT);
    EXPECT_EQ(del(OBJECT_DEVICE, 7).errorCode, ERROR_CODE_OBJECT_DELETION_NOT_PERMITTED);
}

TEST_F(LoopbackTest, ReadRangeOfTheLogBuffer) {
    DeviceThread d("127.0.0.2", port, 7);
    open();
    // request type, reference, count; the items and the first, last and more flags expected (0 items: any)
    const struct { const char* name; int type; uint32_t reference; int32_t count; uint32_t items; bool first, last, more; } cases[] = {
        {"first ten by position", RR_BY_POSITION, 1, 10, 10, true, false, false},
        {"last five backwards", RR_BY_POSITION, 100, -5, 5, false, true, false},
        {"by sequence past the end", RR_BY_SEQUENCE, 95, 20, 6, false, true, false},
        {"everything: more than one APDU holds", RR_READ_ALL, 0, 0, 0, true, false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BACNET_READ_RANGE_DATA rr{};
        rr.object_type = OBJECT_TREND_LOG;
        rr.object_instance = 1;
        rr.object_property = PROP_LOG_BUFFER;
        rr.array_index = BACNET_ARRAY_ALL;
        rr.request_type = c.type;
        rr.range.ref_index = c.reference;
        rr.count = c.count;
        const Result r = client->request(bip("127.0.0.2", port), SERVICE_CONFIRMED_READ_RANGE,
                                         encoded([&](uint8_t* p) { return rr_encode_service_request(p, &rr); }));
        ASSERT_EQ(r.kind, Result::ComplexAck);
        BACNET_READ_RANGE_DATA ack{};
        ASSERT_GT(rr_ack_decode_service_request(r.data.data(), uint32_t(r.data.size()), &ack), 0);
        EXPECT_EQ(ack.item_count, c.items ? c.items : std::max(ack.item_count, 1u));
        EXPECT_EQ(bitstring_bit(&ack.result_flags, RESULT_FLAG_FIRST_ITEM), c.first);
        EXPECT_EQ(bitstring_bit(&ack.result_flags, RESULT_FLAG_LAST_ITEM), c.last);
        EXPECT_EQ(bitstring_bit(&ack.result_flags, RESULT_FLAG_MORE_ITEMS), c.more);
    }
}

// 1,000 object identifiers take 5,000 octets: four segments at most 1,476 octets each.
TEST_F(LoopbackTest, SegmentedReadOfAThousandElementObjectList) {
    DeviceThread d("127.0.0.2", port, 7, {}, 991);
    open();
    const Result r = read(bip("127.0.0.2", port), OBJECT_DEVICE, 7, PROP_OBJECT_LIST);
    ASSERT_EQ(r.kind, Result::ComplexAck);
    const Bytes list = valueOf(r);
    std::set<uint64_t> ids;
    for (size_t at = 0; at < list.size();) {
        uint16_t type = 0;
        uint32_t instance = 0;
        const int n = decode_application_object_id(list.data() + at, uint32_t(list.size() - at), &type, &instance);
        ASSERT_GT(n, 0);
        ids.insert(uint64_t(type) << 32 | instance);
        at += size_t(n);
    }
    EXPECT_EQ(ids.size(), 1000u);
    EXPECT_TRUE(ids.count(uint64_t(OBJECT_ANALOG_VALUE) << 32 | 1090));
    EXPECT_EQ(valueOf(read(bip("127.0.0.2", port), OBJECT_DEVICE, 7, PROP_OBJECT_LIST, 0)), (Bytes{0x22, 0x03, 0xE8}));
    // A client taking too few segments gets an Abort, not a partial answer.
    ClientOptions small = quick();
    small.maxSegments = 2;
    TearDown();
    open("127.0.0.1", 0, small);
    const Result aborted = read(bip("127.0.0.2", port), OBJECT_DEVICE, 7, PROP_OBJECT_LIST);
    EXPECT_EQ(aborted.kind, Result::Abort);
    EXPECT_EQ(aborted.reason, ABORT_REASON_BUFFER_OVERFLOW);
    EXPECT_TRUE(aborted.byServer);
}

TEST_F(LoopbackTest, LostRequestIsRetriedAndASilentDeviceTimesOut) {
    SimDeviceOptions lossy, mute;
    lossy.dropFirstRequests = 1;
    mute.mute = true;
    DeviceThread a("127.0.0.2", port, 7, lossy), b("127.0.0.3", port, 8, mute);
    open("127.0.0.1", 0, quick(300));
    EXPECT_EQ(read(bip("127.0.0.2", port), OBJECT_DEVICE, 7, PROP_OBJECT_NAME).kind, Result::ComplexAck);
    EXPECT_GE(a.device.requestsSeen(), 2u);
    const auto start = Clock::now();
    EXPECT_EQ(read(bip("127.0.0.3", port), OBJECT_DEVICE, 8, PROP_OBJECT_NAME).kind, Result::Timeout);
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    // Three tries of 300 ms; the bound only guards against a hang.
    EXPECT_GE(took, 850);
    EXPECT_LT(took, 5000);
    EXPECT_EQ(b.device.requestsSeen(), 0u);
    EXPECT_EQ(client->outstanding(), 0u);
}

TEST_F(LoopbackTest, RoutedDeviceIsFoundAndReadThroughItsRouter) {
    RouterThread router("127.0.0.5", port, 55);
    open();
    const auto found = client->whoIs(400, -1, -1, Link::globalBroadcast());
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].deviceInstance, 55u);
    EXPECT_EQ(found[0].address.net, RouterThread::kNetwork);
    ASSERT_EQ(found[0].address.len, 1);
    EXPECT_EQ(found[0].address.adr[0], RouterThread::kDeviceMac);
    EXPECT_EQ(found[0].address.mac[3], 5);
    const Result r = client->requestDevice(55, SERVICE_CONFIRMED_READ_PROPERTY,
                                           rpRequest(OBJECT_DEVICE, 55, PROP_OBJECT_NAME));
    EXPECT_EQ(valueOf(r), text("routed device"));
}

// The client sits on another port (another subnet, as far as broadcasts go) and reaches the
// devices through the BBMD only.
TEST_F(LoopbackTest, ForeignDeviceReachesDevicesThroughTheBbmd) {
    DeviceThread a("127.0.0.2", port, 21), b("127.0.0.3", port, 22);
    BbmdThread bbmd("127.0.0.6", port);
    open("127.0.0.1", uint16_t(port + 1));
    EXPECT_TRUE(client->whoIs(200).empty());  // the local broadcast reaches nobody
    const BACNET_ADDRESS bbmdAt = bip("127.0.0.6", port);
    link->registerForeignDevice(bbmdAt.mac, 2);
    for (int i = 0; i < 50 && link->registration() != Link::Registration::Registered; ++i) client->poll(20);
    ASSERT_EQ(link->registration(), Link::Registration::Registered);
    std::set<uint32_t> found;
    for (const IAm& iam : client->whoIs(500)) found.insert(iam.deviceInstance);
    EXPECT_EQ(found, (std::set<uint32_t>{21, 22}));
    EXPECT_EQ(valueOf(client->requestDevice(22, SERVICE_CONFIRMED_READ_PROPERTY,
                                            rpRequest(OBJECT_DEVICE, 22, PROP_OBJECT_NAME))),
              text("device 22"));
    // Registered again before the two seconds run out.
    const auto until = Clock::now() + std::chrono::milliseconds(1300);
    while (Clock::now() < until) client->poll(50);
    EXPECT_GE(bbmd.registrations.load(), 2u);
    EXPECT_EQ(link->registration(), Link::Registration::Registered);
}

// The program a user runs: found by Who-Is, read, and stopped cleanly by SIGTERM.
TEST_F(LoopbackTest, SimulatedDeviceProgramAnswers) {
    const std::string program = TQ_BINARY_DIR "/apps/tq-sim-device/tq-sim-device";
    const std::string portText = std::to_string(port);
    const char* argv[] = {program.c_str(), "--interface", "127.0.0.7", "--port", portText.c_str(),
                          "--instance", "4242", nullptr};
    pid_t pid = 0;
    ASSERT_EQ(posix_spawn(&pid, program.c_str(), nullptr, nullptr, const_cast<char**>(argv), environ), 0);
    open();
    std::vector<IAm> found;
    for (int i = 0; i < 25 && found.empty(); ++i) found = client->whoIs(200, 4242, 4242);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].address.mac[3], 7);
    EXPECT_EQ(valueOf(read(found[0].address, OBJECT_DEVICE, 4242, PROP_OBJECT_LIST, 0)), (Bytes{0x21, 0x09}));
    ::kill(pid, SIGTERM);
    int status = -1;
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
