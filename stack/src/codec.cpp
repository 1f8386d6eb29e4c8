#include "tq_stack/codec.h"

#include <cstring>

#include "byte_order.h"

using namespace tq_stack_detail;

namespace {

// Tag header layout: number in the high nibble (15 = extended number in the next byte), class
// bit 0x08, length/value/type in the low three bits (5 = extended length follows).
constexpr uint8_t kClassContext = 0x08;
constexpr uint8_t kExtendedNumber = 15;
constexpr uint8_t kExtendedLength = 5;
constexpr uint8_t kOpening = 6;
constexpr uint8_t kClosing = 7;
constexpr uint8_t kLength16 = 254;
constexpr uint8_t kLength32 = 255;

int encodeTagHeader(uint8_t* apdu, uint8_t tagNumber, bool context, uint8_t lowBits) {
    int len = tagNumber < kExtendedNumber ? 1 : 2;
    if (apdu) {
        uint8_t first = uint8_t((context ? kClassContext : 0) | lowBits);
        if (len == 1) {
            apdu[0] = uint8_t(first | (tagNumber << 4));
        } else {
            apdu[0] = uint8_t(first | (kExtendedNumber << 4));
            apdu[1] = tagNumber;
        }
    }
    return len;
}

// Content decoders of fixed-size types share the variable-length signature so that the tagged
// decoders below can be one template.
int decodeRealContent(const uint8_t* apdu, uint32_t apduLen, uint32_t lenValue, float* value) {
    return lenValue == 4 ? decode_real(apdu, apduLen, value) : BACNET_STATUS_ERROR;
}
int decodeDoubleContent(const uint8_t* apdu, uint32_t apduLen, uint32_t lenValue, double* value) {
    return lenValue == 8 ? decode_double(apdu, apduLen, value) : BACNET_STATUS_ERROR;
}
int decodeDateContent(const uint8_t* apdu, uint32_t apduLen, uint32_t lenValue, BACNET_DATE* value) {
    return lenValue == 4 ? decode_date(apdu, apduLen, value) : BACNET_STATUS_ERROR;
}
int decodeTimeContent(const uint8_t* apdu, uint32_t apduLen, uint32_t lenValue, BACNET_TIME* value) {
    return lenValue == 4 ? decode_bacnet_time(apdu, apduLen, value) : BACNET_STATUS_ERROR;
}
int decodeNullContent(const uint8_t*, uint32_t, uint32_t lenValue, bool*) {
    return lenValue == 0 ? 0 : BACNET_STATUS_ERROR;
}
int decodeContextBooleanContent(const uint8_t* apdu, uint32_t apduLen, uint32_t lenValue, bool* value) {
    if (lenValue != 1 || apduLen < 1 || apdu[0] > 1) return BACNET_STATUS_ERROR;
    *value = apdu[0] != 0;
    return 1;
}

struct ObjectId {
    uint16_t type;
    uint32_t instance;
};
int decodeObjectIdContent(const uint8_t* apdu, uint32_t apduLen, uint32_t lenValue, ObjectId* value) {
    if (lenValue != 4) return BACNET_STATUS_ERROR;
    return decode_object_id(apdu, apduLen, &value->type, &value->instance);
}

template <typename T, int (*Content)(const uint8_t*, uint32_t, uint32_t, T*)>
int decodeApplication(const uint8_t* apdu, uint32_t apduLen, uint8_t appTag, T* value) {
    BACNET_TAG tag;
    int h = bacnet_tag_decode(apdu, apduLen, &tag);
    if (h < 0 || !tag.application || tag.number != appTag) return BACNET_STATUS_ERROR;
    int n = Content(apdu + h, apduLen - uint32_t(h), tag.len_value_type, value);
    return n < 0 ? BACNET_STATUS_ERROR : h + n;
}

template <typename T, int (*Content)(const uint8_t*, uint32_t, uint32_t, T*)>
int decodeContext(const uint8_t* apdu, uint32_t apduLen, uint8_t tagNumber, T* value) {
    if (apduLen == 0) return 0;
    BACNET_TAG tag;
    int h = bacnet_tag_decode(apdu, apduLen, &tag);
    if (h < 0) return BACNET_STATUS_ERROR;
    if (!tag.context || tag.number != tagNumber) return 0;
    int n = Content(apdu + h, apduLen - uint32_t(h), tag.len_value_type, value);
    return n < 0 ? BACNET_STATUS_ERROR : h + n;
}

template <typename T, int (*Content)(uint8_t*, T)>
int encodeTagged(uint8_t* apdu, uint8_t tagNumber, bool context, T value) {
    int n = Content(nullptr, value);
    int h = encode_tag(apdu, tagNumber, context, uint32_t(n));
    if (apdu) Content(apdu + h, value);
    return h + n;
}

int encodeObjectIdPacked(uint8_t* apdu, uint32_t packed) {
    if (apdu) storeBe32(apdu, packed);
    return 4;
}

uint32_t packObjectId(uint32_t type, uint32_t instance) {
    return ((type & BACNET_MAX_OBJECT) << BACNET_INSTANCE_BITS) | (instance & BACNET_MAX_INSTANCE);
}

size_t usedCharacters(const BACNET_CHARACTER_STRING* s) {
    return s->length < MAX_CHARACTER_STRING_BYTES ? s->length : MAX_CHARACTER_STRING_BYTES;
}

size_t usedOctets(const BACNET_OCTET_STRING* o) {
    return o->length < MAX_OCTET_STRING_BYTES ? o->length : MAX_OCTET_STRING_BYTES;
}

uint32_t usedBits(const BACNET_BIT_STRING* b) {
    return b->bits_used < MAX_BITSTRING_BYTES * 8 ? b->bits_used : MAX_BITSTRING_BYTES * 8;
}

}  // namespace

