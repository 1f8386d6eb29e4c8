#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/Time.h"
#include "tq_stack/codec.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using TQ::BACnet::DataApplicationValue;
namespace DT = TQ::BACnet::DataType;

namespace {

std::vector<uint8_t> encoded(const DataApplicationValue& v) {
    uint8_t buffer[MAX_APDU];
    const int len = v.encode(buffer);
    if (len < 0) return {};
    return std::vector<uint8_t>(buffer, buffer + len);
}

template <class F>
std::string assertionOf(F f) {
    try {
        f();
    } catch (const Poco::AssertionViolationException& e) {
        return e.message();
    }
    return "<no assertion>";
}

}  // namespace

TEST(DataApplicationValueConstruction, initialStateAndDefaults) {
    DataApplicationValue v;
    EXPECT_TRUE(v.isNull());
    EXPECT_EQ(BACNET_APPLICATION_TAG_NULL, v.getTag());
    EXPECT_FALSE(v.context_specific);
    EXPECT_EQ(nullptr, v.next);
    EXPECT_EQ(65535u, v.getReserved());

    DataApplicationValue nullReal(BACNET_APPLICATION_TAG_REAL, false);
    EXPECT_TRUE(nullReal.isNull());
    EXPECT_EQ(BACNET_APPLICATION_TAG_REAL, nullReal.getTag());
    EXPECT_EQ((std::vector<uint8_t>{0x00}), encoded(nullReal));

    EXPECT_EQ((std::vector<uint8_t>{0x61, 0x00}),
              encoded(DataApplicationValue(BACNET_APPLICATION_TAG_OCTET_STRING, true)));
    EXPECT_EQ((std::vector<uint8_t>{0x10}),
              encoded(DataApplicationValue(BACNET_APPLICATION_TAG_BOOLEAN, true)));
    EXPECT_EQ((std::vector<uint8_t>{0x21, 0x00}),
              encoded(DataApplicationValue(BACNET_APPLICATION_TAG_UNSIGNED_INT, true)));
    EXPECT_EQ((std::vector<uint8_t>{0x71, 0x00}),
              encoded(DataApplicationValue(BACNET_APPLICATION_TAG_CHARACTER_STRING, true)));
    EXPECT_EQ((std::vector<uint8_t>{0xA4, 0xFF, 0xFF, 0xFF, 0xFF}),
              encoded(DataApplicationValue(BACNET_APPLICATION_TAG_DATE, true)));
    EXPECT_EQ((std::vector<uint8_t>{0xC4, 0, 0, 0, 0}),
              encoded(DataApplicationValue(BACNET_APPLICATION_TAG_OBJECT_ID, true)));
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
    EXPECT_FALSE(fromRaw.isNull());
    EXPECT_EQ(-7, fromRaw.type.Signed_Int);
    EXPECT_EQ(&raw, fromRaw.next);
    EXPECT_EQ("3", fromRaw.getContextTagAsString());
    EXPECT_EQ("", v.getContextTagAsString());
}

TEST(DataApplicationValueCodec, everyTagRoundTripsThroughBytes) {
    std::vector<DataApplicationValue> values(13);
    values[1].setBool(true);
    values[2].setUInt(4000000000u);
    values[3].setInt(-123456);
    values[4].setReal(21.5f);
    values[5].setDouble(-1e300);
    values[6].setOctetString(DT::OctetString(std::string("DEADBEEF")));
    values[7].setCharString("Zone 1 supply air temperature");
    DT::BitString bits(11);
    bits.setBit(0);
    bits.setBit(10);
    values[8].setBitString(bits);
    values[9].setEnum(71);
    DT::Date date;
    date = std::string("2024-03-07 4");
    values[10].setDate(date);
    DT::Time time;
    time = std::string("08.30.15.50");
    values[11].setTime(time);
    values[12].setObjectIdentifier(DT::ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(8), 260001));
    for (const auto& v : values) {
        const auto bytes = encoded(v);
        ASSERT_FALSE(bytes.empty());
        DataApplicationValue back;
        EXPECT_EQ(static_cast<int>(bytes.size()), back.decode(bytes.data(), bytes.size())) << int(v.tag);
        EXPECT_TRUE(back == v) << "tag " << int(v.tag);
        EXPECT_EQ(v.isNull(), back.isNull());
        // Every shorter slice is refused rather than read past its end.
        for (size_t cut = 0; cut < bytes.size(); ++cut) {
            DataApplicationValue truncated;
            EXPECT_LT(truncated.decode(bytes.data(), cut), 0) << "tag " << int(v.tag) << " cut " << cut;
        }
    }
    EXPECT_EQ(0, values[4].encode(nullptr));
    DataApplicationValue reserved;
    reserved.setUInt(1);
    reserved.tag = 13;
    uint8_t scratch[8];
    EXPECT_EQ(-1, reserved.encode(scratch));
}

