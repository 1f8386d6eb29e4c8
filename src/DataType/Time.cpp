#include "TQ_BACnet/DataType/Time.h"

#include <Poco/Exception.h>
#include <Poco/NumberParser.h>
#include <Poco/StringTokenizer.h>

#include <cstdio>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

const std::string GET_PREFIX = "TQ::BACnet::DataType::Time::getString(), in string, ";
const std::string SET_PREFIX = "TQ::BACnet::DataType::Time::operator=(const std::string& str), ";
constexpr uint8_t ANY_FIELD = 255;

struct Field {
    uint8_t BACnet_Time::*member;
    unsigned maxWritten;  // largest value the text form writes
    int maxRead;          // largest value the parser accepts
    const char* writeReason;
    const char* readReason;
};

// The parser accepts hour 24 although the text form refuses to write it; both are kept as they
// are because stored values and peers depend on each side.
const Field FIELDS[] = {
    {&BACnet_Time::hour, 23, 24, "hour number out of range", "hour number out of range"},
    {&BACnet_Time::min, 59, 59, "minute number out of range", "minute number out of range"},
    {&BACnet_Time::sec, 59, 59, "sec. number out of range", "second number out of range"},
    {&BACnet_Time::hundredths, 99, 99, "hundredths number out of range", "hundredths number out of range"},
};

}  // namespace

Time::Time() : BACnet_Time{ANY_FIELD, ANY_FIELD, ANY_FIELD, ANY_FIELD} {}

Time& Time::operator=(const BACnet_Time& other) {
    static_cast<BACnet_Time&>(*this) = other;
    return *this;
}

std::string& Time::getString(const BACnet_Time& time, std::string& out) {
    out.clear();
    for (const Field& field : FIELDS) {
        if (&field != FIELDS) out += '.';
        const unsigned value = time.*field.member;
        if (value == ANY_FIELD) {
            out += '*';
            continue;
        }
        if (value > field.maxWritten) throw Poco::RangeException(GET_PREFIX + field.writeReason, out);
        char digits[4];
        std::snprintf(digits, sizeof(digits), "%02u", value);
        out += digits;
    }
    return out;
}

std::string Time::getString() const {
    std::string out;
    return getString(*this, out);
}

Time& Time::operator=(const std::string& text) {
    Poco::StringTokenizer tokens(text, ".");
    if (tokens.count() < 4) throw Poco::BadCastException(SET_PREFIX + "invalid time-string \"str\"", text);
    for (size_t i = 0; i < 4; ++i) {
        const Field& field = FIELDS[i];
        if (tokens[i] == "*") {
            this->*field.member = ANY_FIELD;
            continue;
        }
        const int value = Poco::NumberParser::parse(tokens[i], ',');
        if (value < 0 || value > field.maxRead)
            throw Poco::RangeException(SET_PREFIX + field.readReason, tokens[i]);
        this->*field.member = static_cast<uint8_t>(value);
    }
    return *this;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
