#include "LogTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/ValueContainer.h"
#include "tq_stack/codec.h"
#include "tq_stack/context_decode.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::DataPropertyInObject0;
using TQ::BACnet::ValueContainer;
using TQ::BACnet::DataType::ANY;
using TQ::BACnet::DataType::BACnetLogRecord;
using namespace TQLogTest;

namespace {

/// Links the values into a chain in vector order, as decoded primitives arrive.
void link(std::vector<DataApplicationValue>& chain) {
    for (std::size_t i = 0; i + 1 < chain.size(); ++i) chain[i].next = &chain[i + 1];
}

DataApplicationValue context(DataApplicationValue v, uint8_t tag) {
    v.context_specific = true;
    v.context_tag = tag;
    return v;
}

DataApplicationValue pseudo(uint8_t pseudoTag, uint8_t number) {
    DataApplicationValue v;
    v.tag = pseudoTag;
    v.context_specific = true;
    v.context_tag = number;
    return v;
}

DataApplicationValue value(const std::function<void(DataApplicationValue&)>& set) {
    DataApplicationValue v;
    set(v);
    return v;
}

DataApplicationValue bits(const std::string& text) {
    DataApplicationValue v;
    v.setText(BACNET_APPLICATION_TAG_BIT_STRING, text, false);
    return v;
}

std::vector<DataApplicationValue> timestampPrimitives() {
    const BACNET_DATE_TIME local = BACnetLogRecord::toLocalDateTime(thursdayMorning());
    DataApplicationValue date, time;
    date.tag = BACNET_APPLICATION_TAG_DATE;
    date.type.Date = local.date;
    date.setNull(false);
    time.tag = BACNET_APPLICATION_TAG_TIME;
    time.type.Time = local.time;
    time.setNull(false);
    return {date, time};
}

}  // namespace

TEST(LogRecordValue, TimestampAndBitStringStorage) {
    BACnetLogRecord record;
    EXPECT_EQ(record.getChoice(), BACnetLogRecord::NO_VALUE);
    EXPECT_EQ(record.getTimestamp().epochMicroseconds() % 10000, 0);
    EXPECT_EQ(record.setTimestamp(Poco::Timestamp(1000009999)), Poco::Timestamp(1000000000));
    EXPECT_EQ(record.getTimestamp(), Poco::Timestamp(1000000000));
    EXPECT_EQ(record.setTimestamp(Poco::Timestamp(-1)), Poco::Timestamp(-10000));

    BACnetLogRecord::BitString bitString;
    ASSERT_TRUE(bitString.setBits("true, FALSE,true"));
    EXPECT_EQ(bitString.getBitsUsed(), 3u);
    EXPECT_EQ(bitString.getBytes()[0], 0x05);
    EXPECT_TRUE(bitString.getBit(2));
    EXPECT_FALSE(bitString.getBit(40));

    // A whole byte takes one more with all eight bits unused; the bit count stays right.
    ASSERT_TRUE(bitString.setBitsUsed(8));
    EXPECT_EQ(bitString.getBytesUsed(), 2);
    EXPECT_EQ(bitString.getBitsNotUsed(), 8);
    EXPECT_EQ(bitString.getBitsUsed(), 8u);
    EXPECT_FALSE(bitString.setBitsUsed(120));
    EXPECT_EQ(bitString.getBitsUsed(), 8u);

    std::string text = "true";
    for (int i = 1; i < 32; ++i) text += ",true";
    ASSERT_TRUE(bitString.setBits(text));
    EXPECT_EQ(bitString.getBitsUsed(), 32u);
    EXPECT_EQ(bitString.getBytes()[3], 0xFF);
    EXPECT_FALSE(bitString.setBits(text + ",false"));  // a 33rd bit has no room
    EXPECT_EQ(bitString.getBitsUsed(), 32u);

    BACnetLogRecord::Datum datum;
    datum.setError(2, 32);
    datum.setErrorClass(5);
    EXPECT_EQ(datum.getErrorCode(), 32);
    datum.setErrorCode(0xFFFF);
    EXPECT_EQ(datum.getErrorClass(), 5);
    EXPECT_EQ(datum.getUnsigned(), 0x0005FFFFu);

    const uint8_t many[] = {1, 2, 3, 4, 5, 6};
    datum.setBitString(many, 6, 48);
    const BACnetLogRecord::BitString fromDatum(datum.getBytes());
    EXPECT_EQ(fromDatum.getBitsUsed(), 32u);
    EXPECT_EQ(fromDatum.getBytes()[3], 4);
    EXPECT_THROW(record.setDatum(11, datum), Poco::InvalidArgumentException);
}

