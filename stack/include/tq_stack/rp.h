// ReadProperty: request and acknowledgement.
//
//   ReadProperty-Request ::= SEQUENCE { objectIdentifier [0], propertyIdentifier [1],
//                                        propertyArrayIndex [2] Unsigned OPTIONAL }
//   ReadProperty-ACK     ::= the same, then propertyValue [3] ABSTRACT-SYNTAX.&Type
//
// *_encode_apdu write the whole APDU (the request with the header of apdu_encode_request_header)
// and return its length, or BACNET_STATUS_ERROR for a NULL record, an instance above
// BACNET_MAX_INSTANCE, an object type above 1023 or an APDU that would exceed MAX_APDU. A NULL
// apdu writes nothing and returns the length. *_decode_service_request take the bytes after the
// APDU header and return the bytes consumed or a negative value; the record is written only on
// success.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"

typedef struct BACnet_Read_Property_Data {
    BACNET_OBJECT_TYPE object_type;
    uint32_t object_instance;
    BACNET_PROPERTY_ID object_property;
    uint32_t array_index;  // BACNET_ARRAY_ALL: no index
    // The encoded property value of an acknowledgement: the caller's bytes when encoding; when
    // decoding, a pointer into the decoded buffer (valid as long as that buffer is).
    const uint8_t* application_data;
    int application_data_len;
    BACNET_ERROR_CLASS error_class;
    BACNET_ERROR_CODE error_code;
} BACNET_READ_PROPERTY_DATA;

int rp_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_PROPERTY_DATA* data);
// The request without the APDU header.
int rp_encode_service_request(uint8_t* apdu, const BACNET_READ_PROPERTY_DATA* data);
// Fills object, property and array index (BACNET_ARRAY_ALL when absent). Bytes after the
// request are an error: a request is exactly its service data.
int rp_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_PROPERTY_DATA* data);

int rp_ack_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_PROPERTY_DATA* data);
int rp_ack_encode_service_request(uint8_t* apdu, const BACNET_READ_PROPERTY_DATA* data);
// Fills object, property, array index and application_data / application_data_len with the bytes
// between opening and closing tag [3] (not decoded; their tags must balance). The closing tag
// must end the given bytes.
int rp_ack_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_PROPERTY_DATA* data);
