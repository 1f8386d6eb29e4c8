// Tag headers and primitive values: known encodings byte for byte, round trips at the limits of
// every width, and what the context decoders answer for absent or mismatched elements.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <limits>
#include <string>

#include "TQTestCodec.h"
#include "tq_stack/codec.h"
#include "tq_stack/strings.h"

using namespace TQTest;

namespace {

// Encodes `v`, decodes it from an exactly-sized copy and expects the same bits back (so the sign
// of zero and NaN count too).
template <typename T, typename Encode, typename Decode>
void expectRoundTrip(T v, Encode encode, Decode decode) {
    const Bytes b = encodedBy([&](uint8_t* p) { return encode(p, v); });
    T out{};
    EXPECT_EQ(int(b.size()), DECODED(b, decode(p, n, &out))) << hexText(b);
    EXPECT_EQ(0, std::memcmp(&out, &v, sizeof v)) << hexText(b);
}
#define ROUND_TRIP(v, encodeCall, decodeCall)             \
    expectRoundTrip(                                      \
        v, [](uint8_t* p, auto x) { return encodeCall; }, \
        [](const uint8_t* p, uint32_t n, auto* out) { return decodeCall; })

}  // namespace

TEST(Tags, HeadersEncodeAndDecodeForEveryNumberAndLengthWidth) {
    // Tag numbers from 15 on take an extra byte; lengths above 4 take one byte up to 253,
    // 254 + two bytes up to 65535 and 255 + four bytes beyond.
    const std::tuple<uint8_t, bool, uint32_t, const char*> rows[] = {{2, false, 1, "21"},
                                                                     {3, true, 1, "39"},
                                                                     {14, true, 4, "EC"},
                                                                     {15, true, 1, "F9 0F"},
                                                                     {254, false, 0, "F0 FE"},
                                                                     {6, false, 5, "65 05"},
                                                                     {6, false, 253, "65 FD"},
                                                                     {6, false, 254, "65 FE 00 FE"},
                                                                     {6, false, 65535, "65 FE FF FF"},
                                                                     {6, false, 65536, "65 FF 00 01 00 00"},
                                                                     {20, true, 300, "FD 14 FE 01 2C"}};
    for (const auto& row : rows)
        EXPECT_EQ(std::get<3>(row),
                  ENCODED_HEX(encode_tag(p, std::get<0>(row), std::get<1>(row), std::get<2>(row))));
    EXPECT_EQ("3E", ENCODED_HEX(encode_opening_tag(p, 3)));
    EXPECT_EQ("3F", ENCODED_HEX(encode_closing_tag(p, 3)));
    EXPECT_EQ("FE 28", ENCODED_HEX(encode_opening_tag(p, 40)));
    for (uint32_t lvt : {0u, 4u, 5u, 253u, 254u, 65535u, 65536u}) {
        for (uint8_t number : {uint8_t(0), uint8_t(9), uint8_t(15), uint8_t(200)}) {
            for (bool context : {false, true}) {
                SCOPED_TRACE(std::to_string(lvt) + " " + std::to_string(number) + " " +
                             std::to_string(context));
                Bytes in = encodedBy([&](uint8_t* p) { return encode_tag(p, number, context, lvt); });
                const int header = int(in.size());
                in.resize(in.size() + lvt, 0xAA);  // content present so the length check passes
                BACNET_TAG tag;
                ASSERT_EQ(header, DECODED(in, bacnet_tag_decode(p, n, &tag)));
                EXPECT_EQ(std::make_tuple(tag.number, tag.context, tag.application,
                                          tag.opening || tag.closing, tag.len_value_type),
                          std::make_tuple(number, context, !context, false, lvt));
                uint8_t num = 0;
                uint32_t value = 0;
                EXPECT_EQ(header, DECODED(in, decode_tag_number_and_value(p, n, &num, &value)));
                EXPECT_EQ(std::make_tuple(num, value), std::make_tuple(number, lvt));
            }
        }
    }
    // An application BOOLEAN has no content whatever its length field says.
    BACNET_TAG tag;
    ASSERT_EQ(1, DECODED("11", bacnet_tag_decode(p, n, &tag)));
    EXPECT_EQ(tag.len_value_type, 1u);
}