TEST(DataApplicationValueCopy, copiesKeepValueAndNullState) {
    DataApplicationValue s;
    s.setCharString("hello");
    DataApplicationValue copy(s);
    EXPECT_TRUE(copy == s);
    std::string text;
    copy.getCharString(text);
    EXPECT_EQ("hello", text);
    DataApplicationValue assigned;
    DataApplicationValue linked;
    assigned.next = &linked;
    assigned = s;
    EXPECT_TRUE(assigned == s);
    EXPECT_EQ(&linked, assigned.next);  // assignment copies the value, not the link

    DataApplicationValue nullReal(BACNET_APPLICATION_TAG_REAL, false);
    DataApplicationValue nullCopy(nullReal);
    EXPECT_TRUE(nullCopy.isNull());
    EXPECT_EQ(BACNET_APPLICATION_TAG_REAL, nullCopy.getTag());

    std::vector<DataApplicationValue> many;
    for (int i = 0; i < 40; ++i) {
        many.emplace_back();
        many.back().setCharString(std::to_string(i));
    }
    many[39].getCharString(text);
    EXPECT_EQ("39", text);
    many[0].getCharString(text);
    EXPECT_EQ("0", text);
}

TEST(DataApplicationValueSetters, bitStringsAreCappedAt120Bits) {
    DataApplicationValue v;
    DT::BitString big(130);
    big.setBit(129);
    big.setBit(0);
    v.setBitString(big);
    EXPECT_EQ(120, v.type.Bit_String.bits_used);
    DT::BitString out;
    v.getBitString(out);
    EXPECT_EQ(120u, out.getBitsUsed());
    EXPECT_TRUE(out.getBit(0));

    v.setBitString(DT::BitString());
    EXPECT_EQ(0, v.type.Bit_String.bits_used);
    DT::BitString three(3);
    three.setBit(0);
    three.setBit(2);
    v.setBitString(three);
    v.getBitString(out);
    EXPECT_EQ(3u, out.getBitsUsed());
    EXPECT_TRUE(out.getBit(2));
    EXPECT_FALSE(out.getBit(1));
}

TEST(DataApplicationValueGetters, wrongTagsFailTheirAssertions) {
    DataApplicationValue v;
    v.setUInt(5);
    DT::OctetString octets;
    std::string text;
    DT::BitString bits;
    EXPECT_EQ(0u,
              assertionOf([&] {
                  v.getOctetString(octets);
              }).find("tag == BACNET_APPLICATION_TAG_OCTET_STRING || tag == BACNET_APPLICATION_TAG_NULL"));
    EXPECT_EQ(
        0u, assertionOf([&] {
                v.getCharString(text);
            }).find("tag == BACNET_APPLICATION_TAG_CHARACTER_STRING || tag == BACNET_APPLICATION_TAG_NULL"));
    EXPECT_EQ(0u, assertionOf([&] {
                      v.getBitString(bits);
                  }).find("tag == BACNET_APPLICATION_TAG_BIT_STRING || tag == BACNET_APPLICATION_TAG_NULL"));
    EXPECT_EQ(0u, assertionOf([&] { v.getDouble(false); }).find("tag == BACNET_APPLICATION_TAG_DOUBLE"));
    EXPECT_EQ(0u, assertionOf([&] { v.getReal(false); }).find("tag == BACNET_APPLICATION_TAG_REAL"));
    EXPECT_DOUBLE_EQ(5.0, v.getDouble(true));
    EXPECT_FLOAT_EQ(5.0f, v.getReal(true));

    // A NULL tag empties the outputs.
    DataApplicationValue empty;
    octets.assign(reinterpret_cast<const uint8_t*>("xy"), 2);
    empty.getOctetString(octets);
    EXPECT_EQ(0u, octets.size());
    text = "x";
    empty.getCharString(text);
    EXPECT_EQ("", text);
    bits.setBitsUsed(5);
    empty.getBitString(bits);
    EXPECT_EQ(0u, bits.getBitsUsed());
}

TEST(DataApplicationValueNumbers, toDoubleAndIsNumeric) {
    DataApplicationValue v;
    EXPECT_THROW(v.toDouble(), Poco::BadCastException);
    v.setBool(true);
    EXPECT_EQ(1.0, v.toDouble());
    EXPECT_FALSE(v.isNumeric());
    v.setInt(-4);
    EXPECT_EQ(-4.0, v.toDouble());
    EXPECT_TRUE(v.isNumeric());
    v.setEnum(9);
    EXPECT_EQ(9.0, v.toDouble());
    EXPECT_FALSE(v.isNumeric());
    v.setCharString("1,234.5");
    EXPECT_EQ(1234.5, v.toDouble());
    v.setCharString("abc");
    try {
        v.toDouble();
        FAIL();
    } catch (const Poco::BadCastException& e) {
        EXPECT_EQ("DataPortValue::toDouble()", e.message());
    }
    v.setDate(DT::Date());
    EXPECT_THROW(v.toDouble(), Poco::BadCastException);
    DataApplicationValue nullReal(BACNET_APPLICATION_TAG_REAL, false);
    EXPECT_TRUE(nullReal.isNumeric());  // the tag decides, not the null flag
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
    DataApplicationValue nullReal(BACNET_APPLICATION_TAG_REAL, false);
    EXPECT_FALSE(a == nullReal);
    EXPECT_TRUE(nullReal == DataApplicationValue());
    a.setCharString("x");
    b.setCharString("x");
    EXPECT_TRUE(a == b);
    b.setCharString("y");
    EXPECT_TRUE(a != b);
    DT::Date d1, d2;
    d1 = std::string("2024-01-05 5");
    d2 = std::string("2024-01-05");
    a.setDate(d1);
    b.setDate(d2);
    EXPECT_TRUE(a == b);  // the weekday takes no part
}
