// BACnetDeviceObjectReference ::= SEQUENCE { device-identifier [0] OPTIONAL, object-identifier [1] }
// BACnetDeviceObjectPropertyReference ::= SEQUENCE { object-identifier [0],
//     property-identifier [1], property-array-index [2] OPTIONAL, device-identifier [3] OPTIONAL }
// The device is encoded when deviceIdentifier.type is OBJECT_DEVICE; the array index when it is
// not BACNET_ARRAY_ALL. Decoding an absent device stores BACNET_NO_DEV_TYPE / BACNET_NO_DEV_ID,
// an absent index BACNET_ARRAY_ALL. Decoders return bytes consumed or BACNET_STATUS_ERROR and
// leave the value unchanged on failure; context decoders return 0 when apdu does not start
// with opening tag tag_number.
#pragma once

#include <cstdint>

#include "tq_stack/values.h"

int bacapp_encode_device_obj_ref(uint8_t* apdu, const BACNET_DEVICE_OBJECT_REFERENCE* value);
int bacapp_encode_context_device_obj_ref(uint8_t* apdu, uint8_t tag_number,
                                         const BACNET_DEVICE_OBJECT_REFERENCE* value);
int bacapp_decode_device_obj_ref(const uint8_t* apdu, uint32_t apdu_len,
                                 BACNET_DEVICE_OBJECT_REFERENCE* value);
int bacapp_decode_context_device_obj_ref(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                         BACNET_DEVICE_OBJECT_REFERENCE* value);

int bacapp_encode_device_obj_property_ref(uint8_t* apdu,
                                          const BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value);
int bacapp_encode_context_device_obj_property_ref(uint8_t* apdu, uint8_t tag_number,
                                                  const BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value);
int bacapp_decode_device_obj_property_ref(const uint8_t* apdu, uint32_t apdu_len,
                                          BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value);
int bacapp_decode_context_device_obj_property_ref(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                                  BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value);
