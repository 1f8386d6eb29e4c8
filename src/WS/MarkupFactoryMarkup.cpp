#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

// Catalogue enumeration of the property identifiers.
constexpr unsigned int kPropertyNames = 51;

// Types of the gateway maker's own vendor are internal and not shown to web clients.
bool isVendorType(const std::string& type) {
    return type.compare(0, 4, "947.") == 0;
}

void addText(std::vector<MetadataValue>& list, Metadata::METADATA metadata, const std::string& text) {
    if (!text.empty()) list.emplace_back(metadata, text);
}

}  // namespace

void MarkupFactory::markup(BaseType baseType, const std::string& name, const std::string& value,
                           bool complete, bool arrayMarker, BACnetDataType /*dataType*/, bool root,
                           const std::string& comment, int error, const std::string& errorText,
                           const std::string& displayName, const std::string& type, bool truncated,
                           const std::string& target, const std::string& href, const std::string& contextTag,
                           const std::string& propertyIdentifier, const std::string& description,
                           const std::string& units, bool omitEmptyValue, int /*level*/) {
    unsigned int flags = 0;
    if (complete) flags |= MF_COMPLETE;
    if (arrayMarker) flags |= MF_ARRAY;
    if (root) flags |= MF_ROOT;
    if (omitEmptyValue) flags |= MF_OMIT_EMPTY;
    if (_quoteValues) flags |= MF_QUOTE;

    // The order of the items is the order writers print them in. The list is the factory's
    // own, reused from markup to markup.
    std::vector<MetadataValue>& metadata = _metadataScratch;
    metadata.clear();
    addText(metadata, Metadata::METADATA_DISPLAY_NAME, displayName);
    if (isCollection(baseType))
        addText(metadata, Metadata::METADATA_MEMBER_TYPE, type);
    else if (!isVendorType(type))
        addText(metadata, Metadata::METADATA_TYPE, type);
    addText(metadata, Metadata::METADATA_CONTEXT_TAG, contextTag);
    addText(metadata, Metadata::METADATA_PROPERTY_IDENTIFIER, propertyIdentifier);
    addText(metadata, Metadata::METADATA_TARGET, target);
    addText(metadata, Metadata::METADATA_HREF, href);
    addText(metadata, Metadata::METADATA_DESCRIPTION, description);
    addText(metadata, Metadata::METADATA_UNITS, units);
    if (truncated) metadata.emplace_back(Metadata::METADATA_TRUNCATED, std::string("true"));
    if (error > 0) metadata.emplace_back(Metadata::METADATA_ERROR, std::to_string(error));
    addText(metadata, Metadata::METADATA_ERROR_TEXT, errorText);
    addText(metadata, Metadata::METADATA_COMMENT, comment);

    markupNew(baseType, name, value, flags, metadata.empty() ? nullptr : &metadata);
}

void MarkupFactory::markupValue(BaseType baseType, const std::string& name, const std::string& value,
                                bool arrayMarker, bool root, const std::string& contextTag) {
    unsigned int flags = MF_COMPLETE;
    if (arrayMarker) flags |= MF_ARRAY;
    if (root) flags |= MF_ROOT;
    if (_quoteValues) flags |= MF_QUOTE;
    if (contextTag.empty()) {
        markupNew(baseType, name, value, flags, nullptr);
        return;
    }
    _metadataScratch.clear();
    _metadataScratch.emplace_back(Metadata::METADATA_CONTEXT_TAG, contextTag);
    markupNew(baseType, name, value, flags, &_metadataScratch);
}

void MarkupFactory::markupOpen(BaseType baseType, const std::string& name, bool arrayMarker, bool root) {
    static const std::string noValue;
    unsigned int flags = 0;
    if (arrayMarker) flags |= MF_ARRAY;
    if (root) flags |= MF_ROOT;
    if (_quoteValues) flags |= MF_QUOTE;
    markupNew(baseType, name, noValue, flags, nullptr);
}

void MarkupFactory::markup(BaseType baseType, BACNET_PROPERTY_ID propertyId, const std::string& value,
                           bool complete, bool arrayMarker, BACnetDataType dataType, bool root,
                           const std::string& comment, int error, const std::string& errorText,
                           const std::string& displayName, const std::string& type, bool truncated,
                           const std::string& target, const std::string& href, const std::string& contextTag,
                           const std::string& propertyIdentifier, const std::string& description,
                           const std::string& units, bool omitEmptyValue, int level) {
    const std::string name =
        Entity::BnDataTypeEnum::getEnumNameById(kPropertyNames, static_cast<unsigned int>(propertyId));
    markup(baseType, name, value, complete, arrayMarker, dataType, root, comment, error, errorText,
           displayName, type, truncated, target, href, contextTag, propertyIdentifier, description, units,
           omitEmptyValue, level);
}

void MarkupFactory::markup(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID propertyId,
                           const std::string& value, bool complete, bool arrayMarker, bool root,
                           const std::string& comment, int error, const std::string& errorText,
                           const std::string& displayName, const std::string& type, bool truncated,
                           const std::string& target, const std::string& href, const std::string& contextTag,
                           const std::string& propertyIdentifier, const std::string& description,
                           const std::string& units, bool omitEmptyValue, int level) {
    DataPropertyInObject0 descriptor;
    if (!DataPropertyInObject0::getValueTypeAndStructure(objectType, propertyId, descriptor, false)) return;
    // Only a single primitive has a base type of its own; a tag of 0 is Null only for data type 0.
    if (descriptor.structure != BACNET_DTS_SINGLE_VALUE) return;
    if (descriptor.tag == BACNET_APPLICATION_TAG_NULL && descriptor.datatype != BACNET_DT_NULL) return;
    markup(static_cast<BaseType>(descriptor.tag), propertyId, value, complete, arrayMarker,
           descriptor.datatype, root, comment, error, errorText, displayName, type, truncated, target, href,
           contextTag, propertyIdentifier, description, units, omitEmptyValue, level);
}

void MarkupFactory::markupNew(BaseType baseType, const std::string& name, const std::string& value,
                              unsigned int flags, const std::vector<MetadataValue>* metadata) {
    if (baseType >= BT_MAX) return;

    // An array marker ends when an element of another kind follows.
    if (!_openMarkups.empty()) {
        const OpenMarkup top = _openMarkups.back();
        if (top.arrayMarker && top.baseType != baseType) {
            closeOpenMarkup(top);
            popOpenMarkup();
        }
    }

    ++_markupCount;
    formatBefore(true);
    const int extra = descMarkup(baseType, name, value, flags, metadata);
    formatAfter();

    if ((flags & MF_ARRAY) && allowArrays()) {
        _openMarkups.emplace_back(baseType, true);
        ++_arrayMarkers;
    }
    if (flags & MF_COMPLETE) return;
    for (int i = 0; i <= extra; ++i) _openMarkups.emplace_back(baseType, false);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
