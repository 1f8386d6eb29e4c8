// Application values: one primitive of any application tag, as BACNET_APPLICATION_DATA_VALUE.
// Length conventions as in codec.h. None of these functions reads or writes value->next.
#pragma once

#include <cstdint>
#include <cstring>

#include "tq_stack/codec.h"
#include "tq_stack/values.h"

// An empty value: tag NULL, application tagged, next NULL. The union is not cleared.
void bacapp_value_init(BACNET_APPLICATION_DATA_VALUE* value);

// Decodes one application-tagged value (tags 0..12). Returns bytes consumed or
// BACNET_STATUS_ERROR (malformed, truncated, a context tag, a reserved tag 13..15). Only the
// used bytes of a string are written.
int bacapp_decode_application_data_full(const uint8_t* apdu, uint32_t apdu_len,
                                        BACNET_APPLICATION_DATA_VALUE* value);

// The same. REAL, Unsigned and ENUMERATED behind a one-byte tag, which make up most property
// values, are decoded here without a call; static so that no copy of it is ever exported.
static inline int bacapp_decode_application_data(const uint8_t* apdu, uint32_t apdu_len,
                                                 BACNET_APPLICATION_DATA_VALUE* value) {
    if (apdu && value && apdu_len > 1) {
        const unsigned first = apdu[0];
        if (first == (BACNET_APPLICATION_TAG_REAL << 4 | 4) && apdu_len >= 5) {
            const uint32_t bits = (uint32_t(apdu[1]) << 24) | (uint32_t(apdu[2]) << 16) |
                                  (uint32_t(apdu[3]) << 8) | uint32_t(apdu[4]);
            std::memcpy(&value->type.Real, &bits, sizeof bits);
            value->tag = BACNET_APPLICATION_TAG_REAL;
            value->context_specific = false;
            value->context_tag = 0;
            return 5;
        }
        const unsigned tag = first >> 4;
        const unsigned len = first & 0x0Fu;  // the class bit pushes context tags out of 1..4
        if ((tag == BACNET_APPLICATION_TAG_UNSIGNED_INT || tag == BACNET_APPLICATION_TAG_ENUMERATED) &&
            len - 1u < 4u && len < apdu_len) {
            const uint8_t* p = apdu + 1;
            uint32_t v;
            switch (len) {
                case 1:
                    v = p[0];
                    break;
                case 2:
                    v = (uint32_t(p[0]) << 8) | p[1];
                    break;
                case 3:
                    v = (uint32_t(p[0]) << 16) | (uint32_t(p[1]) << 8) | p[2];
                    break;
                case 4:
                    v = (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | p[3];
                    break;
                default:
                    return bacapp_decode_application_data_full(apdu, apdu_len, value);
            }
            if (tag == BACNET_APPLICATION_TAG_UNSIGNED_INT)
                value->type.Unsigned_Int = v;
            else
                value->type.Enumerated = v;
            value->tag = uint8_t(tag);
            value->context_specific = false;
            value->context_tag = 0;
            return int(len + 1);
        }
    }
    return bacapp_decode_application_data_full(apdu, apdu_len, value);
}

// Decodes one context-tagged primitive whose content follows the rules of application tag
// app_tag (the type the caller knows the element to have). Sets context_specific, context_tag
// and tag. Returns bytes consumed or BACNET_STATUS_ERROR (also for an opening or closing tag,
// an application tag, or app_tag above 12).
int bacapp_decode_context_data(const uint8_t* apdu, uint32_t apdu_len, BACNET_APPLICATION_DATA_VALUE* value,
                               uint8_t app_tag);

// Application tagged, whatever context_specific says. BACNET_STATUS_ERROR for a tag above 12.
int bacapp_encode_application_data(uint8_t* apdu, const BACNET_APPLICATION_DATA_VALUE* value);
// Context tagged with context_tag when context_specific is set, application tagged otherwise.
int bacapp_encode_data(uint8_t* apdu, const BACNET_APPLICATION_DATA_VALUE* value);

// Copies tag, context fields and value (strings: only their used bytes); next is not copied.
// False (dest unchanged) for a source tag above 12.
bool bacapp_copy(BACNET_APPLICATION_DATA_VALUE* dest, const BACNET_APPLICATION_DATA_VALUE* src);

// Same tag and same value (REAL/Double compare as floating point, so NaN is never the same;
// strings and bit strings by their used content). The context fields take no part.
bool bacapp_same_value(const BACNET_APPLICATION_DATA_VALUE* a, const BACNET_APPLICATION_DATA_VALUE* b);
