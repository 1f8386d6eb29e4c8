// The service classes against bytes written out by hand from the standard's encoding rules,
// the protocol analyser's reading of everything they encode, and acknowledgements that do
// not answer what was asked.
#include "../support/TQTestCatalogue.h"
#include "../support/TQTestSupport.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadProperty.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyAck.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultiple.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultipleAck.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRange.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRangeAck.h"
#include "TQ_BACnet/Service/ObjectAccess/WriteProperty.h"
#include "TQ_BACnet/Service/RemoteDM/IAm.h"
#include "TQ_BACnet/Service/RemoteDM/TimeSync.h"
#include "TQ_BACnet/Service/RemoteDM/WhoIs.h"

#include <Poco/LocalDateTime.h>

#include <fstream>
#include <functional>
#include <memory>
#include <tuple>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Service;
using TQ::Utility::OctetBuffer;
using TQTest::Bytes;
using TQTest::hex;

namespace {

DataType::ObjectIdentifier oid(BACNET_OBJECT_TYPE type, unsigned instance) {
    return DataType::ObjectIdentifier(type, instance);
}

DataType::BACnetObjectPropertyReference ref(BACNET_OBJECT_TYPE type, unsigned instance,
                                            BACNET_PROPERTY_ID property, unsigned index = BACNET_ARRAY_ALL) {
    return DataType::BACnetObjectPropertyReference(oid(type, instance), property, index);
}

Bytes bytesOf(const OctetBuffer& buffer, std::size_t from = 0) {
    return Bytes(buffer.data() + from, buffer.data() + buffer.size());
}

Poco::Timestamp localMoment() {
    return Poco::LocalDateTime(2024, 3, 5, 14, 30, 15, 250, 0).utc().timestamp();
}

ObjectAccess::ReadPropertyMultiple rpmOf(
    std::initializer_list<std::pair<DataType::ObjectIdentifier, std::vector<BACNET_PROPERTY_ID>>> objects) {
    ObjectAccess::ReadPropertyMultiple request;
    for (const auto& object : objects) {
        DataType::ReadAccessSpecification readAccess(object.first);
        for (BACNET_PROPERTY_ID property : object.second)
            readAccess.addPropertyReference(DataType::BACnetPropertyReference(property, BACNET_ARRAY_ALL, 0));
        request.addRAS(readAccess);
    }
    return request;
}

/// Three log records of 5 March 2024 14:30:0x holding the reals 1.0, 2.0 and 3.0.
std::string logItems() {
    std::string items;
    const char* reals[] = {"3F800000", "40000000", "40400000"};
    for (int i = 1; i <= 3; ++i)
        items += "0E A4 7C 03 05 02 B4 0E 1E 0" + std::to_string(i) + " 00 0F 1E 2C " + reals[i - 1] + " 1F ";
    return items;
}

std::string readRangeAck(const std::string& count) {
    return "30 04 1A 0C 05000001 19 83 3A 05 C0 49 " + count + " 5E " + logItems() + "5F";
}

/// One encoded message: its hand-checked bytes and whether a reply is expected.
struct Message {
    const char* name;
    std::function<int(OctetBuffer&, unsigned)> encode;  // at the offset; unconfirmed ones at 0
    const char* bytes;
    bool confirmed;
};

template <class F>
Message unconfirmed(const char* name, F encode, const char* bytes) {
    return {name, [encode](OctetBuffer& b, unsigned) { return encode(b); }, bytes, false};
}

const std::vector<Message>& messages() {
    static const std::vector<Message> table = [] {
        const auto rp = [](DataType::BACnetObjectPropertyReference r, uint8_t id) {
            return [r, id](OctetBuffer& b, unsigned at) { return ObjectAccess::ReadProperty(r).encode(id, b, at); };
        };
        const auto rr = [](ObjectAccess::ReadRange::Range range) {
            return [range](OctetBuffer& b, unsigned at) {
                return ObjectAccess::ReadRange(ref(OBJECT_TREND_LOG, 1, PROP_LOG_BUFFER), range).encode(3, b, at);
            };
        };
        ObjectAccess::ReadRange::Range byTime;
        byTime.requestType = RR_BY_TIME;
        byTime.reference.time = BACnet_DateTime{{2024, 3, 5, 2}, {14, 30, 15, 25}};
        byTime.count = -5;
        static const std::string rrAck = readRangeAck("03");
        return std::vector<Message>{
            {"ReadProperty", rp(ref(OBJECT_ANALOG_INPUT, 3, PROP_PRESENT_VALUE), 7), "00 05 07 0C 0C 00000003 19 55", true},
            {"ReadProperty index", rp(ref(OBJECT_DEVICE, 4194302, PROP_OBJECT_LIST, 300), 255),
             "00 05 FF 0C 0C 023FFFFE 19 4C 2A 012C", true},
            {"ReadPropertyAck",
             [](OctetBuffer& b, unsigned at) {
                 ObjectAccess::ReadPropertyAck ack;
                 ack.setReference(ref(OBJECT_ANALOG_INPUT, 3, PROP_PRESENT_VALUE));
                 ack.getValue().setReal(21.0f);
                 return ack.encode(9, b, at);
             },
             "30 09 0C 0C 00000003 19 55 3E 44 41A80000 3F", false},
            {"WriteProperty",
             [](OctetBuffer& b, unsigned at) {
                 BACnet_Write_Property_Data data{};
                 DataWriteProperty request(data, true);
                 request.set(DataType::BACnetDeviceObjectPropertyReference(oid(OBJECT_ANALOG_OUTPUT, 1), PROP_PRESENT_VALUE,
                                                                           BACNET_ARRAY_ALL, oid(OBJECT_DEVICE, 5)),
                             OctetBuffer(hex("44 00000000").data(), 5), 8);
                 return ObjectAccess::WriteProperty::encode(request, 4, b, at);
             },
             "00 05 04 0F 0C 00400001 19 55 3E 44 00000000 3F 49 08", true},
            {"ReadPropertyMultiple",
             [](OctetBuffer& b, unsigned at) {
                 return rpmOf({{oid(OBJECT_ANALOG_INPUT, 3), {PROP_PRESENT_VALUE, PROP_OBJECT_NAME}},
                               {oid(OBJECT_ANALOG_OUTPUT, 1), {PROP_PRESENT_VALUE}}})
                     .encode(2, b, at);
             },
             "00 05 02 0E 0C 00000003 1E 09 55 09 4D 1F 0C 00400001 1E 09 55 1F", true},
            {"ReadRange default", rr(ObjectAccess::ReadRange::Range()), "00 05 03 1A 0C 05000001 19 83 3E 21 00 31 01 3F",
             true},
            {"ReadRange by time", rr(byTime), "00 05 03 1A 0C 05000001 19 83 7E A4 7C 03 05 02 B4 0E 1E 0F 19 31 FB 7F",
             true},
            unconfirmed("Who-Is", [](OctetBuffer& b) { return RemoteDM::WhoIs(100, 200).encode(b); }, "10 08 09 64 19 C8"),
            unconfirmed("I-Am", [](OctetBuffer& b) { return RemoteDM::IAm(oid(OBJECT_DEVICE, 1234), 1476, 3, 947).encode(b); },
                        "10 00 C4 020004D2 22 05C4 91 03 22 03B3"),
            unconfirmed("TimeSynchronization", [](OctetBuffer& b) { return RemoteDM::TimeSync(localMoment(), false).encode(b); },
                        "10 06 A4 7C 03 05 02 B4 0E 1E 0F 19"),
            unconfirmed("UTCTimeSynchronization",
                        [](OctetBuffer& b) { return RemoteDM::TimeSync(localMoment(), true).encode(b); },
                        "10 09 A4 7C 03 05 02 B4 0E 1E 0F 19"),
            {"ReadRangeAck",
             [](OctetBuffer& b, unsigned at) {
                 const Bytes bytes = hex(rrAck);
                 ObjectAccess::ReadRangeAck ack;
                 ack.decode(bytes.data(), static_cast<unsigned>(bytes.size()), nullptr, nullptr);
                 return ack.encode(4, b, at);
             },
             rrAck.c_str(), false}};
    }();
    return table;
}

std::string run(const std::string& command) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return out;
    char chunk[4096];
    std::size_t n;
    while ((n = fread(chunk, 1, sizeof chunk, pipe)) > 0) out.append(chunk, n);
    pclose(pipe);
    return out;
}

