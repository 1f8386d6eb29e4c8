#include "TQTestSupport.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/Time.h"
#include "tq_stack/codec.h"

#include <cmath>

using namespace TQ::BACnet;
using namespace TQTest;
namespace DT = TQ::BACnet::DataType;

TEST(DataApplicationValueConstruction, initialStateAndDefaults) {
    DataApplicationValue v;
    EXPECT_TRUE(v.isNull() && v.getTag() == BACNET_APPLICATION_TAG_NULL && !v.context_specific && !v.next);
    EXPECT_TRUE(v.getReserved() == 65535u && v.getContextTagAsString().empty());

    // Without a default the value is a null of its tag; with one, each tag's zero value.
    const std::pair<DataApplicationValue, std::vector<uint8_t>> cases[] = {
        {{BACNET_APPLICATION_TAG_REAL, false}, {0x00}},
        {{BACNET_APPLICATION_TAG_OCTET_STRING, true}, {0x61, 0x00}},
        {{BACNET_APPLICATION_TAG_BOOLEAN, true}, {0x10}},
        {{BACNET_APPLICATION_TAG_UNSIGNED_INT, true}, {0x21, 0x00}},
        {{BACNET_APPLICATION_TAG_CHARACTER_STRING, true}, {0x71, 0x00}},
        {{BACNET_APPLICATION_TAG_DATE, true}, {0xA4, 0xFF, 0xFF, 0xFF, 0xFF}},
        {{BACNET_APPLICATION_TAG_OBJECT_ID, true}, {0xC4, 0, 0, 0, 0}},
    };
    for (const auto& [value, bytes] : cases) EXPECT_EQ(bytes, encoded(value)) << int(value.getTag());
    EXPECT_TRUE(cases[0].first.isNull() && cases[0].first.getTag() == BACNET_APPLICATION_TAG_REAL);
    EXPECT_FALSE(DataApplicationValue(BACNET_APPLICATION_TAG_ENUMERATED, true).isNull());
    EXPECT_TRUE(DataApplicationValue(BACNET_APPLICATION_TAG_NULL, true).isNull());
    EXPECT_THROW(DataApplicationValue(BACNET_APPLICATION_TAG_RESERVE1, true), Poco::InvalidArgumentException);

    BACnet_Application_Data_Value raw;
    raw.context_specific = true;
    raw.context_tag = 3;
    raw.tag = BACNET_APPLICATION_TAG_SIGNED_INT;
    raw.type.Signed_Int = -7;
    raw.next = &raw;
    DataApplicationValue fromRaw(raw);
    EXPECT_TRUE(!fromRaw.isNull() && fromRaw.type.Signed_Int == -7 && fromRaw.next == &raw);
    EXPECT_EQ("3", fromRaw.getContextTagAsString());
}

TEST(DataApplicationValueCodec, boundsOfEncode) {
    uint8_t scratch[8];
    EXPECT_EQ(0, parsed(BACNET_APPLICATION_TAG_REAL, "1").encode(nullptr));
    DataApplicationValue reserved;
    reserved.setUInt(1);
    reserved.tag = 13;
    EXPECT_EQ(-1, reserved.encode(scratch));
}

TEST(DataApplicationValueCopy, copiesKeepValueAndNullState) {
    DataApplicationValue s, assigned, linked;
    s.setCharString("hello");
    DataApplicationValue copy(s);
    std::string text;
    assigned.next = &linked;
    assigned = s;
    EXPECT_TRUE(assigned == s && copy == s);
    EXPECT_EQ(&linked, assigned.next);  // assignment copies the value, not the link

    DataApplicationValue nullCopy(DataApplicationValue(BACNET_APPLICATION_TAG_REAL, false));
    EXPECT_TRUE(nullCopy.isNull() && nullCopy.getTag() == BACNET_APPLICATION_TAG_REAL);

    // Growing a vector moves the values; their strings must move with them.
    std::vector<DataApplicationValue> many;
    for (int i = 0; i < 40; ++i) many.emplace_back().setCharString(std::to_string(i));
    for (int i : {0, 39}) {
        many[i].getCharString(text);
        EXPECT_EQ(std::to_string(i), text);
    }
}

