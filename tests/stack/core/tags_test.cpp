#include <gtest/gtest.h>

#include "exact_buffer.h"
#include "tq_stack/codec.h"

namespace {

std::vector<uint8_t> tagBytes(uint8_t number, bool context, uint32_t lvt) {
    return encoded([&](uint8_t* p) { return encode_tag(p, number, context, lvt); });
}

}  // namespace

TEST(Tags, HeaderBytesForShortExtendedNumbersAndLengths) {
    EXPECT_EQ(tagBytes(2, false, 1), (std::vector<uint8_t>{0x21}));
    EXPECT_EQ(tagBytes(3, true, 1), (std::vector<uint8_t>{0x39}));
    EXPECT_EQ(tagBytes(14, true, 4), (std::vector<uint8_t>{0xEC}));
    // Tag numbers from 15 on take an extra byte.
    EXPECT_EQ(tagBytes(15, true, 1), (std::vector<uint8_t>{0xF9, 0x0F}));
    EXPECT_EQ(tagBytes(254, false, 0), (std::vector<uint8_t>{0xF0, 0xFE}));
    // Lengths above 4: one byte to 253, 254 + two bytes to 65535, 255 + four bytes beyond.
    EXPECT_EQ(tagBytes(6, false, 5), (std::vector<uint8_t>{0x65, 0x05}));
    EXPECT_EQ(tagBytes(6, false, 253), (std::vector<uint8_t>{0x65, 0xFD}));
    EXPECT_EQ(tagBytes(6, false, 254), (std::vector<uint8_t>{0x65, 0xFE, 0x00, 0xFE}));
    EXPECT_EQ(tagBytes(6, false, 65535), (std::vector<uint8_t>{0x65, 0xFE, 0xFF, 0xFF}));
    EXPECT_EQ(tagBytes(6, false, 65536), (std::vector<uint8_t>{0x65, 0xFF, 0x00, 0x01, 0x00, 0x00}));
    EXPECT_EQ(tagBytes(20, true, 300), (std::vector<uint8_t>{0xFD, 0x14, 0xFE, 0x01, 0x2C}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_opening_tag(p, 3); }), (std::vector<uint8_t>{0x3E}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_closing_tag(p, 3); }), (std::vector<uint8_t>{0x3F}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_opening_tag(p, 40); }),
              (std::vector<uint8_t>{0xFE, 40}));
}

TEST(Tags, DecodeReportsClassNumberAndLength) {
    for (uint32_t lvt : {0u, 4u, 5u, 253u, 254u, 65535u, 65536u}) {
        for (uint8_t number : {uint8_t(0), uint8_t(9), uint8_t(15), uint8_t(200)}) {
            for (bool context : {false, true}) {
                std::vector<uint8_t> bytes = tagBytes(number, context, lvt);
                const size_t header = bytes.size();
                bytes.resize(header + lvt, 0xAA);  // content present so the length check passes
                ExactBuffer buf(bytes);
                BACNET_TAG tag;
                ASSERT_EQ(bacnet_tag_decode(buf.data(), buf.size(), &tag), int(header))
                    << lvt << " " << int(number);
                EXPECT_EQ(tag.number, number);
                EXPECT_EQ(tag.context, context);
                EXPECT_EQ(tag.application, !context);
                EXPECT_FALSE(tag.opening || tag.closing);
                EXPECT_EQ(tag.len_value_type, lvt);
                uint8_t n = 0;
                uint32_t v = 0;
                EXPECT_EQ(decode_tag_number_and_value(buf.data(), buf.size(), &n, &v), int(header));
                EXPECT_EQ(n, number);
                EXPECT_EQ(v, lvt);
            }
        }
    }
}

TEST(Tags, OpeningClosingAndContextPredicates) {
    ExactBuffer open{0x3E};
    ExactBuffer close{0x3F};
    ExactBuffer ctx{0x39, 0x01};
    ExactBuffer app{0x91, 0x01};
    EXPECT_TRUE(decode_is_opening_tag(open.data(), open.size()));
    EXPECT_TRUE(decode_is_opening_tag_number(open.data(), open.size(), 3));
    EXPECT_FALSE(decode_is_opening_tag_number(open.data(), open.size(), 4));
    EXPECT_FALSE(decode_is_closing_tag_number(open.data(), open.size(), 3));
    EXPECT_TRUE(decode_is_closing_tag(close.data(), close.size()));
    EXPECT_TRUE(decode_is_closing_tag_number(close.data(), close.size(), 3));
    EXPECT_TRUE(decode_is_context_tag(ctx.data(), ctx.size(), 3));
    EXPECT_FALSE(decode_is_context_tag(open.data(), open.size(), 3));
    EXPECT_FALSE(decode_is_context_tag(app.data(), app.size(), 9));
    // No bytes at all: every predicate is false, none reads.
    EXPECT_FALSE(decode_is_opening_tag_number(open.data(), 0, 3));
    EXPECT_FALSE(decode_is_context_tag(ctx.data(), 0, 3));
}

