#include "TQ_BACnet/Utility/ConvertIt.h"

#include "TQ/Utility/BitBuffer.h"
#include "TQ/Utility/OctetBuffer.h"
#include "tq_stack/strings.h"

#include <Poco/Latin1Encoding.h>
#include <Poco/Latin9Encoding.h>
#include <Poco/StringTokenizer.h>
#include <Poco/TextConverter.h>
#include <Poco/UTF8Encoding.h>
#include <Poco/Windows932Encoding.h>

#include <cstdio>

namespace TQ {
namespace BACnet {
namespace Utility {

namespace {

const char HEX_DIGITS[] = "0123456789ABCDEF";

void appendHex(const uint8_t* bytes, size_t length, std::string& out) {
    out.resize(length * 2);
    for (size_t i = 0; i < length; ++i) {
        out[2 * i] = HEX_DIGITS[bytes[i] >> 4];
        out[2 * i + 1] = HEX_DIGITS[bytes[i] & 0x0F];
    }
}

template <class E>
Poco::TextEncoding* makeEncoding() {
    return new E;
}

// Indexed by BACnet character set; null entries are read as UTF-8 (no conversion).
using EncodingMaker = Poco::TextEncoding* (*)();
const EncodingMaker ENCODING_MAKERS[] = {
    nullptr,                                  // 0 ANSI X3.4 / UTF-8
    &makeEncoding<Poco::Latin9Encoding>,      // 1 IBM/Microsoft DBCS
    &makeEncoding<Poco::Windows932Encoding>,  // 2 JIS X 0208
    &makeEncoding<Poco::Latin1Encoding>,      // 3 UCS-4
    &makeEncoding<Poco::Latin1Encoding>,      // 4 UCS-2
    &makeEncoding<Poco::Latin1Encoding>,      // 5 ISO 8859-1
};
constexpr unsigned ENCODING_COUNT = sizeof(ENCODING_MAKERS) / sizeof(ENCODING_MAKERS[0]);

// Wide character sets arrive byte-wise through a single-byte decoder: their zero high bytes
// (and the DBCS shift marker 4 with its two code bytes) are padding, not text.
void dropPadding(std::string& text, unsigned encoding) {
    std::string::size_type w = 0;
    for (std::string::size_type r = 0; r < text.size(); ++r) {
        const auto c = static_cast<unsigned char>(text[r]);
        if (c == 0) continue;
        if (c == 4) {
            if (encoding == CHARACTER_MS_DBCS && text.size() - r - 1 >= 2) r += 2;
            continue;
        }
        text[w++] = text[r];
    }
    text.resize(w);
}

}  // namespace

bool ConvertIt::getBACnetOctetBuffer(const TQ::Utility::OctetBuffer& in, BACnet_Octet_String& out) {
    return octetstring_init(&out, in.empty() ? nullptr : in.data(), in.size());
}

bool ConvertIt::getBACnetBitBuffer(const TQ::Utility::BitBuffer& in, BACnet_Bit_String& out) {
    const size_t bytes = in.size();
    if (bytes > MAX_BITSTRING_BYTES) return false;
    (void)in[0];  // an empty buffer fails the host's index check
    for (size_t i = 0; i < bytes; ++i) {
        if (!bitstring_set_octet(&out, static_cast<uint8_t>(i), in.data()[i])) return false;
    }
    const auto unused = static_cast<uint8_t>((8 - in.getBitsUsed() % 8) % 8);
    return bitstring_set_bits_used(&out, static_cast<uint8_t>(bytes), unused);
}

bool ConvertIt::getBACnetOctetString(const std::string& hex, BACnet_Octet_String& out) {
    return octetstring_init_ascii_hex(&out, hex.c_str());
}

bool ConvertIt::getBACnetCharacterString(const std::string& text, BACnet_Character_String& out) {
    return characterstring_init(&out, CHARACTER_UTF8, text.data(), text.size());
}

bool ConvertIt::getBACnetBitString(const std::string& text, BACnet_Bit_String& out) {
    bitstring_init(&out);
    Poco::StringTokenizer pieces(text, ",", Poco::StringTokenizer::TOK_TRIM);
    const size_t count = pieces.count();
    if (count > 0 && (count >= 2 || pieces[0] == "true" || pieces[0] == "false")) {
        if (count > MAX_BITSTRING_BYTES) return false;
        for (size_t i = 0; i < count; ++i)
            bitstring_set_bit(&out, static_cast<uint8_t>(i), pieces[i] == "true");
        return true;
    }
    const size_t bytes = text.size() / 2;
    if (bytes > MAX_BITSTRING_BYTES) return false;
    BACnet_Octet_String octets;
    if (!octetstring_init_ascii_hex(&octets, text.c_str())) return false;
    for (size_t i = 0; i < octets.length; ++i) {
        if (!bitstring_set_octet(&out, static_cast<uint8_t>(i), octets.value[i])) return false;
    }
    return bitstring_set_bits_used(&out, static_cast<uint8_t>(octets.length), 0);
}

void ConvertIt::setOctetBuffer(const BACnet_Octet_String& in, TQ::Utility::OctetBuffer& out) {
    out.assign(in.value, in.length);
}

void ConvertIt::setBitBuffer(const BACnet_Bit_String& in, TQ::Utility::BitBuffer& out) {
    const size_t bytes = (in.bits_used + 7u) / 8u;
    out.assign(in.value, bytes);
    out.setBitsUsed(in.bits_used);
}

Poco::SharedPtr<Poco::TextEncoding> ConvertIt::getEncoding(BACNET_CHARACTER_STRING_ENCODING encoding) {
    if (encoding >= ENCODING_COUNT || ENCODING_MAKERS[encoding] == nullptr) return {};
    return Poco::SharedPtr<Poco::TextEncoding>(ENCODING_MAKERS[encoding]());
}

void ConvertIt::setStdString(const BACnet_Octet_String& in, std::string& out) {
    appendHex(in.value, in.length, out);
}

void ConvertIt::setStdString(const BACnet_Bit_String& in, std::string& out) {
    appendHex(in.value, bitstring_bytes_used(&in), out);
}

void ConvertIt::setStdString(const BACnet_Character_String& in, std::string& out) {
    out.assign(in.value, in.length);
    const unsigned encoding = in.encoding;
    if (encoding == CHARACTER_UTF8 || encoding >= MAX_CHARACTER_STRING_ENCODING) return;
    const auto source = getEncoding(static_cast<BACNET_CHARACTER_STRING_ENCODING>(encoding));
    if (source.isNull()) return;
    Poco::UTF8Encoding utf8;
    Poco::TextConverter converter(*source, utf8, '?');
    std::string converted;
    converter.convert(out, converted);
    out.swap(converted);
    if (encoding != CHARACTER_JISX_0208 && encoding != CHARACTER_ISO8859) dropPadding(out, encoding);
}

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
