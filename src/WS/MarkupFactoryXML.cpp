#include "TQ_BACnet/WS/MarkupFactoryXML.h"

#include "MarkupText.h"

namespace TQ {
namespace BACnet {
namespace WS {

const std::string MarkupFactoryXML::_embeddedText = "http://bacnet.org/CSML/1.2";

namespace {

bool isVendorType(const std::string& text) {
    return text.compare(0, 4, "947.") == 0;
}

}  // namespace

void MarkupFactoryXML::append(const std::string& text) {
    write(text);
}

void MarkupFactoryXML::descHeader() {
    append("<?xml version=\"1.0\"?>");
}

int MarkupFactoryXML::descMarkup(BaseType baseType, const std::string& name, const std::string& value,
                                 unsigned int flags, const std::vector<MetadataValue>* metadata) {
    std::string& element = _line;
    element.clear();
    element += '<';
    element += getBaseTypeName(baseType);
    if (!name.empty()) {
        element += " name=\"";
        MarkupText::appendXml(element, name);
        element += '"';
    }
    if (metadata != nullptr && _metadata.getCategories() != 0) {
        for (const MetadataValue& item : *metadata) {
            if (!_metadata.isQueryOption(item.getMetadata())) continue;
            if (item.getMetadata() == Metadata::METADATA_TYPE && !isVendorType(item.getValue())) continue;
            const std::string attribute = item.getName(" ", "=\"");
            if (attribute.empty()) continue;
            element += attribute;
            MarkupText::appendXml(element, item.getValue());
            element += '"';
        }
    }
    if (shouldValueBeVisibleForBaseType(baseType) && !((flags & MF_OMIT_EMPTY) && value.empty())) {
        element += " value=\"";
        // Every value is escaped, not only strings: an escaped number or name reads the same, and
        // no other text can break the document.
        MarkupText::appendXml(element, value);
        element += '"';
    }
    if (flags & MF_ROOT) {
        element += " xmlns=\"";
        element += _embeddedText;
        element += '"';
    }
    element += (flags & MF_COMPLETE) ? "/>" : ">";
    append(element);
    return 0;
}

void MarkupFactoryXML::descCloseOpenMarkup(const std::string& baseTypeName, bool arrayMarker) {
    if (arrayMarker) return;
    std::string& tag = _line;
    tag.clear();
    tag += "</";
    tag += baseTypeName;
    tag += '>';
    append(tag);
}

void MarkupFactoryXML::descStringEncode(std::string& text) {
    std::string encoded;
    MarkupText::appendXml(encoded, text);
    text.swap(encoded);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
