#include "tq_stack/segment.h"

#include "tq_stack/apdu.h"
#include "tq_stack/enums.h"

namespace {

constexpr uint8_t kTypeMask = 0xF0;
constexpr uint8_t kSegmentNak = 0x02;
constexpr uint8_t kSegmentServer = 0x01;
// Counts by max-segments code: unspecified, 2, 4, 8, 16, 32, 64, more than 64.
constexpr unsigned kMaxSegments[] = {0, 2, 4, 8, 16, 32, 64, 65};

bool validWindow(uint8_t window) {
    return window >= 1 && window <= APDU_MAX_WINDOW_SIZE;
}

}  // namespace

int apdu_encode_complex_ack(uint8_t* apdu, const BACNET_COMPLEX_ACK_DATA* header) {
    if (!header) return BACNET_STATUS_ERROR;
    const bool seg = header->segmented_message;
    if (apdu) {
        apdu[0] = uint8_t(PDU_TYPE_COMPLEX_ACK | (seg ? APDU_FLAG_SEGMENTED_MESSAGE : 0) |
                          (seg && header->more_follows ? APDU_FLAG_MORE_FOLLOWS : 0));
        apdu[1] = header->invoke_id;
        if (seg) {
            apdu[2] = header->sequence_number;
            apdu[3] = header->proposed_window_size;
        }
        apdu[seg ? 4 : 2] = header->service_choice;
    }
    return seg ? APDU_SEGMENTED_COMPLEX_ACK_HEADER_LEN : APDU_COMPLEX_ACK_HEADER_LEN;
}

int apdu_decode_complex_ack(const uint8_t* apdu, uint32_t apdu_len, BACNET_COMPLEX_ACK_DATA* header) {
    if (!apdu || !header || apdu_len < APDU_COMPLEX_ACK_HEADER_LEN || (apdu[0] & kTypeMask) != PDU_TYPE_COMPLEX_ACK)
        return BACNET_STATUS_ERROR;
    BACNET_COMPLEX_ACK_DATA h{};
    h.segmented_message = (apdu[0] & APDU_FLAG_SEGMENTED_MESSAGE) != 0;
    h.more_follows = (apdu[0] & APDU_FLAG_MORE_FOLLOWS) != 0;
    h.invoke_id = apdu[1];
    if (!h.segmented_message) {
        if (h.more_follows) return BACNET_STATUS_ERROR;
        h.service_choice = apdu[2];
        *header = h;
        return APDU_COMPLEX_ACK_HEADER_LEN;
    }
    if (apdu_len < APDU_SEGMENTED_COMPLEX_ACK_HEADER_LEN || !validWindow(apdu[3])) return BACNET_STATUS_ERROR;
    h.sequence_number = apdu[2];
    h.proposed_window_size = apdu[3];
    h.service_choice = apdu[4];
    *header = h;
    return APDU_SEGMENTED_COMPLEX_ACK_HEADER_LEN;
}

int apdu_encode_segment_ack(uint8_t* apdu, bool nak, bool server, uint8_t invoke_id, uint8_t sequence_number,
                            uint8_t actual_window_size) {
    if (apdu) {
        apdu[0] = uint8_t(PDU_TYPE_SEGMENT_ACK | (nak ? kSegmentNak : 0) | (server ? kSegmentServer : 0));
        apdu[1] = invoke_id;
        apdu[2] = sequence_number;
        apdu[3] = actual_window_size;
    }
    return APDU_SEGMENT_ACK_LEN;
}

int apdu_decode_segment_ack(const uint8_t* apdu, uint32_t apdu_len, bool* nak, bool* server,
                            uint8_t* invoke_id, uint8_t* sequence_number, uint8_t* actual_window_size) {
    if (!apdu || apdu_len < APDU_SEGMENT_ACK_LEN || (apdu[0] & kTypeMask) != PDU_TYPE_SEGMENT_ACK ||
        !validWindow(apdu[3]))
        return BACNET_STATUS_ERROR;
    if (nak) *nak = (apdu[0] & kSegmentNak) != 0;
    if (server) *server = (apdu[0] & kSegmentServer) != 0;
    if (invoke_id) *invoke_id = apdu[1];
    if (sequence_number) *sequence_number = apdu[2];
    if (actual_window_size) *actual_window_size = apdu[3];
    return APDU_SEGMENT_ACK_LEN;
}

unsigned apdu_max_segments(uint8_t max_segs_code) {
    return kMaxSegments[max_segs_code & 0x07];
}

uint8_t apdu_max_segments_code(unsigned count) {
    uint8_t code = 1;
    while (code < 7 && kMaxSegments[code] < count) ++code;
    return code;
}
