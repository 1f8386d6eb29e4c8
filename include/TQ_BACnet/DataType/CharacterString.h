#pragma once

#include "tq_stack/values.h"

namespace TQ {
namespace BACnet {
namespace DataType {

/// A BACnet CharacterString as the codec holds it (character set, length, bytes).
/// Copies take only the used bytes, never the whole capacity.
class CharacterString : public BACnet_Character_String {
public:
    CharacterString();
    CharacterString(const BACnet_Character_String& other);
    CharacterString(const CharacterString& other);
    CharacterString& operator=(const BACnet_Character_String& other);
    CharacterString& operator=(const CharacterString& other);
    virtual ~CharacterString();
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
