// TimeSynchronization and UTCTimeSynchronization: SEQUENCE { time BACnetDateTime }, the date and
// time application tagged. Unspecified (255) fields are encoded and decoded like any other.
#pragma once

#include <cstdint>

#include "tq_stack/values.h"

// The whole unconfirmed request (service choice 6, resp. 9). NULL date or time is
// BACNET_STATUS_ERROR; a NULL apdu returns the length.
int timesync_encode_apdu(uint8_t* apdu, const BACNET_DATE* date, const BACNET_TIME* time);
int timesync_utc_encode_apdu(uint8_t* apdu, const BACNET_DATE* date, const BACNET_TIME* time);

// The service data after the 2-octet header (either service). Trailing bytes are an error.
// Returns the bytes consumed or BACNET_STATUS_ERROR (outputs unchanged).
int timesync_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE* date,
                                    BACNET_TIME* time);
