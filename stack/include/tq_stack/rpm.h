// ReadPropertyMultiple: the request (client side) and the acknowledgement decoder.
//
//   ReadAccessSpecification ::= SEQUENCE { objectIdentifier [0],
//       listOfPropertyReferences [1] SEQUENCE OF BACnetPropertyReference }
//   BACnetPropertyReference ::= SEQUENCE { propertyIdentifier [0], propertyArrayIndex [1] OPTIONAL }
//   ReadAccessResult ::= SEQUENCE { objectIdentifier [0], listOfResults [1] SEQUENCE OF SEQUENCE {
//       propertyIdentifier [2], propertyArrayIndex [3] OPTIONAL,
//       readResult CHOICE { propertyValue [4] ABSTRACT-SYNTAX.&Type, propertyAccessError [5] Error } }
//       OPTIONAL }
//
// Ownership: nodes, records and values made by the decoders here are allocated with malloc and
// released with free() by rpm_ack_free_all / free_BACNET_READ_ACCESS_DATA_Internals. The first
// record of a chain always belongs to the caller (typically on its stack) and is never freed.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"
#include "tq_stack/values.h"

// One property of a request, or one result of an acknowledgement.
typedef struct BACnet_Property_Reference {
    BACNET_PROPERTY_ID propertyIdentifier;
    uint32_t propertyArrayIndex;  // BACNET_ARRAY_ALL: no index
    // Result: the decoded values, in order (see context_decode.h for how constructed values
    // appear); NULL with has_error false is an empty value (an empty list or array).
    BACNET_APPLICATION_DATA_VALUE* value;
    bool has_error;  // the server answered this property with error_class / error_code
    BACNET_ERROR_CLASS error_class;
    BACNET_ERROR_CODE error_code;
    struct BACnet_Property_Reference* next;
} BACNET_PROPERTY_REFERENCE;

typedef struct BACnet_Read_Access_Data {
    BACNET_OBJECT_TYPE object_type;
    uint32_t object_instance;
    BACNET_PROPERTY_REFERENCE* listOfProperties;
    struct BACnet_Read_Access_Data* next;
} BACNET_READ_ACCESS_DATA;

// The whole confirmed request for the record chain starting at read_access_data (each record
// with at least one property). Returns the length, or BACNET_STATUS_ERROR for a NULL or invalid
// record (instance above BACNET_MAX_INSTANCE, type above 1023, no property) or when the APDU
// would exceed max_apdu. A NULL apdu returns the length the APDU needs (max_apdu not applied).
int rpm_encode_apdu(uint8_t* apdu, unsigned max_apdu, uint8_t invoke_id,
                    const BACNET_READ_ACCESS_DATA* read_access_data);

// Decodes the service data of the acknowledgement (after the 3-octet complex-ACK header) into
// the chain starting at read_access_data: that record takes the first object, further records
// are allocated. Every result carries either its values or has_error with class and code.
// The record is cleared on entry; on failure everything allocated is released again and the
// record is left empty, so rpm_ack_free_all is always safe to call afterwards. Returns the bytes
// consumed (all of apdu_len) or BACNET_STATUS_ERROR. All values of one acknowledgement count
// against BACNET_MAX_DECODED_VALUES (context_decode.h).
int rpm_ack_decode_service_request(const uint8_t* apdu, uint32_t apdu_len,
                                   BACNET_READ_ACCESS_DATA* read_access_data);

// Frees the property lists and values of every record of the chain and every record after the
// first; leaves the first record with no list and no next.
void rpm_ack_free_all(BACNET_READ_ACCESS_DATA* read_access_data);

// Frees the property list (nodes and their values) of this one record and clears the pointer;
// next is not followed.
void free_BACNET_READ_ACCESS_DATA_Internals(BACNET_READ_ACCESS_DATA* read_access_data);

// Frees a malloc'ed value chain as the decoders make it.
void bacapp_value_list_free(BACNET_APPLICATION_DATA_VALUE* head);
