#pragma once

#include "tq_stack/enums.h"
#include "tq_stack/values.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace WS {
class MarkupFactory;
}
namespace DataType {

/// A BACnet CharacterString as the codec holds it (character set, length, bytes).
/// Copies take only the used bytes, never the whole capacity.
class CharacterString : public BACnet_Character_String {
public:
    CharacterString();
    CharacterString(const BACnet_Character_String& other);
    CharacterString(const CharacterString& other);
    /// The bytes of `text` as they stand in character set `characterSet`; Poco::RangeException when
    /// they do not fit one string, Poco::InvalidArgumentException for an unknown character set.
    explicit CharacterString(const std::string& text, uint8_t characterSet = CHARACTER_UTF8);
    CharacterString& operator=(const BACnet_Character_String& other);
    CharacterString& operator=(const CharacterString& other);
    virtual ~CharacterString();

    /// The used bytes, in the string's own character set (no conversion).
    std::string getString() const { return std::string(value, length); }
    uint8_t getEncoding() const { return encoding; }
    /// One complete String markup, escaped for the output format.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const;

    /// Same character set and same bytes.
    bool operator==(const BACnet_Character_String& other) const;
    bool operator!=(const BACnet_Character_String& other) const { return !(*this == other); }
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