TEST(DataApplicationValueSetters, bitStringsAreCappedAt120Bits) {
    DataApplicationValue v;
    DT::BitString big(130), out;
    big.setBit(129);
    big.setBit(0);
    v.setBitString(big);
    v.getBitString(out);
    EXPECT_TRUE(v.type.Bit_String.bits_used == 120 && out.getBitsUsed() == 120 && out.getBit(0));
    v.setBitString(DT::BitString());
    EXPECT_EQ(0, v.type.Bit_String.bits_used);
}

TEST(DataApplicationValueGetters, wrongTagsFailTheirAssertions) {
    DataApplicationValue v;
    v.setUInt(5);
    DT::OctetString octets;
    std::string text;
    DT::BitString bits;
    EXPECT_TRUE(
        assertsWith([&] { v.getOctetString(octets); },
                    "tag == BACNET_APPLICATION_TAG_OCTET_STRING || tag == BACNET_APPLICATION_TAG_NULL"));
    EXPECT_TRUE(
        assertsWith([&] { v.getCharString(text); },
                    "tag == BACNET_APPLICATION_TAG_CHARACTER_STRING || tag == BACNET_APPLICATION_TAG_NULL"));
    EXPECT_TRUE(
        assertsWith([&] { v.getBitString(bits); },
                    "tag == BACNET_APPLICATION_TAG_BIT_STRING || tag == BACNET_APPLICATION_TAG_NULL"));
    EXPECT_TRUE(assertsWith([&] { v.getDouble(false); }, "tag == BACNET_APPLICATION_TAG_DOUBLE"));
    EXPECT_TRUE(assertsWith([&] { v.getReal(false); }, "tag == BACNET_APPLICATION_TAG_REAL"));
    EXPECT_TRUE(v.getDouble(true) == 5.0 && v.getReal(true) == 5.0f);

    // A NULL tag empties the outputs.
    DataApplicationValue empty;
    octets.assign(reinterpret_cast<const uint8_t*>("xy"), 2);
    text = "x";
    bits.setBitsUsed(5);
    empty.getOctetString(octets);
    empty.getCharString(text);
    empty.getBitString(bits);
    EXPECT_TRUE(octets.size() == 0 && text.empty() && bits.getBitsUsed() == 0);
}

TEST(DataApplicationValueNumbers, toDoubleAndIsNumeric) {
    const struct {
        DataApplicationValue value;
        double number;
        bool numeric;
    } cases[] = {
        {parsed(BACNET_APPLICATION_TAG_BOOLEAN, "true"), 1.0, false},
        {parsed(BACNET_APPLICATION_TAG_SIGNED_INT, "-4"), -4.0, true},
        {parsed(BACNET_APPLICATION_TAG_ENUMERATED, "9"), 9.0, false},
        {parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "1,234.5"), 1234.5, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(std::make_tuple(c.number, c.numeric),
                  std::make_tuple(c.value.toDouble(), c.value.isNumeric()));
    EXPECT_EQ("DataPortValue::toDouble()", TQTest::messageOf<Poco::BadCastException>([] {
                  parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "abc").toDouble();
              }));
    EXPECT_THROW(DataApplicationValue().toDouble(), Poco::BadCastException);
    EXPECT_THROW(parsed(BACNET_APPLICATION_TAG_DATE, "2024-01-05").toDouble(), Poco::BadCastException);
    // The tag decides, not the null flag.
    EXPECT_TRUE(DataApplicationValue(BACNET_APPLICATION_TAG_REAL, false).isNumeric());
}

TEST(DataApplicationValueEquality, comparesValuesNotContext) {
    DataApplicationValue a, b;
    EXPECT_TRUE(a == b);
    a.setReal(NAN);
    b.setReal(NAN);
    EXPECT_FALSE(a == b);
    a.setReal(1.0f);
    b.setReal(1.0f);
    b.context_specific = true;
    b.context_tag = 4;
    EXPECT_TRUE(a == b);
    b.setDouble(1.0);
    EXPECT_FALSE(a == b);
    const DataApplicationValue nullReal(BACNET_APPLICATION_TAG_REAL, false);
    EXPECT_FALSE(a == nullReal);
    EXPECT_TRUE(nullReal == DataApplicationValue());
    a.setReal(0.0f);
    EXPECT_FALSE(a == nullReal) << "a null is no zero";
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "x") ==
                parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "x"));
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "x") !=
                parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "y"));
    // The weekday takes no part.
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_DATE, "2024-01-05 5") ==
                parsed(BACNET_APPLICATION_TAG_DATE, "2024-01-05"));
}
