// The one-octet fast paths of the hot decoders against the general tag walk: for every first
// octet and every input length they must answer exactly as the general path does, so a fast path
// can never accept, reject or read what the rules do not.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "exact_buffer.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"

namespace {

const std::vector<uint8_t> kContent = {0x12, 0x34, 0x56, 0x78, 0x9A};

std::vector<uint8_t> input(unsigned first) {
    std::vector<uint8_t> bytes(kContent.size() + 1);
    bytes[0] = uint8_t(first);
    std::copy(kContent.begin(), kContent.end(), bytes.begin() + 1);
    return bytes;
}

}  // namespace

TEST(FastPaths, ValueDecoderAgreesWithGeneralPathForEveryFirstOctet) {
    for (unsigned first = 0; first < 256; ++first) {
        for (size_t length = 0; length <= kContent.size() + 1; ++length) {
            ExactBuffer buf(input(first), length);
            BACNET_APPLICATION_DATA_VALUE fast, general;
            bacapp_value_init(&fast);
            bacapp_value_init(&general);
            const int n = bacapp_decode_application_data(buf.data(), buf.size(), &fast);
            ASSERT_EQ(n, bacapp_decode_application_data_full(buf.data(), buf.size(), &general))
                << std::hex << first << " length " << length;
            if (n < 0) continue;
            EXPECT_EQ(fast.tag, general.tag) << std::hex << first;
            EXPECT_FALSE(fast.context_specific);
            EXPECT_TRUE(bacapp_same_value(&fast, &general) || fast.tag == BACNET_APPLICATION_TAG_REAL)
                << std::hex << first;
            if (fast.tag == BACNET_APPLICATION_TAG_REAL) {
                EXPECT_EQ(0, std::memcmp(&fast.type.Real, &general.type.Real, sizeof(float)));
            }
        }
    }
}

TEST(FastPaths, TaggedUnsignedAndRealAgreeWithTheValueDecoder) {
    for (unsigned first = 0; first < 256; ++first) {
        for (size_t length = 0; length <= kContent.size() + 1; ++length) {
            ExactBuffer buf(input(first), length);
            BACNET_APPLICATION_DATA_VALUE value;
            bacapp_value_init(&value);
            const int n = bacapp_decode_application_data_full(buf.data(), buf.size(), &value);
            uint32_t u = 0xDEADBEEF;
            const int nu = decode_application_unsigned(buf.data(), buf.size(), &u);
            if (n > 0 && value.tag == BACNET_APPLICATION_TAG_UNSIGNED_INT) {
                EXPECT_EQ(nu, n) << std::hex << first;
                EXPECT_EQ(u, value.type.Unsigned_Int) << std::hex << first;
            } else {
                EXPECT_EQ(nu, BACNET_STATUS_ERROR) << std::hex << first << " length " << length;
            }
            float f = 0;
            const int nf = decode_application_real(buf.data(), buf.size(), &f);
            if (n > 0 && value.tag == BACNET_APPLICATION_TAG_REAL) {
                EXPECT_EQ(nf, n);
                EXPECT_EQ(0, std::memcmp(&f, &value.type.Real, sizeof f));
            } else {
                EXPECT_EQ(nf, BACNET_STATUS_ERROR) << std::hex << first << " length " << length;
            }
        }
    }
    uint32_t u = 0;
    const uint8_t one[] = {0x21, 0x07};
    EXPECT_EQ(decode_application_unsigned(one, 2, nullptr), BACNET_STATUS_ERROR);
    EXPECT_EQ(decode_application_unsigned(nullptr, 2, &u), BACNET_STATUS_ERROR);
    EXPECT_EQ(decode_application_real(nullptr, 5, nullptr), BACNET_STATUS_ERROR);
}
