#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "exact_buffer.h"
#include "tq_stack/codec.h"
#include "tq_stack/strings.h"

using Bytes = std::vector<uint8_t>;

TEST(Primitives, KnownApplicationEncodings) {
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_real(p, 1.0f); }),
              (Bytes{0x44, 0x3F, 0x80, 0x00, 0x00}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_unsigned(p, 72); }), (Bytes{0x21, 0x48}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_context_enumerated(p, 3, 1); }), (Bytes{0x39, 0x01}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_null(p); }), (Bytes{0x00}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_boolean(p, true); }), (Bytes{0x11}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_boolean(p, false); }), (Bytes{0x10}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_context_boolean(p, 2, true); }), (Bytes{0x29, 0x01}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_signed(p, -1); }), (Bytes{0x31, 0xFF}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_signed(p, 128); }),
              (Bytes{0x32, 0x00, 0x80}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_signed(p, -129); }),
              (Bytes{0x32, 0xFF, 0x7F}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_signed(p, INT32_MIN); }),
              (Bytes{0x34, 0x80, 0x00, 0x00, 0x00}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_unsigned(p, 0xFFFFFFFFu); }),
              (Bytes{0x24, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_unsigned(p, 0x10000); }),
              (Bytes{0x23, 0x01, 0x00, 0x00}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_double(p, 1.0); }),
              (Bytes{0x55, 0x08, 0x3F, 0xF0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_application_object_id(p, OBJECT_DEVICE, 1); }),
              (Bytes{0xC4, 0x02, 0x00, 0x00, 0x01}));
    EXPECT_EQ(
        encoded([](uint8_t* p) { return encode_context_object_id(p, 0, OBJECT_ANALOG_INPUT, 0x3FFFFF); }),
        (Bytes{0x0C, 0x00, 0x3F, 0xFF, 0xFF}));
    // Type and instance are masked to their field widths.
    EXPECT_EQ(encoded([](uint8_t* p) { return encode_bacnet_object_id(p, 0x7FF, 0xFFFFFFFF); }),
              (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
    BACNET_DATE date{2024, 3, 7, 4};
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_application_date(p, &date); }),
              (Bytes{0xA4, 124, 3, 7, 4}));
    BACNET_TIME time{8, 30, 0, 255};
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_application_time(p, &time); }),
              (Bytes{0xB4, 8, 30, 0, 255}));
    BACNET_CHARACTER_STRING cs;
    characterstring_init_ansi(&cs, "abc");
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_application_character_string(p, &cs); }),
              (Bytes{0x74, 0x00, 'a', 'b', 'c'}));
    BACNET_BIT_STRING bits;
    bitstring_init(&bits);
    bitstring_set_bit(&bits, 0, true);
    bitstring_set_bit(&bits, 2, true);
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_application_bitstring(p, &bits); }),
              (Bytes{0x82, 0x05, 0xA0}));
    BACNET_OCTET_STRING os;
    octetstring_init_ascii_hex(&os, "0aff");
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_context_octet_string(p, 15, &os); }),
              (Bytes{0xFA, 0x0F, 0x0A, 0xFF}));
}

