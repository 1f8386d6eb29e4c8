// Change of value: SubscribeCOV (clause 13.14) and the COV notifications (13.15, 13.16).
//
//   SubscribeCOV-Request ::= SEQUENCE { subscriberProcessIdentifier [0] Unsigned32,
//       monitoredObjectIdentifier [1] BACnetObjectIdentifier,
//       issueConfirmedNotifications [2] BOOLEAN OPTIONAL, lifetime [3] Unsigned OPTIONAL }
//     (both optional parameters absent: the subscription is cancelled)
//   COVNotification-Request ::= SEQUENCE { subscriberProcessIdentifier [0] Unsigned32,
//       initiatingDeviceIdentifier [1] BACnetObjectIdentifier,
//       monitoredObjectIdentifier [2] BACnetObjectIdentifier, timeRemaining [3] Unsigned,
//       listOfValues [4] SEQUENCE OF BACnetPropertyValue }
//
// The confirmed and the unconfirmed notification carry the same service data; a confirmed one is
// answered with a Simple-ACK, a subscription as well. Length conventions as in rp.h.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/create_object.h"
#include "tq_stack/enums.h"

typedef struct BACnet_Subscribe_COV_Data {
    uint32_t subscriber_process_identifier;
    BACNET_OBJECT_TYPE monitored_object_type;
    uint32_t monitored_object_instance;
    // Sent without [2] and [3]; the other fields below are then not used.
    bool cancellation_request;
    bool issue_confirmed_notifications;
    bool lifetime_present;  // absent: the subscription does not expire
    uint32_t lifetime;      // seconds
} BACNET_SUBSCRIBE_COV_DATA;

// BACNET_STATUS_ERROR for a NULL record, an instance above BACNET_MAX_INSTANCE or an object type
// above 1023.
int cov_subscribe_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_SUBSCRIBE_COV_DATA* data);
int cov_subscribe_encode_service_request(uint8_t* apdu, const BACNET_SUBSCRIBE_COV_DATA* data);
// Fills the record (cancellation_request set when [2] and [3] are both absent). A lifetime
// without issueConfirmedNotifications, malformed or truncated data and trailing bytes are
// BACNET_STATUS_ERROR (record unchanged).
int cov_subscribe_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_SUBSCRIBE_COV_DATA* data);

typedef struct BACnet_COV_Data {
    uint32_t subscriber_process_identifier;
    uint32_t initiating_device_instance;  // the device object's instance
    BACNET_OBJECT_TYPE monitored_object_type;
    uint32_t monitored_object_instance;
    uint32_t time_remaining;  // seconds; 0 for a subscription without lifetime
    BACNET_PROPERTY_VALUE_REF* values;  // the caller's array (may be NULL with capacity 0)
    unsigned capacity;
    unsigned count;  // values decoded (or to encode)
} BACNET_COV_DATA;

// ConfirmedCOVNotification and UnconfirmedCOVNotification. BACNET_STATUS_ERROR for a NULL
// record, an identifier out of range, a value without bytes, a priority above 16 or an APDU
// longer than MAX_APDU.
int cov_notify_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_COV_DATA* data);
int ucov_notify_encode_apdu(uint8_t* apdu, const BACNET_COV_DATA* data);
int cov_notify_encode_service_request(uint8_t* apdu, const BACNET_COV_DATA* data);
// Either notification's service data. Values point into apdu. BACNET_STATUS_ERROR for malformed
// or truncated data, an initiating identifier that names no device, or trailing bytes;
// BACNET_STATUS_REJECT for more values than capacity or a priority outside 1..16. The record's
// fields (count included) are written only on success; the values array may be written to
// whatever the outcome.
int cov_notify_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_COV_DATA* data);
