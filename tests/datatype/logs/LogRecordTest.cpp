#include "TQTestSupport.h"

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetLogMultipleRecord.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/ValueContainer.h"
#include "tq_stack/codec.h"
#include "tq_stack/context_decode.h"

#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQTest;

namespace {

using D = BACnetLogRecord::Datum;

/// The moment at which the local clock reads 2024-03-07 (a Thursday) 08:30:00.25, whatever
/// the machine's time zone: the wire form of every record taken then is fixed.
Poco::Timestamp thursdayMorning() {
    return Poco::LocalDateTime(2024, 3, 7, 8, 30, 0, 250, 0).utc().timestamp();
}

/// [0] { Date 2024-03-07 Thursday, Time 08:30:00.25 }
const std::string TIMESTAMP_BYTES = "0E A4 7C 03 07 04 B4 08 1E 00 19 0F";

Bytes recordBytes(const std::string& datum, const std::string& tail = "") {
    return hex(TIMESTAMP_BYTES + " 1E " + datum + " 1F " + tail);
}

BACnetLogRecord taken(uint8_t choice, const std::function<void(D&)>& fill) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning());
    D datum;
    fill(datum);
    record.setDatum(choice, datum);
    return record;
}

BACnetLogRecord realRecord() {
    return taken(BACnetLogRecord::REAL_VALUE, [](D& d) { d.setReal(21.5f); });
}

std::string valueText(const BACnetLogRecord& record, bool bitsAsBooleans = true) {
    std::string out = "stale";
    record.getValueString(out, false, bitsAsBooleans);
    return out;
}

DataApplicationValue pseudo(uint8_t pseudoTag, uint8_t number) {
    DataApplicationValue v;
    v.tag = pseudoTag;
    return context(v, number);
}

DataApplicationValue bits(const std::string& text) {
    return parsed(BACNET_APPLICATION_TAG_BIT_STRING, text);
}

std::vector<DataApplicationValue> timestampPrimitives() {
    std::vector<DataApplicationValue> dateAndTime;
    BACnetDateTime(BACnetDateTime::fromTimestamp(thursdayMorning())).getBACnetPrimitives(dateAndTime);
    return dateAndTime;
}

}  // namespace

TEST(LogRecordCodec, RealRecordRoundTripsWithFlagsAndFraming) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning() + 3456);  // finer than a hundredth: dropped
    record.setReal(21.5f);
    const Bytes expected = recordBytes("2C 41 AC 00 00");
    EXPECT_EQ(record.encode(nullptr), static_cast<int>(expected.size()));
    // Encoding, decoding and the frame of context tag 1 (and not 2).
    expectWireForm(record, TIMESTAMP_BYTES + " 1E 2C 41 AC 00 00 1F", BACnetLogRecord(), false);
    BACnetLogRecord decoded;
    ASSERT_EQ(decodeExactly(decoded, expected, expected.size()), static_cast<int>(expected.size()));
    EXPECT_EQ(std::make_tuple(thursdayMorning(), 21.5f, false),
              std::make_tuple(decoded.getTimestamp(), decoded.getReal(false), decoded.hasStatusFlags()));
    // Status flags travel as a four-bit string; in-alarm and overridden.
    record.setStatusFlags(0x05);
    EXPECT_EQ(record.getStatusFlags(), 0x85);
    const Bytes flagged = recordBytes("2C 41 AC 00 00", "2A 04 A0");
    EXPECT_EQ(encoded(record), flagged);
    EXPECT_TRUE(decodeExactly(decoded, flagged, flagged.size()) == 22 && decoded.getStatusFlags() == 0x85);
    // A context tag 2 that is not a one-octet bit string is not status flags: left to the caller.
    const Bytes other = recordBytes("2C 41 AC 00 00", "2B 05 A0 00");
    EXPECT_TRUE(decodeExactly(decoded, other, other.size()) == 19 && !decoded.hasStatusFlags());
    // The text joins the local date-time (as application Date and Time), value and flags.
    record = realRecord();
    std::string time, flags, all;
    const auto texts = [&] {
        record.getDateTimeString(time);
        record.getStatusFlagsString(flags);
        record.getString(all);
        return std::make_tuple(time, flags, all);
    };
    EXPECT_EQ(texts(), std::make_tuple("A47C030704B4081E0019", "", "A47C030704B4081E0019 21.5"));
    record.setStatusFlags(0x09);  // in-alarm, out-of-service
    EXPECT_EQ(texts(), std::make_tuple("A47C030704B4081E0019", "true,false,false,true",
                                       "A47C030704B4081E0019 21.5 status:true,false,false,true"));
}

