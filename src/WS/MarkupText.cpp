#include "MarkupText.h"

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/Utility/FloatText.h"

#include <Poco/String.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace WS {
namespace MarkupText {

namespace {

const char kReplacement[] = "\xEF\xBF\xBD";

// Length of the well-formed UTF-8 sequence at text[i] and its code point; 0 when malformed.
std::size_t utf8Sequence(const std::string& text, std::size_t i, uint32_t& codePoint) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(i);
    std::size_t length;
    uint32_t minimum;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2, minimum = 0x80, codePoint = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3, minimum = 0x800, codePoint = lead & 0x0Fu;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4, minimum = 0x10000, codePoint = lead & 0x07u;
    } else {
        return 0;
    }
    if (i + length > text.size()) return 0;
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) return 0;
        codePoint = (codePoint << 6) | (byte(i + k) & 0x3Fu);
    }
    if (codePoint < minimum || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) return 0;
    return length;
}

// Copies a non-ASCII sequence (or its replacement) and returns the bytes consumed.
std::size_t appendNonAscii(std::string& out, const std::string& text, std::size_t i, bool xml) {
    uint32_t codePoint = 0;
    const std::size_t length = utf8Sequence(text, i, codePoint);
    if (length == 0) {
        out += kReplacement;
        return 1;
    }
    if (xml && (codePoint == 0xFFFE || codePoint == 0xFFFF))
        out += kReplacement;
    else
        out.append(text, i, length);
    return length;
}

bool isPlain(const std::string& text, bool xml) {
    for (const char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u >= 0x80 || c == '"') return false;
        if (xml ? (c == '&' || c == '<' || c == '>' || c == '\'') : c == '\\') return false;
    }
    return true;
}

}  // namespace

void appendXml(std::string& out, const std::string& text) {
    if (isPlain(text, true)) {
        out += text;
        return;
    }
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const auto u = static_cast<unsigned char>(c);
        if (u >= 0x80) {
            i += appendNonAscii(out, text, i, true);
            continue;
        }
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&apos;";
                break;
            case '\t':
            case '\n':
            case '\r':
                out += c;
                break;
            default:
                if (u < 0x20)
                    out += kReplacement;
                else
                    out += c;
        }
        ++i;
    }
}

void appendJson(std::string& out, const std::string& text) {
    if (isPlain(text, false)) {
        out += text;
        return;
    }
    static const char hex[] = "0123456789abcdef";
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const auto u = static_cast<unsigned char>(c);
        if (u >= 0x80) {
            i += appendNonAscii(out, text, i, false);
            continue;
        }
        switch (c) {
            case '\\':
                out += "\\\\";
                break;
            case '"':
                out += "\\\"";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\f':
                out += "\\f";
                break;
            case '\b':
                out += "\\b";
                break;
            default:
                if (u < 0x20) {
                    out += "\\u00";
                    out += hex[u >> 4];
                    out += hex[u & 0xF];
                } else {
                    out += c;
                }
        }
        ++i;
    }
}

bool isJsonScalar(const std::string& text) {
    const std::size_t n = text.size();
    const char* const s = text.data();
    // Character by character: every primitive markup asks, and a library compare costs more.
    if (n == 4 && s[0] == 't') return s[1] == 'r' && s[2] == 'u' && s[3] == 'e';
    if (n == 5 && s[0] == 'f') return s[1] == 'a' && s[2] == 'l' && s[3] == 's' && s[4] == 'e';
    const auto digit = [&](std::size_t k) { return k < n && s[k] >= '0' && s[k] <= '9'; };
    std::size_t i = 0;
    if (i < n && s[i] == '-') ++i;
    if (!digit(i)) return false;
    if (s[i] == '0')
        ++i;
    else
        while (digit(i)) ++i;
    if (i < n && s[i] == '.') {
        if (!digit(++i)) return false;
        while (digit(i)) ++i;
    }
    if (i < n && (s[i] == 'e' || s[i] == 'E')) {
        ++i;
        if (i < n && (s[i] == '+' || s[i] == '-')) ++i;
        if (!digit(i)) return false;
        while (digit(i)) ++i;
    }
    return i == n;
}

char* numberText(const DataApplicationValue& value, char* out) {
    if (value.isNull()) return nullptr;
    switch (value.getTag()) {
        case BACNET_APPLICATION_TAG_BOOLEAN:
            if (value.type.Boolean) {
                std::memcpy(out, "true", 4);
                return out + 4;
            }
            std::memcpy(out, "false", 5);
            return out + 5;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            return std::to_chars(out, out + kNumberTextMax, value.type.Unsigned_Int).ptr;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            return std::to_chars(out, out + kNumberTextMax, value.type.Signed_Int).ptr;
        case BACNET_APPLICATION_TAG_REAL:
            return std::isfinite(value.type.Real) ? Utility::floatText(value.type.Real, out) : nullptr;
        case BACNET_APPLICATION_TAG_DOUBLE:
            return std::isfinite(value.type.Double)
                       ? std::to_chars(out, out + kNumberTextMax, value.type.Double).ptr
                       : nullptr;
        default:
            return nullptr;
    }
}

bool isNumberOrBoolean(const std::string& text) {
    return isJsonScalar(text) || Poco::icompare(text, "true") == 0 || Poco::icompare(text, "false") == 0;
}

}  // namespace MarkupText
}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
