#include "AddressTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/OctetString.h"

#include <gtest/gtest.h>

#include <sstream>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::DataType::BACnetAddress;
using TQ::Utility::OctetBuffer;
using namespace TQAddressTest;

namespace {

const Bytes ipMac = {0xC0, 0xA8, 0x01, 0x0A, 0xBA, 0xC0};  // 192.168.1.10:47808
// Unsigned 0 (0x21 00), octet string of 6 (0x65 06 ...).
const Bytes localBytes = {0x21, 0x00, 0x65, 0x06, 0xC0, 0xA8, 0x01, 0x0A, 0xBA, 0xC0};

BACnetAddress address(uint16_t network, const Bytes& mac, const Bytes& remote = {}) {
    const OctetBuffer remoteBytes(remote.data(), remote.size());
    return BACnetAddress(OctetBuffer(mac.data(), mac.size()), network, &remoteBytes);
}

}  // namespace

TEST(BACnetAddress, EncodesTheOctetsOfItsNetwork) {
    EXPECT_EQ(encodedBy(address(0, ipMac, {0x03})), localBytes) << "a local address has no router side";
    EXPECT_EQ(encodedBy(address(0xFFFF, ipMac, {0x03})), (Bytes{0x22, 0xFF, 0xFF, 0x60}));
    EXPECT_EQ(encodedBy(address(5, {0x0C}, {0x03})), (Bytes{0x21, 0x05, 0x61, 0x03}));
    EXPECT_EQ(address(0, ipMac).encode(static_cast<uint8_t*>(nullptr)), 10);

    OctetBuffer buffer(Bytes{0xAA}.data(), 1);
    EXPECT_EQ(address(5, {0x0C}, {0x03}).encode(buffer), 5);
    EXPECT_EQ(buffer.getHexString(), "AA21056103");
    uint8_t framed[16];
    ASSERT_EQ(address(5, {0x0C}, {0x03}).encodeContext(framed, 1), 6);
    EXPECT_EQ(Bytes(framed, framed + 6), (Bytes{0x1E, 0x21, 0x05, 0x61, 0x03, 0x1F}));

    BACnetAddress a;
    const uint8_t nine[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    a.setMAC(nine, 9);
    EXPECT_EQ(Bytes(a.getMAC(), a.getMAC() + a.getMACLength()), (Bytes{1, 2, 3, 4, 5, 6, 7}));
    BACnet_Device_Address record{};
    record.len = 200;
    EXPECT_EQ(BACnetAddress(record).getAddrLength(), 7) << "lengths the arrays cannot hold are cut";
}

TEST(BACnetAddress, DecodesIntoMacOrRemoteAddressByNetwork) {
    BACnetAddress a;
    EXPECT_EQ(decodeExactly(a, localBytes, localBytes.size()), 10);
    EXPECT_EQ(a, address(0, ipMac));

    // A remote network's octets are the router-side address; the MAC stays.
    EXPECT_EQ(decodeExactly(a, {0x21, 0x05, 0x61, 0x03}, 4), 4);
    EXPECT_EQ(a.getNetwork(), 5);
    EXPECT_EQ(Bytes(a.getAddr(), a.getAddr() + a.getAddrLength()), (Bytes{0x03}));
    EXPECT_EQ(a.getMACLength(), 6);
    // An empty octet string changes only the network.
    EXPECT_EQ(decodeExactly(a, {0x22, 0xFF, 0xFF, 0x60}, 4), 4);
    EXPECT_EQ(a.getNetwork(), 0xFFFF);
    EXPECT_EQ(a.getAddrLength(), 1);
    // More than seven octets are consumed, seven kept; trailing bytes are the caller's.
    EXPECT_EQ(decodeExactly(a, {0x21, 0x05, 0x65, 0x09, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0x3F}, 14), 13);
    EXPECT_EQ(a.getAddrLength(), 7);
    EXPECT_EQ(BACnetAddress().decode(localBytes.data()), 10);
}

TEST(BACnetAddress, RefusesHostileBytesAndKeepsItsValue) {
    const BACnetAddress original = address(5, {0x0C}, {0x03});
    const std::pair<Bytes, int> cases[] = {
        {{0x91, 0x00, 0x60}, -2},                    // enumerated where the network belongs
        {{0x21, 0x00, 0x71, 0x00}, -2},              // character string where the octets belong
        {{0x09, 0x00, 0x60}, -2},                    // context [0], not application Unsigned
        {{0x21, 0x00, 0x0E}, -2},                    // an opening tag
        {{0x24, 0x00, 0x01, 0x00, 0x00, 0x60}, -1},  // network above 65535
        {{0x21, 0x00, 0x65, 0xFE}, -1},              // extended length cut off
        {{0x21, 0x00, 0x64, 0x01}, -1},              // content beyond the bytes
    };
    for (const auto& c : cases) {
        BACnetAddress a(original);
        EXPECT_EQ(decodeExactly(a, c.first, c.first.size()), c.second) << testing::PrintToString(c.first);
        EXPECT_EQ(a, original);
    }
    for (std::size_t n = 0; n < localBytes.size(); ++n) {
        BACnetAddress a;
        EXPECT_LT(decodeExactly(a, localBytes, n), 0) << n;
    }
}

TEST(BACnetAddress, PrintsNetworkMacAndRouterSide) {
    const std::pair<Bytes, std::string> texts[] = {
        {ipMac, "192.168.1.10:47808"},
        {{0x05}, "5"},
        {{0xC0, 0xA8, 0x01, 0x0A, 0x00, 0x00}, "192.168.1.10"},  // port 0 is not shown
        {{10, 0, 0, 1, 0x01, 0x00, 0x01}, "10.0.0.1:65537"},
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
    EXPECT_TRUE(back.setString("21 05 61 03"));
    EXPECT_EQ(back.getNetwork(), 5);
    EXPECT_FALSE(back.setString("2105610"));
}

TEST(BACnetAddress, BuildsFromDecodedPrimitives) {
    std::vector<DataApplicationValue> chain(3);
    chain[0].setUInt(0);
    chain[1].setOctetString(TQ::BACnet::DataType::OctetString(ipMac.data(), ipMac.size()));
    chain[2].setUInt(99);
    link(chain);
    const DataApplicationValue* next = nullptr;
    const BACnetAddress a(TQ::BACnet::DataPropertyInObject0(), chain[0], &next);
    EXPECT_EQ(a, address(0, ipMac));
    EXPECT_EQ(next, &chain[2]);

    std::vector<DataApplicationValue> primitives;
    a.getBACnetPrimitives(primitives);
    EXPECT_EQ(primitives, std::vector<DataApplicationValue>(chain.begin(), chain.begin() + 2));

    // A chain that starts elsewhere or ends early is refused, never followed.
    EXPECT_THROW(BACnetAddress(TQ::BACnet::DataPropertyInObject0(), chain[1], nullptr),
                 Poco::AssertionViolationException);
    chain[0].next = nullptr;
    EXPECT_THROW(BACnetAddress(TQ::BACnet::DataPropertyInObject0(), chain[0], nullptr),
                 Poco::AssertionViolationException);
}
