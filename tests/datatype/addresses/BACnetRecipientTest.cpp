#include "AddressTestSupport.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetRecipient.h"

#include <gtest/gtest.h>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::DataType::BACnetAddress;
using TQ::BACnet::DataType::BACnetRecipient;
using TQ::BACnet::DataType::ObjectIdentifier;
using namespace TQAddressTest;

namespace {

const BACnetRecipient device12(ObjectIdentifier(OBJECT_DEVICE, 12));
// [0] of 4 octets: device (8) << 22 | 12.
const Bytes deviceBytes = {0x0C, 0x02, 0x00, 0x00, 0x0C};
// [1] opening, Unsigned 5, Octet String 03, [1] closing.
const Bytes addressBytes = {0x1E, 0x21, 0x05, 0x61, 0x03, 0x1F};

// Network 5 behind a router; the encoding of a remote network carries no MAC.
BACnetRecipient network5() {
    const uint8_t router = 0x03;
    const TQ::Utility::OctetBuffer remote(&router, 1);
    return BACnetRecipient(BACnetAddress(TQ::Utility::OctetBuffer(), 5, &remote));
}

}  // namespace

TEST(BACnetRecipient, EncodesAndDecodesEitherChoice) {
    EXPECT_EQ(encodedBy(device12), deviceBytes);
    EXPECT_EQ(encodedBy(network5()), addressBytes);
    EXPECT_EQ(encodedBy(BACnetRecipient()), Bytes()) << "no choice encodes nothing";

    for (const BACnetRecipient& original : {device12, network5()}) {
        const Bytes bytes = encodedBy(original);
        BACnetRecipient decoded;
        EXPECT_EQ(decodeExactly(decoded, bytes, bytes.size()), static_cast<int>(bytes.size()));
        EXPECT_EQ(decoded, original);

        // The text form is the encoding in hexadecimal, and reads back.
        std::string text;
        original.getString(text);
        BACnetRecipient fromText;
        EXPECT_TRUE(fromText.setString(text)) << text;
        EXPECT_EQ(fromText, original);
    }

    // Inside an enclosing tag, by the base's framing.
    BACnetRecipient framed(device12);
    uint8_t apdu[16];
    ASSERT_EQ(framed.encodeContext(apdu, 3), 7);
    const Bytes enclosed(apdu, apdu + 7);
    EXPECT_EQ(enclosed, (Bytes{0x3E, 0x0C, 0x02, 0x00, 0x00, 0x0C, 0x3F}));
    BACnetRecipient inner;
    EXPECT_EQ(inner.decodeContext(enclosed.data(), 7, 3), 7);
    EXPECT_EQ(inner, device12);
}

TEST(BACnetRecipient, RefusesHostileBytesAndKeepsItsValue) {
    // Neither choice gives 0; a broken member a negative result.
    const std::pair<Bytes, bool> cases[] = {
        {{0x2C, 0x02, 0x00, 0x00, 0x0C}, true},         // context tag [2]
        {{0xC4, 0x02, 0x00, 0x00, 0x0C}, true},         // application object identifier
        {{0x0E, 0x0F}, true},                           // [0] constructed
        {{}, true},                                     // nothing at all
        {{0x0B, 0x02, 0x00, 0x00}, false},              // [0] of three octets
        {{0x1E, 0x21, 0x05, 0x61, 0x03, 0x2F}, false},  // closed by [2]
        {{0x1E, 0x91, 0x05, 0x61, 0x03, 0x1F}, false},  // network as enumerated
        {{0x1E, 0x21, 0x05, 0x65, 0x40, 0x1F}, false},  // octets beyond the closing tag
        {{0x1E, 0x1F}, false},                          // empty address
    };
    for (const auto& c : cases) {
        BACnetRecipient r(device12);
        const int result = decodeExactly(r, c.first, c.first.size());
        if (c.second) {
            EXPECT_EQ(result, 0) << testing::PrintToString(c.first);
        } else {
            EXPECT_LT(result, 0) << testing::PrintToString(c.first);
        }
        EXPECT_EQ(r, device12);
    }
    for (const Bytes& whole : {deviceBytes, addressBytes}) {
        for (std::size_t n = 0; n < whole.size(); ++n) {
            BACnetRecipient r;
            EXPECT_LE(decodeExactly(r, whole, n), 0) << n;
        }
    }
}

TEST(BACnetRecipient, BreaksIntoPrimitivesButIsNotBuiltFromThem) {
    std::vector<DataApplicationValue> primitives;
    device12.getBACnetPrimitives(primitives);
    ASSERT_EQ(primitives.size(), 1u);
    EXPECT_EQ(primitives[0].getContextTagAsString(), "0");
    EXPECT_EQ(primitives[0].getTag(), BACNET_APPLICATION_TAG_OBJECT_ID);

    primitives.clear();
    network5().getBACnetPrimitives(primitives);
    std::vector<std::pair<int, int>> tags;
    for (const auto& p : primitives) tags.emplace_back(p.tag, p.context_specific ? p.context_tag : -1);
    EXPECT_EQ(tags, (std::vector<std::pair<int, int>>{{17, 1}, {2, -1}, {6, -1}, {18, 1}}));

    DataApplicationValue first;
    first.setUInt(1);
    const DataApplicationValue* next = &first;
    EXPECT_EQ(messageOf<Poco::NotImplementedException>(
                  [&] { BACnetRecipient(TQ::BACnet::DataPropertyInObject0(), first, &next); }),
              "BACnetRecipient::BACnetRecipient()");
    EXPECT_EQ(next, &first);
}
