#include "TQ_BACnet/Utility/FloatText.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using TQ::BACnet::Utility::floatText;
using TQ::BACnet::Utility::kFloatTextMax;

namespace {

std::string fast(float value) {
    char text[kFloatTextMax];
    return std::string(text, floatText(value, text));
}

std::string reference(float value) {
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

float fromBits(uint32_t bits) {
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

}  // namespace

// The fast path must agree with the general algorithm everywhere: on the decimals sensors
// report, on the boundaries of its window, and on arbitrary bit patterns.
TEST(FloatText, AgreesWithTheGeneralAlgorithm) {
    using L = std::numeric_limits<float>;
    const float edges[] = {0.0f,       -0.0f,         1e-3f,          9.99e-4f,       1e7f,
                           9999999.0f, 1e6f,          1e5f,           123456.7f,      -21.5f,
                           0.1f,       1.0f / 3,      16777216.0f,    100.0f,         0.001f,
                           0.0015f,    L::infinity(), -L::infinity(), L::quiet_NaN(), L::denorm_min(),
                           L::max(),   L::lowest()};
    for (const float value : edges) EXPECT_EQ(fast(value), reference(value)) << reference(value);
    for (int i = -50000; i <= 50000; ++i) {
        for (const float value : {static_cast<float>(i) / 10.0f, static_cast<float>(i) / 100.0f,
                                  static_cast<float>(i) * 0.25f, static_cast<float>(i) / 1000.0f}) {
            ASSERT_EQ(fast(value), reference(value)) << i;
        }
    }
    std::mt19937 random(7);
    for (int i = 0; i < 500000; ++i) {
        const float value = fromBits(static_cast<uint32_t>(random()));
        ASSERT_EQ(fast(value), reference(value)) << reference(value);
    }
}
