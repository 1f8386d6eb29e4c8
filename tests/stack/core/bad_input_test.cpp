// Every decoder family against the classes of bad input a peer can send: truncation at every
// byte, impossible lengths, wrong tags, and tags cut after their extension marker.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "exact_buffer.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"
#include "tq_stack/references.h"
#include "tq_stack/strings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Decoder = std::function<int(const uint8_t*, uint32_t)>;

struct Case {
    std::string name;
    Bytes valid;
    Decoder decode;
    bool optional;  // a context decoder: no bytes at all means "absent" (0), not an error
};

BACNET_APPLICATION_DATA_VALUE gValue;
BACNET_DATE_TIME gDateTime;
BACNET_DEVICE_OBJECT_REFERENCE gRef;
BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE gPropRef;
BACNET_CHARACTER_STRING gChars;
BACNET_OCTET_STRING gOctets;
BACNET_BIT_STRING gBits;

#define DEC(call) [](const uint8_t* p, uint32_t n) { return call; }
#define ENC(call) encoded([](uint8_t* p) { return call; })

std::vector<Case> cases() {
    static bool b;
    static uint32_t u;
    static int32_t s;
    static float f;
    static double d;
    static BACNET_DATE date;
    static BACNET_TIME time;
    static uint16_t type;
    static uint32_t instance;
    static BACNET_DATE_TIME dt{{2024, 1, 5, 5}, {13, 5, 9, 25}};
    static BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE pref{
        {OBJECT_ANALOG_INPUT, 3}, PROP_PRESENT_VALUE, 8, {OBJECT_DEVICE, 1234}};
    static BACNET_DEVICE_OBJECT_REFERENCE ref{{OBJECT_DEVICE, 1234}, {OBJECT_TREND_LOG, 1}};
    characterstring_init_ansi(&gChars, "twenty characters!!!");
    octetstring_init_ascii_hex(&gOctets, "00112233445566");
    bitstring_init(&gBits);
    bitstring_set_bit(&gBits, 10, true);
    // One line per decoder: name, a valid encoding, the decode call, whether it is a context decoder.
    return {
        {"application unsigned", {0x23, 1, 2, 3}, DEC(decode_application_unsigned(p, n, &u)), false},
        {"application signed", {0x34, 0x80, 0, 0, 0}, DEC(decode_application_signed(p, n, &s)), false},
        {"application real", {0x44, 0x3F, 0x80, 0, 0}, DEC(decode_application_real(p, n, &f)), false},
        {"application double",
         {0x55, 8, 0x3F, 0xF0, 0, 0, 0, 0, 0, 0},
         DEC(decode_application_double(p, n, &d)),
         false},
        {"application date", {0xA4, 124, 1, 5, 5}, DEC(decode_application_date(p, n, &date)), false},
        {"application time", {0xB4, 1, 2, 3, 4}, DEC(decode_application_time(p, n, &time)), false},
        {"application object id",
         {0xC4, 0x02, 0, 0, 1},
         DEC(decode_application_object_id(p, n, &type, &instance)),
         false},
        {"application character string", ENC(encode_application_character_string(p, &gChars)),
         DEC(decode_application_character_string(p, n, &gChars)), false},
        {"application octet string", ENC(encode_application_octet_string(p, &gOctets)),
         DEC(decode_application_octet_string(p, n, &gOctets)), false},
        {"application bit string", ENC(encode_application_bitstring(p, &gBits)),
         DEC(decode_application_bitstring(p, n, &gBits)), false},
        {"application enumerated", {0x92, 1, 0}, DEC(decode_application_enumerated(p, n, &u)), false},
        {"context unsigned ext tag", {0xF9, 0x20, 0x05}, DEC(decode_context_unsigned(p, n, 0x20, &u)), true},
        {"context real", {0x1C, 0x3F, 0x80, 0, 0}, DEC(decode_context_real(p, n, 1, &f)), true},
        {"context double",
         {0x1D, 8, 0x3F, 0xF0, 0, 0, 0, 0, 0, 0},
         DEC(decode_context_double(p, n, 1, &d)),
         true},
        {"context object id",
         {0x0C, 0x02, 0, 0, 1},
         DEC(decode_context_object_id(p, n, 0, &type, &instance)),
         true},
        {"context date", {0x0C, 124, 1, 5, 5}, DEC(decode_context_date(p, n, 0, &date)), true},
        {"context boolean", {0x09, 0x01}, DEC(decode_context_boolean(p, n, 0, &b)), true},
        {"context character string", ENC(encode_context_character_string(p, 4, &gChars)),
         DEC(decode_context_character_string(p, n, 4, &gChars)), true},
        {"bacapp application data", ENC(encode_application_character_string(p, &gChars)),
         DEC(bacapp_decode_application_data(p, n, &gValue)), false},
        {"bacapp real", {0x44, 0x3F, 0x80, 0, 0}, DEC(bacapp_decode_application_data(p, n, &gValue)), false},
        {"bacapp context data",
         {0x2C, 0x3F, 0x80, 0, 0},
         DEC(bacapp_decode_context_data(p, n, &gValue, BACNET_APPLICATION_TAG_REAL)),
         false},
        {"datetime", ENC(bacapp_encode_datetime(p, &dt)), DEC(bacapp_decode_datetime(p, n, &gDateTime)),
         false},
        {"context datetime", ENC(bacapp_encode_context_datetime(p, 2, &dt)),
         DEC(bacapp_decode_context_datetime(p, n, 2, &gDateTime)), true},
        {"device object reference", ENC(bacapp_encode_device_obj_ref(p, &ref)),
         DEC(bacapp_decode_device_obj_ref(p, n, &gRef)), false},
        {"context device object reference", ENC(bacapp_encode_context_device_obj_ref(p, 5, &ref)),
         DEC(bacapp_decode_context_device_obj_ref(p, n, 5, &gRef)), true},
        {"context device object property reference",
         ENC(bacapp_encode_context_device_obj_property_ref(p, 1, &pref)),
         DEC(bacapp_decode_context_device_obj_property_ref(p, n, 1, &gPropRef)), true},
    };
}

}  // namespace

