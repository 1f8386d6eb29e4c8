#include "tq_stack/bacapp.h"

#include <cstring>

#include "byte_order.h"
#include "tq_stack/strings.h"

using namespace tq_stack_detail;

namespace {

// The content of one primitive of application tag `tag` whose tag declared lenValue. An
// application BOOLEAN has its value in lenValue (context is false); a context BOOLEAN has one
// content byte. Returns content bytes consumed or BACNET_STATUS_ERROR.
inline int decodeContent(const uint8_t* p, uint32_t avail, uint8_t tag, uint32_t lenValue, bool context,
                         BACNET_APPLICATION_DATA_VALUE* value) {
    switch (tag) {
        case BACNET_APPLICATION_TAG_NULL:
            if (lenValue != 0) return BACNET_STATUS_ERROR;
            break;
        case BACNET_APPLICATION_TAG_BOOLEAN:
            if (!context) {
                if (lenValue > 1) return BACNET_STATUS_ERROR;
                value->type.Boolean = lenValue == 1;
                break;
            }
            if (lenValue != 1 || p[0] > 1) return BACNET_STATUS_ERROR;
            value->type.Boolean = p[0] == 1;
            break;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            if (decode_unsigned(p, avail, lenValue, &value->type.Unsigned_Int) < 0)
                return BACNET_STATUS_ERROR;
            break;
        case BACNET_APPLICATION_TAG_ENUMERATED:
            if (decode_enumerated(p, avail, lenValue, &value->type.Enumerated) < 0)
                return BACNET_STATUS_ERROR;
            break;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            if (decode_signed(p, avail, lenValue, &value->type.Signed_Int) < 0) return BACNET_STATUS_ERROR;
            break;
        case BACNET_APPLICATION_TAG_REAL:
            if (lenValue != 4) return BACNET_STATUS_ERROR;
            value->type.Real = floatFromBits(loadBe32(p));
            break;
        case BACNET_APPLICATION_TAG_DOUBLE:
            if (lenValue != 8) return BACNET_STATUS_ERROR;
            value->type.Double = doubleFromBits(loadBe64(p));
            break;
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            if (decode_octet_string(p, avail, lenValue, &value->type.Octet_String) < 0)
                return BACNET_STATUS_ERROR;
            break;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            if (decode_character_string(p, avail, lenValue, &value->type.Character_String) < 0)
                return BACNET_STATUS_ERROR;
            break;
        case BACNET_APPLICATION_TAG_BIT_STRING:
            if (decode_bitstring(p, avail, lenValue, &value->type.Bit_String) < 0) return BACNET_STATUS_ERROR;
            break;
        case BACNET_APPLICATION_TAG_DATE:
            if (lenValue != 4) return BACNET_STATUS_ERROR;
            decode_date(p, avail, &value->type.Date);
            break;
        case BACNET_APPLICATION_TAG_TIME:
            if (lenValue != 4) return BACNET_STATUS_ERROR;
            decode_bacnet_time(p, avail, &value->type.Time);
            break;
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            if (lenValue != 4) return BACNET_STATUS_ERROR;
            decode_object_id(p, avail, &value->type.Object_Id.type, &value->type.Object_Id.instance);
            break;
        default:
            return BACNET_STATUS_ERROR;
    }
    value->tag = tag;
    return (tag == BACNET_APPLICATION_TAG_BOOLEAN && !context) ? 0 : int(lenValue);
}

// Content bytes of a value (tags 1..12 other than BOOLEAN), written when apdu is given.
int encodeContent(uint8_t* apdu, const BACNET_APPLICATION_DATA_VALUE* value) {
    const auto& v = value->type;
    switch (value->tag) {
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            return encode_bacnet_unsigned(apdu, v.Unsigned_Int);
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            return encode_bacnet_signed(apdu, v.Signed_Int);
        case BACNET_APPLICATION_TAG_REAL:
            return encode_bacnet_real(apdu, v.Real);
        case BACNET_APPLICATION_TAG_DOUBLE:
            return encode_bacnet_double(apdu, v.Double);
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            return encode_octet_string(apdu, &v.Octet_String);
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            return encode_bacnet_character_string(apdu, &v.Character_String);
        case BACNET_APPLICATION_TAG_BIT_STRING:
            return encode_bitstring(apdu, &v.Bit_String);
        case BACNET_APPLICATION_TAG_ENUMERATED:
            return encode_bacnet_enumerated(apdu, v.Enumerated);
        case BACNET_APPLICATION_TAG_DATE:
            return encode_bacnet_date(apdu, &v.Date);
        case BACNET_APPLICATION_TAG_TIME:
            return encode_bacnet_time(apdu, &v.Time);
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            return encode_bacnet_object_id(apdu, v.Object_Id.type, v.Object_Id.instance);
        default:
            return BACNET_STATUS_ERROR;
    }
}

int encodeValue(uint8_t* apdu, const BACNET_APPLICATION_DATA_VALUE* value, bool context, uint8_t tagNumber) {
    if (!value) return BACNET_STATUS_ERROR;
    switch (value->tag) {
        case BACNET_APPLICATION_TAG_NULL:
            return context ? encode_context_null(apdu, tagNumber) : encode_application_null(apdu);
        case BACNET_APPLICATION_TAG_BOOLEAN:
            return context ? encode_context_boolean(apdu, tagNumber, value->type.Boolean)
                           : encode_application_boolean(apdu, value->type.Boolean);
        case BACNET_APPLICATION_TAG_REAL:
            if (!context) return encode_application_real(apdu, value->type.Real);
            break;
        default:
            break;
    }
    const int n = encodeContent(nullptr, value);
    if (n < 0) return BACNET_STATUS_ERROR;
    const int h = encode_tag(apdu, context ? tagNumber : value->tag, context, uint32_t(n));
    if (apdu) encodeContent(apdu + h, value);
    return h + n;
}

// Every member but the strings fits in the first bytes of the union; copies take only those.
constexpr size_t kFixedSizeBytes = sizeof(double) > sizeof(BACNET_OBJECT_ID) ? sizeof(double)
                                                                             : sizeof(BACNET_OBJECT_ID);
static_assert(sizeof(BACNET_DATE) <= kFixedSizeBytes && sizeof(BACNET_TIME) <= kFixedSizeBytes &&
                  sizeof(BACNET_UNSIGNED_INTEGER) <= kFixedSizeBytes,
              "fixed-size members must fit the copied prefix");

}  // namespace

