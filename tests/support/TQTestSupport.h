#pragma once
// The helpers every test program shares: bytes as hex text both ways, exception messages, exact-size
// input blocks (so the address sanitizer sees a single byte read too far), the cut, mutation and
// wire-form sweeps of the constructed types, and value builders.

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace TQTest {

using Bytes = std::vector<uint8_t>;

/// "0C 00000003" or "0E A4 7C" as bytes; blanks are for the reader only.
inline Bytes hex(const std::string& text) {
    std::string digits;
    for (char c : text)
        if (c != ' ') digits += c;
    if (digits.size() % 2) throw std::invalid_argument("odd hex: " + text);
    Bytes out;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        out.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return out;
}

/// The other way round: bytes as "0C 00 00 00 03".
inline std::string hexText(const Bytes& bytes) {
    std::string s;
    char buf[4];
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(buf, sizeof buf, i ? " %02X" : "%02X", bytes[i]);
        s += buf;
    }
    return s;
}

/// The first `length` bytes (all by default), or the bytes from `from` on, in a heap block of
/// exactly their size.
class ExactBuffer {
public:
    explicit ExactBuffer(const Bytes& in, std::size_t length = SIZE_MAX, std::size_t from = 0)
        : _size(from >= in.size() ? 0 : std::min(length, in.size() - from)), _data(new uint8_t[_size ? _size : 1]) {
        std::copy(in.begin() + static_cast<std::ptrdiff_t>(from),
                  in.begin() + static_cast<std::ptrdiff_t>(from + _size), _data.get());
    }
    explicit ExactBuffer(const std::string& hexText) : ExactBuffer(hex(hexText)) {}
    const uint8_t* data() const { return _data.get(); }
    uint32_t size() const { return static_cast<uint32_t>(_size); }

private:
    std::size_t _size;
    std::unique_ptr<uint8_t[]> _data;
};

/// What `encode` writes; empty when it reports an error.
template <class T>
Bytes encoded(const T& value) {
    uint8_t buffer[MAX_APDU];
    const int len = value.encode(buffer);
    return len < 0 ? Bytes() : Bytes(buffer, buffer + len);
}

