#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "exact_buffer.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/strings.h"

namespace {

using Bytes = std::vector<uint8_t>;

// One value of every application tag.
std::vector<BACNET_APPLICATION_DATA_VALUE> everyTag() {
    std::vector<BACNET_APPLICATION_DATA_VALUE> values(13);
    for (uint8_t tag = 0; tag < 13; ++tag) {
        bacapp_value_init(&values[tag]);
        values[tag].tag = tag;
    }
    values[1].type.Boolean = true;
    values[2].type.Unsigned_Int = 0xFFFFFFFF;
    values[3].type.Signed_Int = INT32_MIN;
    values[4].type.Real = -21.5f;
    values[5].type.Double = 1e300;
    octetstring_init_ascii_hex(&values[6].type.Octet_String, "DEADBEEF");
    characterstring_init_ansi(&values[7].type.Character_String, "Room 12");
    bitstring_init(&values[8].type.Bit_String);
    bitstring_set_bit(&values[8].type.Bit_String, 3, true);
    values[9].type.Enumerated = 85;
    values[10].type.Date = BACNET_DATE{2155, 255, 255, 255};
    values[11].type.Time = BACNET_TIME{23, 59, 59, 99};
    values[12].type.Object_Id = BACNET_OBJECT_ID{OBJECT_DEVICE, BACNET_MAX_INSTANCE};
    return values;
}

}  // namespace

TEST(ApplicationValues, EveryTagRoundTripsApplicationAndContextTagged) {
    for (BACNET_APPLICATION_DATA_VALUE& in : everyTag()) {
        ExactBuffer app(encoded([&](uint8_t* p) { return bacapp_encode_application_data(p, &in); }));
        ASSERT_GT(app.size(), 0u) << int(in.tag);
        BACNET_APPLICATION_DATA_VALUE out;
        bacapp_value_init(&out);
        ASSERT_EQ(bacapp_decode_application_data(app.data(), app.size(), &out), int(app.size()))
            << int(in.tag);
        EXPECT_TRUE(bacapp_same_value(&in, &out)) << int(in.tag);
        EXPECT_FALSE(out.context_specific);

        in.context_specific = true;
        in.context_tag = 21;  // an extended tag number
        ExactBuffer ctx(encoded([&](uint8_t* p) { return bacapp_encode_data(p, &in); }));
        EXPECT_EQ(ctx.data()[0] & 0x08, 0x08);
        BACNET_APPLICATION_DATA_VALUE ctxOut;
        ASSERT_EQ(bacapp_decode_context_data(ctx.data(), ctx.size(), &ctxOut, in.tag), int(ctx.size()))
            << int(in.tag);
        EXPECT_TRUE(ctxOut.context_specific);
        EXPECT_EQ(ctxOut.context_tag, 21);
        EXPECT_TRUE(bacapp_same_value(&in, &ctxOut)) << int(in.tag);
        // The application decoder does not take context-tagged data.
        EXPECT_EQ(bacapp_decode_application_data(ctx.data(), ctx.size(), &out), BACNET_STATUS_ERROR);
    }
}

TEST(ApplicationValues, ChainOfValuesDecodesToTheEndAndNextIsLeftAlone) {
    Bytes all;
    for (const BACNET_APPLICATION_DATA_VALUE& v : everyTag()) {
        Bytes one = encoded([&](uint8_t* p) { return bacapp_encode_application_data(p, &v); });
        all.insert(all.end(), one.begin(), one.end());
    }
    ExactBuffer buf(all);
    BACNET_APPLICATION_DATA_VALUE sentinel;
    uint32_t pos = 0;
    uint8_t expectedTag = 0;
    while (pos < buf.size()) {
        BACNET_APPLICATION_DATA_VALUE v;
        v.next = &sentinel;
        const int n = bacapp_decode_application_data(buf.data() + pos, buf.size() - pos, &v);
        ASSERT_GT(n, 0) << "at " << pos;
        EXPECT_EQ(v.tag, expectedTag++);
        EXPECT_EQ(v.next, &sentinel);
        pos += uint32_t(n);
    }
    EXPECT_EQ(expectedTag, 13);
    EXPECT_EQ(pos, buf.size());
}

