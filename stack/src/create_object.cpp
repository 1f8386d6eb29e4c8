#include "tq_stack/create_object.h"

#include "property_value.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

constexpr uint8_t kSpecifierTag = 0;
constexpr uint8_t kTypeChoice = 0;
constexpr uint8_t kIdentifierChoice = 1;
constexpr uint8_t kInitialValuesTag = 1;
constexpr uint8_t kErrorTag = 0;
constexpr uint8_t kElementTag = 1;

int encodeCreateBody(uint8_t* apdu, const BACNET_CREATE_OBJECT_DATA* d) {
    Writer w(apdu);
    w.add(encode_opening_tag(w.at(), kSpecifierTag));
    if (d->by_identifier)
        w.add(encode_context_object_id(w.at(), kIdentifierChoice, d->object_type, d->object_instance));
    else
        w.add(encode_context_enumerated(w.at(), kTypeChoice, d->object_type));
    w.add(encode_closing_tag(w.at(), kSpecifierTag));
    if (d->count == 0) return w.len;
    w.add(encode_opening_tag(w.at(), kInitialValuesTag));
    for (unsigned i = 0; i < d->count; ++i)
        if (!encodePropertyValue(w, d->values[i])) return BACNET_STATUS_ERROR;
    w.add(encode_closing_tag(w.at(), kInitialValuesTag));
    return w.len;
}

}  // namespace

int create_object_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_CREATE_OBJECT_DATA* data) {
    if (!data || !validObject(data->object_type, data->object_instance) || (data->count && !data->values))
        return BACNET_STATUS_ERROR;
    for (unsigned i = 0; i < data->count; ++i)
        if (!data->values[i].value || data->values[i].value_len == 0 || data->values[i].priority > BACNET_MAX_PRIORITY)
            return BACNET_STATUS_ERROR;
    const int body = encodeCreateBody(nullptr, data);
    if (body < 0 || body + APDU_CONFIRMED_HEADER_LEN > MAX_APDU) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_CONFIRMED_HEADER_LEN;
    const int h = apdu_encode_request_header(apdu, invoke_id, SERVICE_CONFIRMED_CREATE_OBJECT);
    return h + encodeCreateBody(apdu + h, data);
}

int create_object_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_CREATE_OBJECT_DATA* data) {
    if (!apdu || !data || (data->capacity && !data->values)) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    uint16_t type = 0;
    uint32_t instance = 0, enumerated = 0;
    bool byIdentifier = false;
    if (!r.opening(kSpecifierTag)) return BACNET_STATUS_ERROR;
    const int asType = decode_context_enumerated(r.at(), r.left(), kTypeChoice, &enumerated);
    if (asType > 0) {
        if (enumerated > BACNET_MAX_OBJECT) return BACNET_STATUS_ERROR;
        type = uint16_t(enumerated);
        r.pos += uint32_t(asType);
    } else if (asType < 0 || !r.need(decode_context_object_id(r.at(), r.left(), kIdentifierChoice, &type, &instance))) {
        return BACNET_STATUS_ERROR;
    } else {
        byIdentifier = true;
    }
    if (!r.closing(kSpecifierTag)) return BACNET_STATUS_ERROR;
    unsigned count = 0;
    int status = 0;
    if (r.opening(kInitialValuesTag)) {
        while (!r.closing(kInitialValuesTag)) {
            if (r.atEnd()) return BACNET_STATUS_ERROR;
            BACNET_PROPERTY_VALUE_REF* slot = count < data->capacity ? &data->values[count] : nullptr;
            const int n = decodePropertyValue(r, slot);
            if (n == BACNET_STATUS_ERROR) return n;
            if (n == BACNET_STATUS_REJECT || !slot) status = BACNET_STATUS_REJECT;
            ++count;
        }
    }
    if (!r.atEnd()) return BACNET_STATUS_ERROR;
    if (status) return status;
    data->by_identifier = byIdentifier;
    data->object_type = BACNET_OBJECT_TYPE(type);
    data->object_instance = instance;
    data->count = count;
    return int(r.pos);
}

