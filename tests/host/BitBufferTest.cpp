#include "TQ/Utility/BitBuffer.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

using TQ::Utility::BitBuffer;
using TQ::Utility::OctetBuffer;

TEST(BitBuffer, BitCountSizesTheBytesAndClearsSpareBits) {
    BitBuffer bits;
    EXPECT_EQ(bits.getBitsUsed(), 0u);
    EXPECT_EQ(bits.size(), 0u);
    bits.setBitsUsed(1);
    EXPECT_EQ(bits.size(), 1u);
    bits.setBitsUsed(16);
    EXPECT_EQ(bits.size(), 2u);
    bits.setBitsUsed(17);
    EXPECT_EQ(bits.size(), 3u);

    // Bits beyond a shrunk count are cleared, so growing again shows zeros.
    BitBuffer full(OctetBuffer(std::string("FFFF")), 16);
    full.setBitsUsed(3);
    EXPECT_EQ(full.getHexString(), "E0");
    full.setBitsUsed(12);
    EXPECT_EQ(full.getBitsString(), "111000000000");

    // Construction cuts or extends the given bytes to the bit count.
    EXPECT_EQ(BitBuffer(OctetBuffer(std::string("FFFFFF")), 9).getHexString(), "FF80");
    EXPECT_EQ(BitBuffer(OctetBuffer(1), 1).getBitsUsed(), 1u);
    BitBuffer grown(OctetBuffer(1), 1);
    grown.setBitsUsed(20);
    EXPECT_EQ(grown.size(), 3u);
    EXPECT_EQ(grown.getBitsString(), std::string(20, '0'));
}

TEST(BitBuffer, BitZeroIsTheMostSignificantBitOfTheFirstByte) {
    BitBuffer bits(10);
    bits.setBit(0);
    bits.setBit(7);
    bits.setBit(9);
    EXPECT_EQ(bits.getHexString(), "8140");
    EXPECT_TRUE(bits.getBit(0));
    EXPECT_FALSE(bits.getBit(1));
    EXPECT_TRUE(bits.getBit(9));
    bits.setBit(0, false);
    EXPECT_EQ(bits.getHexString(), "0140");
    try {
        bits.getBit(10);
        FAIL() << "bit 10 of 10 must fail";
    } catch (const Poco::AssertionViolationException& error) {
        EXPECT_NE(error.message().find("bit < _bitsUsed"), std::string::npos);
    }
    EXPECT_THROW(bits.setBit(10), Poco::AssertionViolationException);
}

TEST(BitBuffer, TextFormsRoundTrip) {
    BitBuffer bits(3);
    bits.setBit(0);
    bits.setBit(2);
    EXPECT_EQ(bits.getString(), "true,false,true");
    EXPECT_EQ(bits.getBitsString(), "101");
    EXPECT_EQ(BitBuffer().getString(), "");

    BitBuffer parsed;
    ASSERT_TRUE(parsed.setString(bits.getString()));
    EXPECT_EQ(parsed, bits);
    ASSERT_TRUE(parsed.setString(" true , false ,true "));
    EXPECT_EQ(parsed, bits);
    ASSERT_TRUE(parsed.setString("101"));
    EXPECT_EQ(parsed, bits);
    ASSERT_TRUE(parsed.setString(""));
    EXPECT_EQ(parsed.getBitsUsed(), 0u);

    parsed = bits;
    for (const char* bad : {"true,", "true,,false", "yes", "1,0", "TRUE", "102"})
        EXPECT_FALSE(parsed.setString(bad)) << bad;
    EXPECT_EQ(parsed, bits) << "a rejected text leaves the bits unchanged";

    // Equality includes the bit count, not only the bytes.
    BitBuffer fewer(OctetBuffer(std::string("A0")), 3);
    BitBuffer more(OctetBuffer(std::string("A0")), 4);
    EXPECT_NE(fewer, more);
    EXPECT_EQ(fewer, bits);
}
