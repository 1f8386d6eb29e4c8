#include "TQ/Utility/BitBuffer.h"

#include "ProbeEntities.h"

#include <gtest/gtest.h>

using TQ::Utility::BitBuffer;
using TQ::Utility::OctetBuffer;

TEST(BitBuffer, BitCountSizesTheBytesAndClearsSpareBits) {
    BitBuffer bits;
    for (unsigned count : {0u, 1u, 16u, 17u}) {
        bits.setBitsUsed(count);
        EXPECT_EQ(bits.size(), (count + 7) / 8) << count;
    }
    // Bits beyond a shrunk count are cleared, so growing again shows zeros.
    BitBuffer full(OctetBuffer(std::string("FFFF")), 16);
    full.setBitsUsed(3);
    EXPECT_EQ(full.getHexString(), "E0");
    EXPECT_EQ((full.setBitsUsed(12), full.getBitsString()), "111000000000");
    // Construction cuts or extends the given bytes to the bit count.
    EXPECT_EQ(BitBuffer(OctetBuffer(std::string("FFFFFF")), 9).getHexString(), "FF80");
    BitBuffer grown(OctetBuffer(1), 1);
    grown.setBitsUsed(20);
    EXPECT_EQ(grown.getBitsString(), std::string(20, '0'));
}

TEST(BitBuffer, BitZeroIsTheMostSignificantBitAndIndexesAreChecked) {
    BitBuffer bits(10);
    for (unsigned bit : {0u, 7u, 9u}) bits.setBit(bit);
    EXPECT_EQ(bits.getHexString(), "8140");
    EXPECT_FALSE(bits.getBit(1));
    bits.setBit(0, false);
    EXPECT_EQ(bits.getHexString(), "0140");
    EXPECT_NE(TQTest::messageOf([&] { bits.getBit(10); }).find("bit < _bitsUsed"), std::string::npos);
    EXPECT_THROW(bits.setBit(10), Poco::AssertionViolationException);
}

TEST(BitBuffer, TextFormsRoundTripAndBadTextLeavesTheBits) {
    BitBuffer bits(3);
    bits.setBit(0);
    bits.setBit(2);
    EXPECT_TRUE(bits.getString() == "true,false,true" && bits.getBitsString() == "101");
    EXPECT_EQ(BitBuffer().getString(), "");
    BitBuffer parsed;
    for (const char* good : {"true,false,true", " true , false ,true ", "101"}) {
        ASSERT_TRUE(parsed.setString(good)) << good;
        EXPECT_EQ(parsed, bits) << good;
    }
    EXPECT_TRUE(parsed.setString("") && parsed.getBitsUsed() == 0);
    parsed = bits;
    for (const char* bad : {"true,", "true,,false", "yes", "1,0", "TRUE", "102"})
        EXPECT_FALSE(parsed.setString(bad)) << bad;
    EXPECT_EQ(parsed, bits);
    // Equality includes the bit count, not only the bytes.
    EXPECT_NE(BitBuffer(OctetBuffer(std::string("A0")), 4), bits);
    EXPECT_EQ(BitBuffer(OctetBuffer(std::string("A0")), 3), bits);
}
