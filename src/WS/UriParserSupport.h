// What the path parser's sources share: strict numbers and first-code-wins errors; not installed.
#pragma once

#include "TQ_BACnet/WS/DataWsError.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace TQ {
namespace BACnet {
namespace WS {
namespace PathNumber {

enum class Result { Ok, NotNumber, TooLarge };

/// Decimal digits, optionally grouped by "," in thousands ("1,024"). Signs, blanks, leading
/// zeros and misplaced separators are no number; more than 32 bits is too large.
inline Result read(std::string_view text, uint32_t& out) {
    const std::size_t n = text.size();
    if (n == 0 || text[0] < '0' || text[0] > '9' || (text[0] == '0' && n > 1)) return Result::NotNumber;
    // The usual item: up to nine digits, nothing else.
    if (n <= 9) {
        uint32_t value = 0;
        std::size_t i = 0;
        for (; i < n && text[i] >= '0' && text[i] <= '9'; ++i)
            value = value * 10 + static_cast<unsigned>(text[i] - '0');
        if (i == n) {
            out = value;
            return Result::Ok;
        }
    }
    // One pass: with separators, the first group has 1..3 digits and every later group exactly 3.
    constexpr std::size_t kNone = ~std::size_t(0);
    std::size_t comma = kNone;
    uint64_t value = 0;
    bool tooLarge = false;
    for (std::size_t i = 0; i < n; ++i) {
        const char c = text[i];
        const bool separatorPlace = comma != kNone && (i - comma) % 4 == 0;
        if (c == ',') {
            if (comma == kNone && i <= 3)
                comma = i;
            else if (!separatorPlace)
                return Result::NotNumber;
            continue;
        }
        if (c < '0' || c > '9' || separatorPlace) return Result::NotNumber;
        value = value * 10 + static_cast<unsigned>(c - '0');
        if (value > 0xFFFFFFFFu) {
            tooLarge = true;
            value = 0xFFFFFFFFu + uint64_t(1);
        }
    }
    if (comma != kNone && (n - comma) % 4 != 0) return Result::NotNumber;
    if (tooLarge) return Result::TooLarge;
    out = static_cast<uint32_t>(value);
    return Result::Ok;
}

}  // namespace PathNumber

/// The three texts one after the other: the messages that quote a path item.
inline std::string joined(std::string_view a, std::string_view b, std::string_view c) {
    std::string text;
    text.reserve(a.size() + b.size() + c.size());
    return text.append(a).append(b).append(c);
}

/// Sets the error unless an earlier step set one: the first code is the one reported.
inline void fail(DataWsError& error, DataWsError::WS_ERROR_CODE code, const std::string& text) {
    if (!error.hasWsError()) error.setWsError(code, text);
}
}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
