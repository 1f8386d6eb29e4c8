#include "TQ/Utility/OctetBuffer.h"

#include <Poco/Bugcheck.h>
#include <Poco/Exception.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace TQ {
namespace Utility {

namespace {

const char* const kHexDigits = "0123456789ABCDEF";
// Small buffers are common (single APDUs, bit strings); a floor avoids a run of tiny
// reallocations while they are built byte by byte.
const std::size_t kMinCapacity = 16;

int hexValue(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

bool isSeparator(char c) noexcept {
    return c == ' ' || c == '\t' || c == ':' || c == '-' || c == ',' || c == '\r' || c == '\n';
}

}  // namespace

OctetBuffer::OctetBuffer(std::size_t size) {
    resize(size);
}

OctetBuffer::OctetBuffer(const uint8_t* bytes, std::size_t length) {
    assign(bytes, length);
}

OctetBuffer::OctetBuffer(const std::string& hex) {
    setHexString(hex);
}

OctetBuffer::OctetBuffer(const OctetBuffer& other) {
    assign(other._data, other._used);
}

OctetBuffer::OctetBuffer(OctetBuffer&& other) noexcept
    : _data(std::exchange(other._data, nullptr)),
      _capacity(std::exchange(other._capacity, 0)),
      _used(std::exchange(other._used, 0)),
      _owns(std::exchange(other._owns, true)) {}

OctetBuffer& OctetBuffer::operator=(const OctetBuffer& other) {
    if (this != &other) assign(other._data, other._used);
    return *this;
}

OctetBuffer& OctetBuffer::operator=(OctetBuffer&& other) {
    if (this == &other) return *this;
    if (!_owns) {
        assign(other._data, other._used);
        return *this;
    }
    {
        if (_owns) delete[] _data;
        _data = std::exchange(other._data, nullptr);
        _capacity = std::exchange(other._capacity, 0);
        _used = std::exchange(other._used, 0);
        _owns = std::exchange(other._owns, true);
    }
    return *this;
}

OctetBuffer::~OctetBuffer() {
    if (_owns) delete[] _data;
}

OctetBuffer OctetBuffer::over(uint8_t* storage, std::size_t capacity, std::size_t used) {
    if (used > capacity)
        throw Poco::InvalidArgumentException("OctetBuffer::over(): used size exceeds capacity");
    if (storage == nullptr && capacity != 0)
        throw Poco::NullPointerException("OctetBuffer::over(): no storage");
    OctetBuffer buffer;
    buffer._data = storage;
    buffer._capacity = capacity;
    buffer._used = used;
    buffer._owns = false;
    return buffer;
}

uint8_t& OctetBuffer::operator[](std::size_t index) {
    poco_assert(index < _used);
    return _data[index];
}

const uint8_t& OctetBuffer::operator[](std::size_t index) const {
    poco_assert(index < _used);
    return _data[index];
}

void OctetBuffer::grow(std::size_t required) {
    if (required <= _capacity) return;
    if (!_owns) throw Poco::InvalidAccessException("Cannot resize buffer which does not own its storage.");
    std::size_t capacity = std::max({required, _capacity + _capacity / 2, kMinCapacity});
    uint8_t* fresh = new uint8_t[capacity];  // deliberately not value-initialised
    if (_used != 0) std::memcpy(fresh, _data, _used);
    delete[] _data;
    _data = fresh;
    _capacity = capacity;
}

void OctetBuffer::resize(std::size_t size) {
    grow(size);
    if (size > _used) std::memset(_data + _used, 0, size - _used);
    _used = size;
}

void OctetBuffer::reserve(std::size_t capacity) {
    grow(capacity);
}

void OctetBuffer::assign(const uint8_t* bytes, std::size_t length) {
    if (length != 0 && bytes == nullptr) throw Poco::NullPointerException("OctetBuffer::assign(): no bytes");
    if (length > _capacity) {
        if (!_owns)
            throw Poco::InvalidAccessException("Cannot resize buffer which does not own its storage.");
        // Nothing of the old content survives, so drop it before growing to avoid a useless copy.
        _used = 0;
        grow(length);
    }
    if (length != 0) std::memmove(_data, bytes, length);
    _used = length;
}

void OctetBuffer::append(const uint8_t* bytes, std::size_t length) {
    if (length == 0) return;
    if (bytes == nullptr) throw Poco::NullPointerException("OctetBuffer::append(): no bytes");
    if (_used + length > _capacity && bytes >= _data && bytes < _data + _used) {
        // Appending a part of ourselves: the source moves with the reallocation.
        OctetBuffer copy(bytes, length);
        append(copy._data, length);
        return;
    }
    grow(_used + length);
    std::memmove(_data + _used, bytes, length);
    _used += length;
}

void OctetBuffer::append(uint8_t byte) {
    grow(_used + 1);
    _data[_used++] = byte;
}

void OctetBuffer::eraseFront(std::size_t count) noexcept {
    if (count >= _used) {
        _used = 0;
        return;
    }
    std::memmove(_data, _data + count, _used - count);
    _used -= count;
}

std::string OctetBuffer::getHexString(bool separators) const {
    std::string out;
    return getHexString(out, separators);
}

std::string& OctetBuffer::getHexString(std::string& out, bool separators) const {
    out.clear();
    if (_used == 0) return out;
    out.reserve(separators ? _used * 3 - 1 : _used * 2);
    for (std::size_t i = 0; i < _used; ++i) {
        if (separators && i != 0) out += ' ';
        out += kHexDigits[_data[i] >> 4];
        out += kHexDigits[_data[i] & 0x0F];
    }
    return out;
}

std::size_t OctetBuffer::setHexString(const std::string& hex) {
    // Parse into a scratch buffer first so that bad text leaves this buffer untouched.
    OctetBuffer parsed;
    parsed.reserve(hex.size() / 2);
    std::size_t i = 0;
    while (i < hex.size()) {
        if (isSeparator(hex[i])) {
            ++i;
            continue;
        }
        int high = hexValue(hex[i]);
        if (high < 0)
            throw Poco::SyntaxException("OctetBuffer::setHexString(): not a hexadecimal digit", hex);
        if (i + 1 >= hex.size())
            throw Poco::SyntaxException("OctetBuffer::setHexString(): odd number of hexadecimal digits", hex);
        int low = hexValue(hex[i + 1]);
        if (low < 0) throw Poco::SyntaxException("OctetBuffer::setHexString(): incomplete byte", hex);
        parsed.append(static_cast<uint8_t>(high << 4 | low));
        i += 2;
    }
    assign(parsed._data, parsed._used);
    return _used;
}

bool OctetBuffer::operator==(const OctetBuffer& other) const noexcept {
    return _used == other._used && (_used == 0 || std::memcmp(_data, other._data, _used) == 0);
}

}  // namespace Utility
}  // namespace TQ
