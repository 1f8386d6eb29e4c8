#include "tq_stack/wp.h"

#include <cstring>

#include "service_common.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

constexpr uint8_t kValueTag = 3;
constexpr uint8_t kPriorityTag = 4;

bool valid(const BACNET_WRITE_PROPERTY_DATA* data) {
    return data && data->object_instance <= BACNET_MAX_INSTANCE &&
           uint32_t(data->object_type) <= BACNET_MAX_OBJECT && data->application_data_len > 0 &&
           data->application_data_len <= MAX_APDU && data->priority <= BACNET_MAX_PRIORITY;
}

int encodeBody(uint8_t* apdu, const BACNET_WRITE_PROPERTY_DATA* data) {
    Writer w(apdu);
    w.add(putContextObjectId(w.at(), 0, data->object_type, data->object_instance));
    w.add(putContextUnsigned(w.at(), 1, data->object_property));
    if (data->array_index != BACNET_ARRAY_ALL) w.add(putContextUnsigned(w.at(), 2, data->array_index));
    w.add(encode_opening_tag(w.at(), kValueTag));
    if (apdu) std::memcpy(w.at(), data->application_data, size_t(data->application_data_len));
    w.add(data->application_data_len);
    w.add(encode_closing_tag(w.at(), kValueTag));
    if (data->priority != BACNET_NO_PRIORITY)
        w.add(encode_context_unsigned(w.at(), kPriorityTag, data->priority));
    return w.len;
}

}  // namespace

int wp_encode_service_request(uint8_t* apdu, const BACNET_WRITE_PROPERTY_DATA* data) {
    if (!valid(data)) return BACNET_STATUS_ERROR;
    const int len = encodeBody(nullptr, data);
    if (len + APDU_CONFIRMED_HEADER_LEN > MAX_APDU) return BACNET_STATUS_ERROR;
    return apdu ? encodeBody(apdu, data) : len;
}

int wp_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_WRITE_PROPERTY_DATA* data) {
    const int body = wp_encode_service_request(nullptr, data);
    if (body < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_CONFIRMED_HEADER_LEN;
    const int h = apdu_encode_request_header(apdu, invoke_id, SERVICE_CONFIRMED_WRITE_PROPERTY);
    return h + encodeBody(apdu + h, data);
}

int wp_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_WRITE_PROPERTY_DATA* data) {
    if (!apdu || !data) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    ObjectPropertyRef ref;
    uint32_t priority = BACNET_NO_PRIORITY;
    bool present = false;
    if (!decodeObjectPropertyRef(r, &ref)) return BACNET_STATUS_ERROR;
    const int inner = enclosedLength(r.at(), r.left());
    // An empty value is no value: the property value is required.
    if (inner <= 0 || inner > MAX_APDU || !r.opening(kValueTag)) return BACNET_STATUS_ERROR;
    const uint8_t* value = r.at();
    r.pos += uint32_t(inner);
    if (!r.closing(kValueTag)) return BACNET_STATUS_ERROR;
    if (!r.optional(decode_context_unsigned(r.at(), r.left(), kPriorityTag, &priority), &present) ||
        !r.atEnd())
        return BACNET_STATUS_ERROR;
    if (present && (priority < BACNET_MIN_PRIORITY || priority > BACNET_MAX_PRIORITY)) {
        data->error_class = ERROR_CLASS_SERVICES;
        data->error_code = ERROR_CODE_PARAMETER_OUT_OF_RANGE;
        return BACNET_STATUS_REJECT;
    }
    data->object_type = BACNET_OBJECT_TYPE(ref.type);
    data->object_instance = ref.instance;
    data->object_property = BACNET_PROPERTY_ID(ref.property);
    data->array_index = ref.index;
    std::memcpy(data->application_data, value, size_t(inner));
    data->application_data_len = inner;
    data->priority = uint8_t(present ? priority : BACNET_NO_PRIORITY);
    return int(r.pos);
}
