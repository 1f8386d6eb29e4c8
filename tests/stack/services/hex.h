// Hex text to bytes for the test vectors ("0C 00 00 00 05"; blanks ignored).
#pragma once

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace svc_test {

inline std::vector<uint8_t> bytes(const std::string& hex) {
    std::vector<uint8_t> out;
    std::string digits;
    for (char c : hex)
        if (c != ' ') digits += c;
    if (digits.size() % 2) throw std::invalid_argument("odd hex: " + hex);
    for (size_t i = 0; i < digits.size(); i += 2)
        out.push_back(uint8_t(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return out;
}

inline std::string hex(const uint8_t* p, size_t n) {
    std::string s;
    char buf[4];
    for (size_t i = 0; i < n; ++i) {
        std::snprintf(buf, sizeof buf, i ? " %02X" : "%02X", p[i]);
        s += buf;
    }
    return s;
}

inline std::string hex(const std::vector<uint8_t>& v) {
    return hex(v.data(), v.size());
}

// Encodes with the function into a fresh buffer and returns the bytes (empty on failure).
template <typename F>
std::vector<uint8_t> encoded(F&& encode) {
    std::vector<uint8_t> buf(2048, 0xEE);
    const int len = encode(buf.data());
    if (len < 0) return {};
    buf.resize(size_t(len));
    return buf;
}

}  // namespace svc_test
