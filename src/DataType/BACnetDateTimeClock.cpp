#include "TQ_BACnet/DataType/BACnetDateTime.h"

#include "TQ_BACnet/Utility/ConvertIt.h"

#include <Poco/DateTime.h>
#include <Poco/Exception.h>

#include <ctime>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

// Poco and the C library count Sunday as 0; BACnet counts Monday 1 to Sunday 7.
uint8_t bacnetWeekday(int sundayZero) {
    return static_cast<uint8_t>(sundayZero == 0 ? 7 : sundayZero);
}

}  // namespace

Poco::Timestamp BACnetDateTime::getTimestamp(const BACnet_DateTime& value) {
    const Poco::LocalDateTime local(value.date.year, value.date.month, value.date.day, value.time.hour,
                                    value.time.min, value.time.sec, value.time.hundredths * 10, 0);
    return local.utc().timestamp();
}

Poco::Timestamp BACnetDateTime::getTimestamp() const {
    return getTimestamp(*this);
}

void BACnetDateTime::getLocalDateTime(Poco::LocalDateTime& local) const {
    local.assign(date.year, date.month, date.day, time.hour, time.min, time.sec, time.hundredths * 10, 0);
}

void BACnetDateTime::setLocalDateTime(const Poco::LocalDateTime& local) {
    date.year = static_cast<uint16_t>(local.year());
    date.month = static_cast<uint8_t>(local.month());
    date.day = static_cast<uint8_t>(local.day());
    date.wday = bacnetWeekday(local.dayOfWeek());
    time.hour = static_cast<uint8_t>(local.hour());
    time.min = static_cast<uint8_t>(local.minute());
    time.sec = static_cast<uint8_t>(local.second());
    time.hundredths = static_cast<uint8_t>(local.millisecond() / 10);
}

void BACnetDateTime::setTimestamp(Poco::Timestamp ts) {
    setLocalDateTime(Poco::LocalDateTime(Poco::DateTime(ts)));
}

BACnet_DateTime BACnetDateTime::fromTimestamp(const Poco::Timestamp& moment) {
    BACnetDateTime local;
    local.setTimestamp(moment);
    return local;
}

bool BACnetDateTime::toTimestamp(const BACnet_DateTime& value, Poco::Timestamp& out) {
    BACnet_DateTime known = value;
    if (known.time.hundredths == 255) known.time.hundredths = 0;
    if (!Poco::DateTime::isValid(known.date.year, known.date.month, known.date.day, known.time.hour,
                                 known.time.min, known.time.sec, known.time.hundredths * 10, 0)) {
        return false;
    }
    out = getTimestamp(known);
    return true;
}

Poco::Timestamp BACnetDateTime::toHundredths(const Poco::Timestamp& moment) {
    constexpr Poco::Timestamp::TimeVal HUNDREDTH = 10000;  // microseconds
    const Poco::Timestamp::TimeVal us = moment.epochMicroseconds();
    const Poco::Timestamp::TimeVal rest = ((us % HUNDREDTH) + HUNDREDTH) % HUNDREDTH;
    return Poco::Timestamp(us - rest);
}

long BACnetDateTime::get() const {
    std::tm broken{};
    broken.tm_year = date.year - 1900;
    broken.tm_mon = date.month - 1;
    broken.tm_mday = date.day;
    // The zero date of 1900 has neither month nor day; it means the first of January.
    if (date.year + date.month + date.day == 1900) {
        broken.tm_mon = 0;
        broken.tm_mday = 1;
    }
    broken.tm_hour = time.hour;
    broken.tm_min = time.min;
    broken.tm_sec = time.sec;
    broken.tm_isdst = -1;  // the C library knows whether daylight saving applied on that date
    return static_cast<long>(std::mktime(&broken));
}

void BACnetDateTime::set(long seconds) {
    const std::time_t t = static_cast<std::time_t>(seconds);
    std::tm broken{};
    localtime_r(&t, &broken);
    date.year = static_cast<uint16_t>(broken.tm_year + 1900);
    date.month = static_cast<uint8_t>(broken.tm_mon + 1);
    date.day = static_cast<uint8_t>(broken.tm_mday);
    date.wday = bacnetWeekday(broken.tm_wday);
    time.hour = static_cast<uint8_t>(broken.tm_hour);
    time.min = static_cast<uint8_t>(broken.tm_min);
    time.sec = static_cast<uint8_t>(broken.tm_sec);
    time.hundredths = 0;
}

bool BACnetDateTime::setString2(const std::string& text) {
    // Read into a copy: a text whose time fails after its date read must not leave a mix behind.
    BACnet_DateTime parsed = *this;
    try {
        Utility::ConvertIt::getBACnetDateTime(text, parsed);
    } catch (const Poco::SyntaxException&) {
        return false;
    }
    static_cast<BACnet_DateTime&>(*this) = parsed;
    return true;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
