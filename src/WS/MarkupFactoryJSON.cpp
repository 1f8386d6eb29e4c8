#include "TQ_BACnet/WS/MarkupFactoryJSON.h"

#include "MarkupText.h"
#include "TQ_BACnet/DataApplicationValue.h"

#include "TQ_BACnet/Utility/FloatText.h"

#include <charconv>
#include <cmath>
#include <cstring>

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

namespace {

// An element's number: most arrays are short.
char* elementNumber(char* p, std::size_t number) {
    if (number < 10) {
        *p = static_cast<char>('0' + number);
        return p + 1;
    }
    if (number < 100) {
        p[0] = static_cast<char>('0' + number / 10);
        p[1] = static_cast<char>('0' + number % 10);
        return p + 2;
    }
    return std::to_chars(p, p + 20, number).ptr;
}

// The value of a number member; nullptr for a value that is not a JSON number or literal.
char* numberValue(const DataApplicationValue& value, char* p) {
    // REALs, the commonest, without the dispatch on the tag.
    if (value.tag == BACNET_APPLICATION_TAG_REAL && !value.isNull() && std::isfinite(value.type.Real))
        return Utility::floatText(value.type.Real, p);
    return MarkupText::numberText(value, p);
}

// Names up to this length that need no escaping are copied as they are.
constexpr std::size_t kPlainNameMax = 64;

bool plainName(const std::string& name) {
    if (name.empty() || name.size() > kPlainNameMax) return false;
    for (const char c : name) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u >= 0x80 || c == '"' || c == '\\') return false;
    }
    return true;
}

}  // namespace

bool MarkupFactoryJSON::shortForm() const {
    return !_pretty && !_quoteValues && _metadata.getCategories() == 0 &&
           (_openMarkups.empty() || !_openMarkups.back().arrayMarker);
}

bool MarkupFactoryJSON::descPrimitive(const DataApplicationValue& value, const std::string& name) {
    if (!shortForm() || !plainName(name)) return false;
    char buffer[kPlainNameMax + 8 + MarkupText::kNumberTextMax];
    char* const from = _first ? buffer + 1 : buffer;
    char* p = buffer;
    *p++ = ',';
    *p++ = '"';
    std::memcpy(p, name.data(), name.size());
    p += name.size();
    *p++ = '"';
    *p++ = ':';
    p = numberValue(value, p);
    if (p == nullptr) return false;
    write(from, static_cast<std::size_t>(p - from));
    _first = false;
    return true;
}

// Compact and without metadata an element is `,"<number>":<value>` (no comma for the first
// member): numbers are written straight from the values into a local buffer, which goes to the
// stream in few pieces.
std::size_t MarkupFactoryJSON::descElements(const DataApplicationValue* values, std::size_t count,
                                           std::size_t firstNumber) {
    if (!shortForm()) return 0;
    constexpr std::size_t kElementMax = 24 + MarkupText::kNumberTextMax;  // comma, number, quotes, value
    char buffer[1024];
    char* from = _first ? buffer + 1 : buffer;
    char* p = buffer;
    char* const full = buffer + sizeof buffer - kElementMax;
    std::size_t done = 0;
    std::size_t room = 0;  // elements that still fit for certain
    for (; done < count; ++done, --room) {
        if (room == 0) {
            if (p > full) {
                write(from, static_cast<std::size_t>(p - from));
                from = p = buffer;
            }
            room = static_cast<std::size_t>(full - p) / kElementMax + 1;
        }
        char* const start = p;
        p[0] = ',';
        p[1] = '"';
        p = elementNumber(p + 2, firstNumber + done);
        p[0] = '"';
        p[1] = ':';
        p += 2;
        char* const end = numberValue(values[done], p);
        if (end == nullptr) {
            p = start;
            break;
        }
        p = end;
    }
    if (p > from) write(from, static_cast<std::size_t>(p - from));
    if (done > 0) _first = false;
    return done;
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
