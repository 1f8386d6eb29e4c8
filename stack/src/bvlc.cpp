#include "tq_stack/bvlc.h"

#include <cstring>

namespace {

constexpr uint32_t kMaxLength = 0xFFFF;
constexpr uint32_t kBdtEntryLen = 10;  // B/IP address and broadcast distribution mask
constexpr uint32_t kFdtEntryLen = 10;  // B/IP address, time-to-live, time remaining

int putHeader(uint8_t* pdu, uint8_t function, uint32_t length) {
    if (length > kMaxLength) return BACNET_STATUS_ERROR;
    if (pdu) {
        pdu[0] = BVLL_TYPE_BACNET_IP;
        pdu[1] = function;
        pdu[2] = uint8_t(length >> 8);
        pdu[3] = uint8_t(length);
    }
    return BVLC_HEADER_LEN;
}

int putShortMessage(uint8_t* pdu, uint8_t function, uint16_t value) {
    putHeader(pdu, function, 6);
    if (pdu) {
        pdu[4] = uint8_t(value >> 8);
        pdu[5] = uint8_t(value);
    }
    return 6;
}

// Octets of the fixed part by function, and whether the rest must be a whole number of table
// entries (entry length) or nothing (exact).
struct Shape {
    uint8_t fixed;
    bool exact;
    uint8_t entry;
};

Shape shapeOf(uint8_t function) {
    switch (function) {
        case BVLC_RESULT: return {6, true, 0};
        case BVLC_WRITE_BROADCAST_DISTRIBUTION_TABLE:
        case BVLC_READ_BROADCAST_DISTRIBUTION_TABLE_ACK: return {4, false, kBdtEntryLen};
        case BVLC_READ_BROADCAST_DISTRIBUTION_TABLE:
        case BVLC_READ_FOREIGN_DEVICE_TABLE: return {4, true, 0};
        case BVLC_FORWARDED_NPDU: return {BVLC_FORWARDED_HEADER_LEN, false, 0};
        case BVLC_REGISTER_FOREIGN_DEVICE: return {6, true, 0};
        case BVLC_READ_FOREIGN_DEVICE_TABLE_ACK: return {4, false, kFdtEntryLen};
        case BVLC_DELETE_FOREIGN_DEVICE_TABLE_ENTRY: return {10, true, 0};
        default: return {4, false, 0};
    }
}

}  // namespace

int bvlc_encode_npdu_header(uint8_t* pdu, uint8_t function, uint32_t npdu_len) {
    if (function != BVLC_ORIGINAL_UNICAST_NPDU && function != BVLC_ORIGINAL_BROADCAST_NPDU &&
        function != BVLC_DISTRIBUTE_BROADCAST_TO_NETWORK)
        return BACNET_STATUS_ERROR;
    if (npdu_len > kMaxLength - BVLC_HEADER_LEN) return BACNET_STATUS_ERROR;
    return putHeader(pdu, function, npdu_len + BVLC_HEADER_LEN);
}

int bvlc_encode_forwarded_npdu_header(uint8_t* pdu, const uint8_t source[BIP_ADDRESS_LEN], uint32_t npdu_len) {
    if (!source || npdu_len > kMaxLength - BVLC_FORWARDED_HEADER_LEN) return BACNET_STATUS_ERROR;
    putHeader(pdu, BVLC_FORWARDED_NPDU, npdu_len + BVLC_FORWARDED_HEADER_LEN);
    if (pdu) std::memcpy(pdu + BVLC_HEADER_LEN, source, BIP_ADDRESS_LEN);
    return BVLC_FORWARDED_HEADER_LEN;
}

int bvlc_encode_result(uint8_t* pdu, uint16_t result_code) {
    return putShortMessage(pdu, BVLC_RESULT, result_code);
}

int bvlc_encode_register_foreign_device(uint8_t* pdu, uint16_t time_to_live) {
    return putShortMessage(pdu, BVLC_REGISTER_FOREIGN_DEVICE, time_to_live);
}

int bvlc_decode(const uint8_t* pdu, uint32_t datagram_len, BACNET_BVLC_MESSAGE* message) {
    if (!pdu || !message || datagram_len < BVLC_HEADER_LEN || pdu[0] != BVLL_TYPE_BACNET_IP)
        return BACNET_STATUS_ERROR;
    const uint32_t length = uint32_t(pdu[2]) << 8 | pdu[3];
    if (length != datagram_len) return BACNET_STATUS_ERROR;
    const Shape shape = shapeOf(pdu[1]);
    if (length < shape.fixed || (shape.exact && length != shape.fixed) ||
        (shape.entry && (length - shape.fixed) % shape.entry))
        return BACNET_STATUS_ERROR;
    BACNET_BVLC_MESSAGE m{};
    m.function = pdu[1];
    m.length = uint16_t(length);
    if (m.function == BVLC_RESULT) m.result_code = uint16_t(pdu[4] << 8 | pdu[5]);
    if (m.function == BVLC_REGISTER_FOREIGN_DEVICE) m.time_to_live = uint16_t(pdu[4] << 8 | pdu[5]);
    if (m.function == BVLC_FORWARDED_NPDU || m.function == BVLC_DELETE_FOREIGN_DEVICE_TABLE_ENTRY)
        std::memcpy(m.source, pdu + BVLC_HEADER_LEN, BIP_ADDRESS_LEN);
    m.payload = pdu + shape.fixed;
    m.payload_len = length - shape.fixed;
    *message = m;
    return shape.fixed;
}

uint16_t bvlc_nak_for_function(uint8_t function) {
    switch (function) {
        case BVLC_WRITE_BROADCAST_DISTRIBUTION_TABLE: return BVLC_RESULT_WRITE_BDT_NAK;
        case BVLC_READ_BROADCAST_DISTRIBUTION_TABLE: return BVLC_RESULT_READ_BDT_NAK;
        case BVLC_REGISTER_FOREIGN_DEVICE: return BVLC_RESULT_REGISTER_FOREIGN_DEVICE_NAK;
        case BVLC_READ_FOREIGN_DEVICE_TABLE: return BVLC_RESULT_READ_FDT_NAK;
        case BVLC_DELETE_FOREIGN_DEVICE_TABLE_ENTRY: return BVLC_RESULT_DELETE_FDT_ENTRY_NAK;
        case BVLC_DISTRIBUTE_BROADCAST_TO_NETWORK: return BVLC_RESULT_DISTRIBUTE_BROADCAST_TO_NETWORK_NAK;
        default: return 0;
    }
}