TEST(Tags, PredicatesMalformedHeadersAndEnclosedLengths) {
    EXPECT_TRUE(DECODED("3E", decode_is_opening_tag(p, n)));
    EXPECT_TRUE(DECODED("3E", decode_is_opening_tag_number(p, n, 3)));
    EXPECT_FALSE(DECODED("3E", decode_is_opening_tag_number(p, n, 4)));
    EXPECT_FALSE(DECODED("3E", decode_is_closing_tag_number(p, n, 3)));
    EXPECT_TRUE(DECODED("3F", decode_is_closing_tag(p, n)));
    EXPECT_TRUE(DECODED("3F", decode_is_closing_tag_number(p, n, 3)));
    EXPECT_TRUE(DECODED("39 01", decode_is_context_tag(p, n, 3)));
    EXPECT_FALSE(DECODED("3E", decode_is_context_tag(p, n, 3)));
    EXPECT_FALSE(DECODED("91 01", decode_is_context_tag(p, n, 9)));
    // No bytes at all: every predicate is false, none reads.
    EXPECT_FALSE(DECODED("3E", decode_is_opening_tag_number(p, 0, 3)));
    EXPECT_FALSE(DECODED("39", decode_is_context_tag(p, 0, 3)));

    // Extension markers as the last byte or cut short; declared lengths beyond what remains (up to
    // the largest 32-bit values); the application class with the opening/closing codes; tag 255.
    BACNET_TAG tag;
    for (const char* h :
         {"F9", "FD", "FE", "FF", "65", "6D", "65 FE 01", "65 FF 00 00 01", "62 01", "65 06 01 02 03 04 05",
          "65 FF FF FF FF FF 00", "65 FF 7F FF FF FF 00", "6D FF FF FF FF FB 00", "26", "27", "F8 FF 00"})
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(h, bacnet_tag_decode(p, n, &tag))) << h;
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("21", bacnet_tag_decode(p, 0, &tag)));
    EXPECT_EQ(BACNET_STATUS_ERROR, bacnet_tag_decode(nullptr, 5, &tag));
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("21 01", bacnet_tag_decode(p, n, nullptr)));

    const std::string ok =
        "3E 44 3F 80 00 00 0E 11 19 05 0F 65 05 01 02 03 04 05 3F";  // [3] { REAL, [0] {..}, OCTETS }
    const std::pair<std::string, int> rows[] = {
        {ok + " 00", 17},
        {"2E 62 2F 2F 2F", 3},  // a closing tag inside content bytes does not end the walk
        {ok.substr(0, ok.size() - 3), BACNET_STATUS_ERROR},  // closing tag cut off
        {"3E 0E 1F 3F", BACNET_STATUS_ERROR},                // mismatched inner pair
        {"3E 4F", BACNET_STATUS_ERROR},
        {"39 01", BACNET_STATUS_ERROR},  // not an opening tag
        {"3E 65 FE", BACNET_STATUS_ERROR}};
    for (const auto& row : rows)
        EXPECT_EQ(row.second, DECODED(row.first, bacnet_enclosed_data_length(p, n))) << row.first;
    // Nesting deeper than the limit is refused; at the limit it is accepted.
    for (unsigned depth : {unsigned(BACNET_MAX_NESTING_DEPTH), BACNET_MAX_NESTING_DEPTH + 1u}) {
        Bytes nested(depth, 0x0E);
        nested.insert(nested.end(), depth, 0x0F);
        EXPECT_EQ(depth > BACNET_MAX_NESTING_DEPTH ? BACNET_STATUS_ERROR : int(2 * depth - 2),
                  DECODED(nested, bacnet_enclosed_data_length(p, n)));
    }
}

