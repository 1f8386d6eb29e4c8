#include "LogTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetLogMultipleRecord.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using TQ::BACnet::DataType::BACnetLogMultipleRecord;
using TQ::BACnet::DataType::BACnetLogRecord;
using namespace TQLogTest;

namespace {

BACnetLogRecord withDatum(uint8_t choice, const std::function<void(BACnetLogRecord::Datum&)>& fill) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning());
    BACnetLogRecord::Datum datum;
    fill(datum);
    record.setDatum(choice, datum);
    return record;
}

std::vector<uint8_t> recordBytes(const std::string& datum, const std::string& tail = "") {
    return hex(std::string(TIMESTAMP_BYTES) + " 1E " + datum + " 1F " + tail);
}

}  // namespace

TEST(LogRecordCodec, RealRecordRoundTripsToTheHundredth) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning() + 3456);  // finer than a hundredth: dropped
    record.setReal(21.5f);
    const std::vector<uint8_t> expected = recordBytes("2C 41 AC 00 00");
    EXPECT_EQ(encoded(record), expected);
    EXPECT_EQ(record.encode(nullptr), static_cast<int>(expected.size()));

    BACnetLogRecord decoded;
    ASSERT_EQ(decoded.decode(expected.data(), static_cast<unsigned>(expected.size())),
              static_cast<int>(expected.size()));
    EXPECT_EQ(decoded.getTimestamp(), thursdayMorning());
    EXPECT_EQ(decoded.getChoice(), BACnetLogRecord::REAL_VALUE);
    EXPECT_FLOAT_EQ(decoded.getReal(false), 21.5f);
    EXPECT_FALSE(decoded.hasStatusFlags());
    EXPECT_EQ(decoded, record);
}

TEST(LogRecordCodec, EveryDatumChoiceHasItsWireForm) {
    using D = BACnetLogRecord::Datum;
    struct Case {
        uint8_t choice;
        std::function<void(D&)> fill;
        const char* bytes;
    };
    const Case cases[] = {
        // log-disabled and log-interrupted: bits 0 and 2 of a 3-bit string
        {BACnetLogRecord::LOG_STATUS, [](D& d) { d.setLogStatus(0x05); }, "0A 05 A0"},
        {BACnetLogRecord::BOOLEAN_VALUE, [](D& d) { d.setBoolean(true); }, "19 01"},
        {BACnetLogRecord::ENUM_VALUE, [](D& d) { d.setEnumerated(42); }, "39 2A"},
        {BACnetLogRecord::UNSIGNED_VALUE, [](D& d) { d.setUnsigned(300); }, "4A 01 2C"},
        {BACnetLogRecord::SIGNED_VALUE, [](D& d) { d.setSigned(-2); }, "59 FE"},
        {BACnetLogRecord::BITSTRING_VALUE,
         [](D& d) {
             const uint8_t bits[] = {0x05, 0x01};  // bits 0, 2 and 8 of nine
             d.setBitString(bits, 2, 9);
         },
         "6B 07 A0 80"},
        {BACnetLogRecord::NULL_VALUE, [](D&) {}, "78"},
        // property / unknown-property as application-tagged enumerations inside [8]
        {BACnetLogRecord::FAILURE, [](D& d) { d.setError(2, 32); }, "8E 91 02 91 20 8F"},
        {BACnetLogRecord::TIME_CHANGE, [](D& d) { d.setReal(-1.0f); }, "9C BF 80 00 00"},
        {BACnetLogRecord::NO_VALUE, [](D&) {}, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.choice));
        const BACnetLogRecord record = withDatum(c.choice, c.fill);
        const std::vector<uint8_t> expected = recordBytes(c.bytes);
        testing::internal::CaptureStdout();
        EXPECT_EQ(encoded(record), expected);
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(printed.find("--------C) ENCODING TL_TYPE_ERROR") != std::string::npos,
                  c.choice == BACnetLogRecord::FAILURE);

        BACnetLogRecord decoded;
        EXPECT_EQ(decoded.decode(expected.data(), static_cast<unsigned>(expected.size())),
                  static_cast<int>(expected.size()));
        EXPECT_EQ(decoded, record);
    }
}

TEST(LogRecordCodec, StatusFlagsTravelAsAFourBitString) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning());
    record.setReal(21.5f);
    record.setStatusFlags(0x05);  // in-alarm and overridden
    EXPECT_EQ(record.getStatusFlags(), 0x85);
    const std::vector<uint8_t> expected = recordBytes("2C 41 AC 00 00", "2A 04 A0");
    EXPECT_EQ(encoded(record), expected);

    BACnetLogRecord decoded;
    EXPECT_EQ(decoded.decode(expected.data(), static_cast<unsigned>(expected.size())), 22);
    EXPECT_EQ(decoded.getStatusFlags(), 0x85);

    // Another element after the record (here a context tag 2 that is not a one-octet bit
    // string) is not status flags and is left for the caller.
    const std::vector<uint8_t> other = recordBytes("2C 41 AC 00 00", "2B 05 A0 00");
    EXPECT_EQ(decoded.decode(other.data(), static_cast<unsigned>(other.size())), 19);
    EXPECT_FALSE(decoded.hasStatusFlags());
}

