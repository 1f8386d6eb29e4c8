#include "TQTestSupport.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/ValueContainer.h"

#include <gtest/gtest.h>

#include <cctype>
#include <functional>

namespace {

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQTest;
using Values = std::vector<DataApplicationValue>;

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);

TEST(ReadBack, DefaultDateTimeSurvivesTheWireAndTheStoredText) {
    const BACnetDateTime fresh;
    BACnetDateTime back(BACnet_Date{2024, 1, 1, 1}, BACnet_Time{1, 1, 1, 1});
    const Bytes bytes = encoded(fresh);
    ASSERT_EQ(10, decodeExactly(back, bytes, bytes.size()));
    EXPECT_EQ(fresh, back);
    // Only the zero date comes back as year 0; a real 1900 date stays.
    const BACnetDateTime y1900(BACnet_Date{1900, 1, 1, 1}, BACnet_Time{0, 0, 0, 0});
    ASSERT_EQ(10, decodeExactly(back, encoded(y1900), 10));
    EXPECT_EQ(y1900, back);
    ValueContainer c;
    std::string text;
    fresh.getString(text);
    ASSERT_TRUE(c.setText(BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, text, false));
    BACnetDateTime held;
    EXPECT_EQ(fresh, c.getValue(held));
}

TEST(ReadBack, DeviceKeysReadBackThroughSetKey) {
    const BACnetDeviceObjectReference cases[] = {
        BACnetDeviceObjectReference(), BACnetDeviceObjectReference(ObjectIdentifier(), AI3),
        BACnetDeviceObjectReference(1234u, AI3), BACnetDeviceObjectReference(0u, AI3)};
    for (const auto& original : cases) {
        SCOPED_TRACE(original.getKey());
        BACnetDeviceObjectReference back(ObjectIdentifier(OBJECT_DEVICE, 99), ObjectIdentifier(OBJECT_BINARY_INPUT, 1));
        back.setKey(original.getKey());
        EXPECT_TRUE(original == back && original.hasDevice() == back.hasDevice());
    }
}

TEST(ReadBack, EmptyPropertyValueDecodesAndEncodesBack) {
    BACnetPropertyValue value;
    const Bytes bytes = hex("09 55 2E 2F");
    ASSERT_EQ(4, decodeExactly(value, bytes, bytes.size()));
    EXPECT_EQ(bytes, encoded(value));
    std::string text;
    EXPECT_EQ("NULL", value.getValue().getText(text, false));
}

// A chain of: o object identifier, e enumerated, u unsigned; a digit after the letter is its
// context tag.
Values chain(const std::string& pattern) {
    Values values;
    for (size_t i = 0; i < pattern.size(); ++i) {
        values.emplace_back();
        DataApplicationValue& v = values.back();
        if (pattern[i] == 'o') v.setObjectIdentifier(AI3);
        if (pattern[i] == 'e') v.setEnum(85);
        if (pattern[i] == 'u') v.setUInt(7);
        if (i + 1 < pattern.size() && isdigit(static_cast<unsigned char>(pattern[i + 1]))) {
            v.context_specific = true;
            v.context_tag = static_cast<uint8_t>(pattern[++i] - '0');
        }
    }
    ValueContainer().setApplicationValueLinks(values);
    return values;
}

// How many primitives of `run` the constructor of T takes.
template <class T>
size_t taken(const std::string& run) {
    const Values values = chain(run);
    const DataApplicationValue* next = nullptr;
    T(DataPropertyInObject0(), values[0], &next);
    return next ? static_cast<size_t>(next - values.data()) : values.size();
}

TEST(ReadBack, PrimitiveConstructorsTakeMembersOnlyUnderTheirContextTags) {
    EXPECT_EQ(3u, taken<BACnetObjectPropertyReference>("o0e1u2"));
    EXPECT_EQ(1u, taken<BACnetObjectPropertyReference>("o0e3u2"));
    EXPECT_EQ(1u, taken<BACnetDeviceObjectPropertyReference>("o0e2"));
    // The value under [2], then a priority under [2] instead of [3].
    EXPECT_EQ(2u, taken<BACnetPropertyValue>("eu2u2"));
}

TEST(ReadBack, LogRecordsRebuildFromTheirPrimitives) {
    const std::function<void(BACnetLogRecord&)> fills[] = {
        [](BACnetLogRecord& r) { r.setReal(21.5f); r.setStatusFlags(0x05); },
        [](BACnetLogRecord& r) { BACnetLogRecord::Datum d; d.setError(2, 32); r.setDatum(BACnetLogRecord::FAILURE, d); },
        [](BACnetLogRecord& r) { BACnetLogRecord::Datum d; d.setLogStatus(5); r.setDatum(BACnetLogRecord::LOG_STATUS, d); },
        [](BACnetLogRecord& r) { BACnetLogRecord::Datum d; const uint8_t b[] = {0xA5, 0x01}; d.setBitString(b, 2, 12); r.setDatum(BACnetLogRecord::BITSTRING_VALUE, d); },
        [](BACnetLogRecord& r) { r.setDatum(BACnetLogRecord::NULL_VALUE, BACnetLogRecord::Datum()); },
        [](BACnetLogRecord& r) { BACnetLogRecord::Datum d; d.setBoolean(true); r.setDatum(BACnetLogRecord::BOOLEAN_VALUE, d); r.setStatusFlags(0x08); },
    };
    for (const auto& fill : fills) {
        BACnetLogRecord original;
        original.setTimestamp(Poco::Timestamp(1700000000LL * 1000000 + 120000));
        fill(original);
        SCOPED_TRACE(int(original.getChoice()));
        Values primitives;
        original.getBACnetPrimitives(primitives);
        ValueContainer().setApplicationValueLinks(primitives);
        const DataApplicationValue* next = &primitives.front();
        const BACnetLogRecord rebuilt(DataPropertyInObject0(), primitives.front(), &next);
        EXPECT_TRUE(next == nullptr && encoded(original) == encoded(rebuilt));
    }
}

}  // namespace
