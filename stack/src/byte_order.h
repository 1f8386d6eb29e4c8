// Big-endian loads and stores shared by the codec sources; small enough to inline everywhere.
#pragma once

#include <cstdint>
#include <cstring>

namespace tq_stack_detail {

inline uint32_t loadBe32(const uint8_t* p) {
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | uint32_t(p[3]);
}

inline uint64_t loadBe64(const uint8_t* p) {
    return (uint64_t(loadBe32(p)) << 32) | loadBe32(p + 4);
}

inline void storeBe32(uint8_t* p, uint32_t v) {
    p[0] = uint8_t(v >> 24);
    p[1] = uint8_t(v >> 16);
    p[2] = uint8_t(v >> 8);
    p[3] = uint8_t(v);
}

inline void storeBe64(uint8_t* p, uint64_t v) {
    storeBe32(p, uint32_t(v >> 32));
    storeBe32(p + 4, uint32_t(v));
}

inline float floatFromBits(uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

inline double doubleFromBits(uint64_t bits) {
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

inline uint32_t bitsOfFloat(float f) {
    uint32_t bits;
    std::memcpy(&bits, &f, sizeof bits);
    return bits;
}

inline uint64_t bitsOfDouble(double d) {
    uint64_t bits;
    std::memcpy(&bits, &d, sizeof bits);
    return bits;
}

// Unsigned of 1..4 bytes; the caller has checked the length. A switch rather than a loop: this
// sits under every Unsigned and ENUMERATED a peer sends.
inline uint32_t loadBeN(const uint8_t* p, uint32_t n) {
    switch (n) {
        case 1:
            return p[0];
        case 2:
            return (uint32_t(p[0]) << 8) | p[1];
        case 3:
            return (uint32_t(p[0]) << 16) | (uint32_t(p[1]) << 8) | p[2];
        case 4:
            return loadBe32(p);
        default:
            return 0;
    }
}

}  // namespace tq_stack_detail
