// Input bytes in a heap block of exactly their size, so that a decoder reading one byte too far
// is caught by the address sanitizer rather than passing silently.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

class ExactBuffer {
public:
    ExactBuffer(std::initializer_list<uint8_t> bytes) : ExactBuffer(std::vector<uint8_t>(bytes)) {}
    explicit ExactBuffer(const std::vector<uint8_t>& bytes, size_t length = SIZE_MAX)
        : _size(length < bytes.size() ? length : bytes.size()), _data(new uint8_t[_size ? _size : 1]) {
        for (size_t i = 0; i < _size; ++i) _data[i] = bytes[i];
    }
    const uint8_t* data() const { return _data.get(); }
    uint32_t size() const { return uint32_t(_size); }

private:
    size_t _size;
    std::unique_ptr<uint8_t[]> _data;
};

// Encodes through an encoder called twice: once sizing (NULL buffer), once writing.
template <typename F>
std::vector<uint8_t> encoded(F encode) {
    const int size = encode(nullptr);
    std::vector<uint8_t> out(size > 0 ? size_t(size) : 0);
    const int written = encode(out.data());
    if (written != size) out.clear();
    return out;
}