TEST(LogRecordCodec, MalformedInputIsRefusedAndLeavesTheRecord) {
    BACnetLogRecord record;
    record.setReal(1.0f);
    const BACnetLogRecord before = record;
    struct Case {
        std::vector<uint8_t> bytes;
        int result;
    };
    const Case cases[] = {
        {hex(std::string(TIMESTAMP_BYTES) + " 2C 41 AC 00 00"), -997},     // no opening [1]
        {hex(std::string(TIMESTAMP_BYTES) + " 1E 2C 41 AC 00 00"), -998},  // no closing [1]
        {recordBytes("AE 21 01 AF"), -999},                                // any-value
        {recordBytes("8E 91 02 8F"), -1},                                  // failure without code
        {recordBytes("8E 91 02 91 20 8F"), -1},                            // fine, but see below
        {hex("1E 2C 41 AC 00 00 1F"), -1},                                 // no timestamp
        {recordBytes("0F"), -1},                                           // foreign closing tag
        {hex("0E A4 7C FF 07 04 B4 08 1E 00 19 0F 1E 70 1F"), -1},         // unspecified month
    };
    for (std::size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        if (i == 4) continue;  // the well-formed failure record is the base of the next check
        SCOPED_TRACE(i);
        EXPECT_EQ(record.decode(cases[i].bytes.data(), static_cast<unsigned>(cases[i].bytes.size())),
                  cases[i].result);
        EXPECT_EQ(record, before);
    }

    // Every cut of a complete record fails, and the decoder reads only what it was given: each
    // prefix sits at the very end of its own allocation, where a read past it is caught.
    const std::vector<uint8_t> full = recordBytes("8E 91 02 91 20 8F", "2A 04 F0");
    for (std::size_t cut = 0; cut < full.size(); ++cut) {
        std::unique_ptr<uint8_t[]> prefix(new uint8_t[cut + 1]);
        std::copy(full.begin(), full.begin() + cut, prefix.get());
        const int result = record.decode(prefix.get(), static_cast<unsigned>(cut));
        // Without (all of) the status flags the record itself is complete; a torn tail is left.
        if (cut >= full.size() - 3) {
            EXPECT_EQ(result, static_cast<int>(full.size() - 3));
        } else {
            EXPECT_LT(result, 0) << "cut " << cut;
        }
    }

    // Any byte of a record replaced by any value: the decoder answers within the given bytes.
    for (std::size_t pos = 0; pos < full.size(); ++pos) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            std::unique_ptr<uint8_t[]> mutated(new uint8_t[full.size()]);
            std::copy(full.begin(), full.end(), mutated.get());
            mutated[pos] = static_cast<uint8_t>(byte);
            testing::internal::CaptureStdout();
            EXPECT_LE(record.decode(mutated.get(), static_cast<unsigned>(full.size())),
                      static_cast<int>(full.size()));
            testing::internal::GetCapturedStdout();
        }
    }
}

TEST(LogRecordCodec, UnknownChoiceIsSkippedWithANote) {
    BACnetLogRecord record;
    const std::vector<uint8_t> primitive = recordBytes("B9 05");
    const std::vector<uint8_t> constructed = recordBytes("BE 21 01 BF", "2A 04 80");
    testing::internal::CaptureStdout();
    EXPECT_EQ(record.decode(primitive.data(), static_cast<unsigned>(primitive.size())),
              static_cast<int>(primitive.size()));
    EXPECT_EQ(record.getChoice(), BACnetLogRecord::NO_VALUE);
    EXPECT_EQ(record.decode(constructed.data(), static_cast<unsigned>(constructed.size())),
              static_cast<int>(constructed.size()));
    EXPECT_EQ(record.getStatusFlags(), 0x81);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("C) BACnetLogRecord::decode() UNKNOWN!!!"),
              std::string::npos);
}

TEST(LogRecordCodec, ContextFormsFrameTheRecord) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning());
    record.setReal(21.5f);
    uint8_t buffer[64];
    const int len = record.encodeContext(buffer, 3);
    std::vector<uint8_t> expected = recordBytes("2C 41 AC 00 00");
    expected.insert(expected.begin(), 0x3E);
    expected.push_back(0x3F);
    ASSERT_EQ(len, static_cast<int>(expected.size()));
    EXPECT_EQ(std::vector<uint8_t>(buffer, buffer + len), expected);

    BACnetLogRecord decoded;
    EXPECT_EQ(decoded.decodeContext(buffer, static_cast<unsigned>(len), 3), len);
    EXPECT_EQ(decoded, record);
    EXPECT_EQ(decoded.decodeContext(buffer, static_cast<unsigned>(len), 4), -1);
}

TEST(LogMultipleRecord, IsHeldButNotSupported) {
    const Poco::Timestamp before;
    const BACnetLogMultipleRecord record;
    const BACnetLogMultipleRecord copy(record);
    EXPECT_GE(copy.getTimestamp(), before);
    EXPECT_EQ(copy.getBACnetDataType(), 1053u);

    uint8_t buffer[16] = {0};
    BACnetLogMultipleRecord target;
    EXPECT_THROW(record.encode(buffer), Poco::NotImplementedException);
    EXPECT_THROW(target.decode(buffer, sizeof buffer), Poco::NotImplementedException);
    TQ::BACnet::DataApplicationValue date;
    EXPECT_THROW(BACnetLogMultipleRecord(TQ::BACnet::DataPropertyInObject0(), date, nullptr),
                 Poco::NotImplementedException);
}