class Services : public ::testing::Test {
protected:
    static void SetUpTestSuite() { TQTest::Catalogue::open(); }
};

TEST_F(Services, EncodeHandCheckedBytesBehindWhatTheBufferHeld) {
    for (const Message& m : messages()) {
        SCOPED_TRACE(m.name);
        const unsigned offset = m.confirmed || std::string(m.name).find("Ack") != std::string::npos ? 6 : 0;
        const Bytes prefix = hex("A1 A2 A3 A4 A5 A6");
        OctetBuffer buffer(prefix.data(), offset);
        const int length = m.encode(buffer, offset);
        EXPECT_EQ(bytesOf(buffer, offset), hex(m.bytes));
        EXPECT_EQ(length, static_cast<int>(hex(m.bytes).size()));
        EXPECT_EQ(buffer.size(), offset + hex(m.bytes).size());
        EXPECT_EQ(Bytes(buffer.data(), buffer.data() + offset),
                  Bytes(prefix.begin(), prefix.begin() + offset));
    }
}

TEST_F(Services, TheAnalyserReadsEveryMessageWithoutComplaint) {
    if (std::system("command -v tshark >/dev/null && command -v text2pcap >/dev/null") != 0)
        GTEST_SKIP() << "tshark/text2pcap not installed";
    char dir[] = "/tmp/tq_service_tshark_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    const std::string base(dir);
    {
        std::ofstream frames(base + "/frames.txt");
        for (const Message& m : messages()) {
            OctetBuffer apdu;
            m.encode(apdu, 0);
            const std::size_t length = 6 + apdu.size();
            Bytes frame{0x81, uint8_t(m.confirmed ? 0x0A : 0x0B), uint8_t(length >> 8), uint8_t(length),
                        0x01, uint8_t(m.confirmed ? 0x04 : 0x00)};
            frame.insert(frame.end(), apdu.data(), apdu.data() + apdu.size());
            frames << "000000 " << OctetBuffer(frame.data(), frame.size()).getHexString(true) << "\n";
        }
    }
    run("text2pcap -q -u 47808,47808 " + base + "/frames.txt " + base + "/frames.pcap 2>&1");
    const std::string text =
        run("tshark -n -r " + base + "/frames.pcap -V -O bacapp,bacnet,bvlc 2>/dev/null");
    run("rm -rf " + base);
    std::vector<std::string> perFrame;
    for (std::size_t at = text.find("Frame 1:"); at != std::string::npos;) {
        const std::size_t next = text.find("\nFrame ", at + 1);
        perFrame.push_back(text.substr(at, next == std::string::npos ? next : next - at));
        at = next == std::string::npos ? next : next + 1;
    }
    ASSERT_EQ(perFrame.size(), messages().size()) << text;
    const std::vector<std::vector<std::string>> expect{
        {"readProperty (12)", "analog-input, 3", "present-value (85)"},
        {"device, 4194302", "object-list (76)", "300"},
        {"Present Value (real): 21"},
        {"writeProperty (15)", "analog-output, 1", "Priority: (Unsigned) 8"},
        {"readPropertyMultiple (14)", "object-name (77)", "analog-output, 1"},
        {"readRange (26)", "trend-log, 1", "log-buffer (131)"},
        {"readRange (26)", "March 5, 2024", "(Signed) -5"},
        {"who-Is (8)", "100", "200"},
        {"i-Am (0)", "device, 1234", "1476", "947"},
        {"timeSynchronization (6)", "March 5, 2024"},
        {"utcTimeSynchronization (9)", "March 5, 2024"},
        {"readRange (26)", "item Count: (Unsigned) 3", "real value: 3.000000", "log-buffer (131)"}};
    for (std::size_t i = 0; i < perFrame.size(); ++i) {
        SCOPED_TRACE(messages()[i].name);
        for (const std::string& line : expect[i])
            EXPECT_NE(perFrame[i].find(line), std::string::npos) << "missing " << line << "\n" << perFrame[i];
        for (const char* complaint : {"Malformed", "Expert Info", "Unknown", "undecoded"})
            EXPECT_EQ(perFrame[i].find(complaint), std::string::npos) << complaint << "\n" << perFrame[i];
    }
}

