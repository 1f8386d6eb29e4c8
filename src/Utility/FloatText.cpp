#include "TQ_BACnet/Utility/FloatText.h"

#include <charconv>
#include <cstdint>

namespace TQ {
namespace BACnet {
namespace Utility {

namespace {

constexpr double kPow10[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7};
constexpr uint64_t kPow10Int[] = {1u,
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
                                  100000000000000u,
                                  1000000000000000u,
                                  10000000000000000u,
                                  100000000000000000u,
                                  1000000000000000000u,
                                  10000000000000000000u};
constexpr int kMaxDecimals = 7;

char* general(float value, char* out) {
    return std::to_chars(out, out + kFloatTextMax, value).ptr;
}

}  // namespace

// Values from 1e-3 up to 1e7 with at most seven decimals: the fewest decimals whose rounding
// reads back as the value is the shortest fixed form, and the nearest one of that length, as
// the general algorithm chooses. Where the scientific form would be shorter, or no such
// decimal exists, the general algorithm answers.
char* floatText(float value, char* out) {
    const double magnitude = value < 0 ? -static_cast<double>(value) : static_cast<double>(value);
    if (!(magnitude >= 1e-3 && magnitude < 1e7)) return general(value, out);  // zero, NaN and infinities too
    const float target = static_cast<float>(magnitude);

    int decimals = 0;
    uint64_t digits;
    for (;;) {
        const double scaled = magnitude * kPow10[decimals];
        digits = static_cast<uint64_t>(scaled);
        const double fraction = scaled - static_cast<double>(digits);
        if (fraction > 0.5 || (fraction == 0.5 && (digits & 1u))) ++digits;  // ties to even, as there
        if (static_cast<float>(static_cast<double>(digits) / kPow10[decimals]) == target) break;
        if (++decimals > kMaxDecimals) return general(value, out);
    }

    int count = 1;
    while (count < 20 && digits >= kPow10Int[count]) ++count;
    // With decimals the last digit is not 0 (one decimal fewer would have done); the fixed form
    // wins ties, and the scientific one is never shorter than five characters.
    const int fixedLength = (count > decimals ? count : decimals + 1) + (decimals > 0 ? 1 : 0);
    if (fixedLength > 5) {
        int significant = count;
        for (uint64_t rest = digits; decimals == 0 && rest % 10 == 0; rest /= 10) --significant;
        if (significant + (significant > 1 ? 1 : 0) + 4 < fixedLength) return general(value, out);
    }

    char* p = out + (value < 0 ? 1 : 0) + fixedLength;
    char* const end = p;
    for (int i = 0; i < decimals; ++i, digits /= 10) *--p = static_cast<char>('0' + digits % 10);
    if (decimals > 0) *--p = '.';
    do {
        *--p = static_cast<char>('0' + digits % 10);
        digits /= 10;
    } while (digits != 0);
    if (value < 0) *--p = '-';
    return end;
}

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
