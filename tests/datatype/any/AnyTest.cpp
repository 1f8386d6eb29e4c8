#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "tq_stack/context_decode.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace BN = TQ::BACnet;
using BN::DataType::ANY;

namespace {

// A constructed value of one Unsigned, so the base's defaults can be tried on a known encoding;
// it refuses to encode values above 255 to show how failures travel.
class OneUnsigned : public BN::DataType::BACnetComplex {
public:
    unsigned value = 0;
    int encode(uint8_t* apdu) const override {
        if (value > 255) return -1;
        apdu[0] = 0x21;
        apdu[1] = static_cast<uint8_t>(value);
        return 2;
    }
    using BACnetComplex::decode;
    int decode(const uint8_t* apdu, unsigned length) override {
        if (length < 2 || apdu[0] != 0x21) return -1;
        value = apdu[1];
        return 2;
    }
    BN::BACnetDataType getBACnetDataType() const override { return static_cast<BN::BACnetDataType>(1999); }
};

const BN::DataPropertyInObject0 PRIORITY_ARRAY(static_cast<BN::BACnetDataType>(1064),
                                               BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_SINGLE_VALUE, true,
                                               4);

}  // namespace

TEST(BACnetComplex, contextFramingAndHexText) {
    OneUnsigned v;
    v.value = 7;
    uint8_t out[8];
    ASSERT_EQ(4, v.encodeContext(out, 3));
    EXPECT_EQ(0, std::memcmp(out, "\x3E\x21\x07\x3F", 4));
    EXPECT_EQ(0, v.encodeContext(nullptr, 3));

    OneUnsigned r;
    EXPECT_TRUE(r.decodeContext(out, 4u, 3) == 4 && r.value == 7);
    const uint8_t wrongClose[] = {0x3E, 0x21, 0x07, 0x4F};
    // Another closing tag, another tag number, the closing tag past the given length.
    EXPECT_EQ(std::make_tuple(-1, -1, -1),
              std::make_tuple(r.decodeContext(wrongClose, 4u, 3), r.decodeContext(out, 4u, 2),
                              r.decodeContext(out, 3u, 3)));

    // Tag numbers from 15 on are extended: two framing octets each side.
    ASSERT_EQ(6, v.encodeContext(out, 20));
    EXPECT_EQ(0, std::memcmp(out, "\xFE\x14\x21\x07\xFF\x14", 6));
    EXPECT_EQ(6, r.decodeContext(out, 6u, 20));
    EXPECT_TRUE(r.setString("FE142108FF14") && r.value == 8);

    std::string text, failed;
    v.getString(text);
    v.value = 300;
    v.getString(failed);
    EXPECT_TRUE(text == "2107" && failed.empty());

    // Bare or context-tagged hexadecimal reads; bad hexadecimal is a plain false.
    EXPECT_TRUE(r.setString("2109") && r.value == 9);
    EXPECT_TRUE(r.setString("5E210B5F") && r.value == 11);
    for (const char* bad : {"210", "21zz", "", "4F"}) EXPECT_FALSE(r.setString(bad)) << bad;

    std::vector<BN::DataApplicationValue> primitives;
    EXPECT_THROW(v.getBACnetPrimitives(primitives), Poco::NotImplementedException);
    const auto open = v.getOpenTag(4), close = v.getCloseTag(4);
    EXPECT_TRUE(open.tag == BACNET_PSEUDO_TAG_OPENING && close.tag == BACNET_PSEUDO_TAG_CLOSING);
    EXPECT_TRUE(open.context_specific && close.context_specific && close.context_tag == 4);
}

TEST(ANY, holdsBalancedEncodingsUpToTheEnclosingClose) {
    // Two values, a constructed member, then the closing tag of an enclosing [1].
    const std::vector<uint8_t> bytes{0x21, 0x05, 0x0E, 0x91, 0x01, 0x0F, 0x10, 0x1F, 0x21, 0x09};
    ANY any(PRIORITY_ARRAY, nullptr, 0);
    EXPECT_EQ(7, any.decode(bytes.data(), static_cast<unsigned>(bytes.size())));
    unsigned length = 0;
    ASSERT_NE(nullptr, any.getValue(&length));
    EXPECT_TRUE(length == 7 && any.getBACnetDataType() == 1064);
    std::string text;
    any.getString(text);
    EXPECT_EQ("21050E91010F10", text);

    uint8_t out[16];
    EXPECT_EQ(7, any.encode(out));
    EXPECT_EQ(0, std::memcmp(out, bytes.data(), 7));
    EXPECT_EQ(-1, any.decode(bytes.data()));  // no length, no extent

    // Unbalanced, truncated or empty input holds nothing.
    const std::vector<std::vector<uint8_t>> broken{
        {0x0E, 0x21}, {0x0E, 0x21, 0x01}, {0x1F}, {0x24, 0x41}, {}, {0x1E, 0x21, 0x01, 0x2F}};
    for (const auto& b : broken)
        EXPECT_EQ(-1, ANY(PRIORITY_ARRAY, nullptr, 0).decode(b.data(), static_cast<unsigned>(b.size())));
    EXPECT_EQ(-1, ANY().encode(out));

    // Copies are independent and compare by descriptor and bytes.
    ANY copy = any;
    EXPECT_TRUE(copy == any);
    copy.setTypeAndValue(PRIORITY_ARRAY, bytes.data(), 2);
    EXPECT_TRUE(!(copy == any) && (any.getValue(&length), length) == 7);

    // The factory's form yields an empty value and leaves the cursor alone.
    BN::DataApplicationValue first;
    const BN::DataApplicationValue* cursor = &first;
    const ANY fromPrimitives(PRIORITY_ARRAY, first, &cursor);
    EXPECT_TRUE(cursor == &first && !fromPrimitives.getValue(nullptr));
    EXPECT_EQ(BN::BACNET_DT_NULL, fromPrimitives.getBACnetDataType());
}

TEST(ANY, descriptorTravelsAsItsOwnType) {
    ANY any;
    BN::DataPropertyInObject0().getAsANY(any);
    unsigned length = 0;
    const uint8_t* bytes = any.getValue(&length);
    ASSERT_EQ(10u, length);
    EXPECT_EQ(0, std::memcmp(bytes, "\x09\x00\x19\x00\x29\x00\x39\x01\x49\x04", 10));
    EXPECT_TRUE(any.getBACnetDataType() == BN::BACNET_DT_PROPERTY_DESCRIPTOR &&
                !any.getDescriptor().emptyAllowed);
}