TEST_F(Services, RequestHeaders) {
    // bytes, what the ReadProperty, ReadPropertyMultiple and ReadRange decoders answer, the invoke id (-1: untouched)
    const struct { const char* bytes; int rp, rpm, rr, invokeId; } cases[] = {
        {"00 05 07 0C", 0, -1, -1, 7},                           // header alone: nothing decoded yet
        {"00 05 07 0C 0C 00000003 19 55", 7, -1, -1, 7},         // a whole ReadProperty
        {"00 05 07 0E 0C 00000003 1E 09 55 1F", -1, -1, -1, 7},  // RPM requests are not decoded
        {"00 05 07 0E", -1, 0, -1, 7},
        {"02 05 07 0C 0C 00000003 19 55", -1, -1, -1, -1},  // segmented response accepted: not ours
        {"30 07 0C", -1, -1, -1, -1},
        {"00 05", 0, 0, 0, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        const Bytes bytes = hex(c.bytes);
        uint8_t invoke = 0xEE;
        ObjectAccess::ReadProperty rp;
        EXPECT_EQ(rp.decode(bytes.data(), static_cast<unsigned>(bytes.size()), invoke), c.rp);
        EXPECT_EQ(invoke, c.invokeId < 0 ? 0xEE : c.invokeId);
        ObjectAccess::ReadPropertyMultiple rpm;
        EXPECT_EQ(rpm.decode(bytes.data(), static_cast<unsigned>(bytes.size()), invoke), c.rpm);
        ObjectAccess::ReadRange rr;
        EXPECT_EQ(rr.decode(bytes.data(), static_cast<unsigned>(bytes.size()), invoke), c.rr);
    }
    uint8_t invoke = 0;
    ObjectAccess::ReadProperty rp;
    const Bytes whole = hex("00 05 07 0C 0C 00000003 19 55");
    ASSERT_EQ(rp.decode(whole.data(), static_cast<unsigned>(whole.size()), invoke), 7);
    EXPECT_TRUE(rp.getReference() == ref(OBJECT_ANALOG_INPUT, 3, PROP_PRESENT_VALUE));
}

TEST_F(Services, ReadPropertyAckAnswersItsRequestOrKeepsWhatItHeld) {
    const ObjectAccess::ReadProperty asked(ref(OBJECT_ANALOG_INPUT, 3, PROP_PRESENT_VALUE));
    // Every refusal is -1 with the error given; the acknowledgement keeps what it held.
    const std::string pv = "30 09 0C 0C 00000003 19 55 3E 44 41A80000 3F";
    const std::tuple<const char*, std::string, BACNET_ERROR_CLASS, BACNET_ERROR_CODE> cases[] = {
        {"another object", "30 09 0C 0C 00000004 19 55 3E 44 41A80000 3F", ERROR_CLASS_SERVICES, ERROR_CODE_INCONSISTENT_PARAMETERS},
        {"another property", "30 09 0C 0C 00000003 19 4D 3E 75 03 00 41 42 3F", ERROR_CLASS_SERVICES, ERROR_CODE_INCONSISTENT_PARAMETERS},
        {"an array index", "30 09 0C 0C 00000003 19 55 29 01 3E 44 41A80000 3F", ERROR_CLASS_SERVICES, ERROR_CODE_INCONSISTENT_PARAMETERS},
        {"an error", "50 09 0C 91 02 91 20", ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY},
        {"another service", "30 09 0E 0C 00000003 19 55 3E 44 41A80000 3F", DataError::NO_ERROR_CLASS, BACNET_ERROR_CODE(65535)},
        {"a value of the wrong type", "30 09 0C 0C 00000003 19 55 3E 21 05 3F", ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE},
        {"a byte too many", pv + " 00", ERROR_CLASS_SERVICES, ERROR_CODE_INVALID_TAG},
        {"the header alone", "30 09 0C", ERROR_CLASS_SERVICES, ERROR_CODE_INVALID_TAG},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::get<0>(c));
        ObjectAccess::ReadPropertyAck ack;
        ack.setReference(ref(OBJECT_BINARY_INPUT, 1, PROP_PRESENT_VALUE));
        ack.getValue().setEnum(1);
        DataError error;
        const Bytes bytes = hex(std::get<1>(c));
        EXPECT_EQ(ack.decode(asked, bytes.data(), static_cast<unsigned>(bytes.size()), nullptr, &error), -1);
        EXPECT_EQ(error.getErrorClass(), std::get<2>(c));
        EXPECT_EQ(error.getErrorCode(), std::get<3>(c));
        EXPECT_TRUE(ack.getReference() == ref(OBJECT_BINARY_INPUT, 1, PROP_PRESENT_VALUE));
        EXPECT_EQ(ack.getValue().getEnum(), 1u);
    }

    // Every cut of a good acknowledgement is refused, and the good one is taken.
    const Bytes good = hex(pv);
    for (std::size_t n = 0; n < good.size(); ++n) {
        const TQTest::ExactBuffer cut(good, n);
        ObjectAccess::ReadPropertyAck ack;
        EXPECT_LT(ack.decode(asked, cut.data(), cut.size(), nullptr, nullptr), 0) << n;
    }
    ObjectAccess::ReadPropertyAck ack;
    uint8_t invoke = 0;
    EXPECT_EQ(ack.decode(asked, good.data(), static_cast<unsigned>(good.size()), &invoke, nullptr), 5);
    EXPECT_EQ(invoke, 9);
    EXPECT_FLOAT_EQ(ack.getValue().getReal(false), 21.0f);
}

