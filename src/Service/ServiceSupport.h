#pragma once

// What the service classes share: sizing the host's buffers around an encoder, the APDU
// header checks, and handing value bytes to a value container with the caller's error.

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/ValueContainer.h"
#include "tq_stack/apdu.h"
#include "tq_stack/config.h"

#include <cstdint>

namespace TQ {
namespace BACnet {
namespace Service {
namespace Detail {

/// One APDU of BACnet/IP: the room every encoder is given.
constexpr unsigned APDU_SIZE = MAX_APDU;

constexpr uint8_t CONFIRMED_REQUEST = 0x00;
constexpr uint8_t UNCONFIRMED_REQUEST = 0x10;
constexpr uint8_t COMPLEX_ACK = 0x30;
constexpr uint8_t ERROR_PDU = 0x50;

/// Grows `buffer` (content kept) to offset + one APDU, lets `encode` write at offset and
/// trims the buffer to what was written. A failed encoding (below `minimum`) is returned with
/// the buffer left one APDU past offset.
template <class Encode>
int encodeAt(TQ::Utility::OctetBuffer& buffer, unsigned offset, int minimum, Encode&& encode) {
    buffer.resize(offset + APDU_SIZE);
    const int length = encode(buffer.data() + offset);
    if (length < minimum) return length;
    buffer.resize(offset + static_cast<unsigned>(length));
    return length;
}

/// An unconfirmed request always starts the buffer: a buffer with less than one APDU of room
/// gets fresh storage (its content is not kept), then as `encodeAt` at offset 0.
template <class Encode>
int encodeWhole(TQ::Utility::OctetBuffer& buffer, int minimum, Encode&& encode) {
    if (buffer.capacity() < APDU_SIZE) buffer.clear();
    return encodeAt(buffer, 0, minimum, encode);
}

/// The header of an unsegmented confirmed request for `service`: -1 for another PDU or
/// service, 0 when no service data follows (the invoke id is set when present), else 1.
inline int checkRequestHeader(const uint8_t* apdu, unsigned length, uint8_t service, uint8_t& invokeId) {
    if (!apdu || length < 1 || apdu[0] != CONFIRMED_REQUEST) return -1;
    if (length >= 3) invokeId = apdu[2];
    if (length < 4) return 0;
    if (apdu[3] != service) return -1;
    return length < 5 ? 0 : 1;
}

/// The header of a complex ACK for `service`, as `checkRequestHeader`. An Error PDU answering
/// the service is -1 with the server's class and code in `error`.
int checkAckHeader(const uint8_t* apdu, unsigned length, uint8_t service, uint8_t* invokeId,
                   DataError* error);

/// The codec's failure to split an acknowledgement, reported to a caller who asked.
inline int malformed(int result, DataError* error) {
    if (error) error->setError(ERROR_CLASS_SERVICES, ERROR_CODE_INVALID_TAG);
    return result;
}

/// `ValueContainer::decode` of value bytes, its error landing in `error` when given.
int decodeValue(ValueContainer& container, const uint8_t* bytes, int length, BACNET_OBJECT_TYPE objectType,
                BACNET_PROPERTY_ID property, uint32_t arrayIndex, DataError* error);

/// How many values a container holds: 0 for no value, 1 for a single value, else the
/// elements of its array or list.
std::size_t countValues(const ValueContainer& container);

}  // namespace Detail
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