TEST(Primitives, IntegersRoundTripAtTheirLimits) {
    for (uint32_t v : {0u, 1u, 255u, 256u, 65535u, 65536u, 0xFFFFFFu, 0x1000000u, 0xFFFFFFFFu}) {
        ExactBuffer buf(encoded([&](uint8_t* p) { return encode_application_unsigned(p, v); }));
        uint32_t out = 12345;
        EXPECT_EQ(decode_application_unsigned(buf.data(), buf.size(), &out), int(buf.size()));
        EXPECT_EQ(out, v);
        ExactBuffer ctx(encoded([&](uint8_t* p) { return encode_context_enumerated(p, 7, v); }));
        EXPECT_EQ(decode_context_enumerated(ctx.data(), ctx.size(), 7, &out), int(ctx.size()));
        EXPECT_EQ(out, v);
    }
    for (int32_t v :
         {0, 1, -1, 127, -128, 128, -129, 32767, -32768, 8388607, -8388608, 8388608, INT32_MAX, INT32_MIN}) {
        ExactBuffer buf(encoded([&](uint8_t* p) { return encode_application_signed(p, v); }));
        int32_t out = 12345;
        EXPECT_EQ(decode_application_signed(buf.data(), buf.size(), &out), int(buf.size()));
        EXPECT_EQ(out, v);
        ExactBuffer ctx(encoded([&](uint8_t* p) { return encode_context_signed(p, 1, v); }));
        EXPECT_EQ(decode_context_signed(ctx.data(), ctx.size(), 1, &out), int(ctx.size()));
        EXPECT_EQ(out, v);
    }
    // Shorter than minimal encodings of negative values decode by sign extension.
    ExactBuffer minus2{0x32, 0xFF, 0xFE};
    int32_t s = 0;
    EXPECT_EQ(decode_application_signed(minus2.data(), minus2.size(), &s), 3);
    EXPECT_EQ(s, -2);
}

TEST(Primitives, FloatingPointRoundTripsIncludingSpecialValues) {
    for (float v : {0.0f, -0.0f, 1.0f, -1.5f, std::numeric_limits<float>::max(),
                    std::numeric_limits<float>::min(), std::numeric_limits<float>::denorm_min(),
                    std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()}) {
        ExactBuffer buf(encoded([&](uint8_t* p) { return encode_application_real(p, v); }));
        float out = 7.0f;
        ASSERT_EQ(decode_application_real(buf.data(), buf.size(), &out), 5);
        EXPECT_EQ(out, v);
        EXPECT_EQ(std::signbit(out), std::signbit(v));
        ExactBuffer ctx(encoded([&](uint8_t* p) { return encode_context_real(p, 2, v); }));
        ASSERT_EQ(decode_context_real(ctx.data(), ctx.size(), 2, &out), 5);
        EXPECT_EQ(out, v);
    }
    float nanOut = 0.0f;
    ExactBuffer nanBuf(encoded([](uint8_t* p) { return encode_application_real(p, std::nanf("")); }));
    ASSERT_EQ(decode_application_real(nanBuf.data(), nanBuf.size(), &nanOut), 5);
    EXPECT_TRUE(std::isnan(nanOut));
    for (double v : {0.0, -2.5, 1e308, -1e-308, std::numeric_limits<double>::infinity(),
                     std::numeric_limits<double>::quiet_NaN()}) {
        ExactBuffer buf(encoded([&](uint8_t* p) { return encode_application_double(p, v); }));
        double out = 7.0;
        ASSERT_EQ(decode_application_double(buf.data(), buf.size(), &out), 10);
        if (std::isnan(v))
            EXPECT_TRUE(std::isnan(out));
        else
            EXPECT_EQ(out, v);
        ExactBuffer ctx(encoded([&](uint8_t* p) { return encode_context_double(p, 4, v); }));
        ASSERT_EQ(decode_context_double(ctx.data(), ctx.size(), 4, &out), 10);
    }
}