TEST_F(Services, ReadPropertyMultipleAckAnswersItsRequest) {
    // AI 3: present-value 21.0, object-name "AB", units fails with property / unknown-property.
    const std::string ai3 =
        "0C 00000003 1E 29 55 4E 44 41A80000 4F 29 4D 4E 73 00 41 42 4F 29 75 5E 91 02 91 20 5F 1F";
    const std::string ao1 = "0C 00400001 1E 29 55 4E 44 00000000 4F 1F";
    const Bytes both = hex("30 01 0E " + ai3 + " " + ao1);
    const auto asked = rpmOf({{oid(OBJECT_ANALOG_INPUT, 3), {PROP_PRESENT_VALUE, PROP_OBJECT_NAME, PROP_UNITS}},
                              {oid(OBJECT_ANALOG_OUTPUT, 1), {PROP_PRESENT_VALUE}}});
    ObjectAccess::ReadPropertyMultipleAck ack;
    ASSERT_EQ(ack.decode(asked, both.data(), static_cast<unsigned>(both.size()), nullptr, nullptr),
              static_cast<int>(both.size()) - 3);
    ASSERT_EQ(ack.sizeRAR(), 2u);
    const auto& values = ack.beginRAR()->getPropertyValues();
    ASSERT_EQ(values.size(), 3u);
    EXPECT_FLOAT_EQ(values[0].getValue().getReal(false), 21.0f);
    std::string name;
    values[1].getValue().getCharString(name);
    EXPECT_EQ(name, "AB");
    EXPECT_EQ(values[2].getValue().getDataType(), BACNET_DT_ERROR);
    DataType::Error error;
    values[2].getValue().getValue(error);
    EXPECT_EQ(error.getErrorClass(), ERROR_CLASS_PROPERTY) << "the server's class and code";
    EXPECT_EQ(error.getErrorCode(), ERROR_CODE_UNKNOWN_PROPERTY);

    const auto ai = std::make_pair(oid(OBJECT_ANALOG_INPUT, 3), std::vector<BACNET_PROPERTY_ID>{PROP_PRESENT_VALUE, PROP_OBJECT_NAME, PROP_UNITS});
    const auto ao = std::make_pair(oid(OBJECT_ANALOG_OUTPUT, 1), std::vector<BACNET_PROPERTY_ID>{PROP_PRESENT_VALUE});
    const std::tuple<const char*, ObjectAccess::ReadPropertyMultiple, int> cases[] = {
        {"one object more asked", rpmOf({ai, ao, {oid(OBJECT_ANALOG_OUTPUT, 2), {PROP_PRESENT_VALUE}}}), -1},
        {"fewer results than asked",
         rpmOf({{ai.first, {PROP_PRESENT_VALUE, PROP_OBJECT_NAME, PROP_UNITS, PROP_DESCRIPTION}}, ao}), -1},
        {"objects swapped", rpmOf({ao, ai}), -1},
        {"all properties asked", rpmOf({{ai.first, {PROP_ALL}}, ao}), static_cast<int>(both.size()) - 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::get<0>(c));
        DataError why;
        EXPECT_EQ(ack.decode(std::get<1>(c), both.data(), static_cast<unsigned>(both.size()), nullptr, &why), std::get<2>(c));
        EXPECT_EQ(ack.sizeRAR(), 2u) << "a refused answer leaves the earlier results";
        if (std::get<2>(c) < 0) { EXPECT_EQ(why.getErrorCode(), ERROR_CODE_INCONSISTENT_PARAMETERS); }
    }
    const Bytes rpChoice = hex("30 01 0C " + ai3);
    EXPECT_EQ(ack.decode(rpChoice.data(), static_cast<unsigned>(rpChoice.size()), nullptr, nullptr), -1);
    const Bytes cut(both.begin(), both.end() - 1);
    DataError why;
    EXPECT_LT(ack.decode(asked, cut.data(), static_cast<unsigned>(cut.size()), nullptr, &why), 0);
    EXPECT_EQ(why.getErrorCode(), ERROR_CODE_INVALID_TAG);
    EXPECT_EQ(ack.sizeRAR(), 2u);
}