void bacapp_value_init(BACNET_APPLICATION_DATA_VALUE* value) {
    if (!value) return;
    value->context_specific = false;
    value->context_tag = 0;
    value->tag = BACNET_APPLICATION_TAG_NULL;
    value->next = nullptr;
}

int bacapp_decode_application_data_full(const uint8_t* apdu, uint32_t apdu_len,
                                        BACNET_APPLICATION_DATA_VALUE* value) {
    if (!apdu || !value || apdu_len == 0) return BACNET_STATUS_ERROR;
    const uint8_t first = apdu[0];
    uint8_t tag = first >> 4;
    uint32_t lenValue = first & 0x07;
    int h = 1;
    // One-byte headers with a short length are nearly every value; the rest takes the full path.
    if ((first & 0x08) == 0 && lenValue < 5) {
        if (tag != BACNET_APPLICATION_TAG_BOOLEAN && lenValue > apdu_len - 1) return BACNET_STATUS_ERROR;
    } else {
        BACNET_TAG t;
        h = bacnet_tag_decode(apdu, apdu_len, &t);
        if (h < 0 || !t.application) return BACNET_STATUS_ERROR;
        tag = t.number;
        lenValue = t.len_value_type;
    }
    const int n = decodeContent(apdu + h, apdu_len - uint32_t(h), tag, lenValue, false, value);
    if (n < 0) return BACNET_STATUS_ERROR;
    value->context_specific = false;
    value->context_tag = 0;
    return h + n;
}

