#pragma once

#include "../support/TQTestSupport.h"
#include "TQ_BACnet/DataApplicationValue.h"

#include <string>

namespace TQValueTest {

using TQTest::assertsWith;
using TQTest::encoded;
using TQTest::messageOf;
using TQTest::stdoutOf;

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
