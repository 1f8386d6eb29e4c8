#include "TQ_BACnet/ProtocolText.h"

#include "TQ_BACnet/Entity/BnDataTypeEnum.h"

#include <Poco/Exception.h>
#include <Poco/String.h>

#include <cctype>

namespace TQ {
namespace BACnet {

namespace {

constexpr unsigned NOT_FOUND = 0xFFFFFFFFu;

const char* separatorOf(ProtocolText::IdentifierNameFormat format) {
    switch (format) {
        case ProtocolText::INF_UNDERSCORE:
            return "_";
        case ProtocolText::INF_SPACED:
            return " ";
        case ProtocolText::INF_HYPHENATED:
            return "-";
        default:
            throw Poco::NotFoundException("Unknown from-format");
    }
}

// ASN.1 type words and their web-service names. Longer words come before the words they start
// with, so "INTEGER16" is not read as "INTEGER" followed by "16".
const std::pair<const char*, const char*> ASN1_TO_WS[] = {
    {"NULL", " Null"},
    {"BOOLEAN", "Boolean"},
    {"INTEGER16", "Integer16"},
    {"INTEGER", "Integer"},
    {"REAL", "Real"},
    {"OCTET STRING", "OctetString"},
    {"BIT STRING", "BitString"},
    {"ENUMERATED", "Enumerated"},
    {"BACnetObjectIdentifier", "ObjectIdentifier"},
    {"SEQUENCE OF", "SequenceOf"},
    {"SEQUENCE", "Sequence"},
    {" ARRAY", " Array"},
    {" LIST", " List"},
    {"CHOICE", "Choice"},
    {"ABSTRACT-SYNTAX.&Type", "Any"},
};

template <class T>
bool lookUp(unsigned construct, const std::string& name, T& out) {
    const unsigned value = Entity::BnDataTypeEnum::getEnumValueById(construct, name);
    if (value == NOT_FOUND) return false;
    out = static_cast<T>(value);
    return true;
}

}  // namespace

bool ProtocolText::objectTypeIndex(const std::string& name, BACNET_OBJECT_TYPE& out) {
    return lookUp(OBJECT_TYPE_NAMES, name, out);
}

Poco::Nullable<BACNET_OBJECT_TYPE> ProtocolText::objectTypeId(const std::string& name) {
    BACNET_OBJECT_TYPE type;
    if (!objectTypeIndex(name, type)) return {};
    return type;
}

bool ProtocolText::propertyIndex(const std::string& name, BACNET_PROPERTY_ID& out) {
    return lookUp(PROPERTY_NAMES, name, out);
}

Poco::Nullable<BACNET_PROPERTY_ID> ProtocolText::propertyId(const std::string& name) {
    BACNET_PROPERTY_ID property;
    if (!propertyIndex(name, property)) return {};
    return property;
}

ProtocolText::IdentifierNameFormat ProtocolText::detectIdentfierFormat(const std::string& name) {
    if (name.empty()) return INF_UNDERSCORE;
    if (!std::isupper(static_cast<unsigned char>(name[0]))) return INF_HYPHENATED;
    // Starts upper case, so there is at least one non-blank piece: the spaced form.
    return INF_SPACED;
}

std::string ProtocolText::formatIdentifierName(const std::string& name, IdentifierNameFormat to,
                                               IdentifierNameFormat from) {
    if (from == INF_DETECT) from = detectIdentfierFormat(name);
    if (from == to) return name;
    const char fromSeparator = *separatorOf(from);
    const char toSeparator = *separatorOf(to);
    std::string out = name;
    for (char& c : out) {
        if (c == fromSeparator) c = toSeparator;
    }
    if (to == INF_HYPHENATED) return Poco::toLowerInPlace(out);
    bool startOfWord = true;
    for (char& c : out) {
        if (startOfWord) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        startOfWord = c == toSeparator;
    }
    const auto cov = out.find("Cov");
    if (cov != std::string::npos) {
        out[cov + 1] = 'O';
        out[cov + 2] = 'V';
    }
    return out;
}

void ProtocolText::formatIdentifierNameInPlace(std::string& name, IdentifierNameFormat to,
                                               IdentifierNameFormat from) {
    name = formatIdentifierName(name, to, from);
}

void ProtocolText::convertAshreTypesInStringToBACnetWsInPlace(std::string& text) {
    for (const auto& [asn1, ws] : ASN1_TO_WS) Poco::replaceInPlace(text, std::string(asn1), std::string(ws));
}

}  // namespace BACnet
}  // namespace TQ
