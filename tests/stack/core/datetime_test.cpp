#include <gtest/gtest.h>

#include "exact_buffer.h"
#include "tq_stack/datetime.h"

TEST(DateTime, WeekdaysLeapYearsAndUnspecifiedDates) {
    EXPECT_EQ(datetime_day_of_week(1900, 1, 1), 1);   // Monday
    EXPECT_EQ(datetime_day_of_week(2024, 1, 5), 5);   // Friday
    EXPECT_EQ(datetime_day_of_week(2024, 3, 10), 7);  // Sunday
    EXPECT_EQ(datetime_day_of_week(2000, 2, 29), 2);
    EXPECT_EQ(datetime_day_of_week(2154, 12, 31), datetime_day_of_week(2154, 12, 24));
    EXPECT_EQ(datetime_day_of_week(1900, 2, 29), 255);  // 1900 is not a leap year
    EXPECT_EQ(datetime_day_of_week(2024, 255, 1), 255);
    EXPECT_EQ(datetime_day_of_week(2155, 1, 1), 255);
    EXPECT_EQ(datetime_day_of_week(0, 0, 0), 255);
    EXPECT_TRUE(datetime_is_leap_year(2000));
    EXPECT_FALSE(datetime_is_leap_year(2100));
    EXPECT_EQ(datetime_month_days(2023, 2), 28);
    EXPECT_EQ(datetime_month_days(2024, 2), 29);
    EXPECT_EQ(datetime_month_days(2024, 13), 0);

    BACNET_DATE_TIME dt;
    datetime_set_values(&dt, 2024, 1, 5, 13, 5, 9, 25);
    EXPECT_EQ(dt.date.wday, 5);
    EXPECT_EQ(dt.time.hundredths, 25);
    datetime_set_values(&dt, 0, 0, 0, 0, 0, 0, 0);  // the value model's empty date-time
    EXPECT_EQ(dt.date.year, 0);
    EXPECT_EQ(dt.date.wday, 255);
    datetime_wildcard_set(&dt);
    EXPECT_EQ(dt.date.year, 2155);
    EXPECT_EQ(dt.time.hour, 255);
}

TEST(DateTime, ComparisonsOrderByFieldsAndIgnoreTheWeekday) {
    BACNET_DATE a{2024, 3, 7, 4}, b{2024, 3, 7, 255};
    EXPECT_EQ(datetime_compare_date(&a, &b), 0);
    b.day = 8;
    EXPECT_LT(datetime_compare_date(&a, &b), 0);
    EXPECT_GT(datetime_compare_date(&b, &a), 0);
    b = BACNET_DATE{2023, 12, 31, 7};
    EXPECT_GT(datetime_compare_date(&a, &b), 0);
    BACNET_DATE wildcard{2155, 255, 255, 255};
    EXPECT_EQ(datetime_compare_date(&wildcard, &wildcard), 0);
    BACNET_TIME t1{8, 30, 0, 0}, t2{8, 30, 0, 1};
    EXPECT_LT(datetime_compare_time(&t1, &t2), 0);
    EXPECT_EQ(datetime_compare_time(&t2, &t2), 0);
    BACNET_TIME star{255, 255, 255, 255};
    EXPECT_GT(datetime_compare_time(&star, &t2), 0);
    BACNET_DATE_TIME x{a, t2}, y{a, t1};
    EXPECT_GT(datetime_compare(&x, &y), 0);
    y.date.year = 2025;
    EXPECT_LT(datetime_compare(&x, &y), 0);
}

TEST(DateTime, EncodingsRoundTripWithAndWithoutContextTags) {
    BACNET_DATE_TIME in;
    datetime_set_values(&in, 2024, 3, 7, 8, 30, 0, 0);
    const std::vector<uint8_t> plain = encoded([&](uint8_t* p) { return bacapp_encode_datetime(p, &in); });
    EXPECT_EQ(plain, (std::vector<uint8_t>{0xA4, 124, 3, 7, 4, 0xB4, 8, 30, 0, 0}));
    ExactBuffer pb(plain);
    BACNET_DATE_TIME out{};
    ASSERT_EQ(bacapp_decode_datetime(pb.data(), pb.size(), &out), 10);
    EXPECT_EQ(datetime_compare(&in, &out), 0);
    EXPECT_EQ(out.date.wday, 4);

    BACNET_DATE_TIME star;
    datetime_wildcard_set(&star);
    ExactBuffer cb(encoded([&](uint8_t* p) { return bacapp_encode_context_datetime(p, 17, &star); }));
    EXPECT_EQ(cb.size(), 14u);  // extended tag numbers: two bytes each side
    ASSERT_EQ(bacapp_decode_context_datetime(cb.data(), cb.size(), 17, &out), 14);
    EXPECT_EQ(datetime_compare(&star, &out), 0);
    EXPECT_EQ(out.date.wday, 255);
    // Another opening tag is "not there", and the value stays.
    EXPECT_EQ(bacapp_decode_context_datetime(cb.data(), cb.size(), 16, &out), 0);
    EXPECT_EQ(out.date.year, 2155);
}
