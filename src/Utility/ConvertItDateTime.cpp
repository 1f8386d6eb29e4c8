#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Time.h"
#include "TQ_BACnet/Utility/ConvertIt.h"

#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeParser.h>
#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace Utility {

namespace {

template <class D>
void dateOf(const D& in, BACnet_Date& out) {
    out.year = static_cast<uint16_t>(in.year());
    out.month = static_cast<uint8_t>(in.month());
    out.day = static_cast<uint8_t>(in.day());
    const int weekday = in.dayOfWeek();
    out.wday = static_cast<uint8_t>(weekday == 0 ? 7 : weekday);
}

template <class D>
void timeOf(const D& in, BACnet_Time& out) {
    out.hour = static_cast<uint8_t>(in.hour());
    out.min = static_cast<uint8_t>(in.minute());
    out.sec = static_cast<uint8_t>(in.second());
    out.hundredths = static_cast<uint8_t>(in.millisecond() / 10);
}

// The date-time parser reads what it can and defaults the rest, so words would pass as dates;
// only digits and the separators of the accepted formats may appear.
void requireNumeric(const std::string& text) {
    const bool numeric = !text.empty() && text.find_first_not_of("0123456789-.: ") == std::string::npos &&
                         text.find_first_of("0123456789") != std::string::npos;
    if (!numeric) throw Poco::SyntaxException("Not a date or time", text);
}

}  // namespace

void ConvertIt::getBACnetDate(const Poco::LocalDateTime& in, BACnet_Date& out) {
    dateOf(in, out);
}
void ConvertIt::getBACnetDate(const Poco::DateTime& in, BACnet_Date& out) {
    dateOf(in, out);
}
void ConvertIt::getBACnetTime(const Poco::LocalDateTime& in, BACnet_Time& out) {
    timeOf(in, out);
}
void ConvertIt::getBACnetTime(const Poco::DateTime& in, BACnet_Time& out) {
    timeOf(in, out);
}

void ConvertIt::getBACnetDate(const std::string& text, BACnet_Date& out) {
    requireNumeric(text);
    Poco::DateTime parsed;
    int zone = 0;
    if (!Poco::DateTimeParser::tryParse(Poco::DateTimeFormat::SORTABLE_FORMAT, text, parsed, zone)) {
        Poco::DateTimeParser::parse("%e.%n.%Y", text, parsed, zone);
    }
    getBACnetDate(parsed, out);
}

void ConvertIt::getBACnetTime(const std::string& text, BACnet_Time& out) {
    requireNumeric(text);
    Poco::DateTime parsed;
    int zone = 0;
    Poco::DateTimeParser::parse("%H:%M:%S.%i", text, parsed, zone);
    getBACnetTime(parsed, out);
}

void ConvertIt::getBACnetDateTime(const std::string& text, BACnet_DateTime& out) {
    const auto blank = text.find(' ');
    getBACnetDate(text.substr(0, blank), out.date);
    if (blank == std::string::npos) return;
    const auto end = text.find(' ', blank + 1);
    getBACnetTime(text.substr(blank + 1, end == std::string::npos ? std::string::npos : end - blank - 1),
                  out.time);
}

void ConvertIt::setBACnetDateTime(const BACnet_DateTime& in, std::string& out) {
    std::string time;
    DataType::Date::getString(in.date, out);
    DataType::Time::getString(in.time, time);
    out += ' ';
    out += time;
}

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