TEST(Primitives, KnownEncodings) {
    const BACNET_DATE date{2024, 3, 7, 4}, before1900{1200, 1, 1, 1}, yearOffset{124, 1, 1, 1};
    const BACNET_TIME time{8, 30, 0, 255};
    BACNET_CHARACTER_STRING cs;
    characterstring_init_ansi(&cs, "abc");
    BACNET_BIT_STRING bits, dirty;
    bitstring_init(&bits);
    bitstring_set_bit(&bits, 0, true);
    bitstring_set_bit(&bits, 2, true);
    bitstring_init(&dirty);
    bitstring_set_octet(&dirty, 0, 0xFF);
    bitstring_set_bits_used(&dirty, 1, 5);
    BACNET_OCTET_STRING os;
    octetstring_init_ascii_hex(&os, "0aff");
    EXPECT_EQ("44 3F 80 00 00", ENCODED_HEX(encode_application_real(p, 1.0f)));
    EXPECT_EQ("21 48", ENCODED_HEX(encode_application_unsigned(p, 72)));
    EXPECT_EQ("39 01", ENCODED_HEX(encode_context_enumerated(p, 3, 1)));
    EXPECT_EQ("00", ENCODED_HEX(encode_application_null(p)));
    EXPECT_EQ("11", ENCODED_HEX(encode_application_boolean(p, true)));
    EXPECT_EQ("10", ENCODED_HEX(encode_application_boolean(p, false)));
    EXPECT_EQ("29 01", ENCODED_HEX(encode_context_boolean(p, 2, true)));
    EXPECT_EQ("31 FF", ENCODED_HEX(encode_application_signed(p, -1)));
    EXPECT_EQ("32 00 80", ENCODED_HEX(encode_application_signed(p, 128)));
    EXPECT_EQ("32 FF 7F", ENCODED_HEX(encode_application_signed(p, -129)));
    EXPECT_EQ("34 80 00 00 00", ENCODED_HEX(encode_application_signed(p, INT32_MIN)));
    EXPECT_EQ("24 FF FF FF FF", ENCODED_HEX(encode_application_unsigned(p, 0xFFFFFFFFu)));
    EXPECT_EQ("23 01 00 00", ENCODED_HEX(encode_application_unsigned(p, 0x10000)));
    EXPECT_EQ("55 08 3F F0 00 00 00 00 00 00", ENCODED_HEX(encode_application_double(p, 1.0)));
    EXPECT_EQ("C4 02 00 00 01", ENCODED_HEX(encode_application_object_id(p, OBJECT_DEVICE, 1)));
    EXPECT_EQ("0C 00 3F FF FF", ENCODED_HEX(encode_context_object_id(p, 0, OBJECT_ANALOG_INPUT, 0x3FFFFF)));
    // Type and instance are masked to their field widths.
    EXPECT_EQ("FF FF FF FF", ENCODED_HEX(encode_bacnet_object_id(p, 0x7FF, 0xFFFFFFFF)));
    EXPECT_EQ("A4 7C 03 07 04", ENCODED_HEX(encode_application_date(p, &date)));
    EXPECT_EQ("B4 08 1E 00 FF", ENCODED_HEX(encode_application_time(p, &time)));
    // Years before 1900 that do not look like an offset go out as unspecified.
    EXPECT_EQ("FF 01 01 01", ENCODED_HEX(encode_bacnet_date(p, &before1900)));
    EXPECT_EQ("7C 01 01 01", ENCODED_HEX(encode_bacnet_date(p, &yearOffset)));
    EXPECT_EQ("74 00 61 62 63", ENCODED_HEX(encode_application_character_string(p, &cs)));
    EXPECT_EQ("82 05 A0", ENCODED_HEX(encode_application_bitstring(p, &bits)));
    EXPECT_EQ("05 E0", ENCODED_HEX(encode_bitstring(p, &dirty)));  // the unused tail is not sent
    EXPECT_EQ("FA 0F 0A FF", ENCODED_HEX(encode_context_octet_string(p, 15, &os)));
}