TEST(LogRecordValue, GetRealConvertsOnlyWhenAsked) {
    using D = BACnetLogRecord::Datum;
    BACnetLogRecord record;
    D datum;
    datum.setUnsigned(7);
    record.setDatum(BACnetLogRecord::UNSIGNED_VALUE, datum);
    try {
        record.getReal(false);
        ADD_FAILURE() << "no exception";
    } catch (const Poco::BadCastException& e) {
        EXPECT_EQ(e.message(), "BACnetLogRecord::getReal()");
    }
    EXPECT_FLOAT_EQ(record.getReal(true), 7.0f);

    datum.setSigned(-3);
    record.setDatum(BACnetLogRecord::SIGNED_VALUE, datum);
    EXPECT_FLOAT_EQ(record.getReal(true), -3.0f);
    datum.setBoolean(true);
    record.setDatum(BACnetLogRecord::BOOLEAN_VALUE, datum);
    EXPECT_FLOAT_EQ(record.getReal(true), 1.0f);
    datum.setReal(2.5f);
    record.setDatum(BACnetLogRecord::TIME_CHANGE, datum);
    EXPECT_FLOAT_EQ(record.getReal(false), 2.5f);
    for (uint8_t choice :
         {BACnetLogRecord::NULL_VALUE, BACnetLogRecord::FAILURE, BACnetLogRecord::NO_VALUE}) {
        record.setDatum(choice, D());
        EXPECT_THROW(record.getReal(true), Poco::BadCastException);
    }
}

TEST(LogRecordValue, AssignTakesLoggableKindsOnly) {
    BACnetLogRecord record;
    struct Case {
        DataApplicationValue v;
        uint8_t choice;
    };
    const Case cases[] = {
        {DataApplicationValue(), BACnetLogRecord::NULL_VALUE},
        {value([](DataApplicationValue& v) { v.setReal(1.0f); }), BACnetLogRecord::REAL_VALUE},
        {value([](DataApplicationValue& v) { v.setBool(true); }), BACnetLogRecord::BOOLEAN_VALUE},
        {value([](DataApplicationValue& v) { v.setUInt(9); }), BACnetLogRecord::UNSIGNED_VALUE},
        {value([](DataApplicationValue& v) { v.setInt(-9); }), BACnetLogRecord::SIGNED_VALUE},
        {value([](DataApplicationValue& v) { v.setEnum(3); }), BACnetLogRecord::ENUM_VALUE},
        {DataApplicationValue(BACNET_APPLICATION_TAG_REAL, false),
         BACnetLogRecord::NULL_VALUE},  // typed null
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(record.assignAppValue(c.v));
        EXPECT_EQ(record.getChoice(), c.choice);
    }

    // Bit strings keep their first four bytes; the count follows the bits in use.
    ASSERT_TRUE(record.assignAppValue(bits("true,false,false,true,false,false,false,false,true")));
    EXPECT_EQ(record.getChoice(), BACnetLogRecord::BITSTRING_VALUE);
    const BACnetLogRecord::BitString held(record.getDatum().getBytes());
    EXPECT_EQ(held.getBitsUsed(), 9u);
    EXPECT_EQ(held.getBytes()[0], 0x09);
    EXPECT_EQ(held.getBytes()[1], 0x01);

    record.setReal(4.0f);
    const BACnetLogRecord before = record;
    DataApplicationValue text;
    text.setCharString("on");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(record.assignAppValue(text));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "BACnetLogRecord::assignAppValue: Trying to log invalid TL-type: 7\n");
    EXPECT_EQ(record, before);

    // A container gives its single primitive; arrays and constructed values are refused.
    ValueContainer single;
    single.setUInt(12);
    EXPECT_TRUE(record.assignValue(single));
    EXPECT_EQ(record.getDatum().getUnsigned(), 12u);
    ValueContainer array;
    ASSERT_TRUE(
        array.setText(TQ::BACnet::BACNET_DT_UNSIGNED_INT, BACNET_APPLICATION_TAG_UNSIGNED_INT, "1|2", false));
    EXPECT_FALSE(record.assignValue(array));
    EXPECT_EQ(record.getDatum().getUnsigned(), 12u);
}

