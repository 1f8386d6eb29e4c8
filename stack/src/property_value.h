// BACnetPropertyValue ([0] property, [1] array index OPTIONAL, [2] value, [3] priority OPTIONAL),
// carried by CreateObject's initial values and by change-of-value notifications, and the
// identifier check both services make.
#pragma once

#include <cstring>

#include "service_common.h"
#include "tq_stack/create_object.h"

namespace tq_stack_detail {

inline bool validObject(uint32_t type, uint32_t instance) {
    return type <= BACNET_MAX_OBJECT && instance <= BACNET_MAX_INSTANCE;
}

// False as soon as the encoding outgrows one APDU (nothing is written past it).
inline bool encodePropertyValue(Writer& w, const BACNET_PROPERTY_VALUE_REF& v) {
    constexpr uint8_t kPropertyTag = 0, kIndexTag = 1, kValueTag = 2, kPriorityTag = 3;
    w.add(putContextUnsigned(w.at(), kPropertyTag, v.property));
    if (v.array_index != BACNET_ARRAY_ALL) w.add(putContextUnsigned(w.at(), kIndexTag, v.array_index));
    w.add(encode_opening_tag(w.at(), kValueTag));
    if (w.len + int(v.value_len) > MAX_APDU) return false;
    if (w.apdu) std::memcpy(w.at(), v.value, v.value_len);
    w.add(int(v.value_len));
    w.add(encode_closing_tag(w.at(), kValueTag));
    if (v.priority != BACNET_NO_PRIORITY) w.add(putContextUnsigned(w.at(), kPriorityTag, v.priority));
    return w.len <= MAX_APDU;
}

// One value into out (may be NULL: checked and skipped); the value's bytes stay in the APDU.
// BACNET_STATUS_REJECT for a priority outside 1..16.
inline int decodePropertyValue(Reader& r, BACNET_PROPERTY_VALUE_REF* out) {
    constexpr uint8_t kPropertyTag = 0, kIndexTag = 1, kValueTag = 2, kPriorityTag = 3;
    uint32_t property = 0, index = BACNET_ARRAY_ALL, priority = BACNET_NO_PRIORITY;
    bool indexed = false, prioritised = false;
    if (!r.need(decode_context_enumerated(r.at(), r.left(), kPropertyTag, &property)) ||
        !r.optional(decode_context_unsigned(r.at(), r.left(), kIndexTag, &index), &indexed))
        return BACNET_STATUS_ERROR;
    const int inner = enclosedLength(r.at(), r.left());
    if (inner <= 0 || !r.opening(kValueTag)) return BACNET_STATUS_ERROR;
    const uint8_t* value = r.at();
    r.pos += uint32_t(inner);
    if (!r.closing(kValueTag) ||
        !r.optional(decode_context_unsigned(r.at(), r.left(), kPriorityTag, &priority), &prioritised))
        return BACNET_STATUS_ERROR;
    if (prioritised && (priority < BACNET_MIN_PRIORITY || priority > BACNET_MAX_PRIORITY)) return BACNET_STATUS_REJECT;
    if (out)
        *out = BACNET_PROPERTY_VALUE_REF{BACNET_PROPERTY_ID(property), indexed ? index : BACNET_ARRAY_ALL, value,
                                         uint32_t(inner), uint8_t(prioritised ? priority : BACNET_NO_PRIORITY)};
    return 0;
}

}  // namespace tq_stack_detail