TEST(Primitives, NumbersDatesAndTimesRoundTripAtTheirLimits) {
    for (uint32_t v : {0u, 1u, 255u, 256u, 65535u, 65536u, 0xFFFFFFu, 0x1000000u, 0xFFFFFFFFu}) {
        ROUND_TRIP(v, encode_application_unsigned(p, x), decode_application_unsigned(p, n, out));
        ROUND_TRIP(v, encode_context_enumerated(p, 7, x), decode_context_enumerated(p, n, 7, out));
    }
    for (int32_t v :
         {0, 1, -1, 127, -128, 128, -129, 32767, -32768, 8388607, -8388608, 8388608, INT32_MAX, INT32_MIN}) {
        ROUND_TRIP(v, encode_application_signed(p, x), decode_application_signed(p, n, out));
        ROUND_TRIP(v, encode_context_signed(p, 1, x), decode_context_signed(p, n, 1, out));
    }
    using F = std::numeric_limits<float>;
    for (float v : {0.0f, -0.0f, 1.0f, -1.5f, F::max(), F::min(), F::denorm_min(), F::infinity(),
                    -F::infinity(), F::quiet_NaN()}) {
        ROUND_TRIP(v, encode_application_real(p, x), decode_application_real(p, n, out));
        ROUND_TRIP(v, encode_context_real(p, 2, x), decode_context_real(p, n, 2, out));
    }
    using D = std::numeric_limits<double>;
    for (double v : {0.0, -2.5, 1e308, -1e-308, D::infinity(), D::quiet_NaN()}) {
        ROUND_TRIP(v, encode_application_double(p, x), decode_application_double(p, n, out));
        ROUND_TRIP(v, encode_context_double(p, 4, x), decode_context_double(p, n, 4, out));
    }
    // Unspecified fields (255, year 2155) and out-of-range months and days are values too.
    for (const BACNET_TIME& t : {BACNET_TIME{0, 0, 0, 0}, BACNET_TIME{23, 59, 59, 99},
                                 BACNET_TIME{255, 255, 255, 255}, BACNET_TIME{12, 255, 0, 255}})
        ROUND_TRIP(t, encode_application_time(p, &x), decode_application_time(p, n, out));
    for (const BACNET_DATE& d : {BACNET_DATE{1900, 1, 1, 1}, BACNET_DATE{2155, 255, 255, 255},
                                 BACNET_DATE{2024, 13, 33, 255}, BACNET_DATE{2154, 14, 32, 7}}) {
        BACNET_DATE out{};
        EXPECT_EQ(5, DECODED(encodedBy([&](uint8_t* p) { return encode_context_date(p, 0, &d); }),
                             decode_context_date(p, n, 0, &out)));
        EXPECT_EQ(std::make_tuple(out.year, out.month, out.day, out.wday),
                  std::make_tuple(d.year, d.month, d.day, d.wday));
    }
}