TEST(ApplicationValues, CopiesAndDecodesTouchOnlyTheUsedBytes) {
    BACNET_APPLICATION_DATA_VALUE src;
    bacapp_value_init(&src);
    src.tag = BACNET_APPLICATION_TAG_CHARACTER_STRING;
    characterstring_init_ansi(&src.type.Character_String, "abc");
    src.context_specific = true;
    src.context_tag = 4;
    BACNET_APPLICATION_DATA_VALUE dest;
    std::memset(&dest, 0xCC, sizeof dest);
    dest.next = nullptr;
    ASSERT_TRUE(bacapp_copy(&dest, &src));
    EXPECT_TRUE(bacapp_same_value(&src, &dest));
    EXPECT_TRUE(dest.context_specific);
    EXPECT_EQ(dest.context_tag, 4);
    EXPECT_EQ(dest.next, nullptr);
    EXPECT_STREQ(dest.type.Character_String.value, "abc");
    // Past the terminator the capacity keeps its old bytes: nothing cleared, nothing copied.
    EXPECT_EQ(uint8_t(dest.type.Character_String.value[4]), 0xCC);
    EXPECT_EQ(uint8_t(dest.type.Character_String.value[MAX_CHARACTER_STRING_BYTES]), 0xCC);

    ExactBuffer octets{0x62, 0x01, 0x02};
    std::memset(&dest, 0xCC, sizeof dest);
    ASSERT_EQ(bacapp_decode_application_data(octets.data(), octets.size(), &dest), 3);
    EXPECT_EQ(dest.type.Octet_String.length, 2u);
    EXPECT_EQ(dest.type.Octet_String.value[1], 0x02);
    EXPECT_EQ(dest.type.Octet_String.value[2], 0xCC);

    BACNET_APPLICATION_DATA_VALUE bits;
    bacapp_value_init(&bits);
    bits.tag = BACNET_APPLICATION_TAG_BIT_STRING;
    bitstring_init(&bits.type.Bit_String);
    bitstring_set_bit(&bits.type.Bit_String, 9, true);
    std::memset(&dest, 0xCC, sizeof dest);
    ASSERT_TRUE(bacapp_copy(&dest, &bits));
    EXPECT_TRUE(bitstring_bit(&dest.type.Bit_String, 9));
    EXPECT_EQ(dest.type.Bit_String.value[2], 0xCC);

    for (const BACNET_APPLICATION_DATA_VALUE& v : everyTag()) {
        std::memset(&dest, 0xCC, sizeof dest);
        ASSERT_TRUE(bacapp_copy(&dest, &v));
        EXPECT_TRUE(bacapp_same_value(&dest, &v)) << int(v.tag);
    }

    // Invalid tags are refused and leave the destination as it was.
    BACNET_APPLICATION_DATA_VALUE bad;
    bacapp_value_init(&bad);
    bad.tag = 13;
    dest.tag = BACNET_APPLICATION_TAG_REAL;
    EXPECT_FALSE(bacapp_copy(&dest, &bad));
    EXPECT_EQ(dest.tag, BACNET_APPLICATION_TAG_REAL);
    EXPECT_EQ(bacapp_encode_application_data(nullptr, &bad), BACNET_STATUS_ERROR);
    EXPECT_EQ(bacapp_encode_data(nullptr, &bad), BACNET_STATUS_ERROR);
    EXPECT_FALSE(bacapp_copy(nullptr, &src));
}

TEST(ApplicationValues, SameValueComparesByTagAndContentOnly) {
    auto values = everyTag();
    for (size_t i = 0; i < values.size(); ++i) {
        for (size_t j = 0; j < values.size(); ++j) {
            EXPECT_EQ(bacapp_same_value(&values[i], &values[j]), i == j) << i << " " << j;
        }
    }
    BACNET_APPLICATION_DATA_VALUE a = values[4];
    BACNET_APPLICATION_DATA_VALUE b = values[4];
    a.type.Real = std::nanf("");
    b.type.Real = a.type.Real;
    EXPECT_FALSE(bacapp_same_value(&a, &b));
    // Context fields take no part.
    BACNET_APPLICATION_DATA_VALUE c = values[9];
    c.context_specific = true;
    c.context_tag = 7;
    EXPECT_TRUE(bacapp_same_value(&c, &values[9]));
    c.type.Enumerated = 86;
    EXPECT_FALSE(bacapp_same_value(&c, &values[9]));
    // Unsigned and enumerated share storage but are different values.
    BACNET_APPLICATION_DATA_VALUE u = values[9];
    u.tag = BACNET_APPLICATION_TAG_UNSIGNED_INT;
    EXPECT_FALSE(bacapp_same_value(&u, &values[9]));
}

TEST(ApplicationValues, EncodeSizingMatchesWritingForLongStrings) {
    BACNET_APPLICATION_DATA_VALUE v;
    bacapp_value_init(&v);
    v.tag = BACNET_APPLICATION_TAG_CHARACTER_STRING;
    std::string text(MAX_CHARACTER_STRING_BYTES, 'z');
    characterstring_init(&v.type.Character_String, CHARACTER_UTF8, text.data(), text.size());
    const int size = bacapp_encode_application_data(nullptr, &v);
    EXPECT_EQ(size, MAX_APDU);  // four header bytes, the character set, the text: one full APDU
    std::vector<uint8_t> apdu(MAX_APDU + 1, 0xEE);
    EXPECT_EQ(bacapp_encode_application_data(apdu.data(), &v), size);
    EXPECT_EQ(apdu[size_t(size)], 0xEE);
    EXPECT_EQ((Bytes{apdu[0], apdu[1], apdu[2], apdu[3], apdu[4]}), (Bytes{0x75, 0xFE, 0x05, 0xC0, 0x00}));
}
