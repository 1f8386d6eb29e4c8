#include "tq_stack/apdu.h"

#include "tq_stack/codec.h"

namespace {

// Octets by max-APDU code; codes 6..15 are reserved.
constexpr unsigned kMaxApduOctets[] = {50, 128, 206, 480, 1024, 1476};
constexpr uint8_t kMaxApduCodes = sizeof kMaxApduOctets / sizeof kMaxApduOctets[0];

constexpr uint8_t kTypeMask = 0xF0;
constexpr uint8_t kAbortServer = 0x01;

bool hasType(const uint8_t* apdu, uint32_t apduLen, uint32_t minLen, uint8_t type) {
    return apdu && apduLen >= minLen && (apdu[0] & kTypeMask) == type;
}

// Invoke id and one more octet (service choice or reason) behind the type octet.
int encodeTriple(uint8_t* apdu, uint8_t first, uint8_t invokeId, uint8_t third) {
    if (apdu) {
        apdu[0] = first;
        apdu[1] = invokeId;
        apdu[2] = third;
    }
    return 3;
}

int decodeTriple(const uint8_t* apdu, uint32_t apduLen, uint8_t type, uint8_t* invokeId, uint8_t* third) {
    if (!hasType(apdu, apduLen, 3, type)) return BACNET_STATUS_ERROR;
    if (invokeId) *invokeId = apdu[1];
    if (third) *third = apdu[2];
    return 3;
}

}  // namespace

unsigned apdu_max_apdu_octets(uint8_t max_apdu_code) {
    return max_apdu_code < kMaxApduCodes ? kMaxApduOctets[max_apdu_code] : 0;
}

uint8_t apdu_max_apdu_code(unsigned octets) {
    uint8_t code = 0;
    while (code + 1 < kMaxApduCodes && kMaxApduOctets[code + 1] <= octets) ++code;
    return code;
}

int apdu_encode_confirmed_header(uint8_t* apdu, const BACNET_CONFIRMED_SERVICE_DATA* header) {
    if (!header) return BACNET_STATUS_ERROR;
    const int len = header->segmented_message ? 6 : 4;
    if (!apdu) return len;
    uint8_t first = PDU_TYPE_CONFIRMED_SERVICE_REQUEST;
    if (header->segmented_message) first |= APDU_FLAG_SEGMENTED_MESSAGE;
    if (header->more_follows) first |= APDU_FLAG_MORE_FOLLOWS;
    if (header->segmented_response_accepted) first |= APDU_FLAG_SEGMENTED_RESPONSE_ACCEPTED;
    apdu[0] = first;
    apdu[1] = uint8_t(((header->max_segs_code & 0x07) << 4) | (header->max_apdu_code & 0x0F));
    apdu[2] = header->invoke_id;
    int pos = 3;
    if (header->segmented_message) {
        apdu[pos++] = header->sequence_number;
        apdu[pos++] = header->proposed_window_size;
    }
    apdu[pos++] = header->service_choice;
    return pos;
}

int apdu_decode_confirmed_header(const uint8_t* apdu, uint32_t apdu_len,
                                 BACNET_CONFIRMED_SERVICE_DATA* header) {
    if (!header || !hasType(apdu, apdu_len, 4, PDU_TYPE_CONFIRMED_SERVICE_REQUEST))
        return BACNET_STATUS_ERROR;
    BACNET_CONFIRMED_SERVICE_DATA h{};
    h.segmented_message = (apdu[0] & APDU_FLAG_SEGMENTED_MESSAGE) != 0;
    h.more_follows = (apdu[0] & APDU_FLAG_MORE_FOLLOWS) != 0;
    h.segmented_response_accepted = (apdu[0] & APDU_FLAG_SEGMENTED_RESPONSE_ACCEPTED) != 0;
    h.max_segs_code = uint8_t((apdu[1] >> 4) & 0x07);
    h.max_apdu_code = uint8_t(apdu[1] & 0x0F);
    h.invoke_id = apdu[2];
    uint32_t pos = 3;
    if (h.segmented_message) {
        if (apdu_len < 6) return BACNET_STATUS_ERROR;
        h.sequence_number = apdu[pos++];
        h.proposed_window_size = apdu[pos++];
    }
    h.service_choice = apdu[pos++];
    *header = h;
    return int(pos);
}

int apdu_encode_request_header(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice) {
    if (apdu) {
        apdu[0] = PDU_TYPE_CONFIRMED_SERVICE_REQUEST;
        apdu[1] = 0x05;  // max segments unspecified, 1476 octets
        apdu[2] = invoke_id;
        apdu[3] = service_choice;
    }
    return APDU_CONFIRMED_HEADER_LEN;
}

