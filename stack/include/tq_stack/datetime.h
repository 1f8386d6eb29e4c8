// Dates, times and BACnetDateTime. Unspecified (255) fields are ordinary values here: they are
// set, compared, encoded and decoded like any other.
#pragma once

#include <cstdint>

#include "tq_stack/values.h"

bool datetime_is_leap_year(uint16_t year);
// Days of the month (February by leap year); 0 for a month outside 1..12.
uint8_t datetime_month_days(uint16_t year, uint8_t month);
// 1 Monday .. 7 Sunday for a valid Gregorian date from 1900 on; 255 otherwise.
uint8_t datetime_day_of_week(uint16_t year, uint8_t month, uint8_t day);

// Sets year, month, day and the weekday computed from them (255 when they are not a real date,
// e.g. with unspecified fields).
void datetime_set_date(BACNET_DATE* date, uint16_t year, uint8_t month, uint8_t day);
void datetime_set_time(BACNET_TIME* time, uint8_t hour, uint8_t minute, uint8_t seconds, uint8_t hundredths);
void datetime_set_values(BACNET_DATE_TIME* value, uint16_t year, uint8_t month, uint8_t day, uint8_t hour,
                         uint8_t minute, uint8_t seconds, uint8_t hundredths);
void datetime_set(BACNET_DATE_TIME* value, const BACNET_DATE* date, const BACNET_TIME* time);
// Every field unspecified (year 2155, the rest 255).
void datetime_wildcard_set(BACNET_DATE_TIME* value);

// <0, 0, >0 by year, month, day (the weekday takes no part), resp. hour, minute, second,
// hundredths, resp. date then time.
int datetime_compare_date(const BACNET_DATE* a, const BACNET_DATE* b);
int datetime_compare_time(const BACNET_TIME* a, const BACNET_TIME* b);
int datetime_compare(const BACNET_DATE_TIME* a, const BACNET_DATE_TIME* b);

// BACnetDateTime ::= SEQUENCE { Date, Time }, both application tagged (10 bytes).
int bacapp_encode_datetime(uint8_t* apdu, const BACNET_DATE_TIME* value);
// The same between opening and closing tag tag_number.
int bacapp_encode_context_datetime(uint8_t* apdu, uint8_t tag_number, const BACNET_DATE_TIME* value);
// Bytes consumed or BACNET_STATUS_ERROR; value unchanged on failure.
int bacapp_decode_datetime(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE_TIME* value);
// 0 when apdu does not start with opening tag tag_number.
int bacapp_decode_context_datetime(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                   BACNET_DATE_TIME* value);
