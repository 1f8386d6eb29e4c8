#include "tq_stack/timesync.h"

#include "service_common.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

int encode(uint8_t* apdu, uint8_t service, const BACNET_DATE* date, const BACNET_TIME* time) {
    if (!date || !time) return BACNET_STATUS_ERROR;
    Writer w(apdu);
    w.add(apdu_encode_unconfirmed_header(w.at(), service));
    w.add(encode_application_date(w.at(), date));
    w.add(encode_application_time(w.at(), time));
    return w.len;
}

}  // namespace

int timesync_encode_apdu(uint8_t* apdu, const BACNET_DATE* date, const BACNET_TIME* time) {
    return encode(apdu, SERVICE_UNCONFIRMED_TIME_SYNCHRONIZATION, date, time);
}

int timesync_utc_encode_apdu(uint8_t* apdu, const BACNET_DATE* date, const BACNET_TIME* time) {
    return encode(apdu, SERVICE_UNCONFIRMED_UTC_TIME_SYNCHRONIZATION, date, time);
}

int timesync_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, BACNET_DATE* date,
                                    BACNET_TIME* time) {
    if (!apdu) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    BACNET_DATE d;
    BACNET_TIME t;
    if (!r.need(decode_application_date(r.at(), r.left(), &d)) ||
        !r.need(decode_application_time(r.at(), r.left(), &t)) || !r.atEnd())
        return BACNET_STATUS_ERROR;
    if (date) *date = d;
    if (time) *time = t;
    return int(r.pos);
}