int apdu_encode_unconfirmed_header(uint8_t* apdu, uint8_t service_choice) {
    if (apdu) {
        apdu[0] = PDU_TYPE_UNCONFIRMED_SERVICE_REQUEST;
        apdu[1] = service_choice;
    }
    return APDU_UNCONFIRMED_HEADER_LEN;
}

int apdu_decode_unconfirmed_header(const uint8_t* apdu, uint32_t apdu_len, uint8_t* service_choice) {
    if (!hasType(apdu, apdu_len, 2, PDU_TYPE_UNCONFIRMED_SERVICE_REQUEST)) return BACNET_STATUS_ERROR;
    if (service_choice) *service_choice = apdu[1];
    return APDU_UNCONFIRMED_HEADER_LEN;
}

int apdu_encode_complex_ack_header(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice) {
    return encodeTriple(apdu, PDU_TYPE_COMPLEX_ACK, invoke_id, service_choice);
}

int apdu_decode_complex_ack_header(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id,
                                   uint8_t* service_choice, bool* segmented) {
    if (!hasType(apdu, apdu_len, 3, PDU_TYPE_COMPLEX_ACK)) return BACNET_STATUS_ERROR;
    const bool seg = (apdu[0] & APDU_FLAG_SEGMENTED_MESSAGE) != 0;
    // Segmented form: invoke id, sequence number, proposed window size, service choice.
    const uint32_t len = seg ? 5 : 3;
    if (apdu_len < len) return BACNET_STATUS_ERROR;
    if (invoke_id) *invoke_id = apdu[1];
    if (service_choice) *service_choice = apdu[len - 1];
    if (segmented) *segmented = seg;
    return int(len);
}

int apdu_encode_simple_ack(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice) {
    return encodeTriple(apdu, PDU_TYPE_SIMPLE_ACK, invoke_id, service_choice);
}

int apdu_decode_simple_ack(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id,
                           uint8_t* service_choice) {
    return decodeTriple(apdu, apdu_len, PDU_TYPE_SIMPLE_ACK, invoke_id, service_choice);
}

int apdu_encode_error(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice,
                      BACNET_ERROR_CLASS error_class, BACNET_ERROR_CODE error_code) {
    int len = encodeTriple(apdu, PDU_TYPE_ERROR, invoke_id, service_choice);
    len += encode_application_enumerated(apdu ? apdu + len : nullptr, error_class);
    len += encode_application_enumerated(apdu ? apdu + len : nullptr, error_code);
    return len;
}

int apdu_decode_error(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id, uint8_t* service_choice,
                      BACNET_ERROR_CLASS* error_class, BACNET_ERROR_CODE* error_code) {
    uint8_t id = 0, service = 0;
    int len = decodeTriple(apdu, apdu_len, PDU_TYPE_ERROR, &id, &service);
    if (len < 0) return BACNET_STATUS_ERROR;
    uint32_t cls = 0, code = 0;
    int n = decode_application_enumerated(apdu + len, apdu_len - uint32_t(len), &cls);
    if (n <= 0) return BACNET_STATUS_ERROR;
    len += n;
    n = decode_application_enumerated(apdu + len, apdu_len - uint32_t(len), &code);
    if (n <= 0) return BACNET_STATUS_ERROR;
    len += n;
    if (invoke_id) *invoke_id = id;
    if (service_choice) *service_choice = service;
    if (error_class) *error_class = BACNET_ERROR_CLASS(cls);
    if (error_code) *error_code = BACNET_ERROR_CODE(code);
    return len;
}

int apdu_encode_reject(uint8_t* apdu, uint8_t invoke_id, uint8_t reason) {
    return encodeTriple(apdu, PDU_TYPE_REJECT, invoke_id, reason);
}

int apdu_decode_reject(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id, uint8_t* reason) {
    return decodeTriple(apdu, apdu_len, PDU_TYPE_REJECT, invoke_id, reason);
}

int apdu_encode_abort(uint8_t* apdu, uint8_t invoke_id, uint8_t reason, bool server) {
    return encodeTriple(apdu, uint8_t(PDU_TYPE_ABORT | (server ? kAbortServer : 0)), invoke_id, reason);
}

int apdu_decode_abort(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id, uint8_t* reason,
                      bool* server) {
    const int len = decodeTriple(apdu, apdu_len, PDU_TYPE_ABORT, invoke_id, reason);
    if (len > 0 && server) *server = (apdu[0] & kAbortServer) != 0;
    return len;
}
