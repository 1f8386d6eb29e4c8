// Character, octet and bit strings. Every function touches only the used bytes; none clears
// the unused capacity. Functions given a NULL string pointer return false / 0.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tq_stack/values.h"

// --- character strings ---
// value may be NULL only with length 0. False (string unchanged) when length exceeds
// MAX_CHARACTER_STRING_BYTES or the encoding is not a known character set.
bool characterstring_init(BACNET_CHARACTER_STRING* s, uint8_t encoding, const char* value, size_t length);
// A NUL-terminated text in the ANSI X3.4 / UTF-8 character set; NULL gives an empty string.
bool characterstring_init_ansi(BACNET_CHARACTER_STRING* s, const char* value);
// The characters, NUL-terminated after length bytes.
const char* characterstring_value(const BACNET_CHARACTER_STRING* s);
size_t characterstring_length(const BACNET_CHARACTER_STRING* s);
size_t characterstring_capacity(const BACNET_CHARACTER_STRING* s);
uint8_t characterstring_encoding(const BACNET_CHARACTER_STRING* s);
bool characterstring_set_encoding(BACNET_CHARACTER_STRING* s, uint8_t encoding);
bool characterstring_copy(BACNET_CHARACTER_STRING* dest, const BACNET_CHARACTER_STRING* src);
// Same character set, length and bytes.
bool characterstring_same(const BACNET_CHARACTER_STRING* a, const BACNET_CHARACTER_STRING* b);
// An ANSI string holding exactly the NUL-terminated text.
bool characterstring_ansi_same(const BACNET_CHARACTER_STRING* s, const char* text);
// False (string unchanged) when the result would exceed the capacity.
bool characterstring_append(BACNET_CHARACTER_STRING* s, const char* value, size_t length);
bool characterstring_truncate(BACNET_CHARACTER_STRING* s, size_t length);

// --- octet strings ---
// value may be NULL only with length 0. False (string unchanged) above MAX_OCTET_STRING_BYTES.
bool octetstring_init(BACNET_OCTET_STRING* o, const uint8_t* value, size_t length);
// Hexadecimal text, two digits per byte, either letter case, no separators ("0AFF"). False
// (string unchanged) for NULL, an odd digit count, a non-hex character or too many bytes.
bool octetstring_init_ascii_hex(BACNET_OCTET_STRING* o, const char* hex);
uint8_t* octetstring_value(BACNET_OCTET_STRING* o);
size_t octetstring_length(const BACNET_OCTET_STRING* o);
size_t octetstring_capacity(const BACNET_OCTET_STRING* o);
bool octetstring_copy(BACNET_OCTET_STRING* dest, const BACNET_OCTET_STRING* src);
// Copies the used bytes into a caller buffer; returns the count, 0 if it does not fit.
size_t octetstring_copy_value(uint8_t* dest, size_t dest_size, const BACNET_OCTET_STRING* src);
bool octetstring_append(BACNET_OCTET_STRING* o, const uint8_t* value, size_t length);
bool octetstring_truncate(BACNET_OCTET_STRING* o, size_t length);
bool octetstring_value_same(const BACNET_OCTET_STRING* a, const BACNET_OCTET_STRING* b);

// --- bit strings (bit 0 = most significant bit of the first byte, as on the wire) ---
void bitstring_init(BACNET_BIT_STRING* b);
// Grows bits_used to cover bit_number; bits beyond the capacity (120) are ignored.
void bitstring_set_bit(BACNET_BIT_STRING* b, uint8_t bit_number, bool value);
// False for bits not in use.
bool bitstring_bit(const BACNET_BIT_STRING* b, uint8_t bit_number);
uint8_t bitstring_bits_used(const BACNET_BIT_STRING* b);
// bits_used = bytes_used * 8 - unused_bits. False (unchanged) when bytes_used exceeds
// MAX_BITSTRING_BYTES, unused_bits exceeds 7, or unused bits are given for zero bytes.
bool bitstring_set_bits_used(BACNET_BIT_STRING* b, uint8_t bytes_used, uint8_t unused_bits);
uint8_t bitstring_bytes_used(const BACNET_BIT_STRING* b);
// Byte index of the stored bytes (0 beyond the capacity).
uint8_t bitstring_octet(const BACNET_BIT_STRING* b, uint8_t index);
// Stores a whole byte; bits_used is not changed. False beyond the capacity.
bool bitstring_set_octet(BACNET_BIT_STRING* b, uint8_t index, uint8_t octet);
unsigned bitstring_bits_capacity(const BACNET_BIT_STRING* b);
bool bitstring_copy(BACNET_BIT_STRING* dest, const BACNET_BIT_STRING* src);
// Same bit count and same bits in use (unused trailing bits do not matter).
bool bitstring_same(const BACNET_BIT_STRING* a, const BACNET_BIT_STRING* b);
