// Limits and status values shared by every part of the protocol codec.
#pragma once

#include <cstddef>
#include <cstdint>

// One APDU of a BACnet/IP link; every scratch buffer is sized by it.
#define MAX_APDU 1476

// A string as long as the longest that fits one APDU: the tag with a two-byte extended
// length takes 4 bytes, which leaves 1472 content bytes (one of them the character set).
#define MAX_OCTET_STRING_BYTES 1472
#define MAX_CHARACTER_STRING_BYTES 1471
// BIT STRING values of the gateway's properties never exceed 120 bits.
#define MAX_BITSTRING_BYTES 15

#define BACNET_MAX_OBJECT 0x3FF
#define BACNET_MAX_INSTANCE 0x3FFFFF
#define BACNET_INSTANCE_BITS 22
#define BACNET_ARRAY_ALL 0xFFFFFFFFu
#define BACNET_NO_PRIORITY 0
#define BACNET_MIN_PRIORITY 1
#define BACNET_MAX_PRIORITY 16

// Marks an absent device identifier in device-object (property) references.
#define BACNET_NO_DEV_TYPE 0xFFFFu
#define BACNET_NO_DEV_ID 0xFFFFFFFFu

// Addresses: a MAC of at most 7 bytes (6 for BACnet/IP), network 0xFFFF is the global broadcast.
#define MAX_MAC_LEN 7
#define BACNET_BROADCAST_NETWORK 0xFFFFu

// Results of decoders besides a positive byte count. Decoders of an optional context-tagged
// element return 0 when the element is not there.
#define BACNET_STATUS_OK 0
#define BACNET_STATUS_ERROR (-1)
#define BACNET_STATUS_ABORT (-2)
#define BACNET_STATUS_REJECT (-3)

// Opening and closing tags can nest; decoders that walk them stop at this depth rather than
// trusting the peer.
#define BACNET_MAX_NESTING_DEPTH 32

// The protocol's Unsigned as the value model holds it.
typedef uint32_t BACNET_UNSIGNED_INTEGER;
