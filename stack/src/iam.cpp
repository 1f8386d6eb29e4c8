#include "tq_stack/iam.h"

#include "service_common.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

int iam_encode_apdu(uint8_t* apdu, uint32_t device_id, unsigned max_apdu, int segmentation,
                    uint16_t vendor_id) {
    if (device_id > BACNET_MAX_INSTANCE || segmentation < 0 || segmentation > int(SEGMENTATION_NONE))
        return BACNET_STATUS_ERROR;
    Writer w(apdu);
    w.add(apdu_encode_unconfirmed_header(w.at(), SERVICE_UNCONFIRMED_I_AM));
    w.add(encode_application_object_id(w.at(), OBJECT_DEVICE, device_id));
    w.add(encode_application_unsigned(w.at(), max_apdu));
    w.add(encode_application_enumerated(w.at(), uint32_t(segmentation)));
    w.add(encode_application_unsigned(w.at(), vendor_id));
    return w.len;
}

int iam_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, uint32_t* device_id,
                               unsigned* max_apdu, int* segmentation, uint16_t* vendor_id) {
    if (!apdu) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    uint16_t type = 0;
    uint32_t instance = 0, maxApdu = 0, segments = 0, vendor = 0;
    if (!r.need(decode_application_object_id(r.at(), r.left(), &type, &instance)) || type != OBJECT_DEVICE ||
        !r.need(decode_application_unsigned(r.at(), r.left(), &maxApdu)) ||
        !r.need(decode_application_enumerated(r.at(), r.left(), &segments)) || segments > SEGMENTATION_NONE ||
        !r.need(decode_application_unsigned(r.at(), r.left(), &vendor)) || vendor > 0xFFFF || !r.atEnd())
        return BACNET_STATUS_ERROR;
    if (device_id) *device_id = instance;
    if (max_apdu) *max_apdu = maxApdu;
    if (segmentation) *segmentation = int(segments);
    if (vendor_id) *vendor_id = uint16_t(vendor);
    return int(r.pos);
}