TEST(BadInput, EveryTruncationOfAValidEncodingFails) {
    for (const Case& c : cases()) {
        ExactBuffer whole(c.valid);
        ASSERT_EQ(c.decode(whole.data(), whole.size()), int(whole.size())) << c.name;
        for (size_t n = 0; n < c.valid.size(); ++n) {
            ExactBuffer cut(c.valid, n);
            const int result = c.decode(cut.data(), cut.size());
            if (n == 0 && c.optional)
                EXPECT_EQ(result, 0) << c.name;
            else
                EXPECT_LT(result, 0) << c.name << " cut to " << n;
        }
    }
}

TEST(BadInput, ExtensionMarkersAsTheLastByteFail) {
    for (const Case& c : cases()) {
        for (uint8_t last : {uint8_t(0xF9), uint8_t(0xFD), uint8_t(0xFE), uint8_t(0xFF)}) {
            ExactBuffer buf{last};
            EXPECT_LT(c.decode(buf.data(), buf.size()), 0) << c.name << " " << int(last);
        }
        // The valid encoding's first byte with an extended length and nothing after it.
        ExactBuffer lengthMarker{uint8_t((c.valid[0] & 0xF8) | 0x05)};
        EXPECT_LT(c.decode(lengthMarker.data(), lengthMarker.size()), 0) << c.name;
    }
}

TEST(BadInput, HugeDeclaredLengthsAndTheirSumsFail) {
    const Bytes lengths[] = {{0xFF, 0xFF, 0xFF, 0xFF},
                             {0x7F, 0xFF, 0xFF, 0xFF},
                             {0x80, 0x00, 0x00, 0x00},
                             {0xFF, 0xFF, 0xFF, 0xFB}};
    for (const Case& c : cases()) {
        for (const Bytes& len : lengths) {
            Bytes bytes{uint8_t((c.valid[0] & 0xF8) | 0x05)};
            if ((c.valid[0] >> 4) == 0x0F) bytes.push_back(c.valid[1]);
            bytes.push_back(0xFF);
            bytes.insert(bytes.end(), len.begin(), len.end());
            bytes.insert(bytes.end(), 16, 0x00);
            ExactBuffer buf(bytes);
            EXPECT_LT(c.decode(buf.data(), buf.size()), 0) << c.name;
        }
    }
    // A content length that fits the buffer but is impossible for the type.
    static uint32_t u;
    static float f;
    static BACNET_APPLICATION_DATA_VALUE v;
    const std::pair<Bytes, Decoder> impossible[] = {
        {{0x25, 0x05, 0, 0, 0, 0, 1}, DEC(decode_application_unsigned(p, n, &u))},
        {{0x20}, DEC(decode_application_unsigned(p, n, &u))},
        {{0x43, 0x3F, 0x80, 0x00}, DEC(decode_application_real(p, n, &f))},
        {{0x43, 0x3F, 0x80, 0x00}, DEC(bacapp_decode_application_data(p, n, &v))},
        {{0x85, 0x11, 0x00, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16},
         DEC(bacapp_decode_application_data(p, n, &v))},
        {{0x82, 0x08, 0xFF}, DEC(bacapp_decode_application_data(p, n, &v))},  // eight unused bits
        {{0x81, 0x03}, DEC(bacapp_decode_application_data(p, n, &v))},        // unused bits, no bytes
        {{0x70}, DEC(bacapp_decode_application_data(p, n, &v))},              // string without charset
    };
    for (const auto& [bytes, decode] : impossible) {
        ExactBuffer buf(bytes);
        EXPECT_EQ(decode(buf.data(), buf.size()), BACNET_STATUS_ERROR) << ::testing::PrintToString(bytes);
    }
}

