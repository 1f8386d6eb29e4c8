#pragma once

#include "tq_stack/enums.h"

#include <Poco/Nullable.h>

#include <string>

namespace TQ {
namespace BACnet {

/// Object-type and property names to numbers through the type catalogue, and the conversion of
/// identifier names between the codec's text tables ("Analog Input"), the standard's ASN.1 and
/// the web services ("analog-input") and the underscore form ("Analog_Input").
class ProtocolText {
public:
    /// Held in an int, so a number read from outside (1..3 valid) is a value the checks can refuse.
    enum IdentifierNameFormat : int {
        INF_DETECT = 0,
        INF_UNDERSCORE = 1,
        INF_SPACED = 2,
        INF_HYPHENATED = 3,
    };

    /// Catalogue enumerations naming object types and property identifiers.
    static constexpr unsigned OBJECT_TYPE_NAMES = 120;
    static constexpr unsigned PROPERTY_NAMES = 51;

    static bool objectTypeIndex(const std::string& name, BACNET_OBJECT_TYPE& out);
    static Poco::Nullable<BACNET_OBJECT_TYPE> objectTypeId(const std::string& name);
    static bool propertyIndex(const std::string& name, BACNET_PROPERTY_ID& out);
    static Poco::Nullable<BACNET_PROPERTY_ID> propertyId(const std::string& name);

    static IdentifierNameFormat detectIdentfierFormat(const std::string& name);
    /// Poco::NotFoundException "Unknown from-format" for a format outside 1..3.
    static std::string formatIdentifierName(const std::string& name, IdentifierNameFormat to,
                                            IdentifierNameFormat from);
    static void formatIdentifierNameInPlace(std::string& name, IdentifierNameFormat to,
                                            IdentifierNameFormat from);
    /// Rewrites the standard's ASN.1 type words into the web services' type names.
    static void convertAshreTypesInStringToBACnetWsInPlace(std::string& text);

private:
    ProtocolText() = delete;
};

}  // namespace BACnet
}  // namespace TQ
