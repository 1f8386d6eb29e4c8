#include "tq_stack/cov.h"

#include "property_value.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

// SubscribeCOV
constexpr uint8_t kProcessTag = 0;
constexpr uint8_t kMonitoredTag = 1;
constexpr uint8_t kConfirmedTag = 2;
constexpr uint8_t kLifetimeTag = 3;
// COV notification
constexpr uint8_t kInitiatingTag = 1;
constexpr uint8_t kNotifiedObjectTag = 2;
constexpr uint8_t kTimeRemainingTag = 3;
constexpr uint8_t kValuesTag = 4;

int encodeSubscribeBody(uint8_t* apdu, const BACNET_SUBSCRIBE_COV_DATA* d) {
    Writer w(apdu);
    w.add(putContextUnsigned(w.at(), kProcessTag, d->subscriber_process_identifier));
    w.add(putContextObjectId(w.at(), kMonitoredTag, d->monitored_object_type, d->monitored_object_instance));
    if (d->cancellation_request) return w.len;
    w.add(encode_context_boolean(w.at(), kConfirmedTag, d->issue_confirmed_notifications));
    if (d->lifetime_present) w.add(putContextUnsigned(w.at(), kLifetimeTag, d->lifetime));
    return w.len;
}

bool validNotification(const BACNET_COV_DATA* d) {
    if (!d || !validObject(d->monitored_object_type, d->monitored_object_instance) ||
        d->initiating_device_instance > BACNET_MAX_INSTANCE || (d->count && !d->values))
        return false;
    for (unsigned i = 0; i < d->count; ++i)
        if (!d->values[i].value || d->values[i].value_len == 0 || d->values[i].value_len > MAX_APDU ||
            d->values[i].priority > BACNET_MAX_PRIORITY)
            return false;
    return true;
}

// The service data; BACNET_STATUS_ERROR as soon as it outgrows one APDU.
int encodeNotifyBody(uint8_t* apdu, const BACNET_COV_DATA* d) {
    Writer w(apdu);
    w.add(putContextUnsigned(w.at(), kProcessTag, d->subscriber_process_identifier));
    w.add(putContextObjectId(w.at(), kInitiatingTag, OBJECT_DEVICE, d->initiating_device_instance));
    w.add(putContextObjectId(w.at(), kNotifiedObjectTag, d->monitored_object_type, d->monitored_object_instance));
    w.add(putContextUnsigned(w.at(), kTimeRemainingTag, d->time_remaining));
    w.add(encode_opening_tag(w.at(), kValuesTag));
    for (unsigned i = 0; i < d->count; ++i)
        if (!encodePropertyValue(w, d->values[i])) return BACNET_STATUS_ERROR;
    w.add(encode_closing_tag(w.at(), kValuesTag));
    return w.len > MAX_APDU ? BACNET_STATUS_ERROR : w.len;
}

}  // namespace

int cov_subscribe_encode_service_request(uint8_t* apdu, const BACNET_SUBSCRIBE_COV_DATA* data) {
    if (!data || !validObject(data->monitored_object_type, data->monitored_object_instance))
        return BACNET_STATUS_ERROR;
    return encodeSubscribeBody(apdu, data);
}

