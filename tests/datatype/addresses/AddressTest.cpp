#include "TQTestCatalogue.h"
#include "TQTestSupport.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/BACnetAddressBinding.h"
#include "TQ_BACnet/DataType/BACnetRecipient.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/ReadAccessSpecification.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using TQ::Utility::OctetBuffer;
using namespace TQTest;

namespace {

const Bytes ipMac = hex("C0A8010A BAC0");                   // 192.168.1.10:47808
const Bytes localBytes = hex("21 00 65 06 C0A8010A BAC0");  // Unsigned 0, octet string of 6
const BACnetRecipient device12(ObjectIdentifier(OBJECT_DEVICE, 12));

BACnetAddress address(uint16_t network, const Bytes& mac, const Bytes& remote = {}) {
    const OctetBuffer remoteBytes(remote.data(), remote.size());
    return BACnetAddress(OctetBuffer(mac.data(), mac.size()), network, &remoteBytes);
}

DataApplicationValue octets(const Bytes& bytes) {
    DataApplicationValue v;
    v.setOctetString(OctetString(bytes.data(), bytes.size()));
    return v;
}

// Class property (2), code unknown-property (32), each an application-tagged Enumerated.
const Bytes unknownProperty = hex("91 02 91 20");

int encodeUnknownProperty(OctetBuffer& buffer, unsigned offset) {
    return Error::encode(buffer, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY, offset);
}
/// A record as the codec's decoder leaves it: nodes and values on the heap, released by the
/// codec's own function, so ownership is what the code under test meets in the field.
struct Record {
    BACnet_Read_Access_Data first{};
    BACNET_PROPERTY_REFERENCE* last = nullptr;

    Record(BACNET_OBJECT_TYPE type, uint32_t instance) {
        first.object_type = type;
        first.object_instance = instance;
    }
    ~Record() { rpm_ack_free_all(&first); }

    /// A result node with the given values (none: an empty value).
    Record& add(unsigned property, uint32_t index, std::vector<DataApplicationValue> values = {}) {
        auto* node =
            static_cast<BACNET_PROPERTY_REFERENCE*>(std::calloc(1, sizeof(BACNET_PROPERTY_REFERENCE)));
        node->propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(property);
        node->propertyArrayIndex = index;
        (last ? last->next : first.listOfProperties) = node;
        last = node;
        for (auto v = values.rbegin(); v != values.rend(); ++v) {
            auto* copy = static_cast<BACNET_APPLICATION_DATA_VALUE*>(
                std::malloc(sizeof(BACNET_APPLICATION_DATA_VALUE)));
            *copy = *v;
            copy->next = node->value;
            node->value = copy;
        }
        return *this;
    }
    Record& addError(unsigned property, BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode) {
        add(property, BACNET_ARRAY_ALL);
        last->has_error = true;
        last->error_class = errorClass;
        last->error_code = errorCode;
        return *this;
    }
};

}  // namespace

