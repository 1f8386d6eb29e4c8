#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "WrapperTestSupport.h"

#include <gtest/gtest.h>

#include <vector>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::DataPropertyInObject0;
using TQ::BACnet::DataType::BACnetComplex;
using TQ::BACnet::DataType::BACnetDateTime;

namespace {

// 2024-03-07 (a Thursday) 08:30:15.42: date tag 10 and time tag 11, each with 4 content bytes.
const BACnetDateTime SAMPLE(BACnet_Date{2024, 3, 7, 4}, BACnet_Time{8, 30, 15, 42});
const std::vector<uint8_t> SAMPLE_BYTES = {0xA4, 0x7C, 0x03, 0x07, 0x04, 0xB4, 0x08, 0x1E, 0x0F, 0x2A};
// The same between opening and closing tag 3.
const std::vector<uint8_t> SAMPLE_CONTEXT = {0x3E, 0xA4, 0x7C, 0x03, 0x07, 0x04,
                                             0xB4, 0x08, 0x1E, 0x0F, 0x2A, 0x3F};

std::vector<uint8_t> encoded(const BACnetComplex& value) {
    std::vector<uint8_t> buffer(64);
    const int len = value.encode(buffer.data());
    buffer.resize(len < 0 ? 0 : static_cast<size_t>(len));
    return buffer;
}

}  // namespace

TEST(BACnetDateTime, defaultsCopiesAndComparisons) {
    const BACnetDateTime zero;
    EXPECT_EQ(0, zero.date.year);
    EXPECT_EQ(0, zero.date.month);
    EXPECT_EQ(0, zero.date.day);
    EXPECT_EQ((BACnet_Time{0, 0, 0, 0}), zero.getTime());
    EXPECT_EQ(1026u, zero.getBACnetDataType());
    EXPECT_EQ(1026u, static_cast<const BACnetComplex&>(SAMPLE).getBACnetDataType());

    BACnetDateTime copy = SAMPLE;
    EXPECT_EQ(SAMPLE, copy);
    copy.time.hundredths = 43;
    EXPECT_NE(SAMPLE, copy);
    EXPECT_LT(SAMPLE, copy);
    EXPECT_FALSE(copy < SAMPLE);
    copy = SAMPLE;
    copy.date.wday = 255;  // equality sees the weekday, order does not
    EXPECT_NE(SAMPLE, copy);
    EXPECT_FALSE(SAMPLE < copy || copy < SAMPLE);
    copy.setDate(BACnet_Date{2023, 12, 31, 7});
    EXPECT_LT(copy, SAMPLE);
}

TEST(BACnetDateTime, encodesAndDecodesTheStandardLayout) {
    EXPECT_EQ(SAMPLE_BYTES, encoded(SAMPLE));
    EXPECT_EQ(10, SAMPLE.encode(nullptr));
    // The wildcard date-time: year 255 (2155), everything else 255.
    BACnetDateTime wildcard(BACnet_Date{2155, 255, 255, 255}, BACnet_Time{255, 255, 255, 255});
    EXPECT_EQ(TQWrapperTest::bytes({0xA4, 0xFF, 0xFF, 0xFF, 0xFF, 0xB4, 0xFF, 0xFF, 0xFF, 0xFF}),
              encoded(wildcard));

    BACnetDateTime decoded;
    EXPECT_EQ(10, decoded.decode(SAMPLE_BYTES.data(), static_cast<unsigned>(SAMPLE_BYTES.size())));
    EXPECT_EQ(SAMPLE, decoded);
    decoded = BACnetDateTime();
    EXPECT_EQ(10, decoded.decode(SAMPLE_BYTES.data()));  // the unbounded form stays visible
    EXPECT_EQ(SAMPLE, decoded);

    // No truncation is accepted, none reads past its length and none changes the value.
    for (unsigned len = 0; len < SAMPLE_BYTES.size(); ++len) {
        const std::vector<uint8_t> cut(SAMPLE_BYTES.begin(), SAMPLE_BYTES.begin() + len);
        BACnetDateTime kept = wildcard;
        EXPECT_LT(kept.decode(cut.data(), len), 1) << len;
        EXPECT_EQ(wildcard, kept) << len;
    }
    // Time before date, a context-tagged date, an unsigned in place of the time.
    for (const std::vector<uint8_t>& wrong :
         {TQWrapperTest::bytes({0xB4, 0x08, 0x1E, 0x0F, 0x2A, 0xA4, 0x7C, 0x03, 0x07, 0x04}),
          TQWrapperTest::bytes({0x0C, 0x7C, 0x03, 0x07, 0x04, 0xB4, 0x08, 0x1E, 0x0F, 0x2A}),
          TQWrapperTest::bytes({0xA4, 0x7C, 0x03, 0x07, 0x04, 0x21, 0x05})}) {
        BACnetDateTime kept = wildcard;
        EXPECT_LT(kept.decode(wrong.data(), static_cast<unsigned>(wrong.size())), 1);
        EXPECT_EQ(wildcard, kept);
    }
    BACnetDateTime kept = wildcard;
    EXPECT_LT(kept.decode(nullptr, 10), 1);
}

