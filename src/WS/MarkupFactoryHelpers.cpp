#include "TQ_BACnet/WS/MarkupFactory.h"

#include <Poco/NumberParser.h>

#include <array>

namespace TQ {
namespace BACnet {
namespace WS {

static_assert(TQ::Catalogue::Markup::Count == MarkupFactory::BT_MAX, "one name per markup kind");

// The names the catalogue gives the markup kinds, made once.
const std::array<std::string, MarkupFactory::BT_MAX> MarkupFactory::_bts = [] {
    std::array<std::string, BT_MAX> names;
    for (unsigned int i = 0; i < BT_MAX; ++i) names[i] = TQ::Catalogue::Markup::Names[i];
    return names;
}();

const std::string MarkupFactory::_noBaseTypeName;

namespace {

// Categories shown by default: value, extensions, change, mutability, doc and types for
// collections; value, extensions, encoding, ui and links for everything else.
constexpr unsigned int kCollectionCategories = 0x44F;
constexpr unsigned int kValueCategories = 0x193;

}  // namespace

bool MarkupFactory::isNumeric(BaseType baseType, const std::string& value) {
    if (baseType >= BT_BOOLEAN && baseType <= BT_DOUBLE) return true;
    if (baseType != BT_ENUMERATED) return false;
    unsigned int number = 0;
    return Poco::NumberParser::tryParseUnsigned(value, number, ',');
}

bool MarkupFactory::isCollection(BaseType baseType) {
    return baseType == BT_LIST || baseType == BT_ARRAY || baseType == BT_SEQUENCE_OF;
}

unsigned int MarkupFactory::initArrayIdx(unsigned int arrayIndex) {
    return (arrayIndex == 0 || arrayIndex == 0xFFFFFFFFu) ? 1 : arrayIndex;
}

std::string MarkupFactory::arrayIndexAsString(unsigned int arrayIndex) {
    return arrayIndex == 0 ? std::string() : std::to_string(arrayIndex);
}

Metadata MarkupFactory::getMetadataFromBaseType(BaseType baseType) {
    return Metadata(isCollection(baseType) ? kCollectionCategories : kValueCategories);
}

bool MarkupFactory::shouldValueBeVisibleForBaseType(BaseType baseType) const {
    switch (baseType) {
        case BT_OBJECT:
        case BT_COMPOSITION:
        case BT_LIST:
        case BT_SEQUENCE:
        case BT_ARRAY:
        case BT_SEQUENCE_OF:
        case BT_CHOICE:
        case BT_COLLECTION:
        case BT_NAMED_VALUES:
        case BT_MEMBER_TYPE_DEFINITION:
        case BT_CHOICES:
        case BT_NAMED_BITS:
        case BT_COMPOSITION_2:
            return false;
        default:
            return true;
    }
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
