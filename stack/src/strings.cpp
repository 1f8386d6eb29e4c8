#include "tq_stack/strings.h"

#include <cstring>

// --- character strings ---

bool characterstring_init(BACNET_CHARACTER_STRING* s, uint8_t encoding, const char* value, size_t length) {
    if (!s || length > MAX_CHARACTER_STRING_BYTES || (length && !value) ||
        encoding >= MAX_CHARACTER_STRING_ENCODING)
        return false;
    s->encoding = encoding;
    if (length) std::memmove(s->value, value, length);
    s->value[length] = '\0';
    s->length = length;
    return true;
}

bool characterstring_init_ansi(BACNET_CHARACTER_STRING* s, const char* value) {
    return characterstring_init(s, CHARACTER_ANSI_X34, value, value ? std::strlen(value) : 0);
}

const char* characterstring_value(const BACNET_CHARACTER_STRING* s) {
    return s ? s->value : nullptr;
}

size_t characterstring_length(const BACNET_CHARACTER_STRING* s) {
    return s ? s->length : 0;
}

size_t characterstring_capacity(const BACNET_CHARACTER_STRING* s) {
    return s ? MAX_CHARACTER_STRING_BYTES : 0;
}

uint8_t characterstring_encoding(const BACNET_CHARACTER_STRING* s) {
    return s ? s->encoding : 0;
}

bool characterstring_set_encoding(BACNET_CHARACTER_STRING* s, uint8_t encoding) {
    if (!s || encoding >= MAX_CHARACTER_STRING_ENCODING) return false;
    s->encoding = encoding;
    return true;
}

bool characterstring_copy(BACNET_CHARACTER_STRING* dest, const BACNET_CHARACTER_STRING* src) {
    if (!dest || !src || src->length > MAX_CHARACTER_STRING_BYTES) return false;
    if (dest == src) return true;
    dest->encoding = src->encoding;
    std::memcpy(dest->value, src->value, src->length);
    dest->value[src->length] = '\0';
    dest->length = src->length;
    return true;
}

bool characterstring_same(const BACNET_CHARACTER_STRING* a, const BACNET_CHARACTER_STRING* b) {
    if (!a || !b) return a == b;
    return a->encoding == b->encoding && a->length == b->length && a->length <= MAX_CHARACTER_STRING_BYTES &&
           std::memcmp(a->value, b->value, a->length) == 0;
}

bool characterstring_ansi_same(const BACNET_CHARACTER_STRING* s, const char* text) {
    if (!s || !text || s->encoding != CHARACTER_ANSI_X34) return false;
    const size_t n = std::strlen(text);
    return s->length == n && std::memcmp(s->value, text, n) == 0;
}

bool characterstring_append(BACNET_CHARACTER_STRING* s, const char* value, size_t length) {
    if (!s || (length && !value) || s->length > MAX_CHARACTER_STRING_BYTES ||
        length > MAX_CHARACTER_STRING_BYTES - s->length)
        return false;
    if (length) std::memmove(s->value + s->length, value, length);
    s->length += length;
    s->value[s->length] = '\0';
    return true;
}

bool characterstring_truncate(BACNET_CHARACTER_STRING* s, size_t length) {
    if (!s || length > s->length) return false;
    s->length = length;
    s->value[length] = '\0';
    return true;
}

// --- octet strings ---

bool octetstring_init(BACNET_OCTET_STRING* o, const uint8_t* value, size_t length) {
    if (!o || length > MAX_OCTET_STRING_BYTES || (length && !value)) return false;
    if (length) std::memmove(o->value, value, length);
    o->length = length;
    return true;
}

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

bool octetstring_init_ascii_hex(BACNET_OCTET_STRING* o, const char* hex) {
    if (!o || !hex) return false;
    const size_t digits = std::strlen(hex);
    if (digits % 2 != 0 || digits / 2 > MAX_OCTET_STRING_BYTES) return false;
    // Validate first so a bad text leaves the string as it was.
    for (size_t i = 0; i < digits; ++i) {
        if (hexDigit(hex[i]) < 0) return false;
    }
    for (size_t i = 0; i < digits / 2; ++i) {
        o->value[i] = uint8_t(unsigned(hexDigit(hex[2 * i])) << 4 | unsigned(hexDigit(hex[2 * i + 1])));
    }
    o->length = digits / 2;
    return true;
}

uint8_t* octetstring_value(BACNET_OCTET_STRING* o) {
    return o ? o->value : nullptr;
}

size_t octetstring_length(const BACNET_OCTET_STRING* o) {
    return o ? o->length : 0;
}

size_t octetstring_capacity(const BACNET_OCTET_STRING* o) {
    return o ? MAX_OCTET_STRING_BYTES : 0;
}

bool octetstring_copy(BACNET_OCTET_STRING* dest, const BACNET_OCTET_STRING* src) {
    if (!dest || !src || src->length > MAX_OCTET_STRING_BYTES) return false;
    if (dest == src) return true;
    std::memcpy(dest->value, src->value, src->length);
    dest->length = src->length;
    return true;
}

