#include "tq_stack/whois.h"

#include "service_common.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

bool inRange(int32_t limit) {
    return limit >= 0 && uint32_t(limit) <= BACNET_MAX_INSTANCE;
}

}  // namespace

int whois_encode_apdu(uint8_t* apdu, int32_t low_limit, int32_t high_limit) {
    const bool none = low_limit < 0 || high_limit < 0;
    if (!none && (!inRange(low_limit) || !inRange(high_limit) || low_limit > high_limit))
        return BACNET_STATUS_ERROR;
    Writer w(apdu);
    w.add(apdu_encode_unconfirmed_header(w.at(), SERVICE_UNCONFIRMED_WHO_IS));
    if (none) return w.len;
    w.add(encode_context_unsigned(w.at(), 0, uint32_t(low_limit)));
    w.add(encode_context_unsigned(w.at(), 1, uint32_t(high_limit)));
    return w.len;
}

int whois_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, int32_t* low_limit,
                                 int32_t* high_limit) {
    if (apdu_len == 0) {
        if (low_limit) *low_limit = -1;
        if (high_limit) *high_limit = -1;
        return 0;
    }
    if (!apdu) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    uint32_t low = 0, high = 0;
    if (!r.need(decode_context_unsigned(r.at(), r.left(), 0, &low)) ||
        !r.need(decode_context_unsigned(r.at(), r.left(), 1, &high)) || !r.atEnd() ||
        low > BACNET_MAX_INSTANCE || high > BACNET_MAX_INSTANCE)
        return BACNET_STATUS_ERROR;
    if (low_limit) *low_limit = int32_t(low);
    if (high_limit) *high_limit = int32_t(high);
    return int(r.pos);
}
