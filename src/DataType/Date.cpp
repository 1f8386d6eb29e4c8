#include "TQ_BACnet/DataType/Date.h"

#include <Poco/Exception.h>
#include <Poco/LocalDateTime.h>
#include <Poco/NumberParser.h>
#include <Poco/StringTokenizer.h>

#include <cstdio>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

const std::string GET_PREFIX = "TQ::BACnet::DataType::Date::getString(), in string, ";
const std::string SET_PREFIX = "TQ::BACnet::DataType::Date::operator=(const std::string& str), ";
constexpr uint16_t ANY_YEAR = 2155;
constexpr uint8_t ANY_FIELD = 255;

void appendField(std::string& out, unsigned value, unsigned any, unsigned max, int width,
                 const char* reason) {
    if (value == any) {
        out += '*';
        return;
    }
    if (value > max) throw Poco::RangeException(GET_PREFIX + reason, out);
    char digits[8];
    std::snprintf(digits, sizeof(digits), "%0*u", width, value);
    out += digits;
}

// "*" is the wildcard; anything else must be a number within [min, max].
unsigned parseField(const std::string& token, unsigned any, int min, int max, const char* reason) {
    if (token == "*") return any;
    const int value = Poco::NumberParser::parse(token, ',');
    if (value < min || value > max) throw Poco::RangeException(SET_PREFIX + reason, token);
    return static_cast<unsigned>(value);
}

}  // namespace

Date::Date() : BACnet_Date{ANY_YEAR, ANY_FIELD, ANY_FIELD, ANY_FIELD} {}

Date& Date::operator=(const BACnet_Date& other) {
    static_cast<BACnet_Date&>(*this) = other;
    return *this;
}

std::string& Date::getString(const BACnet_Date& date, std::string& out) {
    out.clear();
    appendField(out, date.year, ANY_YEAR, ANY_YEAR, 4, "year number out of range");
    out += '-';
    appendField(out, date.month, ANY_FIELD, 14, 2, "month number out of range");
    out += '-';
    appendField(out, date.day, ANY_FIELD, 34, 2, "day number out of range");
    if (date.wday >= 1 && date.wday <= 7) {
        out += ' ';
        out += static_cast<char>('0' + date.wday);
    }
    return out;
}

std::string Date::getString() const {
    std::string out;
    return getString(*this, out);
}

void Date::getLocalDateTime(Poco::LocalDateTime& local) const {
    local.assign(year, month, day, 0, 0, 0, 0, 0);
}

Date& Date::operator=(const std::string& text) {
    Poco::StringTokenizer tokens(text, "- ");
    if (tokens.count() < 3) throw Poco::BadCastException(SET_PREFIX + "invalid date-string \"str\"", text);
    // Fields are stored as they are read: a later failure leaves the earlier ones changed.
    year = static_cast<uint16_t>(
        parseField(tokens[0], ANY_YEAR, 1900, 2154, "year number out of range 1900 to 2155"));
    month = static_cast<uint8_t>(parseField(tokens[1], ANY_FIELD, 0, 14, "month number out of range"));
    day = static_cast<uint8_t>(parseField(tokens[2], ANY_FIELD, 0, 34, "day number out of range"));
    wday = tokens.count() > 3
               ? static_cast<uint8_t>(parseField(tokens[3], ANY_FIELD, 1, 7, "week-day number out of range"))
               : ANY_FIELD;
    return *this;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