TEST(Primitives, StringsRoundTripEmptyAndAtMaximumLength) {
    for (size_t n : {size_t(0), size_t(1), size_t(4), size_t(5), size_t(253), size_t(254),
                     size_t(MAX_CHARACTER_STRING_BYTES)}) {
        std::string text(n, 'x');
        for (size_t i = 0; i < n; ++i) text[i] = char('a' + i % 26);
        BACNET_CHARACTER_STRING in;
        ASSERT_TRUE(characterstring_init(&in, CHARACTER_UTF8, text.data(), n));
        Bytes bytes = encoded([&](uint8_t* p) { return encode_application_character_string(p, &in); });
        EXPECT_LE(bytes.size(), size_t(MAX_APDU));
        ExactBuffer buf(bytes);
        BACNET_CHARACTER_STRING out;
        ASSERT_EQ(decode_application_character_string(buf.data(), buf.size(), &out), int(buf.size())) << n;
        EXPECT_TRUE(characterstring_same(&in, &out));
        EXPECT_STREQ(characterstring_value(&out), text.c_str());
    }
    for (size_t n : {size_t(0), size_t(1), size_t(300), size_t(MAX_OCTET_STRING_BYTES)}) {
        Bytes raw(n);
        for (size_t i = 0; i < n; ++i) raw[i] = uint8_t(i * 7);
        BACNET_OCTET_STRING in;
        ASSERT_TRUE(octetstring_init(&in, raw.data(), n));
        Bytes bytes = encoded([&](uint8_t* p) { return encode_context_octet_string(p, 1, &in); });
        EXPECT_LE(bytes.size(), size_t(MAX_APDU));
        ExactBuffer buf(bytes);
        BACNET_OCTET_STRING out;
        ASSERT_EQ(decode_context_octet_string(buf.data(), buf.size(), 1, &out), int(buf.size()));
        EXPECT_TRUE(octetstring_value_same(&in, &out));
    }
    // A string one byte longer than the maximum is refused rather than truncated.
    Bytes tooLong =
        encoded([](uint8_t* p) { return encode_tag(p, 7, false, MAX_CHARACTER_STRING_BYTES + 2); });
    tooLong.resize(tooLong.size() + MAX_CHARACTER_STRING_BYTES + 2, 'a');
    tooLong[4] = 0;
    ExactBuffer tooLongBuf(tooLong);
    BACNET_CHARACTER_STRING out;
    EXPECT_EQ(decode_application_character_string(tooLongBuf.data(), tooLongBuf.size(), &out),
              BACNET_STATUS_ERROR);
}

TEST(Primitives, BitStringsOfZeroOneEightAndMaximumBits) {
    for (unsigned n : {0u, 1u, 7u, 8u, 9u, 120u}) {
        BACNET_BIT_STRING in;
        bitstring_init(&in);
        for (unsigned i = 0; i < n; ++i) bitstring_set_bit(&in, uint8_t(i), i % 3 == 0);
        ASSERT_EQ(bitstring_bits_used(&in), n);
        ExactBuffer buf(encoded([&](uint8_t* p) { return encode_application_bitstring(p, &in); }));
        BACNET_TAG tag;
        const int header = bacnet_tag_decode(buf.data(), buf.size(), &tag);
        ASSERT_GT(header, 0);
        EXPECT_EQ(buf.data()[header], (8 - n % 8) % 8);  // unused-bits byte
        BACNET_BIT_STRING out;
        ASSERT_EQ(decode_application_bitstring(buf.data(), buf.size(), &out), int(buf.size()));
        EXPECT_EQ(bitstring_bits_used(&out), n);
        EXPECT_TRUE(bitstring_same(&in, &out));
        for (unsigned i = 0; i < n; ++i) EXPECT_EQ(bitstring_bit(&out, uint8_t(i)), i % 3 == 0);
    }
    // Garbage in the unused tail of the last byte is not sent.
    BACNET_BIT_STRING dirty;
    bitstring_init(&dirty);
    bitstring_set_octet(&dirty, 0, 0xFF);
    bitstring_set_bits_used(&dirty, 1, 5);
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_bitstring(p, &dirty); }), (Bytes{0x05, 0xE0}));
}

