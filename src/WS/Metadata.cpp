#include "TQ_BACnet/WS/Metadata.h"

#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Entity/BnWsMetadataQueryOptions.h"

#include <Poco/Exception.h>
#include <Poco/StringTokenizer.h>

#include <array>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

// Catalogue enumerations naming the categories and the items.
constexpr BACnetDataType kCategoryNames = static_cast<BACnetDataType>(3542);
constexpr BACnetDataType kMetadataNames = static_cast<BACnetDataType>(3543);

// An unnamed entry is reported empty rather than as its number: a number is no valid attribute
// or member name for the writers, and no category name a client could type.
std::string catalogueName(BACnetDataType enumeration, unsigned int value) {
    bool found = false;
    std::string name = Entity::BnDataTypeEnum::getEnumNameByType(enumeration, value, nullptr, &found);
    return found ? name : std::string();
}

}  // namespace

bool Metadata::isCategory(METADATA_CATEGORY category) const {
    return category < kBits && (_categories & (1u << category)) != 0;
}

void Metadata::setCategory(METADATA_CATEGORY category, bool on) {
    if (category >= kBits) return;
    if (on)
        _categories |= 1u << category;
    else
        _categories &= ~(1u << category);
}

unsigned int Metadata::setCategories(const std::string& names) {
    const Poco::StringTokenizer tokens(
        names, ",", Poco::StringTokenizer::TOK_IGNORE_EMPTY | Poco::StringTokenizer::TOK_TRIM);
    if (tokens.count() == 0) return _categories;

    std::array<std::string, METADATA_CAT_MAX> known;
    for (unsigned int i = 0; i < METADATA_CAT_MAX; ++i)
        known[i] = getCategoryName(static_cast<METADATA_CATEGORY>(i));
    for (const std::string& token : tokens) {
        for (unsigned int i = 0; i < METADATA_CAT_MAX; ++i) {
            if (!known[i].empty() && known[i] == token) {
                setCategory(static_cast<METADATA_CATEGORY>(i), true);
                break;
            }
        }
    }
    return _categories;
}

std::string Metadata::getCategoryName(METADATA_CATEGORY category) {
    return catalogueName(kCategoryNames, category);
}

std::string Metadata::getMetadataName(METADATA metadata) {
    return catalogueName(kMetadataNames, metadata);
}

bool Metadata::isQueryOption(METADATA_CATEGORY category, METADATA metadata) {
    return Entity::BnWsMetadataQueryOptions::isMetadata(category, metadata);
}

bool Metadata::isQueryOption(METADATA metadata) const {
    for (unsigned int i = 0; i < METADATA_CAT_MAX; ++i) {
        const auto category = static_cast<METADATA_CATEGORY>(i);
        if (!isCategory(category)) continue;
        try {
            if (isQueryOption(category, metadata)) return true;
        } catch (const Poco::NotFoundException&) {
            // A category the catalogue lists no items for offers none; rendering goes on.
        }
    }
    return false;
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
