#pragma once

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "tq_stack/config.h"

#include <Poco/NumberParser.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TQReferenceTest {

using Bytes = std::vector<uint8_t>;

/// "0C 00000003" -> bytes; blanks are for the reader only.
inline Bytes hex(const std::string& text) {
    std::string digits;
    for (char c : text)
        if (c != ' ') digits += c;
    Bytes out;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        out.push_back(static_cast<uint8_t>(Poco::NumberParser::parseHex(digits.substr(i, 2))));
    return out;
}

template <class T>
Bytes encoded(const T& value) {
    uint8_t buffer[MAX_APDU];
    const int len = value.encode(buffer);
    return len < 0 ? Bytes() : Bytes(buffer, buffer + len);
}

/// Decodes from a heap copy of exactly `length` bytes, so a read past the end is caught by the
/// sanitizer build rather than landing in a neighbouring stack buffer.
template <class T>
int decodeExactly(T& value, const Bytes& bytes, std::size_t length) {
    std::unique_ptr<uint8_t[]> copy(new uint8_t[length == 0 ? 1 : length]);
    std::copy(bytes.begin(), bytes.begin() + static_cast<long>(length), copy.get());
    return value.decode(copy.get(), static_cast<unsigned>(length));
}

/// A chain of decoded primitives as the value container hands it to constructors.
class Chain {
public:
    Chain& app(const TQ::BACnet::DataApplicationValue& v) {
        _values.push_back(v);
        return *this;
    }
    Chain& ctx(uint8_t contextTag, TQ::BACnet::DataApplicationValue v) {
        v.context_specific = true;
        v.context_tag = contextTag;
        _values.push_back(v);
        return *this;
    }
    /// Links the values; call after the last append.
    const TQ::BACnet::DataApplicationValue& first() {
        for (std::size_t i = 0; i + 1 < _values.size(); ++i) _values[i].next = &_values[i + 1];
        if (!_values.empty()) _values.back().next = nullptr;
        return _values.front();
    }
    const TQ::BACnet::DataApplicationValue* at(std::size_t i) const { return &_values[i]; }

private:
    std::vector<TQ::BACnet::DataApplicationValue> _values;
};

inline TQ::BACnet::DataApplicationValue objectId(uint32_t packed) {
    TQ::BACnet::DataApplicationValue v;
    v.setObjectIdentifier(TQ::BACnet::DataType::ObjectIdentifier(packed));
    return v;
}

inline TQ::BACnet::DataApplicationValue enumerated(unsigned value) {
    TQ::BACnet::DataApplicationValue v;
    v.setEnum(value);
    return v;
}

inline TQ::BACnet::DataApplicationValue unsignedInt(unsigned value) {
    TQ::BACnet::DataApplicationValue v;
    v.setUInt(value);
    return v;
}

inline TQ::BACnet::DataApplicationValue real(float value) {
    TQ::BACnet::DataApplicationValue v;
    v.setReal(value);
    return v;
}

}  // namespace TQReferenceTest
