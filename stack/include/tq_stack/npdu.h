// The network layer's protocol control information (clause 6.2): version, control octet, the
// destination (DNET, DLEN, DADR) and source (SNET, SLEN, SADR) of routed messages, the hop
// count, and the message type of network-layer messages.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"
#include "tq_stack/values.h"

#define BACNET_PROTOCOL_VERSION 1
#define NPDU_DEFAULT_HOP_COUNT 255
// Version, control, DNET, DLEN, DADR, SNET, SLEN, SADR, hop count, message type, vendor.
#define NPDU_MAX_HEADER_LEN (2 + 3 + MAX_MAC_LEN + 3 + MAX_MAC_LEN + 1 + 3)

// Bits of the control octet.
#define NPDU_CONTROL_NETWORK_MESSAGE 0x80u
#define NPDU_CONTROL_DNET 0x20u
#define NPDU_CONTROL_SNET 0x08u
#define NPDU_CONTROL_EXPECTING_REPLY 0x04u
#define NPDU_CONTROL_PRIORITY 0x03u

typedef struct BACnet_NPDU_Data {
    bool network_layer_message;
    uint8_t network_message_type;  // network-layer messages only
    uint16_t vendor_id;            // proprietary message types (0x80 and up) only
    bool data_expecting_reply;
    uint8_t priority;   // 0 normal .. 3 life safety
    uint8_t hop_count;  // sent and decoded with a destination network only
} BACNET_NPDU_DATA;

// Writes the header. dest with a network other than 0 adds DNET, DLEN and DADR (DLEN = dest->len;
// 0 is a broadcast on DNET, network 0xFFFF with length 0 the global broadcast) and the hop
// count; src with a network other than 0 adds SNET, SLEN and SADR. NULL addresses mean local.
// BACNET_STATUS_ERROR for an address length above MAX_MAC_LEN, a source on network 0xFFFF or
// with an empty address.
int npdu_encode(uint8_t* npdu, const BACNET_ADDRESS* dest, const BACNET_ADDRESS* src,
                const BACNET_NPDU_DATA* data);

// Decodes the header and returns its length: the offset of the APDU, or of the network-layer
// message's contents. dest and src (either may be NULL) receive the network, length and address
// (net 0 and length 0 when absent; the MAC fields are the data link's and stay untouched).
// BACNET_STATUS_ERROR for another protocol version, a truncated header, DNET 0, an address longer
// than MAX_MAC_LEN, SNET 0 or 0xFFFF, or SLEN 0.
int npdu_decode(const uint8_t* npdu, uint32_t npdu_len, BACNET_ADDRESS* dest, BACNET_ADDRESS* src,
                BACNET_NPDU_DATA* data);