TEST_F(Services, ReadRangeAckItemsBecomeLogRecordsAndMustMatchTheirCount) {
    const ObjectAccess::ReadRange asked(ref(OBJECT_TREND_LOG, 1, PROP_LOG_BUFFER),
                                        ObjectAccess::ReadRange::Range());
    const auto ackWith = [](const std::string& count) { return hex(readRangeAck(count)); };
    ObjectAccess::ReadRangeAck ack;
    const Bytes three = ackWith("03");
    ASSERT_GT(ack.decode(asked, three.data(), static_cast<unsigned>(three.size()), nullptr, nullptr), 0);
    std::vector<DataType::BACnetLogRecord> records;
    ack.getResult().items.getValues(records);
    ASSERT_EQ(records.size(), 3u);
    for (int i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(records[i].getReal(false), static_cast<float>(i + 1));
    EXPECT_TRUE(DataType::BACnetLogRecord::compare(records[0], records[1]));
    EXPECT_EQ(ack.getResult().resultFlags, 0xC0);
    EXPECT_EQ(ack.getResult().itemCount, 3u);

    for (const char* count : {"02", "04"}) {
        SCOPED_TRACE(count);
        DataError why;
        const Bytes wrong = ackWith(count);
        EXPECT_EQ(ack.decode(asked, wrong.data(), static_cast<unsigned>(wrong.size()), nullptr, &why), -1);
        EXPECT_EQ(why.getErrorCode(), ERROR_CODE_INCONSISTENT_PARAMETERS);
        EXPECT_EQ(ack.getResult().itemCount, 3u);
    }
    Bytes rpChoice = three;
    rpChoice[2] = 0x0C;
    EXPECT_EQ(ack.decode(rpChoice.data(), static_cast<unsigned>(rpChoice.size()), nullptr, nullptr), -1);
}

TEST_F(Services, UnconfirmedServicesDecode) {
    RemoteDM::WhoIs whoIs;
    OctetBuffer data(hex("09 64 19 C8").data(), 4);
    EXPECT_EQ(whoIs.decode(data), 4);
    EXPECT_EQ(whoIs.getLowLimit(), 100);
    EXPECT_EQ(whoIs.getHighLimit(), 200);

    // bytes, what IAm::decode and TimeSync::decode answer, whether the time is UTC
    const struct { const char* bytes; int iAm, timeSync; bool utc; } cases[] = {
        {"10 00 C4 020004D2 22 05C4 91 03 22 03B3", 15, -1, false},
        {"00 00 C4 020004D2 22 05C4 91 03 22 03B3", -1, -1, false},  // a confirmed request
        {"10 00 C4 000004D2 22 05C4 91 03 22 03B3", -1, -1, false},  // not a device
        {"10 09 A4 7C 03 05 02 B4 0E 1E 0F 19", -1, 12, true},
        {"10 06 A4 7C 03 05 02 B4 0E 1E 0F 19", -1, 12, false},
        {"10 07 A4 7C 03 05 02 B4 0E 1E 0F 19", -1, -1, false},
        {"10 06 A4 7C 0D 05 02 B4 0E 1E 0F 19", -1, -1, false},  // month 13
        {"10 06 A4 FF FF FF FF B4 FF FF FF FF", -1, -1, false},  // nothing specified
        {"10 06", -1, -1, false},
        {"10", -1, -1, false},
        {"", -1, -1, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        const Bytes bytes = hex(c.bytes);
        const OctetBuffer buffer(bytes.data(), bytes.size());
        RemoteDM::IAm iAm;
        EXPECT_EQ(iAm.decode(buffer), c.iAm);
        if (c.iAm > 0) {
            EXPECT_EQ(iAm.getDeviceIdentifier(), oid(OBJECT_DEVICE, 1234));
            EXPECT_EQ(iAm.getMaxApdu(), 1476u);
            EXPECT_EQ(iAm.getVendorId(), 947);
        }
        RemoteDM::TimeSync sync(Poco::Timestamp(7), !c.utc);
        EXPECT_EQ(sync.decode(buffer), c.timeSync);
        if (c.timeSync > 0) {
            EXPECT_EQ(sync.isUtc(), c.utc);
            EXPECT_EQ(sync.getTimestamp(), localMoment());
        }
    }

    // A moment survives to the hundredth of a second.
    const Poco::Timestamp moment = Poco::Timestamp::fromEpochTime(1700000000) + 123456;
    OctetBuffer buffer;
    ASSERT_GT(RemoteDM::TimeSync(moment, true).encode(buffer), 0);
    RemoteDM::TimeSync back;
    ASSERT_EQ(back.decode(buffer), static_cast<int>(buffer.size()));
    EXPECT_EQ(back.getTimestamp().epochMicroseconds() / 10000, moment.epochMicroseconds() / 10000);
}

TEST_F(Services, BufferSizing) {
    OctetBuffer small(10);
    const uint8_t* before = small.data();
    ASSERT_GT(RemoteDM::WhoIs(1, 2).encode(small), 0);
    EXPECT_NE(small.data(), before) << "too little room: new storage";
    OctetBuffer large;
    large.reserve(2000);
    before = large.data();
    ASSERT_GT(RemoteDM::WhoIs(1, 2).encode(large), 0);
    EXPECT_EQ(large.data(), before);

    // Who-Is with one limit only: refused, the buffer left one APDU long.
    EXPECT_LT(RemoteDM::WhoIs(5, 3).encode(large), 1);
    EXPECT_EQ(large.size(), 1476u);

    uint8_t storage[100];
    OctetBuffer foreign = OctetBuffer::over(storage, sizeof storage);
    const ObjectAccess::ReadProperty rp(ref(OBJECT_ANALOG_INPUT, 3, PROP_PRESENT_VALUE));
    EXPECT_EQ(TQTest::messageOf<Poco::InvalidAccessException>([&] { rp.encode(1, foreign, 0); }),
              "Cannot resize buffer which does not own its storage.");
    EXPECT_EQ(TQTest::messageOf<Poco::InvalidAccessException>([&] { RemoteDM::IAm().encode(foreign); }),
              "Cannot resize buffer which does not own its storage.");

    ObjectAccess::ReadPropertyMultiple empty;
    uint8_t apdu[8] = {0};
    EXPECT_EQ(empty.encode(1, apdu, 8), 0);
    EXPECT_EQ(apdu[0], 0);
    OctetBuffer rpmAck;
    EXPECT_EQ(ObjectAccess::ReadPropertyMultipleAck().encode(1, rpmAck, 4), -1);
    EXPECT_EQ(rpmAck.size(), 4u + 1476u);
}

}  // namespace
