#include "TQ_BACnet/DataType/BACnetLogRecord.h"

#include <Poco/DateTime.h>
#include <Poco/Exception.h>
#include <Poco/LocalDateTime.h>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {
constexpr Poco::Timestamp::TimeDiff HUNDREDTH = 10000;  // microseconds
}

const BACnetLogRecord::LogDatumDef BACnetLogRecord::logDatumDefs[ANY_VALUE + 1] = {
    {8, "log-status"},     {1, "boolean-value"}, {4, "real-value"},      {9, "enum-value"},
    {2, "unsigned-value"}, {3, "signed-value"},  {8, "bitstring-value"}, {0, "null-value"},
    {1136, "failure"},     {4, "time-change"},   {1000, "any-value"}};

BACnetLogRecord::BACnetLogRecord() {
    setTimestamp(Poco::Timestamp());
}

BACnetLogRecord::~BACnetLogRecord() = default;

Poco::Timestamp BACnetLogRecord::setTimestamp(Poco::Timestamp timestamp) {
    const Poco::Timestamp::TimeVal us = timestamp.epochMicroseconds();
    // Floor, not truncation: moments before 1970 round towards the past as well.
    const Poco::Timestamp::TimeVal rest = ((us % HUNDREDTH) + HUNDREDTH) % HUNDREDTH;
    _timestamp = Poco::Timestamp(us - rest);
    return _timestamp;
}

void BACnetLogRecord::setDatum(uint8_t choice, const Datum& datum) {
    if (choice > ANY_VALUE && choice != NO_VALUE) {
        throw Poco::InvalidArgumentException("BACnetLogRecord::setDatum(): no such log-datum choice",
                                             std::to_string(choice));
    }
    _choice = choice;
    _datum = datum;
}

void BACnetLogRecord::setReal(float value) {
    _datum.setReal(value);
    _choice = REAL_VALUE;
}

void BACnetLogRecord::setStatusFlags(uint8_t flags) {
    _statusFlags = static_cast<uint8_t>(STATUS_FLAGS_PRESENT | (flags & 0x0F));
}

float BACnetLogRecord::getReal(bool convert) const {
    switch (_choice) {
        case REAL_VALUE:
        case TIME_CHANGE:
            return _datum.getReal();
        default:
            break;
    }
    if (convert) {
        switch (_choice) {
            case BOOLEAN_VALUE:
                return _datum.getBoolean() ? 1.0f : 0.0f;
            case ENUM_VALUE:
            case UNSIGNED_VALUE:
                return static_cast<float>(_datum.getUnsigned());
            case SIGNED_VALUE:
                return static_cast<float>(_datum.getSigned());
            default:
                break;
        }
    }
    throw Poco::BadCastException("BACnetLogRecord::getReal()");
}

bool BACnetLogRecord::compare(const BACnetLogRecord& a, const BACnetLogRecord& b) {
    return a._timestamp < b._timestamp;
}

bool BACnetLogRecord::operator==(const BACnetLogRecord& other) const {
    return _timestamp == other._timestamp && _choice == other._choice && _datum == other._datum &&
           _statusFlags == other._statusFlags;
}

uint8_t BACnetLogRecord::mirror(uint8_t octet) {
    octet = static_cast<uint8_t>((octet & 0xF0) >> 4 | (octet & 0x0F) << 4);
    octet = static_cast<uint8_t>((octet & 0xCC) >> 2 | (octet & 0x33) << 2);
    return static_cast<uint8_t>((octet & 0xAA) >> 1 | (octet & 0x55) << 1);
}

BACNET_DATE_TIME BACnetLogRecord::toLocalDateTime(const Poco::Timestamp& timestamp) {
    const Poco::LocalDateTime local{Poco::DateTime(timestamp)};
    BACNET_DATE_TIME value;
    value.date.year = static_cast<uint16_t>(local.year());
    value.date.month = static_cast<uint8_t>(local.month());
    value.date.day = static_cast<uint8_t>(local.day());
    value.date.wday = static_cast<uint8_t>(local.dayOfWeek() == 0 ? 7 : local.dayOfWeek());
    value.time.hour = static_cast<uint8_t>(local.hour());
    value.time.min = static_cast<uint8_t>(local.minute());
    value.time.sec = static_cast<uint8_t>(local.second());
    value.time.hundredths = static_cast<uint8_t>(local.millisecond() / 10);
    return value;
}

bool BACnetLogRecord::fromLocalDateTime(const BACNET_DATE_TIME& value, Poco::Timestamp& out) {
    // Devices that do not resolve hundredths send them unspecified; the moment is still known.
    const int millisecond = value.time.hundredths == 255 ? 0 : value.time.hundredths * 10;
    if (!Poco::DateTime::isValid(value.date.year, value.date.month, value.date.day, value.time.hour,
                                 value.time.min, value.time.sec, millisecond, 0)) {
        return false;
    }
    const Poco::LocalDateTime local(value.date.year, value.date.month, value.date.day, value.time.hour,
                                    value.time.min, value.time.sec, millisecond, 0);
    out = local.utc().timestamp();
    return true;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
