#include "TQ_BACnet/DataType/BACnetDateTime.h"

#include <Poco/DateTime.h>
#include <Poco/Exception.h>
#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

using TQ::BACnet::DataType::BACnetDateTime;

namespace {

/// Runs in Central European time by its POSIX rule (no zone files needed): UTC+1, and UTC+2 from the last
/// Sunday of March 02:00 to the last Sunday of October 03:00. The expected moments below follow
/// from that rule alone.
class BACnetDateTimeClock : public ::testing::Test {
protected:
    void SetUp() override {
        const char* tz = std::getenv("TZ");
        _hadTz = tz != nullptr;
        if (_hadTz) _savedTz = tz;
        setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
        tzset();
    }
    void TearDown() override {
        if (_hadTz)
            setenv("TZ", _savedTz.c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }

    static long utcSeconds(int year, int month, int day, int hour, int minute, int second) {
        return static_cast<long>(
            Poco::DateTime(year, month, day, hour, minute, second).timestamp().epochTime());
    }

private:
    bool _hadTz = false;
    std::string _savedTz;
};

}  // namespace

TEST_F(BACnetDateTimeClock, timestampsAreLocalTime) {
    // Winter: 12:00:00.50 local is 11:00:00.500 UTC; summer: 12:00 local is 10:00 UTC.
    const BACnetDateTime winter(BACnet_Date{2024, 1, 15, 1}, BACnet_Time{12, 0, 0, 50});
    const BACnetDateTime summer(BACnet_Date{2024, 7, 15, 1}, BACnet_Time{12, 0, 0, 0});
    EXPECT_EQ(Poco::DateTime(2024, 1, 15, 11, 0, 0, 500).timestamp(), winter.getTimestamp());
    EXPECT_EQ(Poco::DateTime(2024, 7, 15, 10, 0, 0).timestamp(), BACnetDateTime::getTimestamp(summer));
    // The weekday takes no part.
    BACnetDateTime wrongDay = winter;
    wrongDay.date.wday = 5;
    EXPECT_EQ(winter.getTimestamp(), wrongDay.getTimestamp());

    BACnetDateTime back;
    back.setTimestamp(Poco::DateTime(2024, 1, 15, 11, 0, 0, 509).timestamp());
    EXPECT_EQ(winter, back);  // milliseconds are truncated to hundredths, weekday Monday 1
    back.setTimestamp(Poco::DateTime(2024, 7, 15, 10, 0, 0).timestamp());
    EXPECT_EQ(summer, back);
    // 2024-03-31 01:30 UTC is 03:30 CEST on a Sunday, stored as weekday 7.
    back.setTimestamp(Poco::DateTime(2024, 3, 31, 1, 30, 0).timestamp());
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 3, 31, 7}, BACnet_Time{3, 30, 0, 0}), back);
}

TEST_F(BACnetDateTimeClock, localDateTimeConversions) {
    BACnetDateTime value;
    value.setLocalDateTime(Poco::LocalDateTime(2024, 3, 10, 23, 59, 58, 999, 999));  // a Sunday
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 3, 10, 7}, BACnet_Time{23, 59, 58, 99}), value);
    value.setLocalDateTime(Poco::LocalDateTime(2024, 3, 11, 0, 0, 0, 9, 0));  // a Monday
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 3, 11, 1}, BACnet_Time{0, 0, 0, 0}), value);
    value.setLocalDateTime(Poco::LocalDateTime(2024, 3, 16, 6, 7, 8, 120, 0));  // a Saturday
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 3, 16, 6}, BACnet_Time{6, 7, 8, 12}), value);

    Poco::LocalDateTime local(2000, 1, 1, 0, 0, 0, 0, 0);
    value.getLocalDateTime(local);
    EXPECT_TRUE(Poco::LocalDateTime(2024, 3, 16, 6, 7, 8, 120, 0) == local);

    // Unspecified fields are not real moments: Poco refuses them.
    const BACnetDateTime wildcard(BACnet_Date{2155, 255, 255, 255}, BACnet_Time{255, 255, 255, 255});
    EXPECT_THROW(wildcard.getLocalDateTime(local), Poco::AssertionViolationException);
    EXPECT_THROW(wildcard.getTimestamp(), Poco::AssertionViolationException);
}

TEST_F(BACnetDateTimeClock, secondsSinceTheEpoch) {
    const BACnetDateTime winter(BACnet_Date{2024, 1, 15, 1}, BACnet_Time{12, 0, 0, 99});
    EXPECT_EQ(utcSeconds(2024, 1, 15, 11, 0, 0), winter.get());  // hundredths are dropped
    const BACnetDateTime summer(BACnet_Date{2024, 7, 15, 1}, BACnet_Time{12, 0, 0, 0});
    EXPECT_EQ(utcSeconds(2024, 7, 15, 10, 0, 0), summer.get());
    // The zero date of 1900 is the first of January 1900, local midnight.
    const BACnetDateTime zero1900(BACnet_Date{1900, 0, 0, 0}, BACnet_Time{0, 0, 0, 0});
    EXPECT_EQ(utcSeconds(1899, 12, 31, 23, 0, 0), zero1900.get());

    BACnetDateTime value(BACnet_Date{2155, 255, 255, 255}, BACnet_Time{255, 255, 255, 255});
    value.set(utcSeconds(2024, 7, 14, 10, 0, 1));  // a Sunday, summer time
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 7, 14, 7}, BACnet_Time{12, 0, 1, 0}), value);
    value.set(utcSeconds(2024, 1, 15, 11, 0, 0));
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 1, 15, 1}, BACnet_Time{12, 0, 0, 0}), value);
    EXPECT_EQ(utcSeconds(2024, 1, 15, 11, 0, 0), value.get());
}

TEST(BACnetDateTimeText, humanTextReadsOrLeavesTheValue) {
    BACnetDateTime value;
    ASSERT_TRUE(value.setString2("15.01.2024 12:30:05.250"));
    EXPECT_EQ(2024, value.date.year);
    EXPECT_EQ(1, value.date.month);
    EXPECT_EQ(15, value.date.day);
    EXPECT_EQ((BACnet_Time{12, 30, 5, 25}), value.getTime());

    // A date alone leaves the time as it was.
    ASSERT_TRUE(value.setString2("16.01.2024"));
    EXPECT_EQ(16, value.date.day);
    EXPECT_EQ((BACnet_Time{12, 30, 5, 25}), value.getTime());

    // A bad time after a good date changes nothing.
    const BACnetDateTime before = value;
    EXPECT_FALSE(value.setString2("17.02.2025 noon"));
    EXPECT_EQ(before, value);
    EXPECT_FALSE(value.setString2("yesterday"));
    EXPECT_EQ(before, value);
}