int bacnet_tag_decode(const uint8_t* apdu, uint32_t apdu_len, BACNET_TAG* tag) {
    if (!apdu || !tag || apdu_len == 0) return BACNET_STATUS_ERROR;
    const uint8_t first = apdu[0];
    uint32_t pos = 1;
    uint8_t number = first >> 4;
    if (number == kExtendedNumber) {
        if (apdu_len < 2 || apdu[1] == 0xFF) return BACNET_STATUS_ERROR;  // 255 is reserved
        number = apdu[1];
        pos = 2;
    }
    const bool context = (first & kClassContext) != 0;
    const uint8_t lvt = first & 0x07;
    BACNET_TAG t{number, !context, false, false, false, lvt};
    if (context && (lvt == kOpening || lvt == kClosing)) {
        t.opening = lvt == kOpening;
        t.closing = lvt == kClosing;
        *tag = t;
        return int(pos);
    }
    t.context = context;
    if (lvt == kExtendedLength) {
        if (pos >= apdu_len) return BACNET_STATUS_ERROR;
        const uint8_t ext = apdu[pos++];
        if (ext == kLength16) {
            if (apdu_len - pos < 2) return BACNET_STATUS_ERROR;
            t.len_value_type = (uint32_t(apdu[pos]) << 8) | apdu[pos + 1];
            pos += 2;
        } else if (ext == kLength32) {
            if (apdu_len - pos < 4) return BACNET_STATUS_ERROR;
            t.len_value_type = loadBe32(apdu + pos);
            pos += 4;
        } else {
            t.len_value_type = ext;
        }
    } else if (lvt > kExtendedLength) {
        return BACNET_STATUS_ERROR;  // 6 and 7 exist only as context opening/closing tags
    }
    // An application BOOLEAN carries its value in the length field and has no content.
    const bool hasContent = !(t.application && number == BACNET_APPLICATION_TAG_BOOLEAN);
    if (hasContent && t.len_value_type > apdu_len - pos) return BACNET_STATUS_ERROR;
    *tag = t;
    return int(pos);
}

int decode_tag_number_and_value(const uint8_t* apdu, uint32_t apdu_len, uint8_t* tag_number,
                                uint32_t* value) {
    BACNET_TAG tag;
    int h = bacnet_tag_decode(apdu, apdu_len, &tag);
    if (h < 0) return BACNET_STATUS_ERROR;
    if (tag_number) *tag_number = tag.number;
    if (value) *value = tag.len_value_type;
    return h;
}

bool decode_is_opening_tag(const uint8_t* apdu, uint32_t apdu_len) {
    BACNET_TAG tag;
    return bacnet_tag_decode(apdu, apdu_len, &tag) > 0 && tag.opening;
}

