// ReadRange: request and acknowledgement.
//
//   ReadRange-Request ::= SEQUENCE { objectIdentifier [0], propertyIdentifier [1],
//       propertyArrayIndex [2] Unsigned OPTIONAL, range CHOICE {
//           byPosition [3] SEQUENCE { referenceIndex Unsigned, count INTEGER16 },
//           bySequenceNumber [6] SEQUENCE { referenceSequenceNumber Unsigned32, count INTEGER16 },
//           byTime [7] SEQUENCE { referenceTime BACnetDateTime, count INTEGER16 } } OPTIONAL }
//   ReadRange-ACK ::= SEQUENCE { objectIdentifier [0], propertyIdentifier [1],
//       propertyArrayIndex [2] OPTIONAL, resultFlags [3] BACnetResultFlags, itemCount [4] Unsigned,
//       itemData [5] SEQUENCE OF ABSTRACT-SYNTAX.&Type, firstSequenceNumber [6] Unsigned32 OPTIONAL }
//
// Length conventions as in rp.h.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"
#include "tq_stack/values.h"

// Request types (bit values, so a server can keep a mask of those it supports).
#define RR_BY_POSITION 1
#define RR_BY_SEQUENCE 2
#define RR_BY_TIME 4
#define RR_READ_ALL 8  // no range: the whole list

// Bits of BACnetResultFlags.
#define RESULT_FLAG_FIRST_ITEM 0
#define RESULT_FLAG_LAST_ITEM 1
#define RESULT_FLAG_MORE_ITEMS 2

typedef struct BACnet_Read_Range_Data {
    BACNET_OBJECT_TYPE object_type;
    uint32_t object_instance;
    BACNET_PROPERTY_ID object_property;
    uint32_t array_index;  // BACNET_ARRAY_ALL: no index
    // Request.
    int request_type;  // RR_BY_POSITION, RR_BY_SEQUENCE, RR_BY_TIME or RR_READ_ALL
    union {
        uint32_t ref_index;    // by position
        uint32_t ref_seq_num;  // by sequence number
        BACNET_DATE_TIME ref_time;
    } range;
    int32_t count;  // -32768..32767; negative reads backwards from the reference
    // Acknowledgement.
    BACNET_BIT_STRING result_flags;  // 3 bits, RESULT_FLAG_*
    uint32_t item_count;
    uint32_t first_sequence;  // sent when request_type is RR_BY_SEQUENCE or RR_BY_TIME and items exist
    // The items' encoding: the caller's bytes when encoding; when decoding a pointer into the
    // decoded buffer.
    const uint8_t* application_data;
    int application_data_len;
    BACNET_ERROR_CLASS error_class;
    BACNET_ERROR_CODE error_code;
} BACNET_READ_RANGE_DATA;

// The whole confirmed request. A request type other than the four above, or a count outside
// INTEGER16, is an error.
int rr_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_RANGE_DATA* data);
int rr_encode_service_request(uint8_t* apdu, const BACNET_READ_RANGE_DATA* data);
// Fills reference, request type, range and count (RR_READ_ALL, count 0 without a range).
int rr_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_RANGE_DATA* data);

// The whole complex ACK.
int rr_ack_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_RANGE_DATA* data);
int rr_ack_encode_service_request(uint8_t* apdu, const BACNET_READ_RANGE_DATA* data);
// Fills reference, result flags, item count, the item bytes (application_data, not decoded) and
// first_sequence (0 when absent).
int rr_ack_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_RANGE_DATA* data);
