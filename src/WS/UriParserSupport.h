// What the path parser's sources share: strict numbers and first-code-wins errors; not installed.
#pragma once

#include "TQ_BACnet/WS/DataWsError.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace WS {
namespace PathNumber {

enum class Result { Ok, NotNumber, TooLarge };

/// Decimal digits, optionally grouped by "," in thousands ("1,024"). Signs, blanks, leading
/// zeros and misplaced separators are no number; more than 32 bits is too large.
inline Result read(const std::string& text, uint32_t& out) {
    const std::size_t n = text.size();
    if (n == 0 || text[0] < '0' || text[0] > '9' || (text[0] == '0' && n > 1)) return Result::NotNumber;
    const std::size_t comma = text.find(',');
    // With separators, the first group has 1..3 digits and every later group exactly 3.
    if (comma != std::string::npos && (comma > 3 || (n - comma) % 4 != 0)) return Result::NotNumber;
    uint64_t value = 0;
    bool tooLarge = false;
    for (std::size_t i = 0; i < n; ++i) {
        const char c = text[i];
        if (comma != std::string::npos && i >= comma && (i - comma) % 4 == 0) {
            if (c != ',') return Result::NotNumber;
            continue;
        }
        if (c < '0' || c > '9') return Result::NotNumber;
        value = value * 10 + static_cast<unsigned>(c - '0');
        if (value > 0xFFFFFFFFu) {
            tooLarge = true;
            value = 0xFFFFFFFFu + uint64_t(1);
        }
    }
    if (tooLarge) return Result::TooLarge;
    out = static_cast<uint32_t>(value);
    return Result::Ok;
}

}  // namespace PathNumber

/// Sets the error unless an earlier step set one: the first code is the one reported.
inline void fail(DataWsError& error, DataWsError::WS_ERROR_CODE code, const std::string& text) {
    if (!error.hasWsError()) error.setWsError(code, text);
}
}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
