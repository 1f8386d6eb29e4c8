#include "tq_stack/rpm_server.h"

#include <cstring>

#include "service_common.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

constexpr uint8_t kObjectTag = 0;
constexpr uint8_t kListTag = 1;
constexpr uint8_t kRefPropertyTag = 0;
constexpr uint8_t kRefIndexTag = 1;
constexpr uint8_t kResultPropertyTag = 2;
constexpr uint8_t kResultIndexTag = 3;
constexpr uint8_t kResultValueTag = 4;
constexpr uint8_t kResultErrorTag = 5;

int encodeResultHead(Writer& w, BACNET_PROPERTY_ID property, uint32_t array_index) {
    w.add(putContextUnsigned(w.at(), kResultPropertyTag, property));
    if (array_index != BACNET_ARRAY_ALL) w.add(putContextUnsigned(w.at(), kResultIndexTag, array_index));
    return w.len;
}

}  // namespace

int rpm_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, rpm_reference_visitor visitor,
                               void* context) {
    if (!apdu || apdu_len == 0) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    while (!r.atEnd()) {
        BACNET_RPM_REFERENCE ref{};
        uint16_t type = 0;
        if (!r.need(decode_context_object_id(r.at(), r.left(), kObjectTag, &type, &ref.object_instance)) ||
            !r.opening(kListTag))
            return BACNET_STATUS_ERROR;
        ref.object_type = BACNET_OBJECT_TYPE(type);
        ref.first_of_object = true;
        // The list holds at least one reference.
        do {
            uint32_t property = 0;
            bool present = false;
            ref.array_index = BACNET_ARRAY_ALL;
            if (!r.need(decode_context_enumerated(r.at(), r.left(), kRefPropertyTag, &property)) ||
                !r.optional(decode_context_unsigned(r.at(), r.left(), kRefIndexTag, &ref.array_index), &present))
                return BACNET_STATUS_ERROR;
            ref.property = BACNET_PROPERTY_ID(property);
            if (visitor && !visitor(context, &ref)) return BACNET_STATUS_ABORT;
            ref.first_of_object = false;
        } while (!r.closing(kListTag));
    }
    return int(r.pos);
}

int rpm_ack_encode_object_begin(uint8_t* apdu, BACNET_OBJECT_TYPE object_type, uint32_t object_instance) {
    if (uint32_t(object_type) > BACNET_MAX_OBJECT || object_instance > BACNET_MAX_INSTANCE) return BACNET_STATUS_ERROR;
    Writer w(apdu);
    w.add(putContextObjectId(w.at(), kObjectTag, object_type, object_instance));
    w.add(encode_opening_tag(w.at(), kListTag));
    return w.len;
}

int rpm_ack_encode_property_value(uint8_t* apdu, BACNET_PROPERTY_ID property, uint32_t array_index,
                                  const uint8_t* value, uint32_t value_len) {
    if (value_len && !value) return BACNET_STATUS_ERROR;
    Writer w(apdu);
    encodeResultHead(w, property, array_index);
    w.add(encode_opening_tag(w.at(), kResultValueTag));
    if (apdu && value_len) std::memcpy(w.at(), value, value_len);
    w.add(int(value_len));
    w.add(encode_closing_tag(w.at(), kResultValueTag));
    return w.len;
}

int rpm_ack_encode_property_error(uint8_t* apdu, BACNET_PROPERTY_ID property, uint32_t array_index,
                                  BACNET_ERROR_CLASS error_class, BACNET_ERROR_CODE error_code) {
    Writer w(apdu);
    encodeResultHead(w, property, array_index);
    w.add(encode_opening_tag(w.at(), kResultErrorTag));
    w.add(encode_application_enumerated(w.at(), error_class));
    w.add(encode_application_enumerated(w.at(), error_code));
    w.add(encode_closing_tag(w.at(), kResultErrorTag));
    return w.len;
}

int rpm_ack_encode_object_end(uint8_t* apdu) {
    return encode_closing_tag(apdu, kListTag);
}