int create_object_ack_encode_apdu(uint8_t* apdu, uint8_t invoke_id, BACNET_OBJECT_TYPE object_type,
                                  uint32_t object_instance) {
    if (!validObject(object_type, object_instance)) return BACNET_STATUS_ERROR;
    const int h = apdu_encode_complex_ack_header(apdu, invoke_id, SERVICE_CONFIRMED_CREATE_OBJECT);
    return h + encode_application_object_id(apdu ? apdu + h : nullptr, object_type, object_instance);
}

int create_object_ack_decode(const uint8_t* apdu, uint32_t apdu_len, BACNET_OBJECT_TYPE* object_type,
                             uint32_t* object_instance) {
    uint16_t type = 0;
    uint32_t instance = 0;
    const int n = decode_application_object_id(apdu, apdu_len, &type, &instance);
    if (n <= 0 || uint32_t(n) != apdu_len) return BACNET_STATUS_ERROR;
    if (object_type) *object_type = BACNET_OBJECT_TYPE(type);
    if (object_instance) *object_instance = instance;
    return n;
}

int delete_object_encode_apdu(uint8_t* apdu, uint8_t invoke_id, BACNET_OBJECT_TYPE object_type,
                              uint32_t object_instance) {
    if (!validObject(object_type, object_instance)) return BACNET_STATUS_ERROR;
    const int h = apdu_encode_request_header(apdu, invoke_id, SERVICE_CONFIRMED_DELETE_OBJECT);
    return h + encode_application_object_id(apdu ? apdu + h : nullptr, object_type, object_instance);
}

int delete_object_decode_service_request(const uint8_t* apdu, uint32_t apdu_len,
                                         BACNET_OBJECT_TYPE* object_type, uint32_t* object_instance) {
    return create_object_ack_decode(apdu, apdu_len, object_type, object_instance);
}

int apdu_encode_error_with_element(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice,
                                   BACNET_ERROR_CLASS error_class, BACNET_ERROR_CODE error_code,
                                   uint32_t first_failed_element) {
    Writer w(apdu);
    if (apdu) {
        apdu[0] = PDU_TYPE_ERROR;
        apdu[1] = invoke_id;
        apdu[2] = service_choice;
    }
    w.add(3);
    w.add(encode_opening_tag(w.at(), kErrorTag));
    w.add(encode_application_enumerated(w.at(), error_class));
    w.add(encode_application_enumerated(w.at(), error_code));
    w.add(encode_closing_tag(w.at(), kErrorTag));
    w.add(encode_context_unsigned(w.at(), kElementTag, first_failed_element));
    return w.len;
}

int apdu_decode_error_with_element(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id,
                                   uint8_t* service_choice, BACNET_ERROR_CLASS* error_class,
                                   BACNET_ERROR_CODE* error_code, uint32_t* first_failed_element) {
    if (!apdu || apdu_len < 3 || (apdu[0] & 0xF0) != PDU_TYPE_ERROR) return BACNET_STATUS_ERROR;
    Reader r(apdu + 3, apdu_len - 3);
    uint32_t cls = 0, code = 0, element = 0;
    if (!r.opening(kErrorTag) || !r.need(decode_application_enumerated(r.at(), r.left(), &cls)) ||
        !r.need(decode_application_enumerated(r.at(), r.left(), &code)) || !r.closing(kErrorTag) ||
        !r.need(decode_context_unsigned(r.at(), r.left(), kElementTag, &element)) || !r.atEnd())
        return BACNET_STATUS_ERROR;
    if (invoke_id) *invoke_id = apdu[1];
    if (service_choice) *service_choice = apdu[2];
    if (error_class) *error_class = BACNET_ERROR_CLASS(cls);
    if (error_code) *error_code = BACNET_ERROR_CODE(code);
    if (first_failed_element) *first_failed_element = element;
    return int(3 + r.pos);
}