TEST(LogRecordValue, AssignFromAnyReadsItsBytesAsTheDescriptorSays) {
    BACnetLogRecord record;
    const DataPropertyInObject0 real(TQ::BACnet::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL,
                                     TQ::BACnet::BACNET_DTS_SINGLE_VALUE, true, 0);
    const std::vector<uint8_t> realBytes = hex("44 41 AC 00 00");  // application REAL 21.5
    EXPECT_TRUE(record.assignValue(ANY(real, realBytes.data(), static_cast<unsigned>(realBytes.size()))));
    EXPECT_FLOAT_EQ(record.getReal(false), 21.5f);

    // Leniently read: an Unsigned under a REAL descriptor is converted.
    const std::vector<uint8_t> unsignedBytes = hex("21 07");
    EXPECT_TRUE(record.assignValue(ANY(real, unsignedBytes.data(), 2)));
    EXPECT_EQ(record.getChoice(), BACnetLogRecord::REAL_VALUE);
    EXPECT_FLOAT_EQ(record.getReal(false), 7.0f);

    const BACnetLogRecord before = record;
    const DataPropertyInObject0 text(TQ::BACnet::BACNET_DT_CHARACTER_STRING,
                                     BACNET_APPLICATION_TAG_CHARACTER_STRING,
                                     TQ::BACnet::BACNET_DTS_SINGLE_VALUE, true, 0);
    const std::vector<uint8_t> textBytes = hex("73 00 6F 6E");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(record.assignValue(ANY(text, textBytes.data(), 4)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "BACnetLogRecord::assignAppValue(ANY): Trying to log invalid TL-type: 7\n");

    DataPropertyInObject0 array = real;
    array.structure = TQ::BACnet::BACNET_DTS_ARRAY;
    const DataPropertyInObject0 constructed(TQ::BACnet::BACNET_DT_LOG_RECORD, BACNET_APPLICATION_TAG_NULL,
                                            TQ::BACnet::BACNET_DTS_SINGLE_VALUE, true, 0);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(record.assignValue(ANY(array, realBytes.data(), 5)));
    EXPECT_FALSE(record.assignValue(ANY(constructed, realBytes.data(), 5)));
    EXPECT_FALSE(record.assignValue(ANY(real, realBytes.data(), 3)));  // truncated
    EXPECT_FALSE(record.assignValue(ANY(real, textBytes.data(), 4)));  // does not convert
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");             // refused silently
    EXPECT_EQ(record, before);
}

TEST(LogRecordValue, BuildsFromDecodedPrimitives) {
    const DataPropertyInObject0 descriptor;
    // Two flat records: real with status flags, then a failure; and a trailing foreign value.
    std::vector<DataApplicationValue> chain = timestampPrimitives();
    chain.push_back(context(value([](DataApplicationValue& v) { v.setReal(21.5f); }), 2));
    chain.push_back(context(bits("true,false,true,false"), 2));
    for (const DataApplicationValue& v : timestampPrimitives()) chain.push_back(v);
    chain.push_back(context(value([](DataApplicationValue& v) { v.setEnum(2); }), 8));
    chain.push_back(value([](DataApplicationValue& v) { v.setEnum(32); }));
    chain.push_back(value([](DataApplicationValue& v) { v.setUInt(5); }));
    link(chain);

    const DataApplicationValue* next = nullptr;
    const BACnetLogRecord first(descriptor, chain[0], &next);
    EXPECT_EQ(first.getTimestamp(), thursdayMorning());
    EXPECT_FLOAT_EQ(first.getReal(false), 21.5f);
    EXPECT_EQ(first.getStatusFlags(), 0x85);
    ASSERT_EQ(next, &chain[4]);
    const BACnetLogRecord second(descriptor, *next, &next);
    EXPECT_EQ(second.getChoice(), BACnetLogRecord::FAILURE);
    EXPECT_EQ(second.getDatum().getErrorClass(), 2);
    EXPECT_EQ(second.getDatum().getErrorCode(), 32);
    EXPECT_EQ(next, &chain[8]);

    // The chain of a context-guided decode: pseudo tags around timestamp, datum and failure;
    // a lone date means midnight.
    std::vector<DataApplicationValue> guided = {
        pseudo(BACNET_PSEUDO_TAG_OPENING, 0), timestampPrimitives()[0],
        pseudo(BACNET_PSEUDO_TAG_CLOSING, 0), pseudo(BACNET_PSEUDO_TAG_OPENING, 1),
        context(bits("false,true,false"), 0), pseudo(BACNET_PSEUDO_TAG_CLOSING, 1)};
    link(guided);
    const BACnetLogRecord third(descriptor, guided[0], &next);
    EXPECT_EQ(third.getTimestamp(), Poco::LocalDateTime(2024, 3, 7).utc().timestamp());
    EXPECT_EQ(third.getChoice(), BACnetLogRecord::LOG_STATUS);
    EXPECT_EQ(third.getDatum().getLogStatus(), 0x02);  // buffer-purged
    EXPECT_EQ(next, nullptr);

    // Primitives that are not a log record are refused, never misread.
    DataApplicationValue notADate;
    notADate.setUInt(1);
    EXPECT_THROW(BACnetLogRecord(descriptor, notADate, &next), Poco::DataFormatException);
    std::vector<DataApplicationValue> badFailure = timestampPrimitives();
    badFailure.push_back(context(value([](DataApplicationValue& v) { v.setEnum(2); }), 8));
    badFailure.push_back(value([](DataApplicationValue& v) { v.setReal(1.0f); }));
    link(badFailure);
    try {
        BACnetLogRecord(descriptor, badFailure[0], &next);
        ADD_FAILURE() << "no exception";
    } catch (const Poco::AssertionViolationException& e) {
        EXPECT_EQ(e.message().rfind("tag == BACNET_APPLICATION_TAG_ENUMERATED || "
                                    "tag == BACNET_APPLICATION_TAG_UNSIGNED_INT",
                                    0),
                  0u);
    }
    badFailure.pop_back();
    link(badFailure);
    badFailure.back().next = nullptr;
    EXPECT_THROW(BACnetLogRecord(descriptor, badFailure[0], &next), Poco::DataFormatException);
}

TEST(LogRecordValue, CompareOrdersByTimestamp) {
    std::vector<BACnetLogRecord> log(3);
    for (int i = 0; i < 3; ++i) log[i].setTimestamp(Poco::Timestamp(1000000 * (3 - i)));
    std::sort(log.begin(), log.end(), BACnetLogRecord::compare);
    EXPECT_EQ(log.front().getTimestamp(), Poco::Timestamp(1000000));
    EXPECT_EQ(log.back().getTimestamp(), Poco::Timestamp(3000000));
    EXPECT_FALSE(BACnetLogRecord::compare(log[0], log[0]));
}
