#pragma once

#include "tq_stack/values.h"

#include <string>

namespace Poco {
class LocalDateTime;
}

namespace TQ {
namespace BACnet {
namespace WS {
class MarkupFactory;
}
namespace DataType {

/// A BACnet Date with its text form "yyyy-mm-dd[ w]", "*" standing for an unspecified field.
/// Same layout as the codec's date, so it can be handed to the codec as one.
class Date : public BACnet_Date {
public:
    /// Every field unspecified.
    Date();
    Date(const BACnet_Date& other) : BACnet_Date(other) {}

    Date& operator=(const BACnet_Date& other);
    /// Parses the text form; Poco::BadCastException for fewer than three fields,
    /// Poco::RangeException for a field out of range, Poco::SyntaxException for a non-number.
    Date& operator=(const std::string& text);

    /// Replaces `out` by the text form; Poco::RangeException for a field out of range.
    static std::string& getString(const BACnet_Date& date, std::string& out);
    std::string getString() const;

    /// Midnight of this date. Fields are not checked here: an unspecified or special field
    /// (year 2155, month 13, day 32, ...) fails Poco's own range assertion.
    void getLocalDateTime(Poco::LocalDateTime& local) const;
    /// One complete Date markup of the text form.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const;

    /// All four fields, the weekday included: dates that encode differently are different. Either
    /// side may be a plain codec date.
    friend bool operator==(const Date& a, const Date& b) {
        return a.year == b.year && a.month == b.month && a.day == b.day && a.wday == b.wday;
    }
    friend bool operator!=(const Date& a, const Date& b) { return !(a == b); }
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
