// A production wrapped in opening and closing tag n, for every codec of the form
// encode(apdu, value) / decode(apdu, len, value). Context decoders return 0 when apdu does not
// start with opening tag n, and leave the value unchanged unless the whole wrapper decodes.
#pragma once

#include "tq_stack/codec.h"

namespace tq_stack_detail {

inline uint8_t* advance(uint8_t* apdu, int len) {
    return apdu ? apdu + len : nullptr;
}

template <typename T, int (*Encode)(uint8_t*, const T*), int (*Decode)(const uint8_t*, uint32_t, T*)>
struct Enclosed {
    static int encode(uint8_t* apdu, uint8_t tagNumber, const T* value) {
        if (!value) return 0;
        int len = encode_opening_tag(apdu, tagNumber);
        len += Encode(advance(apdu, len), value);
        return len + encode_closing_tag(advance(apdu, len), tagNumber);
    }

    static int decode(const uint8_t* apdu, uint32_t apduLen, uint8_t tagNumber, T* value) {
        if (!apdu || !value) return BACNET_STATUS_ERROR;
        if (apduLen == 0) return 0;
        BACNET_TAG tag;
        const int header = bacnet_tag_decode(apdu, apduLen, &tag);
        if (header < 0) return BACNET_STATUS_ERROR;
        if (!tag.opening || tag.number != tagNumber) return 0;
        const uint32_t open = uint32_t(header);
        T decoded;
        const int inner = Decode(apdu + open, apduLen - open, &decoded);
        if (inner <= 0) return BACNET_STATUS_ERROR;
        const uint32_t pos = open + uint32_t(inner);
        if (!decode_is_closing_tag_number(apdu + pos, apduLen - pos, tagNumber)) return BACNET_STATUS_ERROR;
        *value = decoded;
        return int(pos + uint32_t(bacnet_tag_decode(apdu + pos, apduLen - pos, &tag)));
    }
};

}  // namespace tq_stack_detail
