// The value structures of the codec. Strings are sized to hold anything one APDU can carry;
// their functions (strings.h) touch only the used bytes, so the capacity costs memory, not time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/enums.h"

typedef struct BACnet_Character_String {
    uint8_t encoding;  // BACNET_CHARACTER_STRING_ENCODING
    size_t length;     // bytes used in value
    // One spare byte keeps the text NUL-terminated, so value can be handed to C string APIs.
    char value[MAX_CHARACTER_STRING_BYTES + 1];
} BACNET_CHARACTER_STRING;

typedef struct BACnet_Octet_String {
    size_t length;
    uint8_t value[MAX_OCTET_STRING_BYTES];
} BACNET_OCTET_STRING;

// Bits are held as on the wire: bit 0 is the most significant bit of value[0].
typedef struct BACnet_Bit_String {
    uint8_t bits_used;
    uint8_t value[MAX_BITSTRING_BYTES];
} BACNET_BIT_STRING;

// year is the full year (2024); 2155 (1900 + 255) is the unspecified year. month 1..12,
// 13 odd and 14 even months; day 1..31, 32 last day, 33 odd and 34 even days; wday 1 Monday ..
// 7 Sunday; 255 in month, day and wday means unspecified.
typedef struct BACnet_Date {
    uint16_t year;
    uint8_t month;
    uint8_t day;
    uint8_t wday;
} BACNET_DATE;

// 255 in any field means unspecified.
typedef struct BACnet_Time {
    uint8_t hour;
    uint8_t min;
    uint8_t sec;
    uint8_t hundredths;
} BACNET_TIME;

typedef struct BACnet_DateTime {
    BACNET_DATE date;
    BACNET_TIME time;
} BACNET_DATE_TIME;

// type is a BACNET_OBJECT_TYPE (10 bits on the wire; BACNET_NO_DEV_TYPE marks "absent" in
// references), instance 22 bits on the wire.
typedef struct BACnet_Object_Id {
    uint16_t type;
    uint32_t instance;
} BACNET_OBJECT_ID;

// One primitive value, application tagged or (context_specific) context tagged; tag is always
// the application tag whose content rules apply. next links decoded values into a list; no
// codec function reads or writes it.
typedef struct BACnet_Application_Data_Value {
    bool context_specific;
    uint8_t context_tag;
    uint8_t tag;  // BACNET_APPLICATION_TAG
    union {
        bool Boolean;
        BACNET_UNSIGNED_INTEGER Unsigned_Int;
        int32_t Signed_Int;
        float Real;
        double Double;
        BACNET_OCTET_STRING Octet_String;
        BACNET_CHARACTER_STRING Character_String;
        BACNET_BIT_STRING Bit_String;
        uint32_t Enumerated;
        BACNET_DATE Date;
        BACNET_TIME Time;
        BACNET_OBJECT_ID Object_Id;
    } type;
    struct BACnet_Application_Data_Value* next;
} BACNET_APPLICATION_DATA_VALUE;

// BACnetDeviceObjectReference: the device is present when deviceIdentifier.type is
// OBJECT_DEVICE; decoding an absent device stores BACNET_NO_DEV_TYPE / BACNET_NO_DEV_ID.
typedef struct BACnet_Device_Object_Reference {
    BACNET_OBJECT_ID deviceIdentifier;
    BACNET_OBJECT_ID objectIdentifier;
} BACNET_DEVICE_OBJECT_REFERENCE;

// BACnetDeviceObjectPropertyReference: arrayIndex BACNET_ARRAY_ALL means absent; the device as
// in BACNET_DEVICE_OBJECT_REFERENCE.
typedef struct BACnet_Device_Object_Property_Reference {
    BACNET_OBJECT_ID objectIdentifier;
    BACNET_PROPERTY_ID propertyIdentifier;
    uint32_t arrayIndex;
    BACNET_OBJECT_ID deviceIdentifier;
} BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE;

// A BACnet network address: the MAC on the local network (BACnet/IP: 4 address bytes and the
// UDP port, both in network order), net 0 local, BACNET_BROADCAST_NETWORK global broadcast,
// and for remote networks the address on that network in adr.
typedef struct BACnet_Device_Address {
    uint8_t mac_len;
    uint8_t mac[MAX_MAC_LEN];
    uint16_t net;
    uint8_t len;
    uint8_t adr[MAX_MAC_LEN];
} BACNET_ADDRESS;