bool decode_is_closing_tag(const uint8_t* apdu, uint32_t apdu_len) {
    BACNET_TAG tag;
    return bacnet_tag_decode(apdu, apdu_len, &tag) > 0 && tag.closing;
}

bool decode_is_opening_tag_number(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number) {
    BACNET_TAG tag;
    return bacnet_tag_decode(apdu, apdu_len, &tag) > 0 && tag.opening && tag.number == tag_number;
}

bool decode_is_closing_tag_number(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number) {
    BACNET_TAG tag;
    return bacnet_tag_decode(apdu, apdu_len, &tag) > 0 && tag.closing && tag.number == tag_number;
}

bool decode_is_context_tag(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number) {
    BACNET_TAG tag;
    return bacnet_tag_decode(apdu, apdu_len, &tag) > 0 && tag.context && tag.number == tag_number;
}

int bacnet_enclosed_data_length(const uint8_t* apdu, uint32_t apdu_len) {
    BACNET_TAG tag;
    int h = bacnet_tag_decode(apdu, apdu_len, &tag);
    if (h < 0 || !tag.opening) return BACNET_STATUS_ERROR;
    uint8_t open[BACNET_MAX_NESTING_DEPTH];
    unsigned depth = 0;
    open[depth++] = tag.number;
    const uint32_t start = uint32_t(h);
    uint32_t pos = start;
    while (pos < apdu_len) {
        h = bacnet_tag_decode(apdu + pos, apdu_len - pos, &tag);
        if (h < 0) return BACNET_STATUS_ERROR;
        if (tag.opening) {
            if (depth == BACNET_MAX_NESTING_DEPTH) return BACNET_STATUS_ERROR;
            open[depth++] = tag.number;
            pos += uint32_t(h);
        } else if (tag.closing) {
            if (open[--depth] != tag.number) return BACNET_STATUS_ERROR;
            if (depth == 0) return int(pos - start);
            pos += uint32_t(h);
        } else {
            const bool hasContent = !(tag.application && tag.number == BACNET_APPLICATION_TAG_BOOLEAN);
            // bacnet_tag_decode has checked that the content fits.
            pos += uint32_t(h) + (hasContent ? tag.len_value_type : 0);
        }
    }
    return BACNET_STATUS_ERROR;
}

int encode_tag(uint8_t* apdu, uint8_t tag_number, bool context_specific, uint32_t len_value_type) {
    const uint8_t low = len_value_type <= 4 ? uint8_t(len_value_type) : kExtendedLength;
    int len = encodeTagHeader(apdu, tag_number, context_specific, low);
    if (len_value_type <= 4) return len;
    if (len_value_type <= 253) {
        if (apdu) apdu[len] = uint8_t(len_value_type);
        return len + 1;
    }
    if (len_value_type <= 0xFFFF) {
        if (apdu) {
            apdu[len] = kLength16;
            apdu[len + 1] = uint8_t(len_value_type >> 8);
            apdu[len + 2] = uint8_t(len_value_type);
        }
        return len + 3;
    }
    if (apdu) {
        apdu[len] = kLength32;
        storeBe32(apdu + len + 1, len_value_type);
    }
    return len + 5;
}

int encode_opening_tag(uint8_t* apdu, uint8_t tag_number) {
    return encodeTagHeader(apdu, tag_number, true, kOpening);
}

int encode_closing_tag(uint8_t* apdu, uint8_t tag_number) {
    return encodeTagHeader(apdu, tag_number, true, kClosing);
}

// --- contents ---

int encode_bacnet_unsigned(uint8_t* apdu, BACNET_UNSIGNED_INTEGER value) {
    const int len = value < 0x100u ? 1 : value < 0x10000u ? 2 : value < 0x1000000u ? 3 : 4;
    if (apdu) {
        for (int i = 0; i < len; ++i) apdu[i] = uint8_t(value >> (8 * (len - 1 - i)));
    }
    return len;
}

int encode_bacnet_enumerated(uint8_t* apdu, uint32_t value) {
    return encode_bacnet_unsigned(apdu, value);
}

