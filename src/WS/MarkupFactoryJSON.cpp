#include "TQ_BACnet/WS/MarkupFactoryJSON.h"

#include "MarkupText.h"

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

bool isVendorType(const std::string& text) {
    return text.compare(0, 4, "947.") == 0;
}

}  // namespace

void MarkupFactoryJSON::reset() {
    MarkupFactory::reset();
    _first = true;
}

void MarkupFactoryJSON::embeddStart() {
    write('{');
}

void MarkupFactoryJSON::embeddEnd() {
    write('}');
}

void MarkupFactoryJSON::append(const std::string& text) {
    if (!_first) write(',');
    _first = false;
    write(text);
}

void MarkupFactoryJSON::writeString(const std::string& text) {
    _line += '"';
    MarkupText::appendJson(_line, text);
    _line += '"';
}

// Boolean to Double are bare numbers; everything else, and a number whose text is no JSON
// number (NaN, an empty null), is a string.
void MarkupFactoryJSON::writeValue(BaseType baseType, const std::string& value, unsigned int flags) {
    const bool bare = baseType >= BT_BOOLEAN && baseType <= BT_DOUBLE && !(flags & MF_QUOTE) &&
                      MarkupText::isJsonScalar(value);
    if (bare)
        _line += value;
    else
        writeString(value);
}

void MarkupFactoryJSON::writeMetadata(const std::vector<MetadataValue>& metadata, unsigned int flags) {
    for (const MetadataValue& item : metadata) {
        if (!_metadata.isQueryOption(item.getMetadata())) continue;
        if (item.getMetadata() == Metadata::METADATA_TYPE && !isVendorType(item.getValue())) continue;
        const std::string member = item.getName(",\"$", "\":");
        if (member.empty()) continue;
        _line += member;
        if (!(flags & MF_QUOTE) && MarkupText::isJsonScalar(item.getValue()))
            _line += item.getValue();
        else
            writeString(item.getValue());
    }
}

int MarkupFactoryJSON::descMarkup(BaseType baseType, const std::string& name, const std::string& value,
                                  unsigned int flags, const std::vector<MetadataValue>* metadata) {
    const bool root = (flags & MF_ROOT) != 0;
    const bool complete = (flags & MF_COMPLETE) != 0;
    const bool visible = shouldValueBeVisibleForBaseType(baseType);
    const bool showValue = visible && !((flags & MF_OMIT_EMPTY) && value.empty());

    _line.clear();
    if (!_first) _line += ',';
    _first = false;

    if (_metadata.getCategories() == 0) {
        if (root) {
            _line += '{';
            _first = true;
            if (showValue) {
                _line += "\"$value\":";
                writeValue(baseType, value, flags);
                _first = false;
            }
        } else {
            // Inside an object every member needs a key: an unnamed one is keyed by its base type,
            // as in the expanded form.
            writeString(name.empty() ? "$" + getBaseTypeName(baseType) : name);
            _line += ':';
            if (!visible || !complete) {
                // Children follow: a value of its own goes first, as in a root.
                _line += '{';
                _first = true;
                if (visible && showValue) {
                    _line += "\"$value\":";
                    writeValue(baseType, value, flags);
                    _first = false;
                }
            } else if (showValue) {
                writeValue(baseType, value, flags);
            } else {
                _line += "null";  // the value left out; the member stays valid JSON
            }
        }
        // A complete root or constructed markup closes the object it opened.
        if (complete && (root || !visible)) {
            _line += '}';
            _first = false;
        }
        flushLine();
        return 0;
    }

    if (root) {
        _line += '{';
    } else if (!name.empty()) {
        writeString(name);
        _line += ":{";
    } else {
        _line += "\"$";
        _line += getBaseTypeName(baseType);
        _line += "\":{";
    }
    _line += "\"$base\":\"";
    _line += getBaseTypeName(baseType);
    _line += '"';
    if (!name.empty()) {
        if (showValue) {
            _line += ",\"$value\":";
            writeValue(baseType, value, flags);
        }
        if (metadata != nullptr) writeMetadata(*metadata, flags);
    }
    if (complete) _line += '}';
    flushLine();
    return 0;
}

void MarkupFactoryJSON::flushLine() {
    write(_line);
}

void MarkupFactoryJSON::descCloseOpenMarkup(const std::string&, bool arrayMarker) {
    if (arrayMarker) return;
    write('}');
    _first = false;
}

void MarkupFactoryJSON::descStringEncode(std::string& text) {
    std::string encoded;
    MarkupText::appendJson(encoded, text);
    text.swap(encoded);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
