#include "LogTestSupport.h"

#include "TQ_BACnet/DataError.h"

#include <gtest/gtest.h>

using TQ::BACnet::DataType::BACnetLogRecord;
using namespace TQLogTest;

namespace {

BACnetLogRecord taken(uint8_t choice, const BACnetLogRecord::Datum& datum) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning());
    record.setDatum(choice, datum);
    return record;
}

std::string valueText(const BACnetLogRecord& record, bool bitsAsBooleans = true) {
    std::string out = "stale";
    record.getValueString(out, false, bitsAsBooleans);
    return out;
}

}  // namespace

TEST(LogRecordText, ValueTextFollowsTheChoice) {
    using D = BACnetLogRecord::Datum;
    D datum;
    datum.setLogStatus(0x05);
    EXPECT_EQ(valueText(taken(BACnetLogRecord::LOG_STATUS, datum)), "true,false,true");
    EXPECT_EQ(valueText(taken(BACnetLogRecord::LOG_STATUS, datum), false), "0;2");
    datum.setBoolean(false);
    EXPECT_EQ(valueText(taken(BACnetLogRecord::BOOLEAN_VALUE, datum)), "false");
    datum.setEnumerated(42);
    EXPECT_EQ(valueText(taken(BACnetLogRecord::ENUM_VALUE, datum)), "42");
    datum.setUnsigned(300);
    EXPECT_EQ(valueText(taken(BACnetLogRecord::UNSIGNED_VALUE, datum)), "300");
    datum.setSigned(-2);
    EXPECT_EQ(valueText(taken(BACnetLogRecord::SIGNED_VALUE, datum)), "-2");
    const uint8_t bits[] = {0x05, 0x01};
    datum.setBitString(bits, 2, 9);
    EXPECT_EQ(valueText(taken(BACnetLogRecord::BITSTRING_VALUE, datum)),
              "true,false,true,false,false,false,false,false,true");
    EXPECT_EQ(valueText(taken(BACnetLogRecord::NULL_VALUE, D())), "NULL");
    datum.setError(2, 32);
    EXPECT_EQ(valueText(taken(BACnetLogRecord::FAILURE, datum)),
              TQ::BACnet::DataError(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY).getString(false));
    EXPECT_EQ(valueText(taken(BACnetLogRecord::ANY_VALUE, D())), "\"ANY\" type not supported");
    EXPECT_EQ(valueText(taken(BACnetLogRecord::NO_VALUE, D())), "UNEXPECTED");
}

TEST(LogRecordText, StringJoinsTimestampValueAndFlags) {
    BACnetLogRecord record;
    record.setTimestamp(thursdayMorning());
    record.setReal(21.5f);
    std::string dateTime;
    record.getDateTimeString(dateTime);
    EXPECT_EQ(dateTime, "A47C030704B4081E0019");  // application Date and Time, local time

    std::string out;
    record.getStatusFlagsString(out);
    EXPECT_EQ(out, "");
    record.getString(out);
    EXPECT_EQ(out, "A47C030704B4081E0019 21.5");

    record.setStatusFlags(0x09);  // in-alarm, out-of-service
    record.getStatusFlagsString(out);
    EXPECT_EQ(out, "true,false,false,true");
    record.getString(out);
    EXPECT_EQ(out, "A47C030704B4081E0019 21.5 status:true,false,false,true");
}
