#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Time.h"
#include "WrapperTestSupport.h"

#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

using TQ::BACnet::DataType::Date;
using TQ::BACnet::DataType::Time;
using TQWrapperTest::messageOf;

// The text forms' main cases are covered with the value model; these are the remaining edges.
TEST(DateWrapper, weekdayEdgesAndWriterArguments) {
    const std::string set = "TQ::BACnet::DataType::Date::operator=(const std::string& str), ";
    Date d;
    d = std::string("*-14-32 7");  // last day of even months, Sundays
    EXPECT_EQ((BACnet_Date{2155, 14, 32, 7}), d);
    EXPECT_EQ("*-14-32 7", d.getString());
    d = std::string("2154-12-31 *");  // a wildcard weekday prints nothing
    EXPECT_EQ((BACnet_Date{2154, 12, 31, 255}), d);
    EXPECT_EQ("2154-12-31", d.getString());
    EXPECT_EQ(set + "week-day number out of range: 8",
              messageOf<Poco::RangeException>([&] { d = std::string("2024-01-01 8"); }));

    // getString replaces what `out` held and hands it back; a stray weekday is left out.
    std::string out = "stale";
    EXPECT_EQ(&out, &Date::getString(BACnet_Date{2024, 1, 1, 9}, out));
    EXPECT_EQ("2024-01-01", out);
    EXPECT_EQ("TQ::BACnet::DataType::Date::getString(), in string, year number out of range",
              messageOf<Poco::RangeException>([&] {
                  Date::getString(BACnet_Date{2156, 1, 1, 1}, out);
              }));

    // Equality sees every field, the weekday included, from either side.
    EXPECT_EQ((BACnet_Date{2024, 1, 1, 1}), Date(BACnet_Date{2024, 1, 1, 1}));
    EXPECT_NE(Date(BACnet_Date{2024, 1, 1, 1}), (BACnet_Date{2024, 1, 1, 255}));
}

TEST(DateWrapper, localDateTimeIsMidnightAndUnspecifiedFieldsAssert) {
    Poco::LocalDateTime local(2000, 5, 5, 17, 18, 19, 20, 21);
    Date d;
    d = std::string("2024-02-29");
    d.getLocalDateTime(local);
    EXPECT_EQ(2024, local.year());
    EXPECT_EQ(2, local.month());
    EXPECT_EQ(29, local.day());
    EXPECT_EQ(0, local.hour() + local.minute() + local.second() + local.millisecond() + local.microsecond());

    EXPECT_THROW(Date().getLocalDateTime(local), Poco::AssertionViolationException);
    d = std::string("2024-13-01");
    EXPECT_THROW(d.getLocalDateTime(local), Poco::AssertionViolationException);
}

TEST(TimeWrapper, remainingLimitsAndEquality) {
    const std::string set = "TQ::BACnet::DataType::Time::operator=(const std::string& str), ";
    Time t;
    EXPECT_EQ(set + "hour number out of range: 25",
              messageOf<Poco::RangeException>([&] { t = std::string("25.0.0.0"); }));
    // Colons are not separators: the whole text is one field.
    EXPECT_EQ(set + "invalid time-string \"str\": 08:30:00:00",
              messageOf<Poco::BadCastException>([&] { t = std::string("08:30:00:00"); }));
    EXPECT_THROW(t = std::string("1.1.1.x"), Poco::SyntaxException);

    std::string out;
    EXPECT_EQ("TQ::BACnet::DataType::Time::getString(), in string, hundredths number out of range: 01.02.03.",
              messageOf<Poco::RangeException>([&] {
                  Time::getString(BACnet_Time{1, 2, 3, 100}, out);
              }));

    // A fifth field is ignored; equality sees every field.
    t = std::string("1.2.3.4.5");
    EXPECT_EQ((BACnet_Time{1, 2, 3, 4}), t);
    EXPECT_NE((BACnet_Time{1, 2, 3, 5}), t);
}
