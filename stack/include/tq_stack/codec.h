// Tags and primitive values (clause 20 encoding rules).
//
// Encoders write to apdu and return the byte count; a NULL apdu writes nothing and returns the
// count it would write. Decoders take the bytes available (apdu_len) and return the bytes
// consumed, or BACNET_STATUS_ERROR for malformed, truncated or mistyped input; they never read
// at or past apdu + apdu_len. Decoders of a context-tagged element return 0 when the element
// at apdu is not that context tag, so optional elements can be probed without an error.
// Outputs of a failed decoder are left unchanged.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"
#include "tq_stack/values.h"

// One decoded tag header.
typedef struct BACnet_Tag {
    uint8_t number;           // tag number (application tag or context tag number)
    bool application;         // application class (number is a BACNET_APPLICATION_TAG)
    bool context;             // context class primitive (not opening/closing)
    bool opening;             // context opening tag
    bool closing;             // context closing tag
    uint32_t len_value_type;  // content length; for application BOOLEAN the value itself
} BACNET_TAG;

// Decodes the tag header at apdu. Besides the header bytes it checks that the declared content
// fits in apdu_len, so content decoders that follow can trust len_value_type. Returns the
// header length (1..7) or BACNET_STATUS_ERROR.
int bacnet_tag_decode(const uint8_t* apdu, uint32_t apdu_len, BACNET_TAG* tag);

// The classic form of the above: tag number and length/value/type, same checks. For opening
// and closing tags the value is 6 and 7 as on the wire.
int decode_tag_number_and_value(const uint8_t* apdu, uint32_t apdu_len, uint8_t* tag_number, uint32_t* value);

bool decode_is_opening_tag(const uint8_t* apdu, uint32_t apdu_len);
bool decode_is_closing_tag(const uint8_t* apdu, uint32_t apdu_len);
bool decode_is_opening_tag_number(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number);
bool decode_is_closing_tag_number(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number);
// A context-specific primitive (not opening or closing) with this tag number.
bool decode_is_context_tag(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number);

// apdu points at an opening tag; returns the length of everything between it and its matching
// closing tag (both excluded), or BACNET_STATUS_ERROR when they do not balance within apdu_len,
// a tag is malformed or nesting exceeds BACNET_MAX_NESTING_DEPTH.
int bacnet_enclosed_data_length(const uint8_t* apdu, uint32_t apdu_len);

// --- tags ---
int encode_tag(uint8_t* apdu, uint8_t tag_number, bool context_specific, uint32_t len_value_type);
int encode_opening_tag(uint8_t* apdu, uint8_t tag_number);
int encode_closing_tag(uint8_t* apdu, uint8_t tag_number);

// --- contents without tag ---
int encode_bacnet_unsigned(uint8_t* apdu, BACNET_UNSIGNED_INTEGER value);
int encode_bacnet_signed(uint8_t* apdu, int32_t value);
int encode_bacnet_enumerated(uint8_t* apdu, uint32_t value);
int encode_bacnet_real(uint8_t* apdu, float value);
int encode_bacnet_double(uint8_t* apdu, double value);
int encode_octet_string(uint8_t* apdu, const BACNET_OCTET_STRING* value);
int encode_bacnet_character_string(uint8_t* apdu, const BACNET_CHARACTER_STRING* value);
// Unused bits of the last byte are written as 0.
int encode_bitstring(uint8_t* apdu, const BACNET_BIT_STRING* value);
// Years 1900..2155 are written as years since 1900; a year below 256 is taken as already
// counted from 1900; any other year is written as unspecified (255).
int encode_bacnet_date(uint8_t* apdu, const BACNET_DATE* value);
int encode_bacnet_time(uint8_t* apdu, const BACNET_TIME* value);
// The type is masked to 10 bits and the instance to 22 bits.
int encode_bacnet_object_id(uint8_t* apdu, uint32_t object_type, uint32_t instance);

// --- application tagged ---
int encode_application_null(uint8_t* apdu);
int encode_application_boolean(uint8_t* apdu, bool value);
int encode_application_unsigned(uint8_t* apdu, BACNET_UNSIGNED_INTEGER value);
int encode_application_signed(uint8_t* apdu, int32_t value);
int encode_application_real(uint8_t* apdu, float value);
int encode_application_double(uint8_t* apdu, double value);
int encode_application_octet_string(uint8_t* apdu, const BACNET_OCTET_STRING* value);
int encode_application_character_string(uint8_t* apdu, const BACNET_CHARACTER_STRING* value);
int encode_application_bitstring(uint8_t* apdu, const BACNET_BIT_STRING* value);
int encode_application_enumerated(uint8_t* apdu, uint32_t value);
int encode_application_date(uint8_t* apdu, const BACNET_DATE* value);
int encode_application_time(uint8_t* apdu, const BACNET_TIME* value);
int encode_application_object_id(uint8_t* apdu, uint32_t object_type, uint32_t instance);

