#pragma once

#include <cstddef>

namespace TQ {
namespace BACnet {
namespace Utility {

/// The shortest text that reads back as the same float, exactly as std::to_chars(float) writes
/// it ("21.5", "0.1", "1e+10", "nan"), but without its general algorithm for the common case
/// of a value with a few decimals. `out` needs kFloatTextMax characters; returns the end.
constexpr std::size_t kFloatTextMax = 32;
char* floatText(float value, char* out);

}  // namespace Utility
}  // namespace BACnet
}  // namespace TQ
