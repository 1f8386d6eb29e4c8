// Every decoder family against what a peer can send: truncation at every byte, extension markers
// with nothing behind them, impossible lengths, wrong tags; and the one-octet fast paths of the
// hot decoders, which must answer exactly as the general tag walk does.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "TQTestCodec.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"
#include "tq_stack/references.h"
#include "tq_stack/strings.h"

using namespace TQTest;

namespace {

using Decoder = std::function<int(const uint8_t*, uint32_t)>;

struct Case {
    std::string name;
    Bytes valid;
    Decoder decode;
    bool optional;  // a context decoder: no bytes at all means "absent" (0), not an error
};

#define DEC(call) [](const uint8_t* p, uint32_t n) { return call; }
#define ENC(call) encodedBy([](uint8_t* p) { return call; })

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
    static BACNET_APPLICATION_DATA_VALUE value;
    static BACNET_DATE_TIME dt{{2024, 1, 5, 5}, {13, 5, 9, 25}}, dtOut;
    static BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE pref{
        {OBJECT_ANALOG_INPUT, 3}, PROP_PRESENT_VALUE, 8, {OBJECT_DEVICE, 1234}},
        prefOut;
    static BACNET_DEVICE_OBJECT_REFERENCE ref{{OBJECT_DEVICE, 1234}, {OBJECT_TREND_LOG, 1}}, refOut;
    static BACNET_CHARACTER_STRING chars;
    static BACNET_OCTET_STRING octets;
    static BACNET_BIT_STRING bits;
    characterstring_init_ansi(&chars, "twenty characters!!!");
    octetstring_init_ascii_hex(&octets, "00112233445566");
    bitstring_init(&bits);
    bitstring_set_bit(&bits, 10, true);
    return {
        {"application unsigned", hex("23 01 02 03"), DEC(decode_application_unsigned(p, n, &u)), false},
        {"application signed", hex("34 80 00 00 00"), DEC(decode_application_signed(p, n, &s)), false},
        {"application real", hex("44 3F 80 00 00"), DEC(decode_application_real(p, n, &f)), false},
        {"application double", hex("55 08 3F F0 00 00 00 00 00 00"), DEC(decode_application_double(p, n, &d)),
         false},
        {"application date", hex("A4 7C 01 05 05"), DEC(decode_application_date(p, n, &date)), false},
        {"application time", hex("B4 01 02 03 04"), DEC(decode_application_time(p, n, &time)), false},
        {"application object id", hex("C4 02 00 00 01"),
         DEC(decode_application_object_id(p, n, &type, &instance)), false},
        {"application character string", ENC(encode_application_character_string(p, &chars)),
         DEC(decode_application_character_string(p, n, &chars)), false},
        {"application octet string", ENC(encode_application_octet_string(p, &octets)),
         DEC(decode_application_octet_string(p, n, &octets)), false},
        {"application bit string", ENC(encode_application_bitstring(p, &bits)),
         DEC(decode_application_bitstring(p, n, &bits)), false},
        {"application enumerated", hex("92 01 00"), DEC(decode_application_enumerated(p, n, &u)), false},
        {"context unsigned ext tag", hex("F9 20 05"), DEC(decode_context_unsigned(p, n, 0x20, &u)), true},
        {"context real", hex("1C 3F 80 00 00"), DEC(decode_context_real(p, n, 1, &f)), true},
        {"context double", hex("1D 08 3F F0 00 00 00 00 00 00"), DEC(decode_context_double(p, n, 1, &d)),
         true},
        {"context object id", hex("0C 02 00 00 01"), DEC(decode_context_object_id(p, n, 0, &type, &instance)),
         true},
        {"context date", hex("0C 7C 01 05 05"), DEC(decode_context_date(p, n, 0, &date)), true},
        {"context boolean", hex("09 01"), DEC(decode_context_boolean(p, n, 0, &b)), true},
        {"context character string", ENC(encode_context_character_string(p, 4, &chars)),
         DEC(decode_context_character_string(p, n, 4, &chars)), true},
        {"bacapp application data", ENC(encode_application_character_string(p, &chars)),
         DEC(bacapp_decode_application_data(p, n, &value)), false},
        {"bacapp real", hex("44 3F 80 00 00"), DEC(bacapp_decode_application_data(p, n, &value)), false},
        {"bacapp context data", hex("2C 3F 80 00 00"),
         DEC(bacapp_decode_context_data(p, n, &value, BACNET_APPLICATION_TAG_REAL)), false},
        {"datetime", ENC(bacapp_encode_datetime(p, &dt)), DEC(bacapp_decode_datetime(p, n, &dtOut)), false},
        {"context datetime", ENC(bacapp_encode_context_datetime(p, 2, &dt)),
         DEC(bacapp_decode_context_datetime(p, n, 2, &dtOut)), true},
        {"device object reference", ENC(bacapp_encode_device_obj_ref(p, &ref)),
         DEC(bacapp_decode_device_obj_ref(p, n, &refOut)), false},
        {"context device object reference", ENC(bacapp_encode_context_device_obj_ref(p, 5, &ref)),
         DEC(bacapp_decode_context_device_obj_ref(p, n, 5, &refOut)), true},
        {"context device object property reference",
         ENC(bacapp_encode_context_device_obj_property_ref(p, 1, &pref)),
         DEC(bacapp_decode_context_device_obj_property_ref(p, n, 1, &prefOut)), true},
    };
}

}  // namespace