int encode_bacnet_signed(uint8_t* apdu, int32_t value) {
    const int len = (value >= -128 && value < 128)           ? 1
                    : (value >= -32768 && value < 32768)     ? 2
                    : (value >= -8388608 && value < 8388608) ? 3
                                                             : 4;
    if (apdu) {
        const uint32_t bits = uint32_t(value);
        for (int i = 0; i < len; ++i) apdu[i] = uint8_t(bits >> (8 * (len - 1 - i)));
    }
    return len;
}

int encode_bacnet_real(uint8_t* apdu, float value) {
    if (apdu) storeBe32(apdu, bitsOfFloat(value));
    return 4;
}

int encode_bacnet_double(uint8_t* apdu, double value) {
    if (apdu) storeBe64(apdu, bitsOfDouble(value));
    return 8;
}

int encode_octet_string(uint8_t* apdu, const BACNET_OCTET_STRING* value) {
    if (!value) return 0;
    const size_t n = usedOctets(value);
    if (apdu && n) std::memcpy(apdu, value->value, n);
    return int(n);
}

int encode_bacnet_character_string(uint8_t* apdu, const BACNET_CHARACTER_STRING* value) {
    if (!value) return 0;
    const size_t n = usedCharacters(value);
    if (apdu) {
        apdu[0] = value->encoding;
        if (n) std::memcpy(apdu + 1, value->value, n);
    }
    return int(n + 1);
}

int encode_bitstring(uint8_t* apdu, const BACNET_BIT_STRING* value) {
    if (!value) return 0;
    const uint32_t bits = usedBits(value);
    const uint32_t bytes = (bits + 7) / 8;
    const uint8_t unused = uint8_t(bytes * 8 - bits);
    if (apdu) {
        apdu[0] = unused;
        if (bytes) {
            std::memcpy(apdu + 1, value->value, bytes);
            apdu[bytes] = uint8_t(apdu[bytes] & (0xFFu << unused));
        }
    }
    return int(bytes + 1);
}

int encode_bacnet_date(uint8_t* apdu, const BACNET_DATE* value) {
    if (!value) return 0;
    if (apdu) {
        const uint16_t year = value->year;
        apdu[0] = year >= 1900 && year <= 2155 ? uint8_t(year - 1900) : year < 256 ? uint8_t(year) : 255;
        apdu[1] = value->month;
        apdu[2] = value->day;
        apdu[3] = value->wday;
    }
    return 4;
}

int encode_bacnet_time(uint8_t* apdu, const BACNET_TIME* value) {
    if (!value) return 0;
    if (apdu) {
        apdu[0] = value->hour;
        apdu[1] = value->min;
        apdu[2] = value->sec;
        apdu[3] = value->hundredths;
    }
    return 4;
}

int encode_bacnet_object_id(uint8_t* apdu, uint32_t object_type, uint32_t instance) {
    return encodeObjectIdPacked(apdu, packObjectId(object_type, instance));
}

// --- application tagged ---

int encode_application_null(uint8_t* apdu) {
    return encode_tag(apdu, BACNET_APPLICATION_TAG_NULL, false, 0);
}

int encode_application_boolean(uint8_t* apdu, bool value) {
    return encode_tag(apdu, BACNET_APPLICATION_TAG_BOOLEAN, false, value ? 1 : 0);
}

int encode_application_unsigned(uint8_t* apdu, BACNET_UNSIGNED_INTEGER value) {
    return encodeTagged<BACNET_UNSIGNED_INTEGER, encode_bacnet_unsigned>(
        apdu, BACNET_APPLICATION_TAG_UNSIGNED_INT, false, value);
}

int encode_application_signed(uint8_t* apdu, int32_t value) {
    return encodeTagged<int32_t, encode_bacnet_signed>(apdu, BACNET_APPLICATION_TAG_SIGNED_INT, false, value);
}

int encode_application_real(uint8_t* apdu, float value) {
    if (apdu) {
        apdu[0] = uint8_t(BACNET_APPLICATION_TAG_REAL << 4 | 4);
        storeBe32(apdu + 1, bitsOfFloat(value));
    }
    return 5;
}

int encode_application_double(uint8_t* apdu, double value) {
    return encodeTagged<double, encode_bacnet_double>(apdu, BACNET_APPLICATION_TAG_DOUBLE, false, value);
}

