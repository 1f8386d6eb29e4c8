// Who-Is: Who-Is-Request ::= SEQUENCE { deviceInstanceRangeLowLimit [0] Unsigned (0..4194303) OPTIONAL,
//                                       deviceInstanceRangeHighLimit [1] Unsigned (0..4194303) OPTIONAL }
// Both limits or neither.
#pragma once

#include <cstdint>

// The whole unconfirmed request. The limits are sent when both lie in 0..BACNET_MAX_INSTANCE and
// low <= high; with either one negative (-1: no limit) none are sent. Any other combination is
// BACNET_STATUS_ERROR. A NULL apdu returns the length.
int whois_encode_apdu(uint8_t* apdu, int32_t low_limit, int32_t high_limit);

// The service data after the 2-octet header. No data: both limits -1 and result 0. Otherwise both
// limits (each at most BACNET_MAX_INSTANCE) and the bytes consumed; a lone limit, an instance
// out of range or trailing bytes give BACNET_STATUS_ERROR (limits unchanged).
int whois_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, int32_t* low_limit,
                                 int32_t* high_limit);
