#pragma once

#include "TQ_BACnet/DataApplicationValue.h"

#include <Poco/Exception.h>

#include <cstdint>
#include <string>
#include <vector>

namespace TQAddressTest {

using Bytes = std::vector<uint8_t>;

template <class T>
Bytes encodedBy(const T& value) {
    uint8_t buffer[MAX_APDU];
    const int length = value.encode(buffer);
    return length < 0 ? Bytes() : Bytes(buffer, buffer + length);
}

/// The message of the E that `f` throws; any other exception fails the test on its own.
template <class E, class F>
std::string messageOf(F f) {
    try {
        f();
    } catch (const E& e) {
        return e.message();
    }
    return "<no exception>";
}

/// Assertion messages end in file and line, so only their condition text is compared.
template <class F>
bool assertsWith(F f, const std::string& condition) {
    return messageOf<Poco::AssertionViolationException>(f).rfind(condition, 0) == 0;
}

/// Decodes `bytes` from a heap copy of exactly their size, so that the sanitizer build catches
/// a read past the bound; `value` keeps what the decoder left.
template <class T>
int decodeExactly(T& value, const Bytes& bytes, std::size_t count) {
    const Bytes copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
    return value.decode(copy.data(), static_cast<unsigned>(count));
}

/// A chain of primitives as the value container hands them to a constructor.
inline void link(std::vector<TQ::BACnet::DataApplicationValue>& values) {
    for (std::size_t i = 0; i + 1 < values.size(); ++i) values[i].next = &values[i + 1];
    if (!values.empty()) values.back().next = nullptr;
}

}  // namespace TQAddressTest