TEST(Primitives, StringsAndBitStringsRoundTripEmptyAndAtMaximumLength) {
    for (size_t len : {0, 1, 4, 5, 253, 254, MAX_CHARACTER_STRING_BYTES}) {
        std::string text(len, 'x');
        for (size_t i = 0; i < len; ++i) text[i] = char('a' + i % 26);
        BACNET_CHARACTER_STRING in, out;
        ASSERT_TRUE(characterstring_init(&in, CHARACTER_UTF8, text.data(), len));
        const Bytes b = encodedBy([&](uint8_t* p) { return encode_application_character_string(p, &in); });
        EXPECT_LE(b.size(), size_t(MAX_APDU));
        ASSERT_EQ(int(b.size()), DECODED(b, decode_application_character_string(p, n, &out))) << len;
        EXPECT_TRUE(characterstring_same(&in, &out));
        EXPECT_STREQ(characterstring_value(&out), text.c_str());
    }
    for (size_t len : {0, 1, 300, MAX_OCTET_STRING_BYTES}) {
        Bytes raw(len);
        for (size_t i = 0; i < len; ++i) raw[i] = uint8_t(i * 7);
        BACNET_OCTET_STRING in, out;
        ASSERT_TRUE(octetstring_init(&in, raw.data(), len));
        const Bytes b = encodedBy([&](uint8_t* p) { return encode_context_octet_string(p, 1, &in); });
        EXPECT_LE(b.size(), size_t(MAX_APDU));
        ASSERT_EQ(int(b.size()), DECODED(b, decode_context_octet_string(p, n, 1, &out))) << len;
        EXPECT_TRUE(octetstring_value_same(&in, &out));
    }
    // A string one byte longer than the maximum is refused rather than truncated.
    Bytes tooLong =
        encodedBy([](uint8_t* p) { return encode_tag(p, 7, false, MAX_CHARACTER_STRING_BYTES + 2); });
    tooLong.resize(tooLong.size() + MAX_CHARACTER_STRING_BYTES + 2, 'a');
    tooLong[4] = 0;
    BACNET_CHARACTER_STRING cs;
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(tooLong, decode_application_character_string(p, n, &cs)));

    for (unsigned bitCount : {0u, 1u, 7u, 8u, 9u, 120u}) {
        BACNET_BIT_STRING in, out;
        bitstring_init(&in);
        for (unsigned i = 0; i < bitCount; ++i) bitstring_set_bit(&in, uint8_t(i), i % 3 == 0);
        ASSERT_EQ(bitstring_bits_used(&in), bitCount);
        const Bytes b = encodedBy([&](uint8_t* p) { return encode_application_bitstring(p, &in); });
        EXPECT_EQ(b[b.size() - bitstring_bytes_used(&in) - 1], (8 - bitCount % 8) % 8)
            << bitCount;  // unused bits
        ASSERT_EQ(int(b.size()), DECODED(b, decode_application_bitstring(p, n, &out)));
        EXPECT_EQ(bitstring_bits_used(&out), bitCount);
        EXPECT_TRUE(bitstring_same(&in, &out));
        for (unsigned i = 0; i < bitCount; ++i) EXPECT_EQ(bitstring_bit(&out, uint8_t(i)), i % 3 == 0) << i;
    }
}

TEST(Primitives, ContextDecodersTellAbsenceFromMismatch) {
    uint32_t u = 99;
    bool b = false;
    uint16_t type = 0;
    uint32_t instance = 0;
    // 0: not there (another context tag, an application tag of the same number, an opening tag, no data).
    EXPECT_EQ(0, DECODED("19 05", decode_context_unsigned(p, n, 2, &u)));
    EXPECT_EQ(0, DECODED("21 05", decode_context_unsigned(p, n, 2, &u)));
    EXPECT_EQ(0, DECODED("1E 1F", decode_context_unsigned(p, n, 1, &u)));
    EXPECT_EQ(0, DECODED("19 05", decode_context_unsigned(p, 0, 1, &u)));
    // An error: there but unusable.
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("19 05", decode_application_unsigned(p, n, &u)));
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("21 05", decode_application_real(p, n, nullptr)));
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("29 00", decode_context_null(p, n, 2)));
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("39 02", decode_context_boolean(p, n, 3, &b)));
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("12", decode_application_boolean(p, n, &b)));
    EXPECT_EQ(u, 99u);  // untouched by all of the above
    EXPECT_EQ(1, DECODED("28", decode_context_null(p, n, 2)));
    EXPECT_EQ(2, DECODED("39 01", decode_context_boolean(p, n, 3, &b)));
    EXPECT_EQ(5, DECODED("2C 00 00 00 07", decode_context_object_id(p, n, 2, &type, &instance)));
    EXPECT_EQ(std::make_tuple(b, type, instance), std::make_tuple(true, uint16_t(OBJECT_ANALOG_INPUT), 7u));
}