TEST(Tags, MalformedHeadersAreRejected) {
    BACNET_TAG tag;
    using Bytes = std::vector<uint8_t>;
    // Extended tag number or length markers as the last byte or cut short; declared lengths beyond
    // what remains (up to the largest 32-bit values); application class with the opening/closing
    // codes; the reserved tag number 255.
    const Bytes malformed[] = {{0xF9},
                               {0xFD},
                               {0xFE},
                               {0xFF},
                               {0x65},
                               {0x6D},
                               {0x65, 0xFE, 0x01},
                               {0x65, 0xFF, 0x00, 0x00, 0x01},
                               {0x62, 0x01},
                               {0x65, 0x06, 1, 2, 3, 4, 5},
                               {0x65, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00},
                               {0x65, 0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0x00},
                               {0x6D, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0x00},
                               {0x26},
                               {0x27},
                               {0xF8, 0xFF, 0x00}};
    for (const Bytes& bytes : malformed) {
        ExactBuffer buf(bytes);
        EXPECT_EQ(bacnet_tag_decode(buf.data(), buf.size(), &tag), BACNET_STATUS_ERROR)
            << ::testing::PrintToString(bytes);
    }
    // Nothing to decode, or no output.
    ExactBuffer one{0x21};
    EXPECT_EQ(bacnet_tag_decode(one.data(), 0, &tag), BACNET_STATUS_ERROR);
    EXPECT_EQ(bacnet_tag_decode(nullptr, 5, &tag), BACNET_STATUS_ERROR);
    EXPECT_EQ(bacnet_tag_decode(one.data(), one.size(), nullptr), BACNET_STATUS_ERROR);
    // An application BOOLEAN has no content whatever its length field says.
    ExactBuffer boolean{0x11};
    ASSERT_EQ(bacnet_tag_decode(boolean.data(), boolean.size(), &tag), 1);
    EXPECT_EQ(tag.len_value_type, 1u);
}

TEST(Tags, EnclosedDataLengthBalancesNestedTags) {
    // [3] { REAL, [0] { BOOLEAN true, [1] 5 }, OCTET STRING 5 bytes } trailing byte
    ExactBuffer ok{0x3E, 0x44, 0x3F, 0x80, 0x00, 0x00, 0x0E, 0x11, 0x19, 0x05,
                   0x0F, 0x65, 0x05, 1,    2,    3,    4,    5,    0x3F, 0x00};
    EXPECT_EQ(bacnet_enclosed_data_length(ok.data(), ok.size()), 17);
    // A closing tag inside content bytes does not end the walk.
    ExactBuffer contentLooksLikeTag{0x2E, 0x62, 0x2F, 0x2F, 0x2F};
    EXPECT_EQ(bacnet_enclosed_data_length(contentLooksLikeTag.data(), contentLooksLikeTag.size()), 3);
    EXPECT_EQ(bacnet_enclosed_data_length(ok.data(), 18), BACNET_STATUS_ERROR);  // closing tag cut off
    ExactBuffer mismatched{0x3E, 0x0E, 0x1F, 0x3F};
    EXPECT_EQ(bacnet_enclosed_data_length(mismatched.data(), mismatched.size()), BACNET_STATUS_ERROR);
    ExactBuffer wrongOuter{0x3E, 0x4F};
    EXPECT_EQ(bacnet_enclosed_data_length(wrongOuter.data(), wrongOuter.size()), BACNET_STATUS_ERROR);
    ExactBuffer notOpening{0x39, 0x01};
    EXPECT_EQ(bacnet_enclosed_data_length(notOpening.data(), notOpening.size()), BACNET_STATUS_ERROR);
    ExactBuffer badInner{0x3E, 0x65, 0xFE};
    EXPECT_EQ(bacnet_enclosed_data_length(badInner.data(), badInner.size()), BACNET_STATUS_ERROR);
    // Nesting deeper than the limit is refused; at the limit it is accepted.
    auto nested = [](unsigned depth) {
        std::vector<uint8_t> b(depth, 0x0E);
        b.insert(b.end(), depth, 0x0F);
        return b;
    };
    ExactBuffer atLimit(nested(BACNET_MAX_NESTING_DEPTH));
    EXPECT_EQ(bacnet_enclosed_data_length(atLimit.data(), atLimit.size()),
              int(2 * BACNET_MAX_NESTING_DEPTH - 2));
    ExactBuffer tooDeep(nested(BACNET_MAX_NESTING_DEPTH + 1));
    EXPECT_EQ(bacnet_enclosed_data_length(tooDeep.data(), tooDeep.size()), BACNET_STATUS_ERROR);
}
