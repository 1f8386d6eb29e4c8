#pragma once

#include <cstddef>
#include <string>

namespace TQ {
namespace BACnet {

class DataApplicationValue;

namespace WS {
namespace MarkupText {

/// Room `numberText` needs.
constexpr std::size_t kNumberTextMax = 32;
/// The text of a Boolean, Unsigned, Signed, Real or Double value as `DataApplicationValue::getText`
/// gives it, written at `out`, when it is a JSON number or literal; nullptr for every other value
/// (null, another tag, NaN, an infinity), whose text takes the general way.
char* numberText(const DataApplicationValue& value, char* out);

/// XML attribute text: the five entities, and anything an XML 1.0 parser refuses (control
/// characters, malformed UTF-8, U+FFFE/U+FFFF) as U+FFFD.
void appendXml(std::string& out, const std::string& text);
/// JSON string content: backslash escapes, other control characters as \u00XX, malformed UTF-8
/// as U+FFFD.
void appendJson(std::string& out, const std::string& text);
/// Whether `text` is a JSON number or true/false (any letter case for the literals is not JSON:
/// only the lower-case ones count).
bool isJsonScalar(const std::string& text);
/// A decimal number (point as separator) or "true"/"false" in any letter case.
bool isNumberOrBoolean(const std::string& text);

}  // namespace MarkupText
}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