TEST(LogRecordCodec, EveryDatumChoiceHasItsWireFormAndText) {
    const uint8_t someBits[] = {0x05, 0x01};  // bits 0, 2 and 8 of nine
    const std::string failureText =
        TQ::BACnet::DataError(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY).getString(false);
    const struct {
        uint8_t choice;
        std::function<void(D&)> fill;
        const char* bytes;
        std::string text;
    } cases[] = {
        // log-disabled and log-interrupted: bits 0 and 2 of a 3-bit string
        {BACnetLogRecord::LOG_STATUS, [](D& d) { d.setLogStatus(0x05); }, "0A 05 A0", "true,false,true"},
        {BACnetLogRecord::BOOLEAN_VALUE, [](D& d) { d.setBoolean(true); }, "19 01", "true"},
        {BACnetLogRecord::ENUM_VALUE, [](D& d) { d.setEnumerated(42); }, "39 2A", "42"},
        {BACnetLogRecord::UNSIGNED_VALUE, [](D& d) { d.setUnsigned(300); }, "4A 01 2C", "300"},
        {BACnetLogRecord::SIGNED_VALUE, [](D& d) { d.setSigned(-2); }, "59 FE", "-2"},
        {BACnetLogRecord::BITSTRING_VALUE, [&](D& d) { d.setBitString(someBits, 2, 9); }, "6B 07 A0 80",
         "true,false,true,false,false,false,false,false,true"},
        {BACnetLogRecord::NULL_VALUE, [](D&) {}, "78", "NULL"},
        // property / unknown-property as application-tagged enumerations inside [8]
        {BACnetLogRecord::FAILURE, [](D& d) { d.setError(2, 32); }, "8E 91 02 91 20 8F", failureText},
        {BACnetLogRecord::TIME_CHANGE, [](D& d) { d.setReal(-1.0f); }, "9C BF 80 00 00", "-1"},
        {BACnetLogRecord::NO_VALUE, [](D&) {}, "", "UNEXPECTED"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.choice));
        const BACnetLogRecord record = taken(c.choice, c.fill);
        const Bytes expected = recordBytes(c.bytes);
        Bytes written;
        const std::string printed = stdoutOf([&] { written = encoded(record); });
        EXPECT_EQ(written, expected);
        EXPECT_EQ(printed.find("--------C) ENCODING TL_TYPE_ERROR") != std::string::npos,
                  c.choice == BACnetLogRecord::FAILURE);
        BACnetLogRecord decoded;
        EXPECT_EQ(decodeExactly(decoded, expected, expected.size()), static_cast<int>(expected.size()));
        EXPECT_EQ(decoded, record);
        if (c.choice != BACnetLogRecord::TIME_CHANGE) {
            EXPECT_EQ(valueText(record), c.text);
        }
    }
    EXPECT_EQ(valueText(taken(BACnetLogRecord::LOG_STATUS, [](D& d) { d.setLogStatus(0x05); }), false),
              "0;2");
    EXPECT_EQ(valueText(taken(BACnetLogRecord::ANY_VALUE, [](D&) {})), "\"ANY\" type not supported");
}

