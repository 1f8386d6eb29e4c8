#include "TQ/Utility/BitBuffer.h"

#include <Poco/Bugcheck.h>
#include <Poco/String.h>
#include <Poco/StringTokenizer.h>

#include <vector>

namespace TQ {
namespace Utility {

namespace {

uint8_t maskOf(unsigned bit) noexcept {
    return static_cast<uint8_t>(0x80u >> (bit % 8));
}

}  // namespace

BitBuffer::BitBuffer(unsigned bitsUsed) {
    setBitsUsed(bitsUsed);
}

BitBuffer::BitBuffer(const OctetBuffer& bytes, unsigned bitsUsed) : OctetBuffer(bytes) {
    setBitsUsed(bitsUsed);
}

void BitBuffer::setBitsUsed(unsigned bitsUsed) {
    resize((static_cast<std::size_t>(bitsUsed) + 7) / 8);
    if (bitsUsed % 8 != 0) data()[size() - 1] &= static_cast<uint8_t>(0xFF00u >> (bitsUsed % 8));
    _bitsUsed = bitsUsed;
}

bool BitBuffer::getBit(unsigned bit) const {
    poco_assert(bit < _bitsUsed);
    return (data()[bit / 8] & maskOf(bit)) != 0;
}

void BitBuffer::setBit(unsigned bit, bool value) {
    poco_assert(bit < _bitsUsed);
    if (value)
        data()[bit / 8] |= maskOf(bit);
    else
        data()[bit / 8] &= static_cast<uint8_t>(~maskOf(bit));
}

std::string BitBuffer::getBitsString() const {
    std::string out;
    out.reserve(_bitsUsed);
    for (unsigned i = 0; i < _bitsUsed; ++i) out += getBit(i) ? '1' : '0';
    return out;
}

std::string BitBuffer::getString() const {
    std::string out;
    out.reserve(_bitsUsed * 6);
    for (unsigned i = 0; i < _bitsUsed; ++i) {
        if (i != 0) out += ',';
        out += getBit(i) ? "true" : "false";
    }
    return out;
}

bool BitBuffer::setString(const std::string& text) {
    std::vector<bool> bits;
    std::string trimmed = Poco::trim(text);
    if (trimmed.find_first_not_of("01") == std::string::npos) {
        for (char c : trimmed) bits.push_back(c == '1');
    } else {
        Poco::StringTokenizer pieces(trimmed, ",", Poco::StringTokenizer::TOK_TRIM);
        for (const std::string& piece : pieces) {
            if (piece == "true")
                bits.push_back(true);
            else if (piece == "false")
                bits.push_back(false);
            else
                return false;
        }
        // "true," leaves an empty last piece that the tokenizer drops; it is not a bit list.
        if (!trimmed.empty() && trimmed.back() == ',') return false;
    }
    setBitsUsed(0);
    setBitsUsed(static_cast<unsigned>(bits.size()));
    for (unsigned i = 0; i < bits.size(); ++i) setBit(i, bits[i]);
    return true;
}

bool BitBuffer::operator==(const BitBuffer& other) const noexcept {
    return _bitsUsed == other._bitsUsed && OctetBuffer::operator==(other);
}

}  // namespace Utility
}  // namespace TQ
