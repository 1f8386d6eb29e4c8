// Application values of every tag, date-times and object references: their encodings, round trips,
// copies and comparisons.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "TQTestCodec.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/datetime.h"
#include "tq_stack/references.h"
#include "tq_stack/strings.h"

using namespace TQTest;

namespace {

// One value of every application tag, each at an edge of its range.
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

TEST(ApplicationValues, EveryTagRoundTripsApplicationAndContextTaggedAndChained) {
    Bytes chain;
    for (BACNET_APPLICATION_DATA_VALUE& in : everyTag()) {
        SCOPED_TRACE(int(in.tag));
        const Bytes appBytes = encodedBy([&](uint8_t* p) { return bacapp_encode_application_data(p, &in); });
        chain.insert(chain.end(), appBytes.begin(), appBytes.end());
        ASSERT_GT(appBytes.size(), 0u);
        // The application round trip of each value is checked through DataApplicationValue.
        BACNET_APPLICATION_DATA_VALUE out, ctxOut;

        in.context_specific = true;
        in.context_tag = 21;  // an extended tag number
        ExactBuffer ctx(encodedBy([&](uint8_t* p) { return bacapp_encode_data(p, &in); }));
        EXPECT_EQ(ctx.data()[0] & 0x08, 0x08);
        ASSERT_EQ(bacapp_decode_context_data(ctx.data(), ctx.size(), &ctxOut, in.tag), int(ctx.size()));
        EXPECT_EQ(std::make_tuple(ctxOut.context_specific, ctxOut.context_tag),
                  std::make_tuple(true, uint8_t(21)));
        EXPECT_TRUE(bacapp_same_value(&in, &ctxOut));
        EXPECT_EQ(bacapp_decode_application_data(ctx.data(), ctx.size(), &out), BACNET_STATUS_ERROR);
    }
    // A chain decodes value by value to its end, and the decoder leaves each value's link alone.
    ExactBuffer buf(chain);
    BACNET_APPLICATION_DATA_VALUE sentinel;
    uint32_t pos = 0;
    uint8_t expectedTag = 0;
    while (pos < buf.size()) {
        BACNET_APPLICATION_DATA_VALUE v;
        v.next = &sentinel;
        const int n = bacapp_decode_application_data(buf.data() + pos, buf.size() - pos, &v);
        ASSERT_GT(n, 0) << "at " << pos;
        EXPECT_EQ(std::make_tuple(v.tag, v.next, v.context_specific),
                  std::make_tuple(expectedTag++, &sentinel, false));
        pos += uint32_t(n);
    }
    EXPECT_EQ(std::make_tuple(expectedTag, pos), std::make_tuple(uint8_t(13), buf.size()));

    // The longest string fills one APDU exactly: four header bytes, the character set, the text.
    BACNET_APPLICATION_DATA_VALUE longest;
    bacapp_value_init(&longest);
    longest.tag = BACNET_APPLICATION_TAG_CHARACTER_STRING;
    const std::string text(MAX_CHARACTER_STRING_BYTES, 'z');
    characterstring_init(&longest.type.Character_String, CHARACTER_UTF8, text.data(), text.size());
    const Bytes full = encodedBy([&](uint8_t* p) { return bacapp_encode_application_data(p, &longest); });
    ASSERT_EQ(full.size(), size_t(MAX_APDU));
    EXPECT_EQ(hexText(Bytes(full.begin(), full.begin() + 5)), "75 FE 05 C0 00");
}

TEST(ApplicationValues, CopiesAndDecodesTouchOnlyTheUsedBytes) {
    BACNET_APPLICATION_DATA_VALUE src, dest;
    bacapp_value_init(&src);
    src.tag = BACNET_APPLICATION_TAG_CHARACTER_STRING;
    characterstring_init_ansi(&src.type.Character_String, "abc");
    src.context_specific = true;
    src.context_tag = 4;
    std::memset(&dest, 0xCC, sizeof dest);
    dest.next = nullptr;
    ASSERT_TRUE(bacapp_copy(&dest, &src));
    EXPECT_TRUE(bacapp_same_value(&src, &dest));
    EXPECT_EQ(std::make_tuple(dest.context_specific, dest.context_tag, dest.next),
              std::make_tuple(true, uint8_t(4), (BACNET_APPLICATION_DATA_VALUE*)nullptr));
    // Past the terminator the capacity keeps its old bytes: nothing cleared, nothing copied.
    EXPECT_EQ(uint8_t(dest.type.Character_String.value[4]), 0xCC);
    EXPECT_EQ(uint8_t(dest.type.Character_String.value[MAX_CHARACTER_STRING_BYTES]), 0xCC);

    std::memset(&dest, 0xCC, sizeof dest);
    ASSERT_EQ(3, DECODED("62 01 02", bacapp_decode_application_data(p, n, &dest)));
    EXPECT_EQ(dest.type.Octet_String.length, 2u);
    EXPECT_EQ(std::make_tuple(dest.type.Octet_String.value[1], dest.type.Octet_String.value[2]),
              std::make_tuple(uint8_t(0x02), uint8_t(0xCC)));

    BACNET_APPLICATION_DATA_VALUE bits;
    bacapp_value_init(&bits);
    bits.tag = BACNET_APPLICATION_TAG_BIT_STRING;
    bitstring_init(&bits.type.Bit_String);
    bitstring_set_bit(&bits.type.Bit_String, 9, true);
    std::memset(&dest, 0xCC, sizeof dest);
    ASSERT_TRUE(bacapp_copy(&dest, &bits));
    EXPECT_TRUE(bitstring_bit(&dest.type.Bit_String, 9) && dest.type.Bit_String.value[2] == 0xCC);

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
    EXPECT_TRUE(!bacapp_copy(&dest, &bad) && dest.tag == BACNET_APPLICATION_TAG_REAL);
    EXPECT_EQ(std::make_tuple(BACNET_STATUS_ERROR, BACNET_STATUS_ERROR, false),
              std::make_tuple(bacapp_encode_application_data(nullptr, &bad),
                              bacapp_encode_data(nullptr, &bad), bacapp_copy(nullptr, &src)));
}

TEST(ApplicationValues, SameValueComparesByTagAndContentOnly) {
    auto values = everyTag();
    for (size_t i = 0; i < values.size(); ++i)
        for (size_t j = 0; j < values.size(); ++j)
            EXPECT_EQ(bacapp_same_value(&values[i], &values[j]), i == j) << i << " " << j;
    BACNET_APPLICATION_DATA_VALUE nan = values[4];
    nan.type.Real = std::nanf("");
    EXPECT_FALSE(bacapp_same_value(&nan, &nan));
    // Context fields take no part.
    BACNET_APPLICATION_DATA_VALUE c = values[9];
    c.context_specific = true;
    c.context_tag = 7;
    EXPECT_TRUE(bacapp_same_value(&c, &values[9]));
    EXPECT_FALSE((c.type.Enumerated = 86, bacapp_same_value(&c, &values[9])));
    // Unsigned and enumerated share storage but are different values.
    BACNET_APPLICATION_DATA_VALUE u = values[9];
    u.tag = BACNET_APPLICATION_TAG_UNSIGNED_INT;
    EXPECT_FALSE(bacapp_same_value(&u, &values[9]));
}

TEST(DateTime, CalendarComparisonsAndEncodings) {
    // {year, month, day, weekday}; 255 for dates that do not exist or are not fully given.
    const int days[][4] = {{1900, 1, 1, 1},    {2024, 1, 5, 5},     {2024, 3, 10, 7},  {2000, 2, 29, 2},
                           {1900, 2, 29, 255}, {2024, 255, 1, 255}, {2155, 1, 1, 255}, {0, 0, 0, 255}};
    for (const auto& d : days)
        EXPECT_EQ(datetime_day_of_week(uint16_t(d[0]), uint8_t(d[1]), uint8_t(d[2])), d[3])
            << d[0] << "-" << d[1];
    EXPECT_EQ(datetime_day_of_week(2154, 12, 31), datetime_day_of_week(2154, 12, 24));
    EXPECT_TRUE(datetime_is_leap_year(2000) && !datetime_is_leap_year(2100));
    EXPECT_EQ(std::make_tuple(datetime_month_days(2023, 2), datetime_month_days(2024, 2),
                              datetime_month_days(2024, 13)),
              std::make_tuple(uint8_t(28), uint8_t(29), uint8_t(0)));
    BACNET_DATE_TIME dt;
    datetime_set_values(&dt, 2024, 1, 5, 13, 5, 9, 25);
    EXPECT_EQ(std::make_tuple(dt.date.wday, dt.time.hundredths), std::make_tuple(uint8_t(5), uint8_t(25)));
    datetime_set_values(&dt, 0, 0, 0, 0, 0, 0, 0);  // the value model's empty date-time
    EXPECT_EQ(std::make_tuple(dt.date.year, dt.date.wday), std::make_tuple(uint16_t(0), uint8_t(255)));

    // Comparisons order by the fields and ignore the weekday; unspecified fields sort last.
    BACNET_DATE a{2024, 3, 7, 4}, b{2024, 3, 7, 255}, c{2024, 3, 8, 5}, older{2023, 12, 31, 7};
    BACNET_DATE wildcardDate{2155, 255, 255, 255};
    EXPECT_TRUE(datetime_compare_date(&a, &b) == 0 && datetime_compare_date(&a, &c) < 0);
    EXPECT_TRUE(datetime_compare_date(&c, &a) > 0 && datetime_compare_date(&a, &older) > 0);
    EXPECT_EQ(datetime_compare_date(&wildcardDate, &wildcardDate), 0);
    BACNET_TIME t1{8, 30, 0, 0}, t2{8, 30, 0, 1}, star{255, 255, 255, 255};
    EXPECT_TRUE(datetime_compare_time(&t1, &t2) < 0 && datetime_compare_time(&t2, &t2) == 0);
    EXPECT_GT(datetime_compare_time(&star, &t2), 0);
    BACNET_DATE_TIME x{a, t2}, y{a, t1}, z{{2025, 3, 7, 5}, t1};
    EXPECT_TRUE(datetime_compare(&x, &y) > 0 && datetime_compare(&x, &z) < 0);

    // The plain encoding is checked through its class (BACnetDateTime); here the context form.
    BACNET_DATE_TIME in, out{};
    datetime_wildcard_set(&in);
    EXPECT_EQ(std::make_tuple(in.date.year, in.time.hour), std::make_tuple(uint16_t(2155), uint8_t(255)));
    // Extended tag numbers: two bytes each side.
    const char* tagged = "FE 11 A4 FF FF FF FF B4 FF FF FF FF FF 11";
    EXPECT_EQ(tagged, ENCODED_HEX(bacapp_encode_context_datetime(p, 17, &in)));
    ASSERT_EQ(14, DECODED(tagged, bacapp_decode_context_datetime(p, n, 17, &out)));
    EXPECT_TRUE(datetime_compare(&in, &out) == 0 && out.date.wday == 255);
    // Another opening tag is "not there", and the value stays.
    out.date.year = 2000;
    EXPECT_TRUE(DECODED(tagged, bacapp_decode_context_datetime(p, n, 16, &out)) == 0 &&
                out.date.year == 2000);
}

// Both reference encodings, their optional members, context forms and cuts are checked through
// their classes (BACnetDeviceObjectReference, BACnetDeviceObjectPropertyReference, which encode
// and decode with these functions); here what the classes hide.
TEST(References, DeviceObjectReferencesWithAndWithoutOptionalMembers) {
    BACNET_DEVICE_OBJECT_REFERENCE out{};
    ASSERT_EQ(5, DECODED("1C 00 80 00 07", bacapp_decode_device_obj_ref(p, n, &out)));
    EXPECT_EQ(std::make_tuple(out.deviceIdentifier.type, out.deviceIdentifier.instance),
              std::make_tuple(uint16_t(BACNET_NO_DEV_TYPE), uint32_t(BACNET_NO_DEV_ID)));
    // Large property numbers survive, and the enclosed form consumes its closing tag.
    BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE indexed{
        {OBJECT_ANALOG_INPUT, 3}, BACNET_PROPERTY_ID(4194327), 0, {BACNET_NO_DEV_TYPE, BACNET_NO_DEV_ID}},
        pout{};
    const Bytes penclosed =
        encodedBy([&](uint8_t* p) { return bacapp_encode_context_device_obj_property_ref(p, 1, &indexed); });
    ASSERT_EQ(int(penclosed.size()),
              DECODED(penclosed, bacapp_decode_context_device_obj_property_ref(p, n, 1, &pout)));
    EXPECT_EQ(std::make_tuple(pout.propertyIdentifier, pout.arrayIndex, pout.deviceIdentifier.type),
              std::make_tuple(BACNET_PROPERTY_ID(4194327), 0u, uint16_t(BACNET_NO_DEV_TYPE)));
    // A missing property, or a malformed optional member (an error, not an absent one), fails and
    // leaves the previous value in place.
    for (const char* h : {"0C 00 00 00 03 29 00", "0C 00 00 00 03 19 55 2D"}) {
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(h, bacapp_decode_device_obj_property_ref(p, n, &pout))) << h;
        EXPECT_EQ(std::make_tuple(pout.propertyIdentifier, pout.arrayIndex),
                  std::make_tuple(BACNET_PROPERTY_ID(4194327), 0u))
            << h;
    }
}