TEST(LogRecordCodec, MalformedInputIsRefusedAndLeavesTheRecord) {
    BACnetLogRecord record;
    record.setReal(1.0f);
    const BACnetLogRecord before = record;
    const std::pair<Bytes, int> cases[] = {
        {hex(TIMESTAMP_BYTES + " 2C 41 AC 00 00"), -997},           // no opening [1]
        {hex(TIMESTAMP_BYTES + " 1E 2C 41 AC 00 00"), -998},        // no closing [1]
        {recordBytes("AE 21 01 AF"), -999},                         // any-value
        {recordBytes("8E 91 02 8F"), -1},                           // failure without code
        {hex("1E 2C 41 AC 00 00 1F"), -1},                          // no timestamp
        {recordBytes("0F"), -1},                                    // foreign closing tag
        {hex("0E A4 7C FF 07 04 B4 08 1E 00 19 0F 1E 70 1F"), -1},  // unspecified month
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.first));
        EXPECT_EQ(decodeExactly(record, c.first, c.first.size()), c.second);
        EXPECT_EQ(record, before);
    }
    // Without (all of) the status flags the record itself is complete; a torn tail is left.
    const Bytes full = recordBytes("8E 91 02 91 20 8F", "2A 04 F0");
    const int body = static_cast<int>(full.size()) - 3;
    expectEveryCutRefused(before, full, {{body, body}, {body + 1, body}, {body + 2, body}},
                          Refusal::Negative);
    expectMutationsStayInBounds<BACnetLogRecord>(full);
    // An unknown choice is skipped with a note; the flags after it still count.
    const Bytes primitive = recordBytes("B9 05");
    const Bytes constructed = recordBytes("BE 21 01 BF", "2A 04 80");
    const std::string note = stdoutOf([&] {
        EXPECT_EQ(decodeExactly(record, primitive, primitive.size()), static_cast<int>(primitive.size()));
        EXPECT_EQ(record.getChoice(), BACnetLogRecord::NO_VALUE);
        EXPECT_EQ(decodeExactly(record, constructed, constructed.size()),
                  static_cast<int>(constructed.size()));
        EXPECT_EQ(record.getStatusFlags(), 0x81);
    });
    EXPECT_NE(note.find("C) BACnetLogRecord::decode() UNKNOWN!!!"), std::string::npos);
}

TEST(LogMultipleRecord, IsHeldButNotSupported) {
    const Poco::Timestamp before;
    BACnetLogMultipleRecord record;
    EXPECT_TRUE(record.getTimestamp() >= before && record.getBACnetDataType() == 1053u);
    uint8_t buffer[16] = {0};
    EXPECT_THROW(record.encode(buffer), Poco::NotImplementedException);
    EXPECT_THROW(record.decode(buffer, sizeof buffer), Poco::NotImplementedException);
    const DataApplicationValue date;
    EXPECT_THROW(BACnetLogMultipleRecord(DataPropertyInObject0(), date, nullptr),
                 Poco::NotImplementedException);
}

TEST(LogRecordValue, TimestampAndBitStringStorage) {
    BACnetLogRecord record;
    EXPECT_TRUE(record.getChoice() == BACnetLogRecord::NO_VALUE &&
                record.getTimestamp().epochMicroseconds() % 10000 == 0);
    EXPECT_EQ(record.setTimestamp(Poco::Timestamp(1000009999)), Poco::Timestamp(1000000000));
    EXPECT_EQ(record.setTimestamp(Poco::Timestamp(-1)), Poco::Timestamp(-10000));
    BACnetLogRecord::BitString bitString;
    ASSERT_TRUE(bitString.setBits("true, FALSE,true"));
    EXPECT_TRUE(bitString.getBitsUsed() == 3 && bitString.getBytes()[0] == 0x05);
    EXPECT_TRUE(bitString.getBit(2) && !bitString.getBit(40));
    // A whole byte takes one more with all eight bits unused; the bit count stays right.
    ASSERT_TRUE(bitString.setBitsUsed(8));
    EXPECT_FALSE(bitString.setBitsUsed(120));
    EXPECT_EQ(std::make_tuple(2, 8, 8u),
              std::make_tuple(bitString.getBytesUsed(), bitString.getBitsNotUsed(), bitString.getBitsUsed()));
    std::string text = "true";
    for (int i = 1; i < 32; ++i) text += ",true";
    ASSERT_TRUE(bitString.setBits(text));
    EXPECT_FALSE(bitString.setBits(text + ",false"));  // a 33rd bit has no room
    EXPECT_TRUE(bitString.getBitsUsed() == 32 && bitString.getBytes()[3] == 0xFF);
    BACnetLogRecord::Datum datum;
    datum.setError(2, 32);
    datum.setErrorClass(5);
    EXPECT_EQ(datum.getErrorCode(), 32);
    datum.setErrorCode(0xFFFF);
    EXPECT_TRUE(datum.getErrorClass() == 5 && datum.getUnsigned() == 0x0005FFFFu);
    const uint8_t many[] = {1, 2, 3, 4, 5, 6};
    datum.setBitString(many, 6, 48);
    const BACnetLogRecord::BitString fromDatum(datum.getBytes());
    EXPECT_TRUE(fromDatum.getBitsUsed() == 32 && fromDatum.getBytes()[3] == 4);
    EXPECT_THROW(record.setDatum(11, datum), Poco::InvalidArgumentException);
}

