#pragma once

#include "tq_stack/enums.h"
#include "tq_stack/values.h"

#include <Poco/DateTime.h>
#include <Poco/LocalDateTime.h>
#include <Poco/SharedPtr.h>
#include <Poco/TextEncoding.h>

#include <string>

namespace TQ {
namespace Utility {
class OctetBuffer;
class BitBuffer;
}  // namespace Utility
namespace BACnet {
namespace Utility {

/// Conversions between the codec's primitive structures and host buffers, text and Poco dates.
/// Every text form of octet strings, bit strings, dates and character strings comes from here.
class ConvertIt {
public:
    static bool getBACnetOctetBuffer(const TQ::Utility::OctetBuffer& in, BACnet_Octet_String& out);
    /// False above 15 bytes; the buffer must hold at least one byte.
    static bool getBACnetBitBuffer(const TQ::Utility::BitBuffer& in, BACnet_Bit_String& out);
    /// Hexadecimal digits, two per byte.
    static bool getBACnetOctetString(const std::string& hex, BACnet_Octet_String& out);
    static bool getBACnetCharacterString(const std::string& text, BACnet_Character_String& out);
    /// "true,false,true" (at most 15 values) or hexadecimal bytes (at most 15).
    static bool getBACnetBitString(const std::string& text, BACnet_Bit_String& out);

    static void getBACnetDate(const Poco::LocalDateTime& in, BACnet_Date& out);
    static void getBACnetDate(const Poco::DateTime& in, BACnet_Date& out);
    /// "2024-01-05" or "5.1.2024"; Poco::SyntaxException otherwise.
    static void getBACnetDate(const std::string& text, BACnet_Date& out);
    static void getBACnetTime(const Poco::LocalDateTime& in, BACnet_Time& out);
    static void getBACnetTime(const Poco::DateTime& in, BACnet_Time& out);
    /// "13:05:09.250"; Poco::SyntaxException otherwise.
    static void getBACnetTime(const std::string& text, BACnet_Time& out);
    /// "date time" in the two forms above; a missing part leaves `out`'s part unchanged.
    static void getBACnetDateTime(const std::string& text, BACnet_DateTime& out);

    static void setOctetBuffer(const BACnet_Octet_String& in, TQ::Utility::OctetBuffer& out);
    static void setBitBuffer(const BACnet_Bit_String& in, TQ::Utility::BitBuffer& out);

    /// The text encoding of a BACnet character set, or null for UTF-8 (and unknown sets).
    static Poco::SharedPtr<Poco::TextEncoding> getEncoding(BACNET_CHARACTER_STRING_ENCODING encoding);

    /// Upper-case hexadecimal pairs, no separators.
    static void setStdString(const BACnet_Octet_String& in, std::string& out);
    /// The bytes in use as hexadecimal pairs; the bit count is not written.
    static void setStdString(const BACnet_Bit_String& in, std::string& out);
    /// The characters as UTF-8.
    static void setStdString(const BACnet_Character_String& in, std::string& out);
    /// Date text, one blank, time text.
    static void setBACnetDateTime(const BACnet_DateTime& in, std::string& out);

private:
    ConvertIt() = delete;
};

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