int encode_application_octet_string(uint8_t* apdu, const BACNET_OCTET_STRING* value) {
    return encodeTagged<const BACNET_OCTET_STRING*, encode_octet_string>(
        apdu, BACNET_APPLICATION_TAG_OCTET_STRING, false, value);
}

int encode_application_character_string(uint8_t* apdu, const BACNET_CHARACTER_STRING* value) {
    return encodeTagged<const BACNET_CHARACTER_STRING*, encode_bacnet_character_string>(
        apdu, BACNET_APPLICATION_TAG_CHARACTER_STRING, false, value);
}

int encode_application_bitstring(uint8_t* apdu, const BACNET_BIT_STRING* value) {
    return encodeTagged<const BACNET_BIT_STRING*, encode_bitstring>(apdu, BACNET_APPLICATION_TAG_BIT_STRING,
                                                                    false, value);
}

int encode_application_enumerated(uint8_t* apdu, uint32_t value) {
    return encodeTagged<uint32_t, encode_bacnet_enumerated>(apdu, BACNET_APPLICATION_TAG_ENUMERATED, false,
                                                            value);
}

int encode_application_date(uint8_t* apdu, const BACNET_DATE* value) {
    return encodeTagged<const BACNET_DATE*, encode_bacnet_date>(apdu, BACNET_APPLICATION_TAG_DATE, false,
                                                                value);
}

int encode_application_time(uint8_t* apdu, const BACNET_TIME* value) {
    return encodeTagged<const BACNET_TIME*, encode_bacnet_time>(apdu, BACNET_APPLICATION_TAG_TIME, false,
                                                                value);
}

int encode_application_object_id(uint8_t* apdu, uint32_t object_type, uint32_t instance) {
    return encodeTagged<uint32_t, encodeObjectIdPacked>(apdu, BACNET_APPLICATION_TAG_OBJECT_ID, false,
                                                        packObjectId(object_type, instance));
}

// --- context tagged ---

int encode_context_null(uint8_t* apdu, uint8_t tag_number) {
    return encode_tag(apdu, tag_number, true, 0);
}

int encode_context_boolean(uint8_t* apdu, uint8_t tag_number, bool value) {
    int h = encode_tag(apdu, tag_number, true, 1);
    if (apdu) apdu[h] = value ? 1 : 0;
    return h + 1;
}

int encode_context_unsigned(uint8_t* apdu, uint8_t tag_number, BACNET_UNSIGNED_INTEGER value) {
    return encodeTagged<BACNET_UNSIGNED_INTEGER, encode_bacnet_unsigned>(apdu, tag_number, true, value);
}

int encode_context_signed(uint8_t* apdu, uint8_t tag_number, int32_t value) {
    return encodeTagged<int32_t, encode_bacnet_signed>(apdu, tag_number, true, value);
}

int encode_context_real(uint8_t* apdu, uint8_t tag_number, float value) {
    return encodeTagged<float, encode_bacnet_real>(apdu, tag_number, true, value);
}

int encode_context_double(uint8_t* apdu, uint8_t tag_number, double value) {
    return encodeTagged<double, encode_bacnet_double>(apdu, tag_number, true, value);
}

int encode_context_octet_string(uint8_t* apdu, uint8_t tag_number, const BACNET_OCTET_STRING* value) {
    return encodeTagged<const BACNET_OCTET_STRING*, encode_octet_string>(apdu, tag_number, true, value);
}

int encode_context_character_string(uint8_t* apdu, uint8_t tag_number, const BACNET_CHARACTER_STRING* value) {
    return encodeTagged<const BACNET_CHARACTER_STRING*, encode_bacnet_character_string>(apdu, tag_number,
                                                                                        true, value);
}

int encode_context_bitstring(uint8_t* apdu, uint8_t tag_number, const BACNET_BIT_STRING* value) {
    return encodeTagged<const BACNET_BIT_STRING*, encode_bitstring>(apdu, tag_number, true, value);
}

int encode_context_enumerated(uint8_t* apdu, uint8_t tag_number, uint32_t value) {
    return encodeTagged<uint32_t, encode_bacnet_enumerated>(apdu, tag_number, true, value);
}

int encode_context_date(uint8_t* apdu, uint8_t tag_number, const BACNET_DATE* value) {
    return encodeTagged<const BACNET_DATE*, encode_bacnet_date>(apdu, tag_number, true, value);
}

