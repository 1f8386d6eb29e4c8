#pragma once

#include "tq_stack/values.h"

#include <string>

namespace TQ {
namespace BACnet {
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
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
