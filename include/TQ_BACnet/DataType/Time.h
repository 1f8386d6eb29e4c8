#pragma once

#include "tq_stack/values.h"

#include <string>

namespace TQ {
namespace BACnet {
namespace WS {
class MarkupFactory;
}
namespace DataType {

/// A BACnet Time with its text form "hh.mm.ss.hh", "*" standing for an unspecified field.
/// Same layout as the codec's time.
class Time : public BACnet_Time {
public:
    /// Every field unspecified.
    Time();
    Time(const BACnet_Time& other) : BACnet_Time(other) {}

    Time& operator=(const BACnet_Time& other);
    /// Parses the text form; Poco::BadCastException for fewer than four fields,
    /// Poco::RangeException for a field out of range, Poco::SyntaxException for a non-number.
    Time& operator=(const std::string& text);

    /// Replaces `out` by the text form; Poco::RangeException for a field out of range.
    static std::string& getString(const BACnet_Time& time, std::string& out);
    std::string getString() const;
    /// One complete Time markup of the text form.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const;

    /// Either side may be a plain codec time.
    friend bool operator==(const Time& a, const Time& b) {
        return a.hour == b.hour && a.min == b.min && a.sec == b.sec && a.hundredths == b.hundredths;
    }
    friend bool operator!=(const Time& a, const Time& b) { return !(a == b); }
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