int encode_context_time(uint8_t* apdu, uint8_t tag_number, const BACNET_TIME* value) {
    return encodeTagged<const BACNET_TIME*, encode_bacnet_time>(apdu, tag_number, true, value);
}

int encode_context_object_id(uint8_t* apdu, uint8_t tag_number, uint32_t object_type, uint32_t instance) {
    return encodeTagged<uint32_t, encodeObjectIdPacked>(apdu, tag_number, true,
                                                        packObjectId(object_type, instance));
}

// --- content decoders ---

int decode_unsigned(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value,
                    BACNET_UNSIGNED_INTEGER* value) {
    if (!apdu || !value || len_value < 1 || len_value > 4 || len_value > apdu_len) return BACNET_STATUS_ERROR;
    *value = loadBeN(apdu, len_value);
    return int(len_value);
}

int decode_enumerated(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value, uint32_t* value) {
    return decode_unsigned(apdu, apdu_len, len_value, value);
}

int decode_signed(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value, int32_t* value) {
    if (!apdu || !value || len_value < 1 || len_value > 4 || len_value > apdu_len) return BACNET_STATUS_ERROR;
    uint32_t bits = loadBeN(apdu, len_value);
    // Sign extension by masking, not by shifting a negative number.
    if ((apdu[0] & 0x80) && len_value < 4) bits |= ~0u << (8 * len_value);
    *value = int32_t(bits);
    return int(len_value);
}

int decode_real(const uint8_t* apdu, uint32_t apdu_len, float* value) {
    if (!apdu || !value || apdu_len < 4) return BACNET_STATUS_ERROR;
    *value = floatFromBits(loadBe32(apdu));
    return 4;
}

int decode_double(const uint8_t* apdu, uint32_t apdu_len, double* value) {
    if (!apdu || !value || apdu_len < 8) return BACNET_STATUS_ERROR;
    *value = doubleFromBits(loadBe64(apdu));
    return 8;
}

int decode_octet_string(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value,
                        BACNET_OCTET_STRING* value) {
    if (!value || len_value > apdu_len || len_value > MAX_OCTET_STRING_BYTES || (len_value && !apdu))
        return BACNET_STATUS_ERROR;
    if (len_value) std::memcpy(value->value, apdu, len_value);
    value->length = len_value;
    return int(len_value);
}

int decode_character_string(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value,
                            BACNET_CHARACTER_STRING* value) {
    if (!apdu || !value || len_value < 1 || len_value > apdu_len ||
        len_value - 1 > MAX_CHARACTER_STRING_BYTES)
        return BACNET_STATUS_ERROR;
    const uint32_t n = len_value - 1;
    value->encoding = apdu[0];
    std::memcpy(value->value, apdu + 1, n);
    value->value[n] = '\0';
    value->length = n;
    return int(len_value);
}

int decode_bitstring(const uint8_t* apdu, uint32_t apdu_len, uint32_t len_value, BACNET_BIT_STRING* value) {
    if (!apdu || !value || len_value < 1 || len_value > apdu_len || len_value - 1 > MAX_BITSTRING_BYTES)
        return BACNET_STATUS_ERROR;
    const uint32_t bytes = len_value - 1;
    const uint8_t unused = apdu[0];
    if (unused > 7 || (bytes == 0 && unused != 0)) return BACNET_STATUS_ERROR;
    if (bytes) std::memcpy(value->value, apdu + 1, bytes);
    value->bits_used = uint8_t(bytes * 8 - unused);
    return int(len_value);
}

int decode_date(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE* value) {
    if (!apdu || !value || apdu_len < 4) return BACNET_STATUS_ERROR;
    value->year = uint16_t(1900 + apdu[0]);
    value->month = apdu[1];
    value->day = apdu[2];
    value->wday = apdu[3];
    return 4;
}

int decode_bacnet_time(const uint8_t* apdu, uint32_t apdu_len, BACNET_TIME* value) {
    if (!apdu || !value || apdu_len < 4) return BACNET_STATUS_ERROR;
    value->hour = apdu[0];
    value->min = apdu[1];
    value->sec = apdu[2];
    value->hundredths = apdu[3];
    return 4;
}