TEST(LogRecordValue, GetRealConvertsOnlyWhenAsked) {
    const std::pair<BACnetLogRecord, float> converted[] = {
        {taken(BACnetLogRecord::UNSIGNED_VALUE, [](D& d) { d.setUnsigned(7); }), 7.0f},
        {taken(BACnetLogRecord::SIGNED_VALUE, [](D& d) { d.setSigned(-3); }), -3.0f},
        {taken(BACnetLogRecord::BOOLEAN_VALUE, [](D& d) { d.setBoolean(true); }), 1.0f},
        {taken(BACnetLogRecord::TIME_CHANGE, [](D& d) { d.setReal(2.5f); }), 2.5f},
    };
    for (const auto& c : converted) EXPECT_FLOAT_EQ(c.first.getReal(true), c.second);
    EXPECT_EQ(messageOf<Poco::BadCastException>([&] { converted[0].first.getReal(false); }),
              "BACnetLogRecord::getReal()");
    EXPECT_FLOAT_EQ(converted[3].first.getReal(false), 2.5f);
    for (uint8_t choice : {BACnetLogRecord::NULL_VALUE, BACnetLogRecord::FAILURE, BACnetLogRecord::NO_VALUE})
        EXPECT_THROW(taken(choice, [](D&) {}).getReal(true), Poco::BadCastException) << int(choice);
}

