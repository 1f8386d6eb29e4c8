#pragma once

#include <string>

namespace TQ {
namespace Utility {

/// Helpers for diagnostic lines written straight to standard output.
class LogHelper {
public:
    /// The local time as a line prefix without a trailing blank: "2024-01-05 13:05:09.250", or
    /// only the time of day "13:05:09.250" when `withDate` is false.
    static std::string timeStamp(bool withDate = true);
};

}  // namespace Utility
}  // namespace TQ
