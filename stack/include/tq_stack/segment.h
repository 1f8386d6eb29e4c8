// Segmented messages (clause 5.4): the header of a segmented Complex-ACK and the Segment-ACK PDU.
//
//   Complex-ACK, segmented: 0x38 | MOR | invoke id | sequence number | proposed window | service
//   Segment-ACK: 0x40 | NAK 0x02 | SRV 0x01 | invoke id | sequence number | actual window
#pragma once

#include <cstdint>

#include "tq_stack/config.h"

#define APDU_SEGMENTED_COMPLEX_ACK_HEADER_LEN 5
#define APDU_SEGMENT_ACK_LEN 4
// Window sizes are 1..127 (clause 20.1.2.8).
#define APDU_MAX_WINDOW_SIZE 127

typedef struct BACnet_Complex_Ack_Data {
    bool segmented_message;
    bool more_follows;
    uint8_t invoke_id;
    uint8_t sequence_number;       // segmented only
    uint8_t proposed_window_size;  // segmented only
    uint8_t service_choice;
} BACNET_COMPLEX_ACK_DATA;

// Either form of the Complex-ACK header (3 octets, 5 when segmented_message is set).
int apdu_encode_complex_ack(uint8_t* apdu, const BACNET_COMPLEX_ACK_DATA* header);
// Either form; BACNET_STATUS_ERROR for another PDU type, a truncated header, more-follows without
// segmentation, or a segmented header whose window is 0 or above APDU_MAX_WINDOW_SIZE.
int apdu_decode_complex_ack(const uint8_t* apdu, uint32_t apdu_len, BACNET_COMPLEX_ACK_DATA* header);

// server: the acknowledging side is the server (SRV bit). nak: a segment was missing or out of order.
int apdu_encode_segment_ack(uint8_t* apdu, bool nak, bool server, uint8_t invoke_id, uint8_t sequence_number,
                            uint8_t actual_window_size);
// BACNET_STATUS_ERROR for another PDU type, fewer than 4 octets or a window outside 1..127.
int apdu_decode_segment_ack(const uint8_t* apdu, uint32_t apdu_len, bool* nak, bool* server,
                            uint8_t* invoke_id, uint8_t* sequence_number, uint8_t* actual_window_size);

// Maximum segments accepted: the code of a confirmed request's header and the count it stands
// for (0 unspecified, 65 more than 64), and the smallest code allowing at least count segments.
unsigned apdu_max_segments(uint8_t max_segs_code);
uint8_t apdu_max_segments_code(unsigned count);