int decode_object_id(const uint8_t* apdu, uint32_t apdu_len, uint16_t* object_type, uint32_t* instance) {
    if (!apdu || !object_type || !instance || apdu_len < 4) return BACNET_STATUS_ERROR;
    const uint32_t packed = loadBe32(apdu);
    *object_type = uint16_t(packed >> BACNET_INSTANCE_BITS);
    *instance = packed & BACNET_MAX_INSTANCE;
    return 4;
}

// --- application tagged decoders ---

int decode_application_null(const uint8_t* apdu, uint32_t apdu_len) {
    bool unused;
    return decodeApplication<bool, decodeNullContent>(apdu, apdu_len, BACNET_APPLICATION_TAG_NULL, &unused);
}

int decode_application_boolean(const uint8_t* apdu, uint32_t apdu_len, bool* value) {
    BACNET_TAG tag;
    int h = bacnet_tag_decode(apdu, apdu_len, &tag);
    if (h < 0 || !value || !tag.application || tag.number != BACNET_APPLICATION_TAG_BOOLEAN ||
        tag.len_value_type > 1)
        return BACNET_STATUS_ERROR;
    *value = tag.len_value_type == 1;
    return h;
}

__attribute__((noinline)) static int decodeApplicationUnsignedSlow(const uint8_t* apdu, uint32_t apduLen,
                                                                   BACNET_UNSIGNED_INTEGER* value) {
    return decodeApplication<BACNET_UNSIGNED_INTEGER, decode_unsigned>(
        apdu, apduLen, BACNET_APPLICATION_TAG_UNSIGNED_INT, value);
}

int decode_application_unsigned(const uint8_t* apdu, uint32_t apdu_len, BACNET_UNSIGNED_INTEGER* value) {
    // One tag byte with a length of 1..4 is every Unsigned a 32-bit value can hold.
    if (apdu && value && apdu_len >= 2) {
        const uint32_t len = uint32_t(apdu[0]) - (BACNET_APPLICATION_TAG_UNSIGNED_INT << 4);
        if (len - 1 < 4 && len < apdu_len) {
            *value = loadBeN(apdu + 1, len);
            return int(len + 1);
        }
    }
    return decodeApplicationUnsignedSlow(apdu, apdu_len, value);
}

int decode_application_signed(const uint8_t* apdu, uint32_t apdu_len, int32_t* value) {
    return decodeApplication<int32_t, decode_signed>(apdu, apdu_len, BACNET_APPLICATION_TAG_SIGNED_INT,
                                                     value);
}

// The general path of the tagged decoders below, kept out of line so that their one-octet fast
// paths need no stack frame.
__attribute__((noinline)) static int decodeApplicationRealSlow(const uint8_t* apdu, uint32_t apduLen,
                                                               float* value) {
    return decodeApplication<float, decodeRealContent>(apdu, apduLen, BACNET_APPLICATION_TAG_REAL, value);
}

int decode_application_real(const uint8_t* apdu, uint32_t apdu_len, float* value) {
    // The common case of a property value: one tag byte, four content bytes.
    if (!apdu || !value) return BACNET_STATUS_ERROR;
    if (apdu_len >= 5 && apdu[0] == (BACNET_APPLICATION_TAG_REAL << 4 | 4)) {
        *value = floatFromBits(loadBe32(apdu + 1));
        return 5;
    }
    return decodeApplicationRealSlow(apdu, apdu_len, value);
}

int decode_application_double(const uint8_t* apdu, uint32_t apdu_len, double* value) {
    return decodeApplication<double, decodeDoubleContent>(apdu, apdu_len, BACNET_APPLICATION_TAG_DOUBLE,
                                                          value);
}

int decode_application_octet_string(const uint8_t* apdu, uint32_t apdu_len, BACNET_OCTET_STRING* value) {
    return decodeApplication<BACNET_OCTET_STRING, decode_octet_string>(
        apdu, apdu_len, BACNET_APPLICATION_TAG_OCTET_STRING, value);
}

int decode_application_character_string(const uint8_t* apdu, uint32_t apdu_len,
                                        BACNET_CHARACTER_STRING* value) {
    return decodeApplication<BACNET_CHARACTER_STRING, decode_character_string>(
        apdu, apdu_len, BACNET_APPLICATION_TAG_CHARACTER_STRING, value);
}

