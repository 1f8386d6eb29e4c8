#include "tq_stack/datetime.h"

#include "enclosed.h"
#include "tq_stack/codec.h"

namespace {

constexpr uint16_t kUnspecifiedYear = 1900 + 255;
constexpr uint8_t kUnspecified = 255;

template <typename T>
int compareField(T a, T b) {
    return a < b ? -1 : (a > b ? 1 : 0);
}

}  // namespace

bool datetime_is_leap_year(uint16_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

uint8_t datetime_month_days(uint16_t year, uint8_t month) {
    static const uint8_t kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) return 0;
    return uint8_t(kDays[month - 1] + (month == 2 && datetime_is_leap_year(year) ? 1 : 0));
}

uint8_t datetime_day_of_week(uint16_t year, uint8_t month, uint8_t day) {
    if (year < 1900 || year >= kUnspecifiedYear || day < 1 || day > datetime_month_days(year, month))
        return kUnspecified;
    // Days since Monday 1900-01-01.
    uint32_t days = 0;
    for (uint16_t y = 1900; y < year; ++y) days += datetime_is_leap_year(y) ? 366 : 365;
    for (uint8_t m = 1; m < month; ++m) days += datetime_month_days(year, m);
    days += day - 1u;
    return uint8_t(days % 7 + 1);
}

void datetime_set_date(BACNET_DATE* date, uint16_t year, uint8_t month, uint8_t day) {
    if (!date) return;
    date->year = year;
    date->month = month;
    date->day = day;
    date->wday = datetime_day_of_week(year, month, day);
}

void datetime_set_time(BACNET_TIME* time, uint8_t hour, uint8_t minute, uint8_t seconds, uint8_t hundredths) {
    if (!time) return;
    time->hour = hour;
    time->min = minute;
    time->sec = seconds;
    time->hundredths = hundredths;
}

void datetime_set_values(BACNET_DATE_TIME* value, uint16_t year, uint8_t month, uint8_t day, uint8_t hour,
                         uint8_t minute, uint8_t seconds, uint8_t hundredths) {
    if (!value) return;
    datetime_set_date(&value->date, year, month, day);
    datetime_set_time(&value->time, hour, minute, seconds, hundredths);
}

void datetime_set(BACNET_DATE_TIME* value, const BACNET_DATE* date, const BACNET_TIME* time) {
    if (!value) return;
    if (date) value->date = *date;
    if (time) value->time = *time;
}

void datetime_wildcard_set(BACNET_DATE_TIME* value) {
    if (!value) return;
    value->date = BACNET_DATE{kUnspecifiedYear, kUnspecified, kUnspecified, kUnspecified};
    value->time = BACNET_TIME{kUnspecified, kUnspecified, kUnspecified, kUnspecified};
}

int datetime_compare_date(const BACNET_DATE* a, const BACNET_DATE* b) {
    if (!a || !b) return compareField(a != nullptr, b != nullptr);
    if (int c = compareField(a->year, b->year)) return c;
    if (int c = compareField(a->month, b->month)) return c;
    return compareField(a->day, b->day);
}

int datetime_compare_time(const BACNET_TIME* a, const BACNET_TIME* b) {
    if (!a || !b) return compareField(a != nullptr, b != nullptr);
    if (int c = compareField(a->hour, b->hour)) return c;
    if (int c = compareField(a->min, b->min)) return c;
    if (int c = compareField(a->sec, b->sec)) return c;
    return compareField(a->hundredths, b->hundredths);
}

int datetime_compare(const BACNET_DATE_TIME* a, const BACNET_DATE_TIME* b) {
    if (!a || !b) return compareField(a != nullptr, b != nullptr);
    if (int c = datetime_compare_date(&a->date, &b->date)) return c;
    return datetime_compare_time(&a->time, &b->time);
}

int bacapp_encode_datetime(uint8_t* apdu, const BACNET_DATE_TIME* value) {
    if (!value) return 0;
    int len = encode_application_date(apdu, &value->date);
    return len + encode_application_time(apdu ? apdu + len : nullptr, &value->time);
}

int bacapp_decode_datetime(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE_TIME* value) {
    if (!apdu || !value) return BACNET_STATUS_ERROR;
    BACNET_DATE_TIME decoded;
    const int d = decode_application_date(apdu, apdu_len, &decoded.date);
    if (d < 0) return BACNET_STATUS_ERROR;
    const int t = decode_application_time(apdu + d, apdu_len - uint32_t(d), &decoded.time);
    if (t < 0) return BACNET_STATUS_ERROR;
    *value = decoded;
    return d + t;
}

using EnclosedDateTime =
    tq_stack_detail::Enclosed<BACNET_DATE_TIME, bacapp_encode_datetime, bacapp_decode_datetime>;

int bacapp_decode_context_datetime(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                   BACNET_DATE_TIME* value) {
    return EnclosedDateTime::decode(apdu, apdu_len, tag_number, value);
}

int bacapp_encode_context_datetime(uint8_t* apdu, uint8_t tag_number, const BACNET_DATE_TIME* value) {
    return EnclosedDateTime::encode(apdu, tag_number, value);
}