TEST(BadInput, EveryDecoderFamilyRefusesTruncationMarkersAndHugeLengths) {
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        ExactBuffer whole(c.valid);
        ASSERT_EQ(c.decode(whole.data(), whole.size()), int(whole.size()));
        for (size_t n = 0; n < c.valid.size(); ++n) {
            ExactBuffer cut(c.valid, n);
            const int result = c.decode(cut.data(), cut.size());
            if (n == 0 && c.optional)
                EXPECT_EQ(result, 0);
            else
                EXPECT_LT(result, 0) << "cut to " << n;
        }
        // Extension markers as the only byte, including the valid first byte with an extended length.
        const uint8_t lengthMarker = uint8_t((c.valid[0] & 0xF8) | 0x05);
        for (uint8_t last : {uint8_t(0xF9), uint8_t(0xFD), uint8_t(0xFE), uint8_t(0xFF), lengthMarker}) {
            ExactBuffer buf(Bytes{last});
            EXPECT_LT(c.decode(buf.data(), buf.size()), 0) << int(last);
        }
        // Four-byte lengths near 2^32 and 2^31, whose sums with the position overflow.
        for (const char* len : {"FF FF FF FF", "7F FF FF FF", "80 00 00 00", "FF FF FF FB"}) {
            Bytes in{lengthMarker};
            if ((c.valid[0] >> 4) == 0x0F) in.push_back(c.valid[1]);
            in.push_back(0xFF);
            for (uint8_t x : hex(len)) in.push_back(x);
            in.insert(in.end(), 16, 0x00);
            ExactBuffer buf(in);
            EXPECT_LT(c.decode(buf.data(), buf.size()), 0) << len;
        }
    }
}

TEST(BadInput, ImpossibleContentAndWrongTagsAreRefusedNotReinterpreted) {
    static uint32_t u;
    static float f;
    static BACNET_APPLICATION_DATA_VALUE v;
    static BACNET_DATE_TIME dt;
    static BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE pref;
    const Decoder app = DEC(bacapp_decode_application_data(p, n, &v));
    const std::tuple<const char*, Decoder, const char*> rows[] = {
        {"25 05 00 00 00 00 01", DEC(decode_application_unsigned(p, n, &u)), "unsigned of 5 octets"},
        {"20", DEC(decode_application_unsigned(p, n, &u)), "unsigned of 0 octets"},
        {"43 3F 80 00", DEC(decode_application_real(p, n, &f)), "REAL of 3 octets"},
        {"43 3F 80 00", app, "REAL of 3 octets"},
        {"85 11 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10", app, "bit string beyond capacity"},
        {"82 08 FF", app, "eight unused bits"},
        {"81 03", app, "unused bits, no bytes"},
        {"70", app, "string without character set"},
        {"D1 00", app, "reserved application tag 13"},
        {"E1 00", app, "reserved application tag 14"},
        {"F1 0D 00", app, "application tag 13 in extended form"},
        {"09 01", app, "context tag"},
        {"0E", app, "opening tag"},
        {"0F", app, "closing tag"},
        {"09 01", DEC(bacapp_decode_context_data(p, n, &v, 13)), "context data of application tag 13"},
        {"0E 0F", DEC(bacapp_decode_context_data(p, n, &v, BACNET_APPLICATION_TAG_UNSIGNED_INT)),
         "opening tag"},
        {"A4 7C 01 01 01 A4 7C 01 01 01", DEC(bacapp_decode_datetime(p, n, &dt)), "date where time belongs"},
        {"1C 02 00 00 01 0C 00 00 00 01", DEC(bacapp_decode_device_obj_property_ref(p, n, &pref)),
         "members out of order"},
        {"2E A4 7C 01 01 01 B4 01 02 03 04 3F", DEC(bacapp_decode_context_datetime(p, n, 2, &dt)),
         "closing tag of another number"},
    };
    for (const auto& row : rows) {
        const Decoder& decode = std::get<1>(row);
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(std::get<0>(row), decode(p, n)))
            << std::get<0>(row) << ": " << std::get<2>(row);
    }
}

