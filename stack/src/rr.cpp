#include "tq_stack/rr.h"

#include <cstring>

#include "service_common.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"

using namespace tq_stack_detail;

namespace {

constexpr uint8_t kByPositionTag = 3;
constexpr uint8_t kBySequenceTag = 6;
constexpr uint8_t kByTimeTag = 7;
constexpr uint8_t kFlagsTag = 3;
constexpr uint8_t kItemCountTag = 4;
constexpr uint8_t kItemDataTag = 5;
constexpr uint8_t kFirstSequenceTag = 6;
constexpr uint8_t kResultFlagBits = 3;

bool validReference(const BACNET_READ_RANGE_DATA* data) {
    return data && data->object_instance <= BACNET_MAX_INSTANCE &&
           uint32_t(data->object_type) <= BACNET_MAX_OBJECT;
}

bool validCount(int32_t count) {
    return count >= INT16_MIN && count <= INT16_MAX;
}

void encodeReference(Writer& w, const BACNET_READ_RANGE_DATA* data) {
    w.add(putContextObjectId(w.at(), 0, data->object_type, data->object_instance));
    w.add(putContextUnsigned(w.at(), 1, data->object_property));
    if (data->array_index != BACNET_ARRAY_ALL) w.add(putContextUnsigned(w.at(), 2, data->array_index));
}

void storeReference(const ObjectPropertyRef& ref, BACNET_READ_RANGE_DATA* data) {
    data->object_type = BACNET_OBJECT_TYPE(ref.type);
    data->object_instance = ref.instance;
    data->object_property = BACNET_PROPERTY_ID(ref.property);
    data->array_index = ref.index;
}

int encodeRequest(uint8_t* apdu, const BACNET_READ_RANGE_DATA* data) {
    Writer w(apdu);
    encodeReference(w, data);
    uint8_t tag = 0;
    switch (data->request_type) {
        case RR_BY_POSITION:
            tag = kByPositionTag;
            break;
        case RR_BY_SEQUENCE:
            tag = kBySequenceTag;
            break;
        case RR_BY_TIME:
            tag = kByTimeTag;
            break;
        case RR_READ_ALL:
            return w.len;
        default:
            return BACNET_STATUS_ERROR;
    }
    w.add(encode_opening_tag(w.at(), tag));
    if (tag == kByTimeTag) {
        w.add(bacapp_encode_datetime(w.at(), &data->range.ref_time));
    } else {
        w.add(encode_application_unsigned(w.at(), data->range.ref_index));
    }
    w.add(encode_application_signed(w.at(), data->count));
    w.add(encode_closing_tag(w.at(), tag));
    return w.len;
}

bool writesFirstSequence(const BACNET_READ_RANGE_DATA* data) {
    return data->item_count > 0 && (data->request_type == RR_BY_SEQUENCE || data->request_type == RR_BY_TIME);
}

int encodeAck(uint8_t* apdu, const BACNET_READ_RANGE_DATA* data) {
    Writer w(apdu);
    encodeReference(w, data);
    // The flags are exactly three bits whatever the record's bit string holds beyond them.
    BACNET_BIT_STRING flags;
    flags.bits_used = kResultFlagBits;
    flags.value[0] = uint8_t(data->result_flags.bits_used ? data->result_flags.value[0] & 0xE0 : 0);
    w.add(encode_context_bitstring(w.at(), kFlagsTag, &flags));
    w.add(encode_context_unsigned(w.at(), kItemCountTag, data->item_count));
    w.add(encode_opening_tag(w.at(), kItemDataTag));
    if (apdu && data->application_data_len)
        std::memcpy(w.at(), data->application_data, size_t(data->application_data_len));
    w.add(data->application_data_len);
    w.add(encode_closing_tag(w.at(), kItemDataTag));
    if (writesFirstSequence(data))
        w.add(encode_context_unsigned(w.at(), kFirstSequenceTag, data->first_sequence));
    return w.len;
}

// The range choice; RR_READ_ALL with a zero range when absent.
bool decodeRange(Reader& r, BACNET_READ_RANGE_DATA* out) {
    out->request_type = RR_READ_ALL;
    std::memset(&out->range, 0, sizeof out->range);  // every byte: "= {}" sets the first member only
    out->count = 0;
    if (r.atEnd()) return true;
    BACNET_TAG tag;
    if (bacnet_tag_decode(r.at(), r.left(), &tag) < 0 || !tag.opening) return false;
    switch (tag.number) {
        case kByPositionTag:
            out->request_type = RR_BY_POSITION;
            break;
        case kBySequenceTag:
            out->request_type = RR_BY_SEQUENCE;
            break;
        case kByTimeTag:
            out->request_type = RR_BY_TIME;
            break;
        default:
            return false;
    }
    r.opening(tag.number);
    if (out->request_type == RR_BY_TIME) {
        if (!r.need(bacapp_decode_datetime(r.at(), r.left(), &out->range.ref_time))) return false;
    } else if (!r.need(decode_application_unsigned(r.at(), r.left(), &out->range.ref_index))) {
        return false;
    }
    return r.need(decode_application_signed(r.at(), r.left(), &out->count)) && validCount(out->count) &&
           r.closing(tag.number);
}

}  // namespace

