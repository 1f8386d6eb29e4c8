#include "TQ_BACnet/DataType/BACnetLogRecord.h"

#include "TQ_BACnet/DataType/BACnetDateTime.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

const BACnetLogRecord::LogDatumDef BACnetLogRecord::logDatumDefs[ANY_VALUE + 1] = {
    {8, "log-status"},     {1, "boolean-value"}, {4, "real-value"},      {9, "enum-value"},
    {2, "unsigned-value"}, {3, "signed-value"},  {8, "bitstring-value"}, {0, "null-value"},
    {1136, "failure"},     {4, "time-change"},   {1000, "any-value"}};

BACnetLogRecord::BACnetLogRecord() {
    setTimestamp(Poco::Timestamp());
}

BACnetLogRecord::~BACnetLogRecord() = default;

Poco::Timestamp BACnetLogRecord::setTimestamp(Poco::Timestamp timestamp) {
    _timestamp = BACnetDateTime::toHundredths(timestamp);
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

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
