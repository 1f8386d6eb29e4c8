#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace TQ {
namespace Utility {

/// A growable byte buffer: capacity, used size and storage that is either owned or borrowed.
///
/// A buffer made over foreign storage (`over`) never reallocates: any change that needs more
/// than its capacity raises Poco::InvalidAccessException, because the owner of that storage
/// expects the bytes to land exactly there. Copies are always owned.
///
/// Growth is geometric, and a reallocation copies only the used bytes; the unused capacity is
/// never zeroed. Bytes that become used by `resize` read as zero.
class OctetBuffer {
public:
    OctetBuffer() noexcept = default;
    /// `size` zero bytes.
    explicit OctetBuffer(std::size_t size);
    /// An owned copy of `length` bytes.
    OctetBuffer(const uint8_t* bytes, std::size_t length);
    /// Bytes from hexadecimal text (see `setHexString`).
    explicit OctetBuffer(const std::string& hex);
    OctetBuffer(const OctetBuffer& other);
    OctetBuffer(OctetBuffer&& other) noexcept;
    /// Copies the used bytes into this buffer's storage (borrowed storage must be large enough).
    OctetBuffer& operator=(const OctetBuffer& other);
    /// Takes over the other's storage; a buffer over foreign storage copies instead, so that
    /// its bytes keep landing in that storage.
    OctetBuffer& operator=(OctetBuffer&& other);
    virtual ~OctetBuffer();

    /// A buffer over `capacity` bytes at `storage`, of which the first `used` are in use.
    /// The storage is not freed by the buffer and must outlive it.
    static OctetBuffer over(uint8_t* storage, std::size_t capacity, std::size_t used = 0);

    std::size_t size() const noexcept { return _used; }
    std::size_t capacity() const noexcept { return _capacity; }
    bool empty() const noexcept { return _used == 0; }
    bool ownsStorage() const noexcept { return _owns; }
    uint8_t* data() noexcept { return _data; }
    const uint8_t* data() const noexcept { return _data; }

    /// Checked access; an index at or beyond the used size fails the assertion "index < _used".
    uint8_t& operator[](std::size_t index);
    const uint8_t& operator[](std::size_t index) const;

    /// Sets the used size, keeping the content; bytes that become used read as zero.
    void resize(std::size_t size);
    /// Makes room for at least `capacity` bytes without changing the used size.
    void reserve(std::size_t capacity);
    void clear() noexcept { _used = 0; }

    void assign(const uint8_t* bytes, std::size_t length);
    void append(const uint8_t* bytes, std::size_t length);
    void append(uint8_t byte);
    void append(const OctetBuffer& other) { append(other._data, other._used); }
    /// Drops the first `count` used bytes (all of them when `count` exceeds the used size).
    void eraseFront(std::size_t count) noexcept;

    /// Two upper-case hexadecimal digits per byte; with `separators` the bytes are separated by
    /// one blank ("0A FF"), otherwise they follow each other ("0AFF").
    std::string getHexString(bool separators = false) const;
    std::string& getHexString(std::string& out, bool separators) const;
    /// Replaces the content by the bytes of hexadecimal text: two digits per byte, either case,
    /// optionally separated by blanks, tabs, ':', '-' or ','. An odd digit count, a separator
    /// inside a byte or any other character raises Poco::SyntaxException and leaves the buffer
    /// unchanged. Returns the number of bytes.
    std::size_t setHexString(const std::string& hex);

    bool operator==(const OctetBuffer& other) const noexcept;
    bool operator!=(const OctetBuffer& other) const noexcept { return !(*this == other); }

private:
    void grow(std::size_t required);

    uint8_t* _data = nullptr;
    std::size_t _capacity = 0;
    std::size_t _used = 0;
    bool _owns = true;
};

}  // namespace Utility
}  // namespace TQ
