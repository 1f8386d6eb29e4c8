// Tags and primitives: every decoder on the input, and what decodes must re-encode to the
// same value.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz_check.h"
#include "tq_stack/codec.h"
#include "tq_stack/strings.h"

namespace {

BACNET_CHARACTER_STRING gChars;
BACNET_OCTET_STRING gOctets;
BACNET_BIT_STRING gBits;

void checkResult(int result, uint32_t size) {
    FUZZ_CHECK(result <= int(size));
}

void unsignedRoundTrip(const uint8_t* data, uint32_t size) {
    BACNET_UNSIGNED_INTEGER v;
    const int n = decode_application_unsigned(data, size, &v);
    checkResult(n, size);
    if (n <= 0) return;
    uint8_t out[8];
    const int m = encode_application_unsigned(out, v);
    BACNET_UNSIGNED_INTEGER back;
    FUZZ_CHECK(decode_application_unsigned(out, uint32_t(m), &back) == m && back == v);
}

void signedRoundTrip(const uint8_t* data, uint32_t size) {
    int32_t v;
    const int n = decode_application_signed(data, size, &v);
    checkResult(n, size);
    if (n <= 0) return;
    uint8_t out[8];
    const int m = encode_application_signed(out, v);
    int32_t back;
    FUZZ_CHECK(decode_application_signed(out, uint32_t(m), &back) == m && back == v);
}

void stringRoundTrip(const uint8_t* data, uint32_t size) {
    const int n = decode_application_character_string(data, size, &gChars);
    checkResult(n, size);
    if (n <= 0) return;
    static uint8_t out[MAX_APDU + 8];
    const int m = encode_application_character_string(out, &gChars);
    FUZZ_CHECK(m > 0 && m <= MAX_APDU + 8);
    static BACNET_CHARACTER_STRING back;
    FUZZ_CHECK(decode_application_character_string(out, uint32_t(m), &back) == m);
    FUZZ_CHECK(characterstring_same(&gChars, &back));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > size_t(4) * MAX_APDU) return 0;
    const uint32_t len = uint32_t(size);
    BACNET_TAG tag;
    const int h = bacnet_tag_decode(data, len, &tag);
    checkResult(h, len);
    if (h > 0) {
        const uint8_t* content = data + h;
        const uint32_t rest = len - uint32_t(h);
        const uint32_t lv = tag.len_value_type;
        uint32_t u;
        int32_t s;
        float f;
        double d;
        BACNET_DATE date;
        BACNET_TIME time;
        uint16_t type;
        uint32_t instance;
        checkResult(decode_unsigned(content, rest, lv, &u), rest);
        checkResult(decode_signed(content, rest, lv, &s), rest);
        checkResult(decode_enumerated(content, rest, lv, &u), rest);
        checkResult(decode_real(content, rest, &f), rest);
        checkResult(decode_double(content, rest, &d), rest);
        checkResult(decode_octet_string(content, rest, lv, &gOctets), rest);
        checkResult(decode_character_string(content, rest, lv, &gChars), rest);
        checkResult(decode_bitstring(content, rest, lv, &gBits), rest);
        checkResult(decode_date(content, rest, &date), rest);
        checkResult(decode_bacnet_time(content, rest, &time), rest);
        checkResult(decode_object_id(content, rest, &type, &instance), rest);
        const uint8_t n = tag.number;
        bool b;
        checkResult(decode_context_null(data, len, n), len);
        checkResult(decode_context_boolean(data, len, n, &b), len);
        checkResult(decode_context_unsigned(data, len, n, &u), len);
        checkResult(decode_context_signed(data, len, n, &s), len);
        checkResult(decode_context_real(data, len, n, &f), len);
        checkResult(decode_context_double(data, len, n, &d), len);
        checkResult(decode_context_octet_string(data, len, n, &gOctets), len);
        checkResult(decode_context_character_string(data, len, n, &gChars), len);
        checkResult(decode_context_bitstring(data, len, n, &gBits), len);
        checkResult(decode_context_enumerated(data, len, n, &u), len);
        checkResult(decode_context_date(data, len, n, &date), len);
        checkResult(decode_context_time(data, len, n, &time), len);
        checkResult(decode_context_object_id(data, len, n, &type, &instance), len);
    }
    bool b;
    float f;
    double d;
    uint32_t u;
    BACNET_DATE date;
    BACNET_TIME time;
    uint16_t type;
    uint32_t instance;
    checkResult(decode_application_null(data, len), len);
    checkResult(decode_application_boolean(data, len, &b), len);
    checkResult(decode_application_real(data, len, &f), len);
    checkResult(decode_application_double(data, len, &d), len);
    checkResult(decode_application_octet_string(data, len, &gOctets), len);
    checkResult(decode_application_bitstring(data, len, &gBits), len);
    checkResult(decode_application_enumerated(data, len, &u), len);
    checkResult(decode_application_date(data, len, &date), len);
    checkResult(decode_application_time(data, len, &time), len);
    checkResult(decode_application_object_id(data, len, &type, &instance), len);
    unsignedRoundTrip(data, len);
    signedRoundTrip(data, len);
    stringRoundTrip(data, len);
    checkResult(bacnet_enclosed_data_length(data, len), len);
    return 0;
}
