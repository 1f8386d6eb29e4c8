#include "TQ_BACnet/DataType/CharacterString.h"

#include "tq_stack/strings.h"

#include <Poco/Exception.h>

#include <cstring>

namespace TQ {
namespace BACnet {
namespace DataType {

CharacterString::CharacterString() {
    encoding = 0;
    length = 0;
    value[0] = '\0';
}

CharacterString::CharacterString(const BACnet_Character_String& other) {
    *this = other;
}

CharacterString::CharacterString(const CharacterString& other) : CharacterString() {
    *this = static_cast<const BACnet_Character_String&>(other);
}

CharacterString::CharacterString(const std::string& text, uint8_t characterSet) : CharacterString() {
    if (characterSet >= MAX_CHARACTER_STRING_ENCODING)
        throw Poco::InvalidArgumentException("unknown character set", std::to_string(characterSet));
    // Refused rather than cut: a shortened name or description would be stored without notice.
    if (!characterstring_init(this, characterSet, text.data(), text.size()))
        throw Poco::RangeException("character string too long", std::to_string(text.size()));
}

CharacterString& CharacterString::operator=(const BACnet_Character_String& other) {
    encoding = other.encoding;
    length = other.length <= MAX_CHARACTER_STRING_BYTES ? other.length : MAX_CHARACTER_STRING_BYTES;
    std::memmove(value, other.value, length);
    value[length] = '\0';
    return *this;
}

CharacterString& CharacterString::operator=(const CharacterString& other) {
    return *this = static_cast<const BACnet_Character_String&>(other);
}

CharacterString::~CharacterString() = default;

bool CharacterString::operator==(const BACnet_Character_String& other) const {
    return characterstring_same(this, &other);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
