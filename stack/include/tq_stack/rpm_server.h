// ReadPropertyMultiple as a server sees it: the request's decoder and the acknowledgement's
// encoders (grammar in rpm.h).
//
// The acknowledgement is written piece by piece, so a server can stop at the size the client
// accepts: per object rpm_ack_encode_object_begin, one result per property (a value or an
// error), rpm_ack_encode_object_end. Each returns its length; a NULL apdu sizes.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"

typedef struct BACnet_RPM_Reference {
    BACNET_OBJECT_TYPE object_type;
    uint32_t object_instance;
    BACNET_PROPERTY_ID property;
    uint32_t array_index;  // BACNET_ARRAY_ALL: no index
    bool first_of_object;  // the first property of its ReadAccessSpecification
} BACNET_RPM_REFERENCE;

// Called once per property reference, in request order; returning false stops the decode
// (which then returns BACNET_STATUS_ABORT).
typedef bool (*rpm_reference_visitor)(void* context, const BACNET_RPM_REFERENCE* reference);

// Walks the request (the bytes after the confirmed header). visitor may be NULL to validate only.
// Returns the bytes consumed or BACNET_STATUS_ERROR for malformed or truncated data, an empty
// property list or trailing bytes. Nothing is allocated.
int rpm_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, rpm_reference_visitor visitor,
                               void* context);

int rpm_ack_encode_object_begin(uint8_t* apdu, BACNET_OBJECT_TYPE object_type, uint32_t object_instance);
// propertyIdentifier [2], propertyArrayIndex [3] when not BACNET_ARRAY_ALL, then the value's
// bytes in [4].
int rpm_ack_encode_property_value(uint8_t* apdu, BACNET_PROPERTY_ID property, uint32_t array_index,
                                  const uint8_t* value, uint32_t value_len);
int rpm_ack_encode_property_error(uint8_t* apdu, BACNET_PROPERTY_ID property, uint32_t array_index,
                                  BACNET_ERROR_CLASS error_class, BACNET_ERROR_CODE error_code);
int rpm_ack_encode_object_end(uint8_t* apdu);
