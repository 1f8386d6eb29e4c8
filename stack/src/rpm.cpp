#include "tq_stack/rpm.h"

#include <cstdlib>

#include "service_common.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"
#include "tq_stack/context_decode.h"

using namespace tq_stack_detail;

namespace {

// Context tags of ReadAccessSpecification / ReadAccessResult.
constexpr uint8_t kObjectTag = 0;
constexpr uint8_t kListTag = 1;
constexpr uint8_t kResultPropertyTag = 2;
constexpr uint8_t kResultIndexTag = 3;
constexpr uint8_t kResultValueTag = 4;
constexpr uint8_t kResultErrorTag = 5;

// A cyclic or absurd chain stops here even when only sizing.
constexpr int kSizingLimit = 1 << 20;

int encodeRecords(uint8_t* apdu, int limit, const BACNET_READ_ACCESS_DATA* rad) {
    Writer w(apdu);
    for (; rad; rad = rad->next) {
        if (rad->object_instance > BACNET_MAX_INSTANCE || uint32_t(rad->object_type) > BACNET_MAX_OBJECT ||
            !rad->listOfProperties)
            return BACNET_STATUS_ERROR;
        w.add(encode_context_object_id(w.at(), kObjectTag, rad->object_type, rad->object_instance));
        w.add(encode_opening_tag(w.at(), kListTag));
        for (const BACNET_PROPERTY_REFERENCE* p = rad->listOfProperties; p; p = p->next) {
            w.add(encode_context_enumerated(w.at(), 0, p->propertyIdentifier));
            if (p->propertyArrayIndex != BACNET_ARRAY_ALL)
                w.add(encode_context_unsigned(w.at(), 1, p->propertyArrayIndex));
            if (w.len > limit) return BACNET_STATUS_ERROR;
        }
        w.add(encode_closing_tag(w.at(), kListTag));
        if (w.len > limit) return BACNET_STATUS_ERROR;
    }
    return w.len;
}

// One element of listOfResults; appends it at *tail.
bool decodeResult(Reader& r, BACNET_PROPERTY_REFERENCE*** tail, unsigned* budget) {
    uint32_t property = 0, index = BACNET_ARRAY_ALL;
    bool present = false;
    if (!r.need(decode_context_enumerated(r.at(), r.left(), kResultPropertyTag, &property)) ||
        !r.optional(decode_context_unsigned(r.at(), r.left(), kResultIndexTag, &index), &present))
        return false;
    auto* node = static_cast<BACNET_PROPERTY_REFERENCE*>(std::calloc(1, sizeof(BACNET_PROPERTY_REFERENCE)));
    if (!node) return false;
    node->propertyIdentifier = BACNET_PROPERTY_ID(property);
    node->propertyArrayIndex = index;
    **tail = node;
    *tail = &node->next;
    const int inner = enclosedLength(r.at(), r.left());
    if (inner < 0) return false;
    if (r.opening(kResultValueTag)) {
        if (decodeValueChain(r.at(), uint32_t(inner), nullptr, nullptr, &node->value, budget) < 0)
            return false;
        r.pos += uint32_t(inner);
        return r.closing(kResultValueTag);
    }
    if (!r.opening(kResultErrorTag)) return false;
    uint32_t cls = 0, code = 0;
    if (!r.need(decode_application_enumerated(r.at(), r.left(), &cls)) ||
        !r.need(decode_application_enumerated(r.at(), r.left(), &code)) || !r.closing(kResultErrorTag))
        return false;
    node->has_error = true;
    node->error_class = BACNET_ERROR_CLASS(cls);
    node->error_code = BACNET_ERROR_CODE(code);
    return true;
}

bool decodeRecord(Reader& r, BACNET_READ_ACCESS_DATA* rad, unsigned* budget) {
    uint16_t type = 0;
    uint32_t instance = 0;
    if (!r.need(decode_context_object_id(r.at(), r.left(), kObjectTag, &type, &instance))) return false;
    rad->object_type = BACNET_OBJECT_TYPE(type);
    rad->object_instance = instance;
    // listOfResults is optional in the grammar; without it the object has no results.
    if (!r.opening(kListTag)) return true;
    BACNET_PROPERTY_REFERENCE** tail = &rad->listOfProperties;
    while (!r.closing(kListTag)) {
        if (r.atEnd() || !decodeResult(r, &tail, budget)) return false;
    }
    return true;
}

}  // namespace

int rpm_encode_apdu(uint8_t* apdu, unsigned max_apdu, uint8_t invoke_id,
                    const BACNET_READ_ACCESS_DATA* read_access_data) {
    if (!read_access_data) return BACNET_STATUS_ERROR;
    const int limit =
        apdu ? int(max_apdu < unsigned(kSizingLimit) ? max_apdu : unsigned(kSizingLimit)) : kSizingLimit;
    const int body = encodeRecords(nullptr, limit - APDU_CONFIRMED_HEADER_LEN, read_access_data);
    if (body < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_CONFIRMED_HEADER_LEN;
    const int h = apdu_encode_request_header(apdu, invoke_id, SERVICE_CONFIRMED_READ_PROP_MULTIPLE);
    return h + encodeRecords(apdu + h, limit - h, read_access_data);
}

int rpm_ack_decode_service_request(const uint8_t* apdu, uint32_t apdu_len,
                                   BACNET_READ_ACCESS_DATA* read_access_data) {
    if (!read_access_data) return BACNET_STATUS_ERROR;
    read_access_data->listOfProperties = nullptr;
    read_access_data->next = nullptr;
    if (!apdu || apdu_len == 0) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    BACNET_READ_ACCESS_DATA* rad = read_access_data;
    unsigned budget = BACNET_MAX_DECODED_VALUES;
    while (true) {
        if (!decodeRecord(r, rad, &budget)) {
            rpm_ack_free_all(read_access_data);
            return BACNET_STATUS_ERROR;
        }
        if (r.atEnd()) return int(r.pos);
        auto* next = static_cast<BACNET_READ_ACCESS_DATA*>(std::calloc(1, sizeof(BACNET_READ_ACCESS_DATA)));
        if (!next) {
            rpm_ack_free_all(read_access_data);
            return BACNET_STATUS_ERROR;
        }
        rad->next = next;
        rad = next;
    }
}

void free_BACNET_READ_ACCESS_DATA_Internals(BACNET_READ_ACCESS_DATA* read_access_data) {
    if (!read_access_data) return;
    BACNET_PROPERTY_REFERENCE* p = read_access_data->listOfProperties;
    while (p) {
        BACNET_PROPERTY_REFERENCE* next = p->next;
        bacapp_value_list_free(p->value);
        std::free(p);
        p = next;
    }
    read_access_data->listOfProperties = nullptr;
}

void rpm_ack_free_all(BACNET_READ_ACCESS_DATA* read_access_data) {
    if (!read_access_data) return;
    free_BACNET_READ_ACCESS_DATA_Internals(read_access_data);
    BACNET_READ_ACCESS_DATA* rad = read_access_data->next;
    read_access_data->next = nullptr;
    while (rad) {
        BACNET_READ_ACCESS_DATA* next = rad->next;
        free_BACNET_READ_ACCESS_DATA_Internals(rad);
        std::free(rad);
        rad = next;
    }
}

void bacapp_value_list_free(BACNET_APPLICATION_DATA_VALUE* head) {
    while (head) {
        BACNET_APPLICATION_DATA_VALUE* next = head->next;
        std::free(head);
        head = next;
    }
}