TEST(BadInput, SignedValuesWithTheHighBitSetAreNegativeNotUndefined) {
    const std::pair<const char*, int32_t> rows[] = {{"31 80", -128},
                                                    {"32 80 00", -32768},
                                                    {"32 FF FE", -2},
                                                    {"33 80 00 00", -8388608},
                                                    {"34 80 00 00 00", INT32_MIN},
                                                    {"34 FF FF FF FF", -1},
                                                    {"34 7F FF FF FF", INT32_MAX}};
    for (const auto& row : rows) {
        const char* h = row.first;
        const int32_t expected = row.second;
        BACNET_APPLICATION_DATA_VALUE v;
        int32_t s = 0;
        ASSERT_EQ(int(hex(h).size()), DECODED(h, bacapp_decode_application_data(p, n, &v))) << h;
        ASSERT_EQ(int(hex(h).size()), DECODED(h, decode_application_signed(p, n, &s))) << h;
        EXPECT_EQ(std::make_tuple(v.type.Signed_Int, s), std::make_tuple(expected, expected)) << h;
    }
}

TEST(BadInput, FastPathsAgreeWithTheGeneralPathForEveryFirstOctetAndLength) {
    const Bytes content = hex("12 34 56 78 9A");
    for (unsigned first = 0; first < 256; ++first) {
        for (size_t length = 0; length <= content.size() + 1; ++length) {
            SCOPED_TRACE(std::to_string(first) + " length " + std::to_string(length));
            Bytes in{uint8_t(first)};
            in.insert(in.end(), content.begin(), content.end());
            ExactBuffer buf(in, length);
            BACNET_APPLICATION_DATA_VALUE fast, general;
            bacapp_value_init(&fast);
            bacapp_value_init(&general);
            const int n = bacapp_decode_application_data_full(buf.data(), buf.size(), &general);
            ASSERT_EQ(bacapp_decode_application_data(buf.data(), buf.size(), &fast), n);
            const bool isReal = n > 0 && general.tag == BACNET_APPLICATION_TAG_REAL;
            if (n > 0) {
                EXPECT_EQ(fast.tag, general.tag);
                EXPECT_FALSE(fast.context_specific);
                // REAL by bit pattern: a NaN is never the same value as itself.
                EXPECT_TRUE(isReal ? std::memcmp(&fast.type.Real, &general.type.Real, 4) == 0
                                   : bacapp_same_value(&fast, &general));
            }
            uint32_t u = 0xDEADBEEF;
            const int nu = decode_application_unsigned(buf.data(), buf.size(), &u);
            const bool isUnsigned = n > 0 && general.tag == BACNET_APPLICATION_TAG_UNSIGNED_INT;
            EXPECT_EQ(nu, isUnsigned ? n : BACNET_STATUS_ERROR);
            EXPECT_EQ(u, isUnsigned ? general.type.Unsigned_Int : 0xDEADBEEF);
            float f = 0;
            const int nf = decode_application_real(buf.data(), buf.size(), &f);
            EXPECT_EQ(nf, isReal ? n : BACNET_STATUS_ERROR);
            if (isReal) {
                EXPECT_EQ(std::memcmp(&f, &general.type.Real, 4), 0);
            }
        }
    }
    uint32_t u = 0;
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("21 07", decode_application_unsigned(p, n, nullptr)));
    EXPECT_TRUE(decode_application_unsigned(nullptr, 2, &u) == BACNET_STATUS_ERROR &&
                decode_application_real(nullptr, 5, nullptr) == BACNET_STATUS_ERROR);
}

// Missing arguments are refused, never dereferenced; the last object type is still a type.
TEST(BadInput, NullArgumentsAndLastNumbers) {
    BACNET_CHARACTER_STRING chars;
    characterstring_init_ansi(&chars, "ab");
    EXPECT_FALSE(characterstring_append(&chars, nullptr, 3));
    BACNET_OCTET_STRING octets;
    octetstring_init_ascii_hex(&octets, "0102");
    uint8_t out[8];
    EXPECT_TRUE(octetstring_copy_value(out, sizeof out, nullptr) == 0 &&
                octetstring_copy_value(nullptr, sizeof out, &octets) == 0);
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("3F 80 00 00", decode_real(p, n, nullptr)));
    int32_t s = 0;
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("01 02 03 04 05", decode_signed(p, n, 5, &s)));
    BACNET_APPLICATION_DATA_VALUE v;
    EXPECT_EQ(BACNET_STATUS_ERROR,
              DECODED("0A 01 00", bacapp_decode_context_data(p, n, &v, BACNET_APPLICATION_TAG_BOOLEAN)));
    auto last = rpData(BACNET_OBJECT_TYPE(BACNET_MAX_OBJECT), 1, PROP_PRESENT_VALUE);
    EXPECT_GT(rp_encode_service_request(nullptr, &last), 0);
    last.object_type = BACNET_OBJECT_TYPE(BACNET_MAX_OBJECT + 1);
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_encode_service_request(nullptr, &last));
}
