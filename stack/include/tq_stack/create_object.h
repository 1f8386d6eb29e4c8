// CreateObject and DeleteObject (clause 15.3, 15.4).
//
//   CreateObject-Request ::= SEQUENCE { objectSpecifier [0] CHOICE { objectType [0] BACnetObjectType,
//       objectIdentifier [1] BACnetObjectIdentifier }, listOfInitialValues [1] SEQUENCE OF
//       BACnetPropertyValue OPTIONAL }
//   BACnetPropertyValue ::= SEQUENCE { propertyIdentifier [0], propertyArrayIndex [1] Unsigned OPTIONAL,
//       propertyValue [2] ABSTRACT-SYNTAX.&Type, priority [3] Unsigned (1..16) OPTIONAL }
//   CreateObject-ACK ::= BACnetObjectIdentifier
//   CreateObject-Error ::= SEQUENCE { errorType [0] Error, firstFailedElementNumber [1] Unsigned }
//   DeleteObject-Request ::= SEQUENCE { objectIdentifier BACnetObjectIdentifier }
//
// Length conventions as in rp.h: *_encode_apdu write the whole APDU, a NULL apdu sizes it;
// decoders take the bytes after the APDU header.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"

// One initial value; value points into the encoded request.
typedef struct BACnet_Property_Value_Ref {
    BACNET_PROPERTY_ID property;
    uint32_t array_index;  // BACNET_ARRAY_ALL: no index
    const uint8_t* value;  // the bytes between opening and closing tag [2]
    uint32_t value_len;
    uint8_t priority;  // BACNET_NO_PRIORITY: absent
} BACNET_PROPERTY_VALUE_REF;

typedef struct BACnet_Create_Object_Data {
    bool by_identifier;  // objectIdentifier given, else objectType only
    BACNET_OBJECT_TYPE object_type;
    uint32_t object_instance;  // by_identifier only
    BACNET_PROPERTY_VALUE_REF* values;  // the caller's array (may be NULL with capacity 0)
    unsigned capacity;
    unsigned count;  // initial values decoded (or to encode)
} BACNET_CREATE_OBJECT_DATA;

int create_object_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_CREATE_OBJECT_DATA* data);
// Fills the specifier and up to capacity initial values. BACNET_STATUS_ERROR for malformed or
// truncated data or trailing bytes, BACNET_STATUS_REJECT for more initial values than capacity
// (too many arguments) or a priority outside 1..16 (parameter out of range).
int create_object_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_CREATE_OBJECT_DATA* data);

// CreateObject-ACK: the Complex-ACK header and the new object's identifier.
int create_object_ack_encode_apdu(uint8_t* apdu, uint8_t invoke_id, BACNET_OBJECT_TYPE object_type,
                                  uint32_t object_instance);
// The identifier after the Complex-ACK header; nothing may follow it.
int create_object_ack_decode(const uint8_t* apdu, uint32_t apdu_len, BACNET_OBJECT_TYPE* object_type,
                             uint32_t* object_instance);

int delete_object_encode_apdu(uint8_t* apdu, uint8_t invoke_id, BACNET_OBJECT_TYPE object_type,
                              uint32_t object_instance);
int delete_object_decode_service_request(const uint8_t* apdu, uint32_t apdu_len,
                                         BACNET_OBJECT_TYPE* object_type, uint32_t* object_instance);

// Error PDU whose error is the Error production in [0] followed by the first failed element
// number in [1] (CreateObject-Error; numbering from 1, 0 when no element is at fault).
int apdu_encode_error_with_element(uint8_t* apdu, uint8_t invoke_id, uint8_t service_choice,
                                   BACNET_ERROR_CLASS error_class, BACNET_ERROR_CODE error_code,
                                   uint32_t first_failed_element);
int apdu_decode_error_with_element(const uint8_t* apdu, uint32_t apdu_len, uint8_t* invoke_id,
                                   uint8_t* service_choice, BACNET_ERROR_CLASS* error_class,
                                   BACNET_ERROR_CODE* error_code, uint32_t* first_failed_element);