int rr_encode_service_request(uint8_t* apdu, const BACNET_READ_RANGE_DATA* data) {
    if (!validReference(data) || !validCount(data->count)) return BACNET_STATUS_ERROR;
    return encodeRequest(apdu, data);
}

int rr_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_RANGE_DATA* data) {
    const int body = rr_encode_service_request(nullptr, data);
    if (body < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_CONFIRMED_HEADER_LEN;
    const int h = apdu_encode_request_header(apdu, invoke_id, SERVICE_CONFIRMED_READ_RANGE);
    return h + encodeRequest(apdu + h, data);
}

int rr_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_RANGE_DATA* data) {
    if (!apdu || !data) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    ObjectPropertyRef ref;
    BACNET_READ_RANGE_DATA range;
    if (!decodeObjectPropertyRef(r, &ref) || !decodeRange(r, &range) || !r.atEnd())
        return BACNET_STATUS_ERROR;
    storeReference(ref, data);
    data->request_type = range.request_type;
    data->range = range.range;
    data->count = range.count;
    return int(r.pos);
}

int rr_ack_encode_service_request(uint8_t* apdu, const BACNET_READ_RANGE_DATA* data) {
    if (!validReference(data) || data->application_data_len < 0 || data->application_data_len > MAX_APDU ||
        (data->application_data_len > 0 && !data->application_data))
        return BACNET_STATUS_ERROR;
    const int len = encodeAck(nullptr, data);
    if (len + APDU_COMPLEX_ACK_HEADER_LEN > MAX_APDU) return BACNET_STATUS_ERROR;
    return apdu ? encodeAck(apdu, data) : len;
}

int rr_ack_encode_apdu(uint8_t* apdu, uint8_t invoke_id, const BACNET_READ_RANGE_DATA* data) {
    const int body = rr_ack_encode_service_request(nullptr, data);
    if (body < 0) return BACNET_STATUS_ERROR;
    if (!apdu) return body + APDU_COMPLEX_ACK_HEADER_LEN;
    const int h = apdu_encode_complex_ack_header(apdu, invoke_id, SERVICE_CONFIRMED_READ_RANGE);
    return h + encodeAck(apdu + h, data);
}

int rr_ack_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_READ_RANGE_DATA* data) {
    if (!apdu || !data) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    ObjectPropertyRef ref;
    BACNET_BIT_STRING flags;
    uint32_t count = 0, first = 0;
    bool present = false;
    if (!decodeObjectPropertyRef(r, &ref) ||
        !r.need(decode_context_bitstring(r.at(), r.left(), kFlagsTag, &flags)) ||
        !r.need(decode_context_unsigned(r.at(), r.left(), kItemCountTag, &count)))
        return BACNET_STATUS_ERROR;
    const int inner = enclosedLength(r.at(), r.left());
    if (inner < 0 || !r.opening(kItemDataTag)) return BACNET_STATUS_ERROR;
    const uint8_t* items = r.at();
    r.pos += uint32_t(inner);
    if (!r.closing(kItemDataTag) ||
        !r.optional(decode_context_unsigned(r.at(), r.left(), kFirstSequenceTag, &first), &present) ||
        !r.atEnd())
        return BACNET_STATUS_ERROR;
    storeReference(ref, data);
    data->result_flags = flags;
    data->item_count = count;
    data->first_sequence = first;
    data->application_data = items;
    data->application_data_len = inner;
    return int(r.pos);
}