int cov_subscribe_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_SUBSCRIBE_COV_DATA* data) {
    const int body = cov_subscribe_encode_service_request(nullptr, data);
    if (body < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_CONFIRMED_HEADER_LEN;
    const int h = apdu_encode_request_header(apdu, invoke_id, SERVICE_CONFIRMED_SUBSCRIBE_COV);
    return h + encodeSubscribeBody(apdu + h, data);
}

int cov_subscribe_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_SUBSCRIBE_COV_DATA* data) {
    if (!apdu || !data) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    uint32_t process = 0, lifetime = 0;
    uint16_t type = 0;
    uint32_t instance = 0;
    bool confirmed = false, hasConfirmed = false, hasLifetime = false;
    if (!r.need(decode_context_unsigned(r.at(), r.left(), kProcessTag, &process)) ||
        !r.need(decode_context_object_id(r.at(), r.left(), kMonitoredTag, &type, &instance)) ||
        !r.optional(decode_context_boolean(r.at(), r.left(), kConfirmedTag, &confirmed), &hasConfirmed) ||
        !r.optional(decode_context_unsigned(r.at(), r.left(), kLifetimeTag, &lifetime), &hasLifetime) ||
        !r.atEnd() || (hasLifetime && !hasConfirmed))
        return BACNET_STATUS_ERROR;
    data->subscriber_process_identifier = process;
    data->monitored_object_type = BACNET_OBJECT_TYPE(type);
    data->monitored_object_instance = instance;
    data->cancellation_request = !hasConfirmed;
    data->issue_confirmed_notifications = confirmed;
    data->lifetime_present = hasLifetime;
    data->lifetime = hasLifetime ? lifetime : 0;
    return int(r.pos);
}

int cov_notify_encode_service_request(uint8_t* apdu, const BACNET_COV_DATA* data) {
    if (!validNotification(data)) return BACNET_STATUS_ERROR;
    const int body = encodeNotifyBody(nullptr, data);
    if (body < 0 || body + APDU_CONFIRMED_HEADER_LEN > MAX_APDU) return BACNET_STATUS_ERROR;
    return apdu ? encodeNotifyBody(apdu, data) : body;
}

int cov_notify_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_COV_DATA* data) {
    const int body = cov_notify_encode_service_request(nullptr, data);
    if (body < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_CONFIRMED_HEADER_LEN;
    const int h = apdu_encode_request_header(apdu, invoke_id, SERVICE_CONFIRMED_COV_NOTIFICATION);
    return h + encodeNotifyBody(apdu + h, data);
}

int ucov_notify_encode_apdu(uint8_t* apdu, const BACNET_COV_DATA* data) {
    const int body = cov_notify_encode_service_request(nullptr, data);
    if (body < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_UNCONFIRMED_HEADER_LEN;
    const int h = apdu_encode_unconfirmed_header(apdu, SERVICE_UNCONFIRMED_COV_NOTIFICATION);
    return h + encodeNotifyBody(apdu + h, data);
}

int cov_notify_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_COV_DATA* data) {
    if (!apdu || !data || (data->capacity && !data->values)) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    uint32_t process = 0, device = 0, instance = 0, remaining = 0;
    uint16_t deviceType = 0, type = 0;
    if (!r.need(decode_context_unsigned(r.at(), r.left(), kProcessTag, &process)) ||
        !r.need(decode_context_object_id(r.at(), r.left(), kInitiatingTag, &deviceType, &device)) ||
        deviceType != OBJECT_DEVICE ||
        !r.need(decode_context_object_id(r.at(), r.left(), kNotifiedObjectTag, &type, &instance)) ||
        !r.need(decode_context_unsigned(r.at(), r.left(), kTimeRemainingTag, &remaining)) ||
        !r.opening(kValuesTag))
        return BACNET_STATUS_ERROR;
    unsigned count = 0;
    int status = 0;
    while (!r.closing(kValuesTag)) {
        if (r.atEnd()) return BACNET_STATUS_ERROR;
        BACNET_PROPERTY_VALUE_REF* slot = count < data->capacity ? &data->values[count] : nullptr;
        const int n = decodePropertyValue(r, slot);
        if (n == BACNET_STATUS_ERROR) return n;
        if (n == BACNET_STATUS_REJECT || !slot) status = BACNET_STATUS_REJECT;
        ++count;
    }
    if (!r.atEnd()) return BACNET_STATUS_ERROR;
    if (status) return status;
    data->subscriber_process_identifier = process;
    data->initiating_device_instance = device;
    data->monitored_object_type = BACNET_OBJECT_TYPE(type);
    data->monitored_object_instance = instance;
    data->time_remaining = remaining;
    data->count = count;
    return int(r.pos);
}
