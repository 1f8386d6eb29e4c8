#pragma once

#include "TQ_BACnet/DataApplicationValue.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace TQValueTest {

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

template <class F>
std::string stdoutOf(F f) {
    testing::internal::CaptureStdout();
    f();
    return testing::internal::GetCapturedStdout();
}

inline std::vector<uint8_t> encoded(const TQ::BACnet::DataApplicationValue& v) {
    uint8_t buffer[MAX_APDU];
    const int len = v.encode(buffer);
    return len < 0 ? std::vector<uint8_t>() : std::vector<uint8_t>(buffer, buffer + len);
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

}  // namespace TQValueTest
