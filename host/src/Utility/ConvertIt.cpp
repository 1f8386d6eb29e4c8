#include "TQ/Utility/ConvertIt.h"

#include <Poco/String.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace TQ {
namespace Utility {

namespace {

template <typename T>
T report(bool* ok, bool success, T value) {
    if (ok) *ok = success;
    return success ? value : T();
}

const char* skipBlanks(const char* first, const char* last) {
    while (first != last && (*first == ' ' || *first == '\t')) ++first;
    return first;
}

const char* skipBlanksBack(const char* first, const char* last) {
    while (last != first && (last[-1] == ' ' || last[-1] == '\t')) --last;
    return last;
}

// Parses the whole (blank-trimmed) text as T; from_chars neither skips blanks nor accepts "+".
template <typename T>
bool parseInteger(const std::string& text, T& value, bool allowHex) {
    const char* first = skipBlanks(text.data(), text.data() + text.size());
    const char* last = skipBlanksBack(first, text.data() + text.size());
    int base = 10;
    if (first != last && *first == '+') {
        ++first;
        if (first != last && (*first == '-' || *first == '+')) return false;
    }
    if (allowHex && last - first > 2 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X')) {
        first += 2;
        base = 16;
    }
    if (first == last) return false;
    auto result = std::from_chars(first, last, value, base);
    return result.ec == std::errc() && result.ptr == last;
}

}  // namespace

bool ConvertIt::getBool(const std::string& text, bool* ok) {
    std::string word = Poco::toLower(Poco::trim(text));
    if (word == "true" || word == "yes" || word == "on") return report(ok, true, true);
    if (word == "false" || word == "no" || word == "off") return report(ok, true, false);
    int64_t number = 0;
    bool isNumber = parseInteger(word, number, false);
    return report(ok, isNumber, number != 0);
}

uint32_t ConvertIt::getUInt(const std::string& text, bool* ok) {
    uint32_t value = 0;
    bool success = parseInteger(text, value, true);
    return report(ok, success, value);
}

uint64_t ConvertIt::getUInt64(const std::string& text, bool* ok) {
    uint64_t value = 0;
    bool success = parseInteger(text, value, true);
    return report(ok, success, value);
}

int32_t ConvertIt::getInt(const std::string& text, bool* ok) {
    int32_t value = 0;
    bool success = parseInteger(text, value, false);
    return report(ok, success, value);
}

int64_t ConvertIt::getInt64(const std::string& text, bool* ok) {
    int64_t value = 0;
    bool success = parseInteger(text, value, false);
    return report(ok, success, value);
}

double ConvertIt::getReal(const std::string& text, bool* ok) {
    const char* first = skipBlanks(text.data(), text.data() + text.size());
    const char* last = skipBlanksBack(first, text.data() + text.size());
    if (first != last && *first == '+') {
        ++first;
        if (first != last && (*first == '+' || *first == '-')) return report(ok, false, 0.0);
    }
    if (first == last) return report(ok, false, 0.0);
    double value = 0.0;
    auto result = std::from_chars(first, last, value);
    // A result out of double's range is reported as an error rather than silently clamped.
    bool success = result.ec == std::errc() && result.ptr == last;
    return report(ok, success, value);
}

std::string ConvertIt::setBool(bool value) {
    return value ? "true" : "false";
}

std::string ConvertIt::setUInt(uint64_t value) {
    char text[24];
    auto result = std::to_chars(text, text + sizeof text, value);
    return std::string(text, result.ptr);
}

std::string ConvertIt::setInt(int64_t value) {
    char text[24];
    auto result = std::to_chars(text, text + sizeof text, value);
    return std::string(text, result.ptr);
}

std::string ConvertIt::setReal(double value, int precision, bool fixed) {
    // Large enough for any fixed-notation double (about 310 digits) and any precision we allow.
    char text[400];
    std::to_chars_result result;
    if (precision < 0) {
        result = fixed ? std::to_chars(text, text + sizeof text, value, std::chars_format::fixed)
                       : std::to_chars(text, text + sizeof text, value);
    } else {
        int digits = precision > 60 ? 60 : precision;
        result = fixed ? std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits)
                       : std::to_chars(text, text + sizeof text, value, std::chars_format::general,
                                       digits == 0 ? 1 : digits);
    }
    if (result.ec != std::errc()) return std::string();
    return std::string(text, result.ptr);
}

}  // namespace Utility
}  // namespace TQ