TEST(Primitives, DatesAndTimesWithUnspecifiedFieldsAreValues) {
    const BACNET_DATE dates[] = {
        {1900, 1, 1, 1}, {2155, 255, 255, 255}, {2024, 13, 33, 255}, {2154, 14, 32, 7}};
    for (const BACNET_DATE& d : dates) {
        ExactBuffer buf(encoded([&](uint8_t* p) { return encode_context_date(p, 0, &d); }));
        BACNET_DATE out{};
        ASSERT_EQ(decode_context_date(buf.data(), buf.size(), 0, &out), 5);
        EXPECT_EQ(out.year, d.year);
        EXPECT_EQ(out.month, d.month);
        EXPECT_EQ(out.day, d.day);
        EXPECT_EQ(out.wday, d.wday);
    }
    // Years before 1900 that do not look like an offset are sent as unspecified.
    BACNET_DATE old{1200, 1, 1, 1};
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_bacnet_date(p, &old); })[0], 255);
    BACNET_DATE offset{124, 1, 1, 1};
    EXPECT_EQ(encoded([&](uint8_t* p) { return encode_bacnet_date(p, &offset); })[0], 124);
    const BACNET_TIME times[] = {{0, 0, 0, 0}, {23, 59, 59, 99}, {255, 255, 255, 255}, {12, 255, 0, 255}};
    for (const BACNET_TIME& t : times) {
        ExactBuffer buf(encoded([&](uint8_t* p) { return encode_application_time(p, &t); }));
        BACNET_TIME out{};
        ASSERT_EQ(decode_application_time(buf.data(), buf.size(), &out), 5);
        EXPECT_EQ(std::memcmp(&out, &t, sizeof t), 0);
    }
}

TEST(Primitives, ContextDecodersReportAbsenceAsZeroAndMismatchOfClass) {
    ExactBuffer ctx1{0x19, 0x05};
    uint32_t u = 99;
    EXPECT_EQ(decode_context_unsigned(ctx1.data(), ctx1.size(), 2, &u), 0);  // another context tag
    EXPECT_EQ(decode_context_unsigned(ctx1.data(), 0, 1, &u), 0);            // end of data
    EXPECT_EQ(u, 99u);
    ExactBuffer app{0x21, 0x05};
    EXPECT_EQ(decode_context_unsigned(app.data(), app.size(), 2, &u), 0);  // application tag 2 is not [2]
    ExactBuffer opening{0x1E, 0x1F};
    EXPECT_EQ(decode_context_unsigned(opening.data(), opening.size(), 1, &u), 0);
    EXPECT_EQ(decode_application_unsigned(ctx1.data(), ctx1.size(), &u), BACNET_STATUS_ERROR);
    EXPECT_EQ(decode_application_real(app.data(), app.size(), nullptr), BACNET_STATUS_ERROR);
    uint16_t type = 0;
    uint32_t instance = 0;
    ExactBuffer oid{0x2C, 0x00, 0x00, 0x00, 0x07};
    EXPECT_EQ(decode_context_object_id(oid.data(), oid.size(), 2, &type, &instance), 5);
    EXPECT_EQ(type, OBJECT_ANALOG_INPUT);
    EXPECT_EQ(instance, 7u);
    ExactBuffer nul{0x28};
    EXPECT_EQ(decode_context_null(nul.data(), nul.size(), 2), 1);
    ExactBuffer nulWithContent{0x29, 0x00};
    EXPECT_EQ(decode_context_null(nulWithContent.data(), nulWithContent.size(), 2), BACNET_STATUS_ERROR);
    bool b = false;
    ExactBuffer ctxBool{0x39, 0x01};
    EXPECT_EQ(decode_context_boolean(ctxBool.data(), ctxBool.size(), 3, &b), 2);
    EXPECT_TRUE(b);
    ExactBuffer ctxBoolTwo{0x39, 0x02};
    EXPECT_EQ(decode_context_boolean(ctxBoolTwo.data(), ctxBoolTwo.size(), 3, &b), BACNET_STATUS_ERROR);
    ExactBuffer appBoolTwo{0x12};
    EXPECT_EQ(decode_application_boolean(appBoolTwo.data(), appBoolTwo.size(), &b), BACNET_STATUS_ERROR);
}
