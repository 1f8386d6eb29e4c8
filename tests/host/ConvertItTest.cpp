#include "TQ/Utility/ConvertIt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using TQ::Utility::ConvertIt;

namespace {

// Every parser returns zero and clears the flag for a text it refuses.
template <class Parse>
void expectRefused(Parse parse, std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
        bool ok = true;
        EXPECT_EQ(parse(text, &ok), decltype(parse(text, &ok)){}) << text;
        EXPECT_FALSE(ok) << text;
    }
}

}  // namespace

TEST(ConvertIt, IntegersAcceptTheirWholeRangeAndRejectTheRest) {
    bool ok = false;
    const std::pair<const char*, uint32_t> unsignedTexts[] = {
        {"4294967295", 4294967295u}, {" +17 ", 17}, {"0x1F", 31}};
    for (const auto& text : unsignedTexts) {
        EXPECT_EQ(ConvertIt::getUInt(text.first, &ok), text.second) << text.first;
        EXPECT_TRUE(ok) << text.first;
    }
    expectRefused(ConvertIt::getUInt, {"4294967296", "-1", "", " ", "12a", "1.5", "++1", "0x", "+-1", "1 2"});
    EXPECT_EQ(ConvertIt::getInt("-2147483648", &ok), std::numeric_limits<int32_t>::min());
    EXPECT_TRUE(ok);
    expectRefused(ConvertIt::getInt, {"2147483648", "-2147483649", "0x10", "--1", "1e3"});
    EXPECT_EQ(ConvertIt::getUInt64("18446744073709551615", &ok), std::numeric_limits<uint64_t>::max());
    EXPECT_EQ(ConvertIt::getInt64("-9223372036854775808", &ok), std::numeric_limits<int64_t>::min());
    EXPECT_TRUE(ok);
    expectRefused(ConvertIt::getUInt64, {"18446744073709551616"});
    EXPECT_EQ(ConvertIt::getUInt("nonsense"), 0u) << "the flag is optional";
    EXPECT_EQ(ConvertIt::setUInt(4294967295u), "4294967295");
    EXPECT_EQ(ConvertIt::setInt(std::numeric_limits<int64_t>::min()), "-9223372036854775808");
}

TEST(ConvertIt, BooleansFromWordsAndNumbers) {
    bool ok = false;
    for (const char* yes : {"true", "TRUE", " True ", "yes", "on", "1", "-5"}) {
        EXPECT_TRUE(ConvertIt::getBool(yes, &ok) && ok) << yes;
    }
    for (const char* no : {"false", "False", "no", "OFF", "0"}) {
        EXPECT_FALSE(ConvertIt::getBool(no, &ok)) << no;
        EXPECT_TRUE(ok) << no;
    }
    expectRefused(ConvertIt::getBool, {"", "tru", "t", "1.0", "null"});
    EXPECT_EQ(ConvertIt::setBool(false), "false");
}

TEST(ConvertIt, RealsRoundTripExactlyWithDefaultPrecision) {
    bool ok = false;
    for (double value : {0.1, -2.5, 1e20, 1.0 / 3.0, 5e-324, std::numeric_limits<double>::max(), -0.0,
                         static_cast<double>(3.4028234663852886e38f), -HUGE_VAL}) {
        std::string text = ConvertIt::setReal(value);
        double back = ConvertIt::getReal(text, &ok);
        EXPECT_TRUE(ok && back == value && std::signbit(back) == std::signbit(value)) << text;
    }
    EXPECT_TRUE(std::isnan(ConvertIt::getReal(ConvertIt::setReal(std::nan("")), &ok)) && ok);
    const struct {
        double value;
        int precision;
        bool fixed;
        const char* text;
    } formats[] = {{0.1, -1, false, "0.1"},       {100.0, -1, false, "100"},
                   {21.5, -1, false, "21.5"},     {2.0 / 3.0, 3, false, "0.667"},
                   {2.0 / 3.0, 3, true, "0.667"}, {1234.5, 2, true, "1234.50"},
                   {1234.5, 2, false, "1.2e+03"}, {1e20, -1, true, "100000000000000000000"}};
    for (const auto& format : formats)
        EXPECT_EQ(ConvertIt::setReal(format.value, format.precision, format.fixed), format.text);
    EXPECT_EQ(ConvertIt::getReal(" +1.5e2 ", &ok), 150.0);
    EXPECT_TRUE(ok);
    expectRefused(ConvertIt::getReal, {"", "1,5", "1.5x", "e5", "1e999", "--1", "+-1", "0x10"});
}
