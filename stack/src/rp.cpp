#include "tq_stack/rp.h"

#include <cstring>

#include "service_common.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

constexpr uint8_t kValueTag = 3;

bool validReference(const BACNET_READ_PROPERTY_DATA* data) {
    return data && data->object_instance <= BACNET_MAX_INSTANCE &&
           uint32_t(data->object_type) <= BACNET_MAX_OBJECT;
}

// [0] object, [1] property, [2] index when given.
void encodeReference(Writer& w, const BACNET_READ_PROPERTY_DATA* data) {
    w.add(putContextObjectId(w.at(), 0, data->object_type, data->object_instance));
    w.add(putContextUnsigned(w.at(), 1, data->object_property));
    if (data->array_index != BACNET_ARRAY_ALL) w.add(putContextUnsigned(w.at(), 2, data->array_index));
}

void storeReference(const ObjectPropertyRef& ref, BACNET_READ_PROPERTY_DATA* data) {
    data->object_type = BACNET_OBJECT_TYPE(ref.type);
    data->object_instance = ref.instance;
    data->object_property = BACNET_PROPERTY_ID(ref.property);
    data->array_index = ref.index;
}

int checked(int len) {
    return len > MAX_APDU ? BACNET_STATUS_ERROR : len;
}

}  // namespace

int rp_encode_service_request(uint8_t* apdu, const BACNET_READ_PROPERTY_DATA* data) {
    if (!validReference(data)) return BACNET_STATUS_ERROR;
    Writer w(apdu);
    encodeReference(w, data);
    return w.len;
}

int rp_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_PROPERTY_DATA* data) {
    if (!validReference(data)) return BACNET_STATUS_ERROR;
    Writer w(apdu);
    w.add(apdu_encode_request_header(w.at(), invoke_id, SERVICE_CONFIRMED_READ_PROPERTY));
    encodeReference(w, data);
    return w.len;
}

int rp_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_PROPERTY_DATA* data) {
    if (!apdu || !data) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    ObjectPropertyRef ref;
    if (!decodeObjectPropertyRef(r, &ref) || !r.atEnd()) return BACNET_STATUS_ERROR;
    storeReference(ref, data);
    return int(r.pos);
}

int rp_ack_encode_service_request(uint8_t* apdu, const BACNET_READ_PROPERTY_DATA* data) {
    if (!validReference(data) || data->application_data_len < 0 || data->application_data_len > MAX_APDU ||
        (data->application_data_len > 0 && !data->application_data))
        return BACNET_STATUS_ERROR;
    Writer w(nullptr);
    encodeReference(w, data);
    const int total = w.len + 2 + data->application_data_len;
    if (!apdu || checked(total) < 0) return checked(total);
    w = Writer(apdu);
    encodeReference(w, data);
    w.add(encode_opening_tag(w.at(), kValueTag));
    if (data->application_data_len)
        std::memcpy(w.at(), data->application_data, size_t(data->application_data_len));
    w.add(data->application_data_len);
    w.add(encode_closing_tag(w.at(), kValueTag));
    return w.len;
}

int rp_ack_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_PROPERTY_DATA* data) {
    const int body = rp_ack_encode_service_request(nullptr, data);
    if (body < 0 || checked(body + APDU_COMPLEX_ACK_HEADER_LEN) < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_COMPLEX_ACK_HEADER_LEN;
    const int h = apdu_encode_complex_ack_header(apdu, invoke_id, SERVICE_CONFIRMED_READ_PROPERTY);
    return h + rp_ack_encode_service_request(apdu + h, data);
}

int rp_ack_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_PROPERTY_DATA* data) {
    if (!apdu || !data) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    ObjectPropertyRef ref;
    if (!decodeObjectPropertyRef(r, &ref)) return BACNET_STATUS_ERROR;
    const int inner = enclosedLength(r.at(), r.left());
    if (inner < 0 || !r.opening(kValueTag)) return BACNET_STATUS_ERROR;
    const uint8_t* value = r.at();
    r.pos += uint32_t(inner);
    if (!r.closing(kValueTag) || !r.atEnd()) return BACNET_STATUS_ERROR;
    storeReference(ref, data);
    data->application_data = value;
    data->application_data_len = inner;
    return int(r.pos);
}