/// The message of the E that `f` throws, or "<no exception>"; any other exception fails the test.
template <class E = Poco::Exception, class F>
std::string messageOf(F&& f) {
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

template <class F>
std::string stdoutOf(F f) {
    testing::internal::CaptureStdout();
    f();
    return testing::internal::GetCapturedStdout();
}

/// Decodes the first `length` bytes from a heap copy of exactly that size.
template <class T>
int decodeExactly(T& value, const Bytes& bytes, std::size_t length) {
    const ExactBuffer copy(bytes, length);
    return value.decode(const_cast<uint8_t*>(copy.data()), copy.size());
}

/// How a decoder says a cut input is not a value.
enum class Refusal { MinusOne, Negative, NotPositive };

/// Decodes every proper prefix of `whole` into a copy of `start`. A prefix listed in
/// `complete` must give that length (the rest is optional); any other must be refused and
/// leave the value as it was.
template <class T>
void expectEveryCutRefused(const T& start, const Bytes& whole,
                           const std::map<std::size_t, int>& complete = {},
                           Refusal refusal = Refusal::MinusOne) {
    for (std::size_t n = 0; n < whole.size(); ++n) {
        SCOPED_TRACE("cut at " + std::to_string(n));
        T value(start);
        const int result = decodeExactly(value, whole, n);
        const auto accepted = complete.find(n);
        if (accepted != complete.end()) {
            EXPECT_EQ(result, accepted->second);
            continue;
        }
        const bool refused = refusal == Refusal::MinusOne   ? result == -1
                             : refusal == Refusal::Negative ? result < 0
                                                            : result <= 0;
        EXPECT_TRUE(refused) << "gave " << result;
        EXPECT_TRUE(value == start);
    }
}

/// Every byte of `whole` replaced by every value: whatever the decoder makes of it, it answers
/// from the given bytes alone (the sanitizer build sees any read past them).
template <class T>
void expectMutationsStayInBounds(const Bytes& whole) {
    for (std::size_t pos = 0; pos < whole.size(); ++pos) {
        Bytes mutated = whole;
        for (unsigned byte = 0; byte < 256; ++byte) {
            mutated[pos] = static_cast<uint8_t>(byte);
            T value;
            int result = 0;
            stdoutOf([&] { result = decodeExactly(value, mutated, mutated.size()); });
            EXPECT_LE(result, static_cast<int>(whole.size())) << pos << " " << byte;
        }
    }
}

/// `value` encodes to `bytes`, decodes back from exactly them into `blank`, and does both
/// framed by context tag 1 (and not by tag 2). With `hexText`, its text form is the encoding
/// in hexadecimal and reads back.
template <class T>
void expectWireForm(const T& value, const std::string& bytesText, const T& blank = T(), bool hexText = true) {
    SCOPED_TRACE(bytesText);
    const Bytes bytes = hex(bytesText);
    EXPECT_EQ(encoded(value), bytes);
    T decoded(blank);
    EXPECT_EQ(decodeExactly(decoded, bytes, bytes.size()), static_cast<int>(bytes.size()));
    EXPECT_TRUE(decoded == value);

    T source(value);
    uint8_t framed[MAX_APDU];
    const int len = source.encodeContext(framed, 1);
    Bytes expected = bytes;
    expected.insert(expected.begin(), 0x1E);
    expected.push_back(0x1F);
    EXPECT_EQ(Bytes(framed, framed + std::max(len, 0)), expected);
    T back(blank);
    EXPECT_EQ(back.decodeContext(framed, static_cast<unsigned>(len), 1), len);
    EXPECT_TRUE(back == value);
    EXPECT_EQ(back.decodeContext(framed, static_cast<unsigned>(len), 2), -1);

    if (!hexText) return;
    std::string text;
    value.getString(text);
    std::string digits;
    for (char c : bytesText)
        if (c != ' ') digits += c;
    EXPECT_EQ(text, digits);
    T parsed(blank);
    EXPECT_TRUE(parsed.setString(text));
    EXPECT_TRUE(parsed == value);
}

/// Links the values in vector order, as the value container hands decoded primitives over.
template <class Values>
void link(Values& values) {
    for (std::size_t i = 0; i + 1 < values.size(); ++i) values[i].next = &values[i + 1];
    if (!values.empty()) values.back().next = nullptr;
}

/// `v` as a context-tagged primitive.
inline TQ::BACnet::DataApplicationValue context(TQ::BACnet::DataApplicationValue v, uint8_t tag) {
    v.context_specific = true;
    v.context_tag = tag;
    return v;
}

inline TQ::BACnet::DataApplicationValue objectIdValue(const TQ::BACnet::DataType::ObjectIdentifier& id) {
    TQ::BACnet::DataApplicationValue v;
    v.setObjectIdentifier(id);
    return v;
}

inline TQ::BACnet::DataApplicationValue enumValue(unsigned value) {
    TQ::BACnet::DataApplicationValue v;
    v.setEnum(value);
    return v;
}

inline TQ::BACnet::DataApplicationValue uintValue(unsigned value) {
    TQ::BACnet::DataApplicationValue v;
    v.setUInt(value);
    return v;
}

inline TQ::BACnet::DataApplicationValue realValue(float value) {
    TQ::BACnet::DataApplicationValue v;
    v.setReal(value);
    return v;
}


inline TQ::BACnet::DataApplicationValue parsed(BACNET_APPLICATION_TAG tag, const std::string& text,
                                               bool emptyIsNull = false) {
    TQ::BACnet::DataApplicationValue v;
    v.setText(tag, text, emptyIsNull);
    return v;
}

inline std::string textOf(const TQ::BACnet::DataApplicationValue& v, bool bitsAsBooleans = true,
                          bool* ok = nullptr) {
    return v.getText(false, TQ::BACnet::BACNET_DT_NOT_FOUND, ok, nullptr, bitsAsBooleans);
}

}  // namespace TQTest