// --- context tagged ---
int encode_context_null(uint8_t* apdu, uint8_t tag_number);
int encode_context_boolean(uint8_t* apdu, uint8_t tag_number, bool value);
int encode_context_unsigned(uint8_t* apdu, uint8_t tag_number, BACNET_UNSIGNED_INTEGER value);
int encode_context_signed(uint8_t* apdu, uint8_t tag_number, int32_t value);
int encode_context_real(uint8_t* apdu, uint8_t tag_number, float value);
int encode_context_double(uint8_t* apdu, uint8_t tag_number, double value);
int encode_context_octet_string(uint8_t* apdu, uint8_t tag_number, const BACNET_OCTET_STRING* value);
int encode_context_character_string(uint8_t* apdu, uint8_t tag_number, const BACNET_CHARACTER_STRING* value);
int encode_context_bitstring(uint8_t* apdu, uint8_t tag_number, const BACNET_BIT_STRING* value);
int encode_context_enumerated(uint8_t* apdu, uint8_t tag_number, uint32_t value);
int encode_context_date(uint8_t* apdu, uint8_t tag_number, const BACNET_DATE* value);
int encode_context_time(uint8_t* apdu, uint8_t tag_number, const BACNET_TIME* value);
int encode_context_object_id(uint8_t* apdu, uint8_t tag_number, uint32_t object_type, uint32_t instance);

// --- content decoders: len_value is the content length the tag declared ---
// Unsigned, signed and enumerated take 1..4 content bytes (the value model is 32 bits).
int decode_unsigned(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value,
                    BACNET_UNSIGNED_INTEGER* value);
int decode_signed(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value, int32_t* value);
int decode_enumerated(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value, uint32_t* value);
int decode_real(const uint8_t* apdu, uint32_t apdu_len, float* value);
int decode_double(const uint8_t* apdu, uint32_t apdu_len, double* value);
int decode_octet_string(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value,
                        BACNET_OCTET_STRING* value);
// The first content byte is the character set.
int decode_character_string(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value,
                            BACNET_CHARACTER_STRING* value);
// The first content byte is the count of unused bits (0..7) in the last byte.
int decode_bitstring(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value, BACNET_BIT_STRING* value);
int decode_date(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE* value);
int decode_bacnet_time(const uint8_t* apdu, uint32_t apdu_len, BACNET_TIME* value);
int decode_object_id(const uint8_t* apdu, uint32_t apdu_len, uint16_t* object_type, uint32_t* instance);

// --- application tagged decoders: BACNET_STATUS_ERROR also for another application tag ---
int decode_application_null(const uint8_t* apdu, uint32_t apdu_len);
int decode_application_boolean(const uint8_t* apdu, uint32_t apdu_len, bool* value);
int decode_application_unsigned(const uint8_t* apdu, uint32_t apdu_len, BACNET_UNSIGNED_INTEGER* value);
int decode_application_signed(const uint8_t* apdu, uint32_t apdu_len, int32_t* value);
int decode_application_real(const uint8_t* apdu, uint32_t apdu_len, float* value);
int decode_application_double(const uint8_t* apdu, uint32_t apdu_len, double* value);
int decode_application_octet_string(const uint8_t* apdu, uint32_t apdu_len, BACNET_OCTET_STRING* value);
int decode_application_character_string(const uint8_t* apdu, uint32_t apdu_len,
                                        BACNET_CHARACTER_STRING* value);
int decode_application_bitstring(const uint8_t* apdu, uint32_t apdu_len, BACNET_BIT_STRING* value);
int decode_application_enumerated(const uint8_t* apdu, uint32_t apdu_len, uint32_t* value);
int decode_application_date(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE* value);
int decode_application_time(const uint8_t* apdu, uint32_t apdu_len, BACNET_TIME* value);
int decode_application_object_id(const uint8_t* apdu, uint32_t apdu_len, uint16_t* object_type,
                                 uint32_t* instance);

// --- context tagged decoders: 0 when apdu holds another tag ---
int decode_context_null(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number);
int decode_context_boolean(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, bool* value);
int decode_context_unsigned(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                            BACNET_UNSIGNED_INTEGER* value);
int decode_context_signed(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, int32_t* value);
int decode_context_real(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, float* value);
int decode_context_double(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, double* value);
int decode_context_octet_string(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                BACNET_OCTET_STRING* value);
int decode_context_character_string(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                    BACNET_CHARACTER_STRING* value);
int decode_context_bitstring(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                             BACNET_BIT_STRING* value);
int decode_context_enumerated(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, uint32_t* value);
int decode_context_date(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, BACNET_DATE* value);
int decode_context_time(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, BACNET_TIME* value);
int decode_context_object_id(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                             uint16_t* object_type, uint32_t* instance);
