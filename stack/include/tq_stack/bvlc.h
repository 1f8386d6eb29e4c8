// BACnet Virtual Link Control: the four-octet header of every BACnet/IP datagram (Annex J).
//
//   type 0x81 | function | length (2 octets, the whole datagram, header included) | ...
//
// Encoders write the header in front of an NPDU the caller places behind it (so the NPDU is
// never copied) and return the header length; a NULL pdu writes nothing. The decoder takes the
// whole datagram and checks that the length field agrees with it.
#pragma once

#include <cstdint>

#include "tq_stack/config.h"

#define BVLL_TYPE_BACNET_IP 0x81u
#define BVLC_HEADER_LEN 4
// Forwarded-NPDU: the header and the original source's B/IP address (4 address, 2 port octets).
#define BVLC_FORWARDED_HEADER_LEN 10
#define BVLC_RESULT_LEN 6
#define BVLC_REGISTER_FOREIGN_DEVICE_LEN 6
#define BIP_ADDRESS_LEN 6
// The largest datagram: the largest NPDU behind the longest header.
#define BVLC_MAX_DATAGRAM 1497

typedef enum BACnet_BVLC_Function {
    BVLC_RESULT = 0x00,
    BVLC_WRITE_BROADCAST_DISTRIBUTION_TABLE = 0x01,
    BVLC_READ_BROADCAST_DISTRIBUTION_TABLE = 0x02,
    BVLC_READ_BROADCAST_DISTRIBUTION_TABLE_ACK = 0x03,
    BVLC_FORWARDED_NPDU = 0x04,
    BVLC_REGISTER_FOREIGN_DEVICE = 0x05,
    BVLC_READ_FOREIGN_DEVICE_TABLE = 0x06,
    BVLC_READ_FOREIGN_DEVICE_TABLE_ACK = 0x07,
    BVLC_DELETE_FOREIGN_DEVICE_TABLE_ENTRY = 0x08,
    BVLC_DISTRIBUTE_BROADCAST_TO_NETWORK = 0x09,
    BVLC_ORIGINAL_UNICAST_NPDU = 0x0A,
    BVLC_ORIGINAL_BROADCAST_NPDU = 0x0B,
    BVLC_SECURE_BVLL = 0x0C,
    BVLC_FUNCTION_COUNT = 0x0D
} BACNET_BVLC_FUNCTION;

// Result codes of BVLC-Result: 0 success, the others a NAK of one request function.
typedef enum BACnet_BVLC_Result {
    BVLC_RESULT_SUCCESSFUL_COMPLETION = 0x0000,
    BVLC_RESULT_WRITE_BDT_NAK = 0x0010,
    BVLC_RESULT_READ_BDT_NAK = 0x0020,
    BVLC_RESULT_REGISTER_FOREIGN_DEVICE_NAK = 0x0030,
    BVLC_RESULT_READ_FDT_NAK = 0x0040,
    BVLC_RESULT_DELETE_FDT_ENTRY_NAK = 0x0050,
    BVLC_RESULT_DISTRIBUTE_BROADCAST_TO_NETWORK_NAK = 0x0060
} BACNET_BVLC_RESULT;

typedef struct BACnet_BVLC_Message {
    uint8_t function;       // BACNET_BVLC_FUNCTION, or an unknown value
    uint16_t length;        // the whole datagram
    uint8_t source[BIP_ADDRESS_LEN];  // Forwarded-NPDU: the original source; Delete-FDT-Entry: the entry
    uint16_t result_code;   // BVLC-Result
    uint16_t time_to_live;  // Register-Foreign-Device, seconds
    // What follows the fixed part: the NPDU of the NPDU-carrying functions, the table of the
    // table functions, everything after the header of an unknown function.
    const uint8_t* payload;
    uint32_t payload_len;
} BACNET_BVLC_MESSAGE;

// Header of Original-Unicast-NPDU, Original-Broadcast-NPDU or Distribute-Broadcast-To-Network
// for an NPDU of npdu_len octets; BACNET_STATUS_ERROR for another function or an NPDU that
// would make the datagram longer than 65535 octets.
int bvlc_encode_npdu_header(uint8_t* pdu, uint8_t function, uint32_t npdu_len);
// Forwarded-NPDU header with the original source's B/IP address.
int bvlc_encode_forwarded_npdu_header(uint8_t* pdu, const uint8_t source[BIP_ADDRESS_LEN], uint32_t npdu_len);
int bvlc_encode_result(uint8_t* pdu, uint16_t result_code);
int bvlc_encode_register_foreign_device(uint8_t* pdu, uint16_t time_to_live);

// Decodes a whole datagram. Returns the length of the fixed part (header plus the function's
// fixed fields) or BACNET_STATUS_ERROR when the type is not 0x81, the length field disagrees
// with datagram_len or a known function has the wrong size (BVLC-Result and Register-Foreign-
// Device exactly 6 octets, Read-BDT and Read-FDT 4, Delete-FDT-Entry 10, Forwarded-NPDU at
// least 10, the tables a whole number of entries). Unknown functions decode (payload is the
// rest) so the caller can tell them from malformed datagrams.
int bvlc_decode(const uint8_t* pdu, uint32_t datagram_len, BACNET_BVLC_MESSAGE* message);

// The NAK a node that is no BBMD answers to a BBMD request function, 0 for other functions.
uint16_t bvlc_nak_for_function(uint8_t function);