size_t octetstring_copy_value(uint8_t* dest, size_t dest_size, const BACNET_OCTET_STRING* src) {
    if (!dest || !src || src->length > dest_size || src->length > MAX_OCTET_STRING_BYTES) return 0;
    std::memcpy(dest, src->value, src->length);
    return src->length;
}

bool octetstring_append(BACNET_OCTET_STRING* o, const uint8_t* value, size_t length) {
    if (!o || (length && !value) || o->length > MAX_OCTET_STRING_BYTES ||
        length > MAX_OCTET_STRING_BYTES - o->length)
        return false;
    if (length) std::memmove(o->value + o->length, value, length);
    o->length += length;
    return true;
}

bool octetstring_truncate(BACNET_OCTET_STRING* o, size_t length) {
    if (!o || length > o->length) return false;
    o->length = length;
    return true;
}

bool octetstring_value_same(const BACNET_OCTET_STRING* a, const BACNET_OCTET_STRING* b) {
    if (!a || !b) return a == b;
    return a->length == b->length && a->length <= MAX_OCTET_STRING_BYTES &&
           std::memcmp(a->value, b->value, a->length) == 0;
}

// --- bit strings ---

namespace {

constexpr unsigned kBitCapacity = MAX_BITSTRING_BYTES * 8;

inline uint8_t bitMask(uint8_t bitNumber) {
    return uint8_t(0x80u >> (bitNumber % 8));
}

}  // namespace

void bitstring_init(BACNET_BIT_STRING* b) {
    if (b) b->bits_used = 0;
}

void bitstring_set_bit(BACNET_BIT_STRING* b, uint8_t bit_number, bool value) {
    if (!b || bit_number >= kBitCapacity) return;
    const uint8_t byte = bit_number / 8;
    // Bytes newly taken into use start from zero; bytes in use keep their other bits.
    const uint8_t bytesUsed = uint8_t((b->bits_used + 7) / 8);
    for (uint8_t i = bytesUsed; i <= byte; ++i) b->value[i] = 0;
    if (bytesUsed > 0 && b->bits_used % 8 && byte >= bytesUsed - 1) {
        // Clear the unused tail of the last byte in use so it cannot reappear as set bits.
        b->value[bytesUsed - 1] = uint8_t(b->value[bytesUsed - 1] & (0xFFu << (8 - b->bits_used % 8)));
    }
    if (value)
        b->value[byte] = uint8_t(b->value[byte] | bitMask(bit_number));
    else
        b->value[byte] = uint8_t(b->value[byte] & ~bitMask(bit_number));
    if (bit_number >= b->bits_used) b->bits_used = uint8_t(bit_number + 1);
}

bool bitstring_bit(const BACNET_BIT_STRING* b, uint8_t bit_number) {
    if (!b || bit_number >= b->bits_used || bit_number >= kBitCapacity) return false;
    return (b->value[bit_number / 8] & bitMask(bit_number)) != 0;
}

uint8_t bitstring_bits_used(const BACNET_BIT_STRING* b) {
    return b ? b->bits_used : 0;
}

bool bitstring_set_bits_used(BACNET_BIT_STRING* b, uint8_t bytes_used, uint8_t unused_bits) {
    if (!b || bytes_used > MAX_BITSTRING_BYTES || unused_bits > 7 || (bytes_used == 0 && unused_bits != 0))
        return false;
    b->bits_used = uint8_t(bytes_used * 8 - unused_bits);
    return true;
}

uint8_t bitstring_bytes_used(const BACNET_BIT_STRING* b) {
    return b ? uint8_t((b->bits_used + 7) / 8) : 0;
}

uint8_t bitstring_octet(const BACNET_BIT_STRING* b, uint8_t index) {
    return (b && index < MAX_BITSTRING_BYTES) ? b->value[index] : 0;
}

bool bitstring_set_octet(BACNET_BIT_STRING* b, uint8_t index, uint8_t octet) {
    if (!b || index >= MAX_BITSTRING_BYTES) return false;
    b->value[index] = octet;
    return true;
}

unsigned bitstring_bits_capacity(const BACNET_BIT_STRING* b) {
    return b ? kBitCapacity : 0;
}

bool bitstring_copy(BACNET_BIT_STRING* dest, const BACNET_BIT_STRING* src) {
    if (!dest || !src || src->bits_used > kBitCapacity) return false;
    if (dest == src) return true;
    std::memcpy(dest->value, src->value, (src->bits_used + 7u) / 8u);
    dest->bits_used = src->bits_used;
    return true;
}

bool bitstring_same(const BACNET_BIT_STRING* a, const BACNET_BIT_STRING* b) {
    if (!a || !b) return a == b;
    if (a->bits_used != b->bits_used || a->bits_used > kBitCapacity) return false;
    const unsigned full = a->bits_used / 8u;
    if (std::memcmp(a->value, b->value, full) != 0) return false;
    const unsigned rest = a->bits_used % 8u;
    if (rest == 0) return true;
    const uint8_t mask = uint8_t(0xFFu << (8 - rest));
    return (a->value[full] & mask) == (b->value[full] & mask);
}