int bacapp_decode_context_data(const uint8_t* apdu, uint32_t apdu_len, BACNET_APPLICATION_DATA_VALUE* value,
                               uint8_t app_tag) {
    if (!value) return BACNET_STATUS_ERROR;
    BACNET_TAG t;
    const int h = bacnet_tag_decode(apdu, apdu_len, &t);
    if (h < 0 || !t.context) return BACNET_STATUS_ERROR;
    const int n = decodeContent(apdu + h, apdu_len - uint32_t(h), app_tag, t.len_value_type, true, value);
    if (n < 0) return BACNET_STATUS_ERROR;
    value->context_specific = true;
    value->context_tag = t.number;
    return h + n;
}

int bacapp_encode_application_data(uint8_t* apdu, const BACNET_APPLICATION_DATA_VALUE* value) {
    return encodeValue(apdu, value, false, 0);
}

int bacapp_encode_data(uint8_t* apdu, const BACNET_APPLICATION_DATA_VALUE* value) {
    if (!value) return BACNET_STATUS_ERROR;
    return encodeValue(apdu, value, value->context_specific, value->context_tag);
}

bool bacapp_copy(BACNET_APPLICATION_DATA_VALUE* dest, const BACNET_APPLICATION_DATA_VALUE* src) {
    if (!dest || !src || src->tag > BACNET_APPLICATION_TAG_OBJECT_ID) return false;
    if (dest == src) return true;
    // Strings copy their used bytes only: a value is ~1.5 KB of which a REAL uses four.
    switch (src->tag) {
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            octetstring_copy(&dest->type.Octet_String, &src->type.Octet_String);
            break;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            characterstring_copy(&dest->type.Character_String, &src->type.Character_String);
            break;
        case BACNET_APPLICATION_TAG_BIT_STRING:
            bitstring_copy(&dest->type.Bit_String, &src->type.Bit_String);
            break;
        case BACNET_APPLICATION_TAG_NULL:
            break;
        default:
            std::memcpy(&dest->type, &src->type, kFixedSizeBytes);
            break;
    }
    dest->tag = src->tag;
    dest->context_specific = src->context_specific;
    dest->context_tag = src->context_tag;
    return true;
}

bool bacapp_same_value(const BACNET_APPLICATION_DATA_VALUE* a, const BACNET_APPLICATION_DATA_VALUE* b) {
    if (!a || !b || a->tag != b->tag) return false;
    const auto& x = a->type;
    const auto& y = b->type;
    switch (a->tag) {
        case BACNET_APPLICATION_TAG_NULL:
            return true;
        case BACNET_APPLICATION_TAG_BOOLEAN:
            return x.Boolean == y.Boolean;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            return x.Unsigned_Int == y.Unsigned_Int;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            return x.Signed_Int == y.Signed_Int;
        case BACNET_APPLICATION_TAG_REAL:
            return x.Real == y.Real;
        case BACNET_APPLICATION_TAG_DOUBLE:
            return x.Double == y.Double;
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            return octetstring_value_same(&x.Octet_String, &y.Octet_String);
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            return characterstring_same(&x.Character_String, &y.Character_String);
        case BACNET_APPLICATION_TAG_BIT_STRING:
            return bitstring_same(&x.Bit_String, &y.Bit_String);
        case BACNET_APPLICATION_TAG_ENUMERATED:
            return x.Enumerated == y.Enumerated;
        case BACNET_APPLICATION_TAG_DATE:
            return x.Date.year == y.Date.year && x.Date.month == y.Date.month && x.Date.day == y.Date.day &&
                   x.Date.wday == y.Date.wday;
        case BACNET_APPLICATION_TAG_TIME:
            return std::memcmp(&x.Time, &y.Time, sizeof x.Time) == 0;
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            return x.Object_Id.type == y.Object_Id.type && x.Object_Id.instance == y.Object_Id.instance;
        default:
            return false;
    }
}