TEST(BadInput, SignedValuesWithTheHighBitSetAreNegativeNotUndefined) {
    const std::pair<Bytes, int32_t> cases[] = {{{0x31, 0x80}, -128},
                                               {{0x32, 0x80, 0x00}, -32768},
                                               {{0x33, 0x80, 0x00, 0x00}, -8388608},
                                               {{0x34, 0x80, 0x00, 0x00, 0x00}, INT32_MIN},
                                               {{0x34, 0xFF, 0xFF, 0xFF, 0xFF}, -1},
                                               {{0x34, 0x7F, 0xFF, 0xFF, 0xFF}, INT32_MAX}};
    for (const auto& [bytes, expected] : cases) {
        ExactBuffer buf(bytes);
        BACNET_APPLICATION_DATA_VALUE v;
        ASSERT_EQ(bacapp_decode_application_data(buf.data(), buf.size(), &v), int(bytes.size()));
        EXPECT_EQ(v.type.Signed_Int, expected);
    }
}

TEST(BadInput, WrongTagsAreRefusedNotReinterpreted) {
    BACNET_APPLICATION_DATA_VALUE v;
    // Reserved application tags 13..15 and context tags given to the application decoder.
    for (const Bytes& bytes : {Bytes{0xD1, 0x00}, Bytes{0xE1, 0x00}, Bytes{0xF1, 0x0D, 0x00},
                               Bytes{0x09, 0x01}, Bytes{0x0E}, Bytes{0x0F}}) {
        ExactBuffer buf(bytes);
        EXPECT_EQ(bacapp_decode_application_data(buf.data(), buf.size(), &v), BACNET_STATUS_ERROR);
    }
    // A context decoder with an application tag 13+ in the caller's hands, or an opening tag.
    ExactBuffer ctx{0x09, 0x01};
    EXPECT_EQ(bacapp_decode_context_data(ctx.data(), ctx.size(), &v, 13), BACNET_STATUS_ERROR);
    ExactBuffer open{0x0E, 0x0F};
    EXPECT_EQ(bacapp_decode_context_data(open.data(), open.size(), &v, BACNET_APPLICATION_TAG_UNSIGNED_INT),
              BACNET_STATUS_ERROR);
    // Date-time whose second element is not a time; references with members out of order.
    ExactBuffer dateDate{0xA4, 124, 1, 1, 1, 0xA4, 124, 1, 1, 1};
    BACNET_DATE_TIME dt{};
    EXPECT_EQ(bacapp_decode_datetime(dateDate.data(), dateDate.size(), &dt), BACNET_STATUS_ERROR);
    ExactBuffer swapped{0x1C, 0x02, 0, 0, 1, 0x0C, 0x00, 0, 0, 1};
    BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE pref{};
    EXPECT_EQ(bacapp_decode_device_obj_property_ref(swapped.data(), swapped.size(), &pref),
              BACNET_STATUS_ERROR);
    // Opening and closing tags that do not match.
    ExactBuffer unbalanced{0x2E, 0xA4, 124, 1, 1, 1, 0xB4, 1, 2, 3, 4, 0x3F};
    EXPECT_EQ(bacapp_decode_context_datetime(unbalanced.data(), unbalanced.size(), 2, &dt),
              BACNET_STATUS_ERROR);
    ExactBuffer unclosed{0x2E, 0xA4, 124, 1, 1, 1, 0xB4, 1, 2, 3, 4};
    EXPECT_EQ(bacapp_decode_context_datetime(unclosed.data(), unclosed.size(), 2, &dt), BACNET_STATUS_ERROR);
}
