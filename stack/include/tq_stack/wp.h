// WriteProperty request.
//
//   WriteProperty-Request ::= SEQUENCE { objectIdentifier [0], propertyIdentifier [1],
//       propertyArrayIndex [2] Unsigned OPTIONAL, propertyValue [3] ABSTRACT-SYNTAX.&Type,
//       priority [4] Unsigned (1..16) OPTIONAL }
//
// The answer is a simple ACK or an Error PDU (apdu.h).
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"

typedef struct BACnet_Write_Property_Data {
    BACNET_OBJECT_TYPE object_type;
    uint32_t object_instance;
    BACNET_PROPERTY_ID object_property;
    uint32_t array_index;  // BACNET_ARRAY_ALL: no index
    // The encoded value (application- or context-tagged primitives and constructed values).
    // Only the first application_data_len bytes are meaningful; nothing here clears the rest.
    uint8_t application_data[MAX_APDU];
    int application_data_len;
    uint8_t priority;  // BACNET_NO_PRIORITY (0): not sent; 1..16 otherwise
    BACNET_ERROR_CLASS error_class;
    BACNET_ERROR_CODE error_code;
} BACNET_WRITE_PROPERTY_DATA;

// The whole confirmed request. BACNET_STATUS_ERROR for a NULL record, an instance above
// BACNET_MAX_INSTANCE, an object type above 1023, an empty or oversized value, a priority above
// 16, or an APDU longer than MAX_APDU. A NULL apdu returns the length.
int wp_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_WRITE_PROPERTY_DATA* data);
int wp_encode_service_request(uint8_t* apdu, const BACNET_WRITE_PROPERTY_DATA* data);

// The server's decoder of the service data (after the 4-octet header). Copies the value's bytes
// (only those) into application_data. Returns the bytes consumed or a negative value:
// BACNET_STATUS_ERROR for malformed or truncated data (record unchanged), BACNET_STATUS_REJECT for a
// priority outside 1..16, in which case error_class / error_code are set to services /
// parameter-out-of-range and nothing else is written.
int wp_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_WRITE_PROPERTY_DATA* data);
