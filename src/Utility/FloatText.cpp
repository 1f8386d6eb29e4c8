#include "TQ_BACnet/Utility/FloatText.h"

#include <charconv>
#include <cstdint>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace Utility {

namespace {

constexpr uint64_t kPow10[] = {1u,
                               10u,
                               100u,
                               1000u,
                               10000u,
                               100000u,
                               1000000u,
                               10000000u,
                               100000000u,
                               1000000000u,
                               10000000000u,
                               100000000000u,
                               1000000000000u,
                               10000000000000u,
                               100000000000000u};
constexpr int kMaxDecimals = 7;

char* general(float value, char* out) {
    return std::to_chars(out, out + kFloatTextMax, value).ptr;
}

const char kDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

char* pair(char* p, uint32_t twoDigits) {
    std::memcpy(p, kDigitPairs + 2 * twoDigits, 2);
    return p + 2;
}

// Exactly `count` digits of `digits`, leading zeros included; the short ones without a loop.
char* writeDigits(char* p, uint32_t digits, int count) {
    switch (count) {
        case 1:
            *p = static_cast<char>('0' + digits);
            return p + 1;
        case 2:
            return pair(p, digits);
        case 3:
            *p = static_cast<char>('0' + digits / 100);
            return pair(p + 1, digits % 100);
        case 4:
            return pair(pair(p, digits / 100), digits % 100);
        default:
            for (char* q = p + count; q != p; digits /= 10) *--q = static_cast<char>('0' + digits % 10);
            return p + count;
    }
}

int digitCount(uint32_t value) {
    int count = 1;
    while (count < 10 && value >= kPow10[count]) ++count;
    return count;
}

// Whether the scientific form ("1e+06", "1.5e-03") is shorter than the fixed one of the same
// digits, which only leading or trailing zeros make long; the fixed form wins ties.
bool scientificShorter(uint32_t digits, int decimals) {
    const int count = digitCount(digits);
    const int fixedLength = decimals > 0 ? (count > decimals ? count : decimals + 1) + 1 : count;
    if (fixedLength <= 5) return false;  // the scientific form has at least five characters
    int significant = count;
    for (; decimals == 0 && digits % 10 == 0; digits /= 10) --significant;
    return significant + (significant > 1 ? 1 : 0) + 4 < fixedLength;
}

}  // namespace

// Values from 1e-3 up to 1e7 with at most seven decimals: the fewest decimals whose nearest
// decimal reads back as the value is the shortest fixed form, as the general algorithm chooses.
// Everything is exact in 64-bit integers: the value, times 10^7, in units of a quarter of its
// last bit, and the bounds of what reads back as it (half a bit either side, a quarter below a
// power of two). Where the scientific form would be shorter, or no such decimal exists, the
// general algorithm answers.
char* floatText(float value, char* out) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const bool negative = (bits >> 31) != 0;
    bits &= 0x7FFFFFFFu;
    // 0x3A83126F is 1e-3f and 0x4B189680 is 1e7f: positive floats order as their bits do.
    if (bits < 0x3A83126Fu || bits >= 0x4B189680u) return general(value, out);  // zero, NaN and infinities too
    const uint32_t fraction = bits & 0x7FFFFFu;
    // The value is mantissa * 2^-(shift - 2), shift - 2 from 0 to 33 in this range; `shift`
    // itself counts in quarters of the last bit.
    const uint64_t mantissa = fraction | 0x800000u;
    const unsigned shift = 152u - (bits >> 23);
    // An integer needs no decimals: below 2^24 every integer is a float of its own.
    int decimals = 0;
    uint64_t digits;
    if ((mantissa & ((uint64_t(1) << (shift - 2)) - 1)) == 0) {
        digits = mantissa >> (shift - 2);
    } else {
        const uint64_t scaled = (mantissa << 2) * kPow10[kMaxDecimals];
        // What reads back as the value: within half a bit either side (a quarter below a power
        // of two), the bounds themselves when the mantissa is even (ties to even).
        const uint64_t inside = mantissa & 1u;
        const uint64_t below = scaled - (fraction == 0 ? 1 : 2) * kPow10[kMaxDecimals] + inside;
        const uint64_t width = (fraction == 0 ? 3 : 4) * kPow10[kMaxDecimals] - 2 * inside;
        for (decimals = 1;; ++decimals) {
            const uint64_t unit = kPow10[kMaxDecimals - decimals] << shift;
            digits = scaled / unit;
            const uint64_t rest = scaled - digits * unit;
            if (2 * rest > unit || (2 * rest == unit && (digits & 1u))) ++digits;  // ties to even, as there
            if (digits * unit - below <= width) break;
            if (decimals == kMaxDecimals) return general(value, out);
        }
    }

    // At most nine digits (a float has fewer significant ones): 32 bits from here on. Only
    // a large integer or a value below 0.01 can have a shorter scientific form.
    const auto all = static_cast<uint32_t>(digits);
    const auto scale = static_cast<uint32_t>(kPow10[decimals]);
    const uint32_t whole = all / scale;
    if ((decimals == 0 ? whole >= 100000 : whole == 0 && decimals > 2) && scientificShorter(all, decimals))
        return general(value, out);
    if (negative) *out++ = '-';
    // Most values have one or two digits before the point and one or two after it.
    if (whole < 10)
        *out++ = static_cast<char>('0' + whole);
    else if (whole < 100)
        out = pair(out, whole);
    else
        out = writeDigits(out, whole, digitCount(whole));
    if (decimals == 0) return out;
    *out++ = '.';
    const uint32_t decimalDigits = all - whole * scale;
    if (decimals == 1) {
        *out = static_cast<char>('0' + decimalDigits);
        return out + 1;
    }
    return decimals == 2 ? pair(out, decimalDigits) : writeDigits(out, decimalDigits, decimals);
}

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
