#pragma once

#include <cstdint>
#include <string>

namespace TQ {
namespace Utility {

/// Conversions between numbers or booleans and their text forms.
///
/// Every `get...` takes an optional success flag: when given it is set to true on success and to
/// false on failure, and a failed conversion returns 0 (false). Surrounding blanks are ignored;
/// anything else that is not part of the number makes the conversion fail, as does a value
/// outside the target type. Texts are locale-independent ("." is the decimal point).
class ConvertIt {
public:
    /// "true"/"false", "yes"/"no", "on"/"off" (any case), or an integer (non-zero is true).
    static bool getBool(const std::string& text, bool* ok = nullptr);
    /// Decimal digits with an optional leading "+", or hexadecimal after "0x"/"0X"; 0 to 4294967295.
    static uint32_t getUInt(const std::string& text, bool* ok = nullptr);
    static uint64_t getUInt64(const std::string& text, bool* ok = nullptr);
    /// Decimal with an optional sign; -2147483648 to 2147483647.
    static int32_t getInt(const std::string& text, bool* ok = nullptr);
    static int64_t getInt64(const std::string& text, bool* ok = nullptr);
    /// Decimal or scientific notation, also "nan", "inf" and "-inf" as `setReal` writes them.
    static double getReal(const std::string& text, bool* ok = nullptr);

    /// "true" or "false".
    static std::string setBool(bool value);
    static std::string setUInt(uint64_t value);
    static std::string setInt(int64_t value);
    /// `precision` -1: the shortest text that reads back as exactly the same double ("0.1",
    /// "1e+20", "-2.5"). Otherwise `fixed` false gives `precision` significant digits
    /// (printf "%.*g") and `fixed` true gives `precision` digits after the point ("%.*f");
    /// `fixed` with precision -1 writes the shortest round-trip text without an exponent.
    static std::string setReal(double value, int precision = -1, bool fixed = false);
};

}  // namespace Utility
}  // namespace TQ
