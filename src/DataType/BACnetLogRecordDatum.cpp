#include "TQ_BACnet/DataType/BACnetLogRecord.h"

#include <Poco/String.h>
#include <Poco/StringTokenizer.h>

#include <algorithm>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace DataType {

// Numbers live in bytes 0..3 in host order; memcpy keeps the accesses free of aliasing
// and alignment traps on the ARM targets.
void BACnetLogRecord::Datum::setBoolean(bool value) {
    clear();
    _bytes[0] = value ? 1 : 0;
}

float BACnetLogRecord::Datum::getReal() const {
    return load<float>();
}

void BACnetLogRecord::Datum::setReal(float value) {
    store(value);
}

uint32_t BACnetLogRecord::Datum::getUnsigned() const {
    return load<uint32_t>();
}

void BACnetLogRecord::Datum::setUnsigned(uint32_t value) {
    store(value);
}

int32_t BACnetLogRecord::Datum::getSigned() const {
    return load<int32_t>();
}

void BACnetLogRecord::Datum::setSigned(int32_t value) {
    store(value);
}

void BACnetLogRecord::Datum::setLogStatus(uint8_t bits) {
    clear();
    _bytes[0] = bits & 0x07;
}

void BACnetLogRecord::Datum::setError(uint16_t errorClass, uint16_t errorCode) {
    clear();
    setErrorClass(errorClass);
    setErrorCode(errorCode);
}

void BACnetLogRecord::Datum::setErrorClass(uint16_t errorClass) {
    const uint32_t word = (getUnsigned() & 0x0000FFFFu) | (static_cast<uint32_t>(errorClass) << 16);
    std::memcpy(_bytes, &word, sizeof word);
}

void BACnetLogRecord::Datum::setErrorCode(uint16_t errorCode) {
    const uint32_t word = (getUnsigned() & 0xFFFF0000u) | errorCode;
    std::memcpy(_bytes, &word, sizeof word);
}

void BACnetLogRecord::Datum::setBitString(const uint8_t* bytes, uint8_t count, uint8_t length) {
    clear();
    const unsigned copied = bytes ? std::min<unsigned>(count, DATUM_BITSTRING_BYTES) : 0;
    if (copied) std::memcpy(_bytes, bytes, copied);
    BitString counter;
    counter.setBitsUsed(std::min<unsigned>(length, copied * 8));
    _bytes[4] = counter.getCount();
}

bool BACnetLogRecord::Datum::operator==(const Datum& other) const {
    return std::memcmp(_bytes, other._bytes, sizeof _bytes) == 0;
}

BACnetLogRecord::BitString::BitString(const uint8_t* datum) : _count(datum[4]) {
    std::memcpy(_bytes, datum, sizeof _bytes);
}

BACnetLogRecord::BitString::~BitString() = default;

unsigned BACnetLogRecord::BitString::getBitsUsed() const {
    const unsigned bits = getBytesUsed() * 8u;
    return bits > getBitsNotUsed() ? bits - getBitsNotUsed() : 0;
}

bool BACnetLogRecord::BitString::setBitsUsed(unsigned n) {
    const unsigned bytes = n / 8 + 1;
    if (bytes >= 16) return false;
    _count = static_cast<uint8_t>((bytes << 4) | (8 - n % 8));
    return true;
}

bool BACnetLogRecord::BitString::setBits(const std::string& text) {
    Poco::StringTokenizer tokens(Poco::toLower(text), ",", Poco::StringTokenizer::TOK_TRIM);
    // A 33rd bit has no byte to go to; refusing keeps the four bytes and the count consistent.
    if (tokens.count() > DATUM_BITSTRING_BYTES * 8) return false;
    uint8_t bytes[DATUM_BITSTRING_BYTES] = {0, 0, 0, 0};
    for (std::size_t i = 0; i < tokens.count(); ++i) {
        if (tokens[i] == "true") bytes[i / 8] |= static_cast<uint8_t>(1u << (i % 8));
    }
    std::memcpy(_bytes, bytes, sizeof bytes);
    return setBitsUsed(static_cast<unsigned>(tokens.count()));
}

bool BACnetLogRecord::BitString::getBit(unsigned bit) const {
    if (bit >= DATUM_BITSTRING_BYTES * 8) return false;
    return (_bytes[bit / 8] >> (bit % 8)) & 1u;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