TEST(LogRecordValue, AssignTakesLoggableKindsOnly) {
    BACnetLogRecord record;
    const std::pair<DataApplicationValue, uint8_t> cases[] = {
        {DataApplicationValue(), BACnetLogRecord::NULL_VALUE},
        {realValue(1.0f), BACnetLogRecord::REAL_VALUE},
        {parsed(BACNET_APPLICATION_TAG_BOOLEAN, "true"), BACnetLogRecord::BOOLEAN_VALUE},
        {uintValue(9), BACnetLogRecord::UNSIGNED_VALUE},
        {parsed(BACNET_APPLICATION_TAG_SIGNED_INT, "-9"), BACnetLogRecord::SIGNED_VALUE},
        {enumValue(3), BACnetLogRecord::ENUM_VALUE},
        {DataApplicationValue(BACNET_APPLICATION_TAG_REAL, false),
         BACnetLogRecord::NULL_VALUE},  // typed null
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(record.assignAppValue(c.first)) << int(c.second);
        EXPECT_EQ(record.getChoice(), c.second);
    }
    // Bit strings keep their first four bytes; the count follows the bits in use.
    ASSERT_TRUE(record.assignAppValue(bits("true,false,false,true,false,false,false,false,true")));
    EXPECT_EQ(record.getChoice(), BACnetLogRecord::BITSTRING_VALUE);
    const BACnetLogRecord::BitString held(record.getDatum().getBytes());
    EXPECT_TRUE(held.getBitsUsed() == 9 && held.getBytes()[0] == 0x09 && held.getBytes()[1] == 0x01);
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
    EXPECT_TRUE(record.assignValue(single) && record.getDatum().getUnsigned() == 12);
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
    const Bytes realBytes = hex("44 41 AC 00 00");  // application REAL 21.5
    EXPECT_TRUE(record.assignValue(ANY(real, realBytes.data(), static_cast<unsigned>(realBytes.size()))));
    EXPECT_FLOAT_EQ(record.getReal(false), 21.5f);
    // Leniently read: an Unsigned under a REAL descriptor is converted.
    const Bytes unsignedBytes = hex("21 07");
    EXPECT_TRUE(record.assignValue(ANY(real, unsignedBytes.data(), 2)));
    EXPECT_TRUE(record.getChoice() == BACnetLogRecord::REAL_VALUE && record.getReal(false) == 7.0f);
    const BACnetLogRecord before = record;
    const DataPropertyInObject0 text(TQ::BACnet::BACNET_DT_CHARACTER_STRING,
                                     BACNET_APPLICATION_TAG_CHARACTER_STRING,
                                     TQ::BACnet::BACNET_DTS_SINGLE_VALUE, true, 0);
    const Bytes textBytes = hex("73 00 6F 6E");
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
    chain.push_back(context(realValue(21.5f), 2));
    chain.push_back(context(bits("true,false,true,false"), 2));
    for (const DataApplicationValue& v : timestampPrimitives()) chain.push_back(v);
    chain.push_back(context(enumValue(2), 8));
    chain.push_back(enumValue(32));
    chain.push_back(uintValue(5));
    link(chain);
    const DataApplicationValue* next = nullptr;
    const BACnetLogRecord first(descriptor, chain[0], &next);
    EXPECT_EQ(std::make_tuple(thursdayMorning(), 21.5f, 0x85),
              std::make_tuple(first.getTimestamp(), first.getReal(false), int(first.getStatusFlags())));
    ASSERT_EQ(next, &chain[4]);
    const BACnetLogRecord second(descriptor, *next, &next);
    EXPECT_EQ(std::make_tuple(int(BACnetLogRecord::FAILURE), 2, 32, &chain[8]),
              std::make_tuple(int(second.getChoice()), int(second.getDatum().getErrorClass()),
                              int(second.getDatum().getErrorCode()), next));
    // The chain of a context-guided decode: pseudo tags around timestamp, datum and failure;
    // a lone date means midnight.
    std::vector<DataApplicationValue> guided = {
        pseudo(BACNET_PSEUDO_TAG_OPENING, 0), timestampPrimitives()[0],
        pseudo(BACNET_PSEUDO_TAG_CLOSING, 0), pseudo(BACNET_PSEUDO_TAG_OPENING, 1),
        context(bits("false,true,false"), 0), pseudo(BACNET_PSEUDO_TAG_CLOSING, 1)};
    link(guided);
    const BACnetLogRecord third(descriptor, guided[0], &next);
    EXPECT_EQ(third.getTimestamp(), Poco::LocalDateTime(2024, 3, 7).utc().timestamp());
    EXPECT_TRUE(third.getChoice() == BACnetLogRecord::LOG_STATUS && next == nullptr);
    EXPECT_EQ(third.getDatum().getLogStatus(), 0x02);  // buffer-purged
    // Primitives that are not a log record are refused, never misread.
    DataApplicationValue notADate;
    notADate.setUInt(1);
    EXPECT_THROW(BACnetLogRecord(descriptor, notADate, &next), Poco::DataFormatException);
    std::vector<DataApplicationValue> badFailure = timestampPrimitives();
    badFailure.push_back(context(enumValue(2), 8));
    badFailure.push_back(realValue(1.0f));
    link(badFailure);
    EXPECT_TRUE(assertsWith(
        [&] { BACnetLogRecord(descriptor, badFailure[0], &next); },
        "tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
    badFailure.pop_back();
    link(badFailure);
    EXPECT_THROW(BACnetLogRecord(descriptor, badFailure[0], &next), Poco::DataFormatException);
    // Records order by timestamp.
    std::vector<BACnetLogRecord> log(3);
    for (int i = 0; i < 3; ++i) log[i].setTimestamp(Poco::Timestamp(1000000 * (3 - i)));
    std::sort(log.begin(), log.end(), BACnetLogRecord::compare);
    EXPECT_TRUE(log.front().getTimestamp() == 1000000 && log.back().getTimestamp() == 3000000);
    EXPECT_FALSE(BACnetLogRecord::compare(log[0], log[0]));
}