TEST(BACnetDateTime, contextFormsAndHexText) {
    std::vector<uint8_t> buffer(32);
    BACnetDateTime sample = SAMPLE;
    ASSERT_EQ(12, sample.encodeContext(buffer.data(), 3));
    EXPECT_EQ(SAMPLE_CONTEXT, std::vector<uint8_t>(buffer.begin(), buffer.begin() + 12));

    BACnetDateTime decoded;
    EXPECT_EQ(12, decoded.decodeContext(SAMPLE_CONTEXT.data(), 12u, 3));
    EXPECT_EQ(SAMPLE, decoded);
    decoded = BACnetDateTime();
    EXPECT_EQ(12, decoded.decodeContext(SAMPLE_CONTEXT.data(), uint8_t(3)));
    EXPECT_EQ(SAMPLE, decoded);

    // Another opening tag, a wrong closing tag, and every truncation fail with -1, value kept.
    std::vector<uint8_t> wrongClose = SAMPLE_CONTEXT;
    wrongClose.back() = 0x4F;
    const BACnetDateTime before;
    for (const auto& [bytes, len, tag] :
         {std::make_tuple(SAMPLE_CONTEXT, 12u, uint8_t(4)), std::make_tuple(wrongClose, 12u, uint8_t(3)),
          std::make_tuple(SAMPLE_CONTEXT, 11u, uint8_t(3)), std::make_tuple(SAMPLE_CONTEXT, 1u, uint8_t(3)),
          std::make_tuple(SAMPLE_CONTEXT, 0u, uint8_t(3))}) {
        BACnetDateTime kept = before;
        EXPECT_EQ(-1, kept.decodeContext(bytes.data(), len, tag)) << len << " " << int(tag);
        EXPECT_EQ(before, kept);
    }

    std::string text;
    SAMPLE.getString(text);
    EXPECT_EQ("A47C030704B4081E0F2A", text);
    BACnetDateTime fromText;
    EXPECT_TRUE(fromText.setString("A47C030704B4081E0F2A"));
    EXPECT_EQ(SAMPLE, fromText);
    // Bad hexadecimal, odd length and a truncated value read nothing.
    for (const char* bad : {"A47C030704B4081E0F2", "ZZ", "A47C030704"}) {
        BACnetDateTime kept;
        EXPECT_FALSE(kept.setString(bad)) << bad;
        EXPECT_EQ(BACnetDateTime(), kept) << bad;
    }
}

TEST(BACnetDateTime, buildsFromDecodedPrimitives) {
    const DataPropertyInObject0 descriptor;
    DataApplicationValue date, time, after;
    date.setDate(SAMPLE.getDate());
    time.setTime(SAMPLE.getTime());
    after.setUInt(1);

    // Date, time and one more: both are taken, the cursor lands on the third.
    date.next = &time;
    time.next = &after;
    const DataApplicationValue* next = nullptr;
    EXPECT_EQ(SAMPLE, BACnetDateTime(descriptor, date, &next));
    EXPECT_EQ(&after, next);
    time.next = nullptr;
    EXPECT_EQ(SAMPLE, BACnetDateTime(descriptor, date, &next));
    EXPECT_EQ(nullptr, next);

    // A lone date is midnight and moves the cursor by that date only.
    date.next = &after;
    BACnetDateTime lone(descriptor, date, &next);
    EXPECT_EQ(SAMPLE.getDate(), lone.getDate());
    EXPECT_EQ((BACnet_Time{0, 0, 0, 0}), lone.getTime());
    EXPECT_EQ(&after, next);
    date.next = nullptr;
    EXPECT_EQ(lone, BACnetDateTime(descriptor, date, nullptr));

    // Not a date: nothing is built and the cursor is not written.
    const DataApplicationValue* untouched = &date;
    EXPECT_EQ(BACnetDateTime(), BACnetDateTime(descriptor, time, &untouched));
    EXPECT_EQ(&date, untouched);

    // Broken back into primitives: date then time, which build the same value again.
    std::vector<DataApplicationValue> parts;
    SAMPLE.getBACnetPrimitives(parts);
    ASSERT_EQ(2u, parts.size());
    EXPECT_EQ(BACNET_APPLICATION_TAG_DATE, parts[0].getTag());
    EXPECT_EQ(BACNET_APPLICATION_TAG_TIME, parts[1].getTag());
    parts[0].next = &parts[1];
    EXPECT_EQ(SAMPLE, BACnetDateTime(descriptor, parts[0], nullptr));
}
