// APDU headers: the fixed part in front of every service request and acknowledgement.
//
// Encoders return the header length and write nothing when apdu is NULL. Decoders take the
// bytes available and return the header length, or BACNET_STATUS_ERROR when the bytes are not
// a header of that PDU type or are too short. Segmented confirmed requests and segmented
// complex ACKs decode (their sequence number and window size are reported), but reassembly is
// left to the caller.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"

// Bits of the first APDU octet besides the PDU type.
#define APDU_FLAG_SEGMENTED_MESSAGE 0x08u
#define APDU_FLAG_MORE_FOLLOWS 0x04u
#define APDU_FLAG_SEGMENTED_RESPONSE_ACCEPTED 0x02u

// Header lengths of the unsegmented forms.
#define APDU_CONFIRMED_HEADER_LEN 4
#define APDU_UNCONFIRMED_HEADER_LEN 2
#define APDU_COMPLEX_ACK_HEADER_LEN 3
#define APDU_SIMPLE_ACK_LEN 3

typedef struct BACnet_Confirmed_Service_Data {
    bool segmented_message;
    bool more_follows;
    bool segmented_response_accepted;
    uint8_t max_segs_code;  // 0 unspecified, 1 two, 2 four, ... 6 sixty-four, 7 more than 64
    uint8_t max_apdu_code;  // 0 50 octets, 1 128, 2 206, 3 480, 4 1024, 5 1476
    uint8_t invoke_id;
    uint8_t sequence_number;       // segmented messages only
    uint8_t proposed_window_size;  // segmented messages only
    uint8_t service_choice;        // BACNET_CONFIRMED_SERVICE
} BACNET_CONFIRMED_SERVICE_DATA;

// The octets a max-APDU code stands for (0 for reserved codes 6..15) and the largest code whose
// size does not exceed the given octets (0 below 128 octets).
unsigned apdu_max_apdu_octets(uint8_t max_apdu_code);
uint8_t apdu_max_apdu_code(unsigned octets);

// Confirmed request: 4 octets, 6 when segmented_message is set.
int apdu_encode_confirmed_header(uint8_t* apdu, const BACNET_CONFIRMED_SERVICE_DATA* header);
int apdu_decode_confirmed_header(const uint8_t* apdu, uint32_t apdu_len,
                                 BACNET_CONFIRMED_SERVICE_DATA* header);

// Unconfirmed request: PDU type and service choice.
int apdu_encode_unconfirmed_header(uint8_t* apdu, uint8_t service_choice);
int apdu_decode_unconfirmed_header(const uint8_t* apdu, uint32_t apdu_len, uint8_t* service_choice);

// Complex ACK, unsegmented (3 octets). The decoder accepts the segmented form too (5 octets) and
// reports it through segmented (may be NULL), so a caller can tell it from a malformed PDU.
int apdu_encode_complex_ack_header(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice);
int apdu_decode_complex_ack_header(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id,
                                   uint8_t* service_choice, bool* segmented);

// Simple ACK: the whole PDU.
int apdu_encode_simple_ack(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice);
int apdu_decode_simple_ack(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id,
                           uint8_t* service_choice);

// Error PDU with the Error production (error class and code, application-tagged enumerations).
// Only the plain Error form is decoded; services whose error is a larger production report
// BACNET_STATUS_ERROR.
int apdu_encode_error(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice,
                      BACNET_ERROR_CLASS error_class, BACNET_ERROR_CODE error_code);
int apdu_decode_error(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id, uint8_t* service_choice,
                      BACNET_ERROR_CLASS* error_class, BACNET_ERROR_CODE* error_code);

// Reject and Abort PDUs: invoke id and reason. server is the SRV bit of an Abort.
int apdu_encode_reject(uint8_t* apdu, uint8_t invoke_id, uint8_t reason);
int apdu_decode_reject(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id, uint8_t* reason);
int apdu_encode_abort(uint8_t* apdu, uint8_t invoke_id, uint8_t reason, bool server);
int apdu_decode_abort(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id, uint8_t* reason,
                      bool* server);

// Writes the 4-octet header the gateway's own confirmed requests carry: unsegmented, no
// segmented response accepted, max APDU 1476. Shared by the request encoders of the services.
int apdu_encode_request_header(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice);
