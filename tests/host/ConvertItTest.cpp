#include "TQ/Utility/ConvertIt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using TQ::Utility::ConvertIt;

TEST(ConvertIt, IntegersAcceptTheirWholeRangeAndRejectTheRest) {
    bool ok = false;
    EXPECT_EQ(ConvertIt::getUInt("4294967295", &ok), 4294967295u);
    EXPECT_TRUE(ok);
    EXPECT_EQ(ConvertIt::getUInt(" +17 ", &ok), 17u);
    EXPECT_TRUE(ok);
    EXPECT_EQ(ConvertIt::getUInt("0x1F", &ok), 31u);
    EXPECT_TRUE(ok);
    for (const char* bad : {"4294967296", "-1", "", " ", "12a", "1.5", "++1", "0x", "+-1", "1 2"}) {
        ok = true;
        EXPECT_EQ(ConvertIt::getUInt(bad, &ok), 0u) << bad;
        EXPECT_FALSE(ok) << bad;
    }

    EXPECT_EQ(ConvertIt::getInt("-2147483648", &ok), std::numeric_limits<int32_t>::min());
    EXPECT_TRUE(ok);
    EXPECT_EQ(ConvertIt::getInt("2147483647", &ok), 2147483647);
    EXPECT_TRUE(ok);
    for (const char* bad : {"2147483648", "-2147483649", "0x10", "--1", "1e3"}) {
        ok = true;
        EXPECT_EQ(ConvertIt::getInt(bad, &ok), 0) << bad;
        EXPECT_FALSE(ok) << bad;
    }

    EXPECT_EQ(ConvertIt::getUInt64("18446744073709551615", &ok), std::numeric_limits<uint64_t>::max());
    EXPECT_TRUE(ok);
    EXPECT_EQ(ConvertIt::getInt64("-9223372036854775808", &ok), std::numeric_limits<int64_t>::min());
    EXPECT_TRUE(ok);
    ConvertIt::getUInt64("18446744073709551616", &ok);
    EXPECT_FALSE(ok);

    // The flag is optional.
    EXPECT_EQ(ConvertIt::getUInt("nonsense"), 0u);
    EXPECT_EQ(ConvertIt::setUInt(4294967295u), "4294967295");
    EXPECT_EQ(ConvertIt::setInt(std::numeric_limits<int64_t>::min()), "-9223372036854775808");
}

TEST(ConvertIt, BooleansFromWordsAndNumbers) {
    bool ok = false;
    for (const char* yes : {"true", "TRUE", " True ", "yes", "on", "1", "-5"}) {
        EXPECT_TRUE(ConvertIt::getBool(yes, &ok)) << yes;
        EXPECT_TRUE(ok) << yes;
    }
    for (const char* no : {"false", "False", "no", "OFF", "0"}) {
        EXPECT_FALSE(ConvertIt::getBool(no, &ok)) << no;
        EXPECT_TRUE(ok) << no;
    }
    for (const char* bad : {"", "tru", "t", "1.0", "null"}) {
        ok = true;
        EXPECT_FALSE(ConvertIt::getBool(bad, &ok)) << bad;
        EXPECT_FALSE(ok) << bad;
    }
    EXPECT_EQ(ConvertIt::setBool(true), "true");
    EXPECT_EQ(ConvertIt::setBool(false), "false");
}

TEST(ConvertIt, RealsRoundTripExactlyWithDefaultPrecision) {
    for (double value : {0.1, -2.5, 1e20, 1.0 / 3.0, 5e-324, std::numeric_limits<double>::max(), 100.0, -0.0,
                         static_cast<double>(3.4028234663852886e38f)}) {
        std::string text = ConvertIt::setReal(value);
        bool ok = false;
        double back = ConvertIt::getReal(text, &ok);
        EXPECT_TRUE(ok) << text;
        EXPECT_EQ(back, value) << text;
        EXPECT_EQ(std::signbit(back), std::signbit(value)) << text;
    }
    EXPECT_EQ(ConvertIt::setReal(0.1), "0.1");
    EXPECT_EQ(ConvertIt::setReal(100.0), "100");
    EXPECT_EQ(ConvertIt::setReal(static_cast<double>(21.5f), -1, false), "21.5");
    EXPECT_EQ(ConvertIt::setReal(2.0 / 3.0, 3, false), "0.667");
    EXPECT_EQ(ConvertIt::setReal(2.0 / 3.0, 3, true), "0.667");
    EXPECT_EQ(ConvertIt::setReal(1234.5, 2, true), "1234.50");
    EXPECT_EQ(ConvertIt::setReal(1234.5, 2, false), "1.2e+03");
    EXPECT_EQ(ConvertIt::setReal(1e20, -1, true), "100000000000000000000");

    bool ok = false;
    EXPECT_TRUE(std::isnan(ConvertIt::getReal(ConvertIt::setReal(std::nan("")), &ok)));
    EXPECT_TRUE(ok);
    EXPECT_EQ(ConvertIt::getReal(ConvertIt::setReal(-HUGE_VAL), &ok), -HUGE_VAL);
    EXPECT_TRUE(ok);
    EXPECT_EQ(ConvertIt::getReal(" +1.5e2 ", &ok), 150.0);
    EXPECT_TRUE(ok);
    for (const char* bad : {"", "1,5", "1.5x", "e5", "1e999", "--1", "+-1", "0x10"}) {
        ok = true;
        EXPECT_EQ(ConvertIt::getReal(bad, &ok), 0.0) << bad;
        EXPECT_FALSE(ok) << bad;
    }
}
