#include "TQ_BACnet/DataType/CharacterString.h"

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

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
