#include "TQ_BACnet/WS/MarkupFactoryXML.h"

#include "MarkupText.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/Utility/FloatText.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace WS {

const std::string MarkupFactoryXML::_embeddedText = "http://bacnet.org/CSML/1.2";

namespace {

bool isVendorType(const std::string& text) {
    return text.compare(0, 4, "947.") == 0;
}

constexpr std::size_t kPlainNameMax = 64;
constexpr std::size_t kElementMax = 48 + kPlainNameMax + MarkupText::kNumberTextMax;

// A name with nothing to escape in an attribute, short enough for the short form's buffer.
bool plainName(const std::string& name) {
    if (name.empty() || name.size() > kPlainNameMax) return false;
    for (const char c : name) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u >= 0x80 || c == '"' || c == '&' || c == '<' || c == '>' || c == '\'') return false;
    }
    return true;
}

char* copy(char* p, const char* text, std::size_t length) {
    std::memcpy(p, text, length);
    return p + length;
}

// `<Real name="..." value="21.5"/>` for a number named by plain text (nothing to escape in
// either attribute); nullptr for a value that is no number.
char* numberElement(char* p, const DataApplicationValue& value, const char* name, std::size_t nameLength) {
    if (value.isNull()) return nullptr;
    const std::string& kind = MarkupFactory::getBaseTypeName(static_cast<MarkupFactory::BaseType>(value.tag));
    *p++ = '<';
    p = copy(p, kind.data(), kind.size());
    p = copy(p, " name=\"", 7);
    p = copy(p, name, nameLength);
    p = copy(p, "\" value=\"", 9);
    p = value.tag == BACNET_APPLICATION_TAG_REAL && std::isfinite(value.type.Real)
            ? Utility::floatText(value.type.Real, p)
            : MarkupText::numberText(value, p);
    if (p == nullptr) return nullptr;
    return copy(p, "\"/>", 3);
}

}  // namespace

bool MarkupFactoryXML::descPrimitive(const DataApplicationValue& value, const std::string& name) {
    if (!shortForm() || !plainName(name)) return false;
    char buffer[kElementMax];
    char* const end = numberElement(buffer, value, name.data(), name.size());
    if (end == nullptr) return false;
    write(buffer, static_cast<std::size_t>(end - buffer));
    return true;
}

std::size_t MarkupFactoryXML::descElements(const DataApplicationValue* values, std::size_t count,
                                          std::size_t firstNumber) {
    if (!shortForm()) return 0;
    char buffer[1024];
    char* p = buffer;
    char* const full = buffer + sizeof buffer - kElementMax;
    std::size_t done = 0;
    for (; done < count; ++done) {
        if (p > full) {
            write(buffer, static_cast<std::size_t>(p - buffer));
            p = buffer;
        }
        char number[24];
        const char* const numberEnd = std::to_chars(number, number + sizeof number, firstNumber + done).ptr;
        char* const end = numberElement(p, values[done], number, static_cast<std::size_t>(numberEnd - number));
        if (end == nullptr) break;
        p = end;
    }
    if (p != buffer) write(buffer, static_cast<std::size_t>(p - buffer));
    return done;
}

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