TEST(BACnetAddress, EncodesTheOctetsOfItsNetwork) {
    const std::pair<BACnetAddress, const char*> rows[] = {
        {address(0, ipMac, {0x03}), "21 00 65 06 C0A8010A BAC0"},  // a local address has no router side
        {address(0xFFFF, ipMac, {0x03}), "22 FFFF 60"},
        {address(5, {0x0C}, {0x03}), "21 05 61 03"},
    };
    for (const auto& row : rows) EXPECT_EQ(encoded(row.first), hex(row.second)) << row.second;
    EXPECT_EQ(address(0, ipMac).encode(static_cast<uint8_t*>(nullptr)), 10);
    OctetBuffer buffer(Bytes{0xAA}.data(), 1);
    EXPECT_EQ(address(5, {0x0C}, {0x03}).encode(buffer), 5);
    EXPECT_EQ(buffer.getHexString(), "AA21056103");
    uint8_t framed[16];
    ASSERT_EQ(address(5, {0x0C}, {0x03}).encodeContext(framed, 1), 6);
    EXPECT_EQ(Bytes(framed, framed + 6), hex("1E 21 05 61 03 1F"));
    // Lengths the arrays cannot hold are cut to seven octets.
    BACnetAddress a;
    const uint8_t nine[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    a.setMAC(nine, 9);
    EXPECT_EQ(Bytes(a.getMAC(), a.getMAC() + a.getMACLength()), (Bytes{1, 2, 3, 4, 5, 6, 7}));
    BACnet_Device_Address record{};
    record.len = 200;
    EXPECT_EQ(BACnetAddress(record).getAddrLength(), 7);
}

TEST(BACnetAddress, DecodesByNetworkAndRefusesHostileBytes) {
    BACnetAddress a;
    EXPECT_EQ(decodeExactly(a, localBytes, localBytes.size()), 10);
    EXPECT_EQ(a, address(0, ipMac));
    // A remote network's octets are the router-side address; the MAC stays.
    EXPECT_EQ(decodeExactly(a, hex("21 05 61 03"), 4), 4);
    EXPECT_EQ(std::make_tuple(5, Bytes{0x03}, 6),
              std::make_tuple(int(a.getNetwork()), Bytes(a.getAddr(), a.getAddr() + a.getAddrLength()),
                              int(a.getMACLength())));
    // An empty octet string changes only the network.
    EXPECT_EQ(decodeExactly(a, hex("22 FFFF 60"), 4), 4);
    EXPECT_TRUE(a.getNetwork() == 0xFFFF && a.getAddrLength() == 1);
    // More than seven octets are consumed, seven kept; trailing bytes are the caller's.
    EXPECT_EQ(decodeExactly(a, hex("21 05 65 09 010203040506070809 3F"), 14), 13);
    EXPECT_EQ(a.getAddrLength(), 7);
    EXPECT_EQ(BACnetAddress().decode(localBytes.data()), 10);
    const BACnetAddress original = address(5, {0x0C}, {0x03});
    const std::pair<const char*, int> hostile[] = {
        {"91 00 60", -2},        // enumerated where the network belongs
        {"21 00 71 00", -2},     // character string where the octets belong
        {"09 00 60", -2},        // context [0], not application Unsigned
        {"21 00 0E", -2},        // an opening tag
        {"24 00010000 60", -1},  // network above 65535
        {"21 00 65 FE", -1},     // extended length cut off (other cuts: the sweep below)
    };
    for (const auto& c : hostile) {
        BACnetAddress kept(original);
        EXPECT_EQ(decodeExactly(kept, hex(c.first), hex(c.first).size()), c.second) << c.first;
        EXPECT_EQ(kept, original) << c.first;
    }
    expectEveryCutRefused(original, localBytes);
    expectMutationsStayInBounds<BACnetAddress>(localBytes);
}

TEST(BACnetAddress, PrintsNetworkMacAndRouterSide) {
    const std::pair<Bytes, std::string> texts[] = {
        {ipMac, "192.168.1.10:47808"},
        {{0x05}, "5"},
        {hex("C0A8010A 0000"), "192.168.1.10"},  // port 0 is not shown
        {hex("0A000001 010001"), "10.0.0.1:65537"},
        {{}, ""},
    };
    std::string text = "stale";
    for (const auto& t : texts) {
        BACnetAddress::getString(t.first.data(), static_cast<uint8_t>(t.first.size()), text);
        EXPECT_EQ(text, t.second);
    }
    address(0, ipMac).getString(text, false);
    EXPECT_EQ(text, "0:192.168.1.10:47808");
    std::ostringstream stream;
    stream << address(5, {12}, {3});
    EXPECT_EQ(stream.str(), "5:12 Router: 3");
    // The base's text form is the hexadecimal encoding, and reads back.
    address(5, {0x0C}, {0x03}).getString(text);
    EXPECT_EQ(text, "21056103");
    BACnetAddress back;
    EXPECT_TRUE(back.setString("21 05 61 03") && back.getNetwork() == 5);
    EXPECT_FALSE(back.setString("2105610"));
}

TEST(BACnetAddress, BuildsFromAndBreaksIntoPrimitives) {
    std::vector<DataApplicationValue> chain = {uintValue(0), octets(ipMac), uintValue(99)};
    link(chain);
    const DataApplicationValue* next = nullptr;
    const BACnetAddress a(DataPropertyInObject0(), chain[0], &next);
    EXPECT_TRUE(a == address(0, ipMac) && next == &chain[2]);
    std::vector<DataApplicationValue> primitives;
    a.getBACnetPrimitives(primitives);
    EXPECT_EQ(primitives, std::vector<DataApplicationValue>(chain.begin(), chain.begin() + 2));
    // A chain that starts elsewhere or ends early is refused, never followed.
    EXPECT_TRUE(assertsWith([&] { BACnetAddress(DataPropertyInObject0(), chain[1], nullptr); },
                            "v.tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
    chain[0].next = nullptr;
    EXPECT_TRUE(assertsWith([&] { BACnetAddress(DataPropertyInObject0(), chain[0], nullptr); },
                            "octets != nullptr && octets->tag == BACNET_APPLICATION_TAG_OCTET_STRING"));
}

TEST(BACnetRecipient, EncodesDecodesAndPrintsEitherChoice) {
    // Network 5 behind router 03; the encoding of a remote network carries no MAC.
    const BACnetRecipient network5(address(5, {}, {0x03}));
    const std::pair<BACnetRecipient, const char*> rows[] = {
        {device12, "0C 0200000C"},        // [0] device,12
        {network5, "1E 21 05 61 03 1F"},  // [1] { Unsigned 5, Octet String 03 }
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.second);
        const Bytes bytes = hex(row.second);
        EXPECT_EQ(encoded(row.first), bytes);
        BACnetRecipient decoded;
        EXPECT_EQ(decodeExactly(decoded, bytes, bytes.size()), static_cast<int>(bytes.size()));
        EXPECT_EQ(decoded, row.first);
        // The text form is the encoding in hexadecimal, and reads back.
        std::string text;
        row.first.getString(text);
        BACnetRecipient fromText;
        EXPECT_TRUE(fromText.setString(text)) << text;
        EXPECT_EQ(fromText, row.first);
        expectEveryCutRefused(BACnetRecipient(), bytes, {}, Refusal::NotPositive);  // 0: neither choice
        expectMutationsStayInBounds<BACnetRecipient>(bytes);
    }
    EXPECT_EQ(encoded(BACnetRecipient()), Bytes()) << "no choice encodes nothing";
    EXPECT_NE(network5, BACnetRecipient(address(6, {}, {0x03}))) << "addresses are compared";
    BACnetRecipient framed(device12);
    uint8_t apdu[16];
    ASSERT_EQ(framed.encodeContext(apdu, 3), 7);
    const Bytes enclosed(apdu, apdu + 7);
    EXPECT_EQ(enclosed, hex("3E 0C 0200000C 3F"));
    BACnetRecipient inner;
    EXPECT_TRUE(inner.decodeContext(enclosed.data(), 7, 3) == 7 && inner == device12);
    // Primitives: the device under [0]; the address between [1] pseudo tags.
    using Tags = std::vector<std::pair<int, int>>;  // tag, context tag (-1: application)
    const auto tagsOf = [](const BACnetRecipient& r) {
        std::vector<DataApplicationValue> primitives;
        r.getBACnetPrimitives(primitives);
        Tags tags;
        for (const auto& p : primitives) tags.emplace_back(p.tag, p.context_specific ? p.context_tag : -1);
        return tags;
    };
    EXPECT_EQ(tagsOf(device12), (Tags{{BACNET_APPLICATION_TAG_OBJECT_ID, 0}}));
    EXPECT_EQ(tagsOf(network5), (Tags{{17, 1}, {2, -1}, {6, -1}, {18, 1}}));
    const DataApplicationValue first = uintValue(1);
    const DataApplicationValue* next = &first;
    EXPECT_EQ(messageOf<Poco::NotImplementedException>(
                  [&] { BACnetRecipient(DataPropertyInObject0(), first, &next); }),
              "BACnetRecipient::BACnetRecipient()");
    EXPECT_EQ(next, &first);
}

TEST(BACnetRecipient, RefusesHostileBytesAndKeepsItsValue) {
    // Neither choice gives 0; a broken member a negative result.
    const std::pair<const char*, bool> cases[] = {
        {"2C 0200000C", true},         // context tag [2]
        {"C4 0200000C", true},         // application object identifier
        {"0E 0F", true},               // [0] constructed
        {"", true},                    // nothing at all
        {"0B 020000", false},          // [0] of three octets
        {"1E 21 05 61 03 2F", false},  // closed by [2]
        {"1E 91 05 61 03 1F", false},  // network as enumerated
        {"1E 21 05 65 40 1F", false},  // octets beyond the closing tag
        {"1E 1F", false},              // empty address
    };
    for (const auto& c : cases) {
        BACnetRecipient r(device12);
        const int result = decodeExactly(r, hex(c.first), hex(c.first).size());
        EXPECT_TRUE(c.second ? result == 0 : result < 0) << c.first << " gave " << result;
        EXPECT_EQ(r, device12) << c.first;
    }
}

TEST(BACnetAddressBinding, BuildsOneBindingPerThreePrimitivesAndPrints) {
    TQTest::Catalogue::open();
    std::vector<DataApplicationValue> chain = {
        objectIdValue(ObjectIdentifier(OBJECT_DEVICE, 12)), uintValue(0), octets(ipMac),
        objectIdValue(ObjectIdentifier(OBJECT_DEVICE, 13)), uintValue(5), octets({0x03})};
    link(chain);
    const DataPropertyInObject0 descriptor;
    const DataApplicationValue* cursor = &chain[0];
    const BACnetAddressBinding first(descriptor, *cursor, &cursor);
    ASSERT_EQ(cursor, &chain[3]);
    const BACnetAddressBinding second(descriptor, *cursor, &cursor);
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(first.getDevice(), ObjectIdentifier(OBJECT_DEVICE, 12));
    EXPECT_EQ(first.getAddress(), BACnetAddress(OctetBuffer(ipMac.data(), ipMac.size()), 0, nullptr));
    // Unlike the decoder, the primitive form always names the MAC, whatever the network.
    const BACnetAddress& mac = second.getAddress();
    EXPECT_EQ(std::make_tuple(5, Bytes{0x03}, 0),
              std::make_tuple(int(mac.getNetwork()), Bytes(mac.getMAC(), mac.getMAC() + mac.getMACLength()),
                              int(mac.getAddrLength())));
    std::vector<DataApplicationValue> primitives;
    first.getBACnetPrimitives(primitives);
    EXPECT_EQ(primitives, std::vector<DataApplicationValue>(chain.begin(), chain.begin() + 3));
    // A chain that ends early or starts elsewhere is refused, not read past.
    chain[0].next = nullptr;
    EXPECT_TRUE(
        assertsWith([&] { BACnetAddressBinding(descriptor, chain[0], nullptr); }, "cursor != nullptr"));
    EXPECT_TRUE(assertsWith([&] { BACnetAddressBinding(descriptor, chain[1], nullptr); },
                            "tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
    std::string text, text2;
    first.getString2(text2, true);
    first.getString(text);
    EXPECT_TRUE(text == "device,12, 0:192.168.1.10:47808" && text2 == text);
    uint8_t apdu[32] = {0x21, 0x00, 0x60};
    BACnetAddressBinding target;
    EXPECT_EQ(messageOf<Poco::NotImplementedException>([&] { first.encode(apdu); }),
              "BACnetAddressBinding::encode");
    EXPECT_EQ(messageOf<Poco::NotImplementedException>([&] { target.decode(apdu, 3); }),
              "BACnetAddressBinding::decode");
}

TEST(Error, EncodesTheProductionInPlaceOrByGrowing) {
    uint8_t apdu[16];
    ASSERT_EQ(Error::encode(apdu, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY), 4);
    EXPECT_EQ(Bytes(apdu, apdu + 4), unknownProperty);
    ASSERT_EQ(Error::encode(apdu, ERROR_CLASS_PROPERTY, static_cast<BACNET_ERROR_CODE>(300)), 5);
    EXPECT_EQ(Bytes(apdu, apdu + 5), hex("91 02 92 012C"));
    // Too small: grows to end with the production, keeping what is before the offset.
    OctetBuffer grown(Bytes{0xAA, 0xBB}.data(), 2);
    EXPECT_EQ(encodeUnknownProperty(grown, 1), 4);
    EXPECT_EQ(grown.getHexString(), "AA91029120");
    // Room for 20 bytes past the offset: written in place, the size stays the caller's.
    OctetBuffer roomy;
    roomy.reserve(64);
    roomy.resize(3);
    EXPECT_TRUE(encodeUnknownProperty(roomy, 2) == 4 && roomy.size() == 3);
    EXPECT_EQ(Bytes(roomy.data() + 2, roomy.data() + 6), unknownProperty);
    // Foreign storage: in place when it fits, refused when it would have to grow.
    uint8_t storage[24] = {};
    OctetBuffer fits = OctetBuffer::over(storage, sizeof storage);
    EXPECT_EQ(encodeUnknownProperty(fits, 4), 4);
    EXPECT_EQ(Bytes(storage + 4, storage + 8), unknownProperty);
    OctetBuffer tooSmall = OctetBuffer::over(storage, sizeof storage);
    EXPECT_EQ(messageOf<Poco::InvalidAccessException>([&] { encodeUnknownProperty(tooSmall, 5); }),
              "Cannot resize buffer which does not own its storage.");
    // As a value it has no encoding of its own, but prints and breaks into primitives.
    Error error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
    EXPECT_EQ(std::make_tuple(-1, -1, -1, -1, false),
              std::make_tuple(
                  error.encode(apdu), error.encodeContext(apdu, 0), error.decode(unknownProperty.data(), 4),
                  error.decodeContext(unknownProperty.data(), 4, 0), error.setString("91029120")));
    EXPECT_EQ(error, Error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY));
    // Printing a failed property shows the error rather than an empty text.
    std::string text;
    error.getString(text);
    EXPECT_NE(text.find("unknown-property"), std::string::npos) << text;
    std::vector<DataApplicationValue> primitives;
    error.getBACnetPrimitives(primitives);
    ASSERT_EQ(primitives.size(), 2u);
    EXPECT_TRUE(primitives[0].type.Enumerated == 2 && primitives[1].type.Enumerated == 32);
    // Built empty from primitives, which stay where they are.
    const DataApplicationValue* next = &primitives[0];
    EXPECT_TRUE(Error(TQ::BACnet::DataPropertyInObject0(), primitives[0], &next) == Error() &&
                next == &primitives[0]);
}

TEST(ReadAccessSpecification, HandsTheCodecAListAndFreesIt) {
    ReadAccessSpecification request(ObjectIdentifier(OBJECT_ANALOG_INPUT, 7));
    request.addPropertyReference(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0));
    request.addPropertyReference(BACnetPropertyReference(PROP_PRIORITY_ARRAY, 8, 0));
    request.addPropertyReference(BACnetPropertyReference(PROP_OBJECT_NAME, BACNET_ARRAY_ALL, 0));
    BACnet_Read_Access_Data record;
    request.get(record);
    EXPECT_EQ(ObjectIdentifier(record.object_type, record.object_instance), request.getObjectIdentifier());
    EXPECT_EQ(record.next, nullptr);
    std::vector<std::pair<unsigned, uint32_t>> nodes;
    for (const auto* node = record.listOfProperties; node != nullptr; node = node->next) {
        nodes.emplace_back(node->propertyIdentifier, node->propertyArrayIndex);
        EXPECT_TRUE(node->value == nullptr && !node->has_error);
    }
    EXPECT_EQ(nodes, (std::vector<std::pair<unsigned, uint32_t>>{{PROP_PRESENT_VALUE, BACNET_ARRAY_ALL},
                                                                 {PROP_PRIORITY_ARRAY, 8},
                                                                 {PROP_OBJECT_NAME, BACNET_ARRAY_ALL}}));
    // Read back, the references are appended to those already there.
    ReadAccessSpecification back(ObjectIdentifier(OBJECT_DEVICE, 1));
    back.addPropertyReference(BACnetPropertyReference(PROP_OBJECT_LIST, BACNET_ARRAY_ALL, 0));
    back = record;
    ASSERT_TRUE(back.getObjectIdentifier() == request.getObjectIdentifier() &&
                back.getPropertyReferences().size() == 4);
    EXPECT_TRUE(std::equal(request.getPropertyReferences().begin(), request.getPropertyReferences().end(),
                           back.getPropertyReferences().begin() + 1));
    // A chain: every node and every record but the first is freed (the sanitizer build reports
    // a leak or a double free); a second call finds nothing left.
    auto* second = static_cast<BACnet_Read_Access_Data*>(std::calloc(1, sizeof(BACnet_Read_Access_Data)));
    request.get(*second);
    record.next = second;
    ReadAccessSpecification::freeRAS(record);
    EXPECT_TRUE(record.listOfProperties == nullptr && record.next == nullptr);
    ReadAccessSpecification::freeRAS(record);
    uint8_t apdu[8] = {0x0C, 0, 0, 0, 1};
    EXPECT_TRUE(request.encode(apdu) == -1 && request.decode(apdu, 5) == -1);
}

TEST(ReadAccessResult, TypesEachResultOrKeepsTheServersError) {
    TQTest::Catalogue::open();
    DataApplicationValue text;
    text.setCharString("not a number");
    Record record(OBJECT_ANALOG_INPUT, 3);
    record.add(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, {realValue(21.5f)})
        .addError(4000, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY)
        .add(PROP_PRIORITY_ARRAY, 3)
        .add(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, {text})  // does not fit the catalogue's REAL
        .add(4001, BACNET_ARRAY_ALL, {realValue(1.0f), realValue(2.0f)});  // no catalogue entry
    ReadAccessResult result;
    result = record.first;
    EXPECT_EQ(result.getObjectIdentifier(), ObjectIdentifier(OBJECT_ANALOG_INPUT, 3));
    const auto& values = result.getPropertyValues();
    ASSERT_EQ(values.size(), 5u);
    for (const auto& value : values) EXPECT_EQ(value.getPriority(), -1);
    EXPECT_TRUE(values[0].getValue().getDataType() == TQ::BACnet::BACNET_DT_REAL &&
                values[0].getValue().getReal(false) == 21.5f);
    // The server's error stands in for the value, under the Error data type.
    EXPECT_EQ(std::make_tuple(4000u, TQ::BACnet::BACNET_DT_ERROR, TQ::BACnet::BACNET_DTS_SINGLE_VALUE),
              std::make_tuple(unsigned(values[1].getPropertyIdentifier()), values[1].getValue().getDataType(),
                              values[1].getValue().getStructure()));
    TQ::BACnet::DataType::Error error;
    EXPECT_EQ(values[1].getValue().getValue(error), Error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY));
    EXPECT_EQ(values[2].getArrayIndex(), 3u);
    std::vector<DataApplicationValue> held;
    EXPECT_TRUE(values[2].getValue().getValues(held).empty());
    // What does not fit the catalogue, or has no entry there, keeps the primitives it came as.
    std::string kept;
    values[3].getValue().getCharString(kept);
    EXPECT_EQ(kept, "not a number");
    values[4].getValue().getValues(held);
    ASSERT_EQ(held.size(), 2u);
    EXPECT_FLOAT_EQ(held[1].getReal(false), 2.0f);
    // A second record appends, and its object is the one kept.
    Record more(OBJECT_DEVICE, 9);
    more.add(PROP_OBJECT_LIST, 1, {DataApplicationValue(BACNET_APPLICATION_TAG_OBJECT_ID, true)});
    result = more.first;
    EXPECT_TRUE(result.getPropertyValues().size() == 6 &&
                result.getObjectIdentifier() == ObjectIdentifier(OBJECT_DEVICE, 9));
    BACnet_Read_Access_Data untouched{};
    result.get(untouched);
    EXPECT_TRUE(untouched.object_instance == 0 && untouched.listOfProperties == nullptr);
}
