// Cursors shared by the service codecs: a writer that sizes when it has no buffer and a
// length-checked reader. Kept header-only so the small request codecs inline them.
#pragma once

#include <cstdint>

#include "byte_order.h"
#include "tq_stack/codec.h"

struct BACnet_Datatype_By_Context_Tag;

namespace tq_stack_detail {

// Accumulates a length; writes only when the buffer is given (NULL sizes the encoding).
struct Writer {
    uint8_t* apdu;
    int len = 0;

    explicit Writer(uint8_t* out) : apdu(out) {}
    uint8_t* at() const { return apdu ? apdu + len : nullptr; }
    void add(int n) { len += n; }
};

// Reads forward through [apdu, apdu + size); every element decoder below gets only what is left.
struct Reader {
    const uint8_t* apdu;
    uint32_t size;
    uint32_t pos = 0;

    Reader(const uint8_t* in, uint32_t n) : apdu(in), size(n) {}
    const uint8_t* at() const { return apdu + pos; }
    uint32_t left() const { return size - pos; }
    bool atEnd() const { return pos >= size; }

    // A required element: its decoder must have consumed something.
    bool need(int n) {
        if (n <= 0) return false;
        pos += uint32_t(n);
        return true;
    }
    // An optional element: 0 means absent, negative is malformed.
    bool optional(int n, bool* present) {
        if (n < 0) return false;
        *present = n > 0;
        pos += uint32_t(n);
        return true;
    }
    bool opening(uint8_t number) { return take(number, true); }
    bool closing(uint8_t number) { return take(number, false); }

private:
    bool take(uint8_t number, bool open) {
        // Tag numbers below 15 have exactly one form: one octet.
        if (number < 15) {
            if (pos >= size || apdu[pos] != uint8_t((number << 4) | (open ? 0x0E : 0x0F))) return false;
            ++pos;
            return true;
        }
        BACNET_TAG tag;
        const int h = bacnet_tag_decode(at(), left(), &tag);
        if (h <= 0 || tag.number != number || (open ? !tag.opening : !tag.closing)) return false;
        pos += uint32_t(h);
        return true;
    }
};

// objectIdentifier [0], propertyIdentifier [1], propertyArrayIndex [2] OPTIONAL: the opening
// of ReadProperty, WriteProperty and ReadRange requests and acknowledgements.
struct ObjectPropertyRef {
    uint16_t type = 0;
    uint32_t instance = 0;
    uint32_t property = 0;
    uint32_t index = BACNET_ARRAY_ALL;
};

inline bool decodeObjectPropertyRefSlow(Reader& r, ObjectPropertyRef* ref) {
    bool present = false;
    return r.need(decode_context_object_id(r.at(), r.left(), 0, &ref->type, &ref->instance)) &&
           r.need(decode_context_enumerated(r.at(), r.left(), 1, &ref->property)) &&
           r.optional(decode_context_unsigned(r.at(), r.left(), 2, &ref->index), &present);
}

// The usual one-octet tags are read directly; any other form takes the general decoders.
inline bool decodeObjectPropertyRef(Reader& r, ObjectPropertyRef* ref) {
    const uint8_t* p = r.at();
    const uint32_t left = r.left();
    if (left < 7 || p[0] != 0x0C || p[5] < 0x19 || p[5] > 0x1C) return decodeObjectPropertyRefSlow(r, ref);
    const uint32_t propLen = p[5] & 0x07u;
    uint32_t pos = 6 + propLen;
    if (pos > left) return false;
    uint32_t index = BACNET_ARRAY_ALL;
    if (pos < left && (p[pos] & 0xF8) == 0x28) {
        const uint32_t indexLen = p[pos] & 0x07u;
        if (indexLen < 1 || indexLen > 4) return decodeObjectPropertyRefSlow(r, ref);
        if (pos + 1 + indexLen > left) return false;
        index = loadBeN(p + pos + 1, indexLen);
        pos += 1 + indexLen;
    } else if (pos < left && p[pos] == 0x2D) {
        return decodeObjectPropertyRefSlow(r, ref);
    }
    const uint32_t packed = loadBe32(p + 1);
    ref->type = uint16_t(packed >> BACNET_INSTANCE_BITS);
    ref->instance = packed & BACNET_MAX_INSTANCE;
    ref->property = loadBeN(p + 6, propLen);
    ref->index = index;
    r.pos += pos;
    return true;
}

// The value walk behind bacapp_decode_by_context (context_decode.cpp). budget is how many values
// may still be allocated; it is shared by all calls of one decode.
int decodeValueChain(const uint8_t* apdu, uint32_t apduLen, BACnet_Datatype_By_Context_Tag* guide,
                     BACnet_Datatype_By_Context_Tag* (*lookup)(BACnet_Datatype_By_Context_Tag*, int),
                     BACNET_APPLICATION_DATA_VALUE** values, unsigned* budget);

// Hot-path encoders of the elements every request starts with: a context tag below 15 with
// its content, written in one pass (the general encoders size first, then write).
inline int putContextUnsigned(uint8_t* apdu, uint8_t tagNumber, uint32_t value) {
    const int n = value < 0x100u ? 1 : value < 0x10000u ? 2 : value < 0x1000000u ? 3 : 4;
    if (apdu) {
        apdu[0] = uint8_t((tagNumber << 4) | 0x08 | n);
        for (int i = 0; i < n; ++i) apdu[1 + i] = uint8_t(value >> (8 * (n - 1 - i)));
    }
    return n + 1;
}

inline int putContextObjectId(uint8_t* apdu, uint8_t tagNumber, uint32_t type, uint32_t instance) {
    if (apdu) {
        const uint32_t packed =
            ((type & BACNET_MAX_OBJECT) << BACNET_INSTANCE_BITS) | (instance & BACNET_MAX_INSTANCE);
        apdu[0] = uint8_t((tagNumber << 4) | 0x08 | 4);
        apdu[1] = uint8_t(packed >> 24);
        apdu[2] = uint8_t(packed >> 16);
        apdu[3] = uint8_t(packed >> 8);
        apdu[4] = uint8_t(packed);
    }
    return 5;
}

// Octets a one-octet tag and its content take, by tag octet, for the tags that need no further
// reading: primitives with a length of 0..4 (an application BOOLEAN holds its value in the tag).
// 0 marks opening and closing tags, extended numbers or lengths, and invalid application tags.
struct TagSteps {
    uint8_t step[256];
    constexpr TagSteps() : step() {
        for (int b = 0; b < 256; ++b) {
            const int number = b >> 4, lvt = b & 0x07;
            const bool context = (b & 0x08) != 0;
            if (number == 15 || lvt >= 5) continue;
            step[b] = uint8_t(1 + (!context && number == 1 ? 0 : lvt));
        }
    }
};
inline constexpr TagSteps kTagSteps{};

// Length of what lies between the opening tag at apdu and its matching closing tag, like
// bacnet_enclosed_data_length. Short primitives (nearly every property value) are stepped over
// by the table; nesting is followed here; anything else goes to the general walk, so both give
// the same answer for every input.
inline int enclosedLength(const uint8_t* apdu, uint32_t len) {
    constexpr uint8_t kOpeningLow = 0x0E, kClosingLow = 0x0F;
    if (len == 0 || (apdu[0] & 0x0F) != kOpeningLow || (apdu[0] >> 4) == 15)
        return bacnet_enclosed_data_length(apdu, len);
    uint8_t open[BACNET_MAX_NESTING_DEPTH];
    unsigned depth = 0;
    open[depth++] = uint8_t(apdu[0] >> 4);
    uint32_t pos = 1;
    while (pos < len) {
        const uint8_t b = apdu[pos];
        if (const uint8_t step = kTagSteps.step[b]) {
            pos += step;
            continue;
        }
        const uint8_t number = uint8_t(b >> 4);
        if (number == 15) return bacnet_enclosed_data_length(apdu, len);
        if ((b & 0x0F) == kOpeningLow) {
            if (depth == BACNET_MAX_NESTING_DEPTH) return BACNET_STATUS_ERROR;
            open[depth++] = number;
        } else if ((b & 0x0F) == kClosingLow) {
            if (open[--depth] != number) return BACNET_STATUS_ERROR;
            if (depth == 0) return int(pos - 1);
        } else {
            // Extended lengths, and application tags with 6 or 7 (which the general walk rejects).
            return bacnet_enclosed_data_length(apdu, len);
        }
        ++pos;
    }
    return BACNET_STATUS_ERROR;
}

}  // namespace tq_stack_detail