int decode_application_bitstring(const uint8_t* apdu, uint32_t apdu_len, BACNET_BIT_STRING* value) {
    return decodeApplication<BACNET_BIT_STRING, decode_bitstring>(apdu, apdu_len,
                                                                  BACNET_APPLICATION_TAG_BIT_STRING, value);
}

int decode_application_enumerated(const uint8_t* apdu, uint32_t apdu_len, uint32_t* value) {
    return decodeApplication<uint32_t, decode_enumerated>(apdu, apdu_len, BACNET_APPLICATION_TAG_ENUMERATED,
                                                          value);
}

int decode_application_date(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE* value) {
    return decodeApplication<BACNET_DATE, decodeDateContent>(apdu, apdu_len, BACNET_APPLICATION_TAG_DATE,
                                                             value);
}

int decode_application_time(const uint8_t* apdu, uint32_t apdu_len, BACNET_TIME* value) {
    return decodeApplication<BACNET_TIME, decodeTimeContent>(apdu, apdu_len, BACNET_APPLICATION_TAG_TIME,
                                                             value);
}

int decode_application_object_id(const uint8_t* apdu, uint32_t apdu_len, uint16_t* object_type,
                                 uint32_t* instance) {
    if (!object_type || !instance) return BACNET_STATUS_ERROR;
    ObjectId id;
    int n = decodeApplication<ObjectId, decodeObjectIdContent>(apdu, apdu_len,
                                                               BACNET_APPLICATION_TAG_OBJECT_ID, &id);
    if (n > 0) {
        *object_type = id.type;
        *instance = id.instance;
    }
    return n;
}

// --- context tagged decoders ---

int decode_context_null(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number) {
    bool unused;
    return decodeContext<bool, decodeNullContent>(apdu, apdu_len, tag_number, &unused);
}

int decode_context_boolean(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, bool* value) {
    if (!value) return BACNET_STATUS_ERROR;
    return decodeContext<bool, decodeContextBooleanContent>(apdu, apdu_len, tag_number, value);
}

int decode_context_unsigned(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                            BACNET_UNSIGNED_INTEGER* value) {
    return decodeContext<BACNET_UNSIGNED_INTEGER, decode_unsigned>(apdu, apdu_len, tag_number, value);
}

int decode_context_signed(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, int32_t* value) {
    return decodeContext<int32_t, decode_signed>(apdu, apdu_len, tag_number, value);
}

int decode_context_real(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, float* value) {
    return decodeContext<float, decodeRealContent>(apdu, apdu_len, tag_number, value);
}

int decode_context_double(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, double* value) {
    return decodeContext<double, decodeDoubleContent>(apdu, apdu_len, tag_number, value);
}

int decode_context_octet_string(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                BACNET_OCTET_STRING* value) {
    return decodeContext<BACNET_OCTET_STRING, decode_octet_string>(apdu, apdu_len, tag_number, value);
}

int decode_context_character_string(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                    BACNET_CHARACTER_STRING* value) {
    return decodeContext<BACNET_CHARACTER_STRING, decode_character_string>(apdu, apdu_len, tag_number, value);
}

int decode_context_bitstring(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                             BACNET_BIT_STRING* value) {
    return decodeContext<BACNET_BIT_STRING, decode_bitstring>(apdu, apdu_len, tag_number, value);
}

int decode_context_enumerated(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, uint32_t* value) {
    return decodeContext<uint32_t, decode_enumerated>(apdu, apdu_len, tag_number, value);
}

int decode_context_date(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, BACNET_DATE* value) {
    return decodeContext<BACNET_DATE, decodeDateContent>(apdu, apdu_len, tag_number, value);
}

int decode_context_time(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number, BACNET_TIME* value) {
    return decodeContext<BACNET_TIME, decodeTimeContent>(apdu, apdu_len, tag_number, value);
}

int decode_context_object_id(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                             uint16_t* object_type, uint32_t* instance) {
    if (!object_type || !instance) return BACNET_STATUS_ERROR;
    ObjectId id;
    int n = decodeContext<ObjectId, decodeObjectIdContent>(apdu, apdu_len, tag_number, &id);
    if (n > 0) {
        *object_type = id.type;
        *instance = id.instance;
    }
    return n;
}
