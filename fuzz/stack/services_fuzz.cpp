// Service decoders: the first octet picks the decoder, the rest is its input. Every decoder must
// stay inside the input, report no more than it was given, and release what it allocated; a
// decoded request must encode again and decode to the same fields.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz_check.h"
#include "tq_stack/apdu.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/iam.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rr.h"
#include "tq_stack/timesync.h"
#include "tq_stack/whois.h"
#include "tq_stack/wp.h"

namespace {

uint8_t gOut[2 * MAX_APDU];
BACNET_WRITE_PROPERTY_DATA gWp;
BACNET_WRITE_PROPERTY_DATA gWpBack;

// A guide that knows every context tag below 8 as the application tag of the same number, so the
// guided branches run too; records live in a small pool for one input.
BACnet_Datatype_By_Context_Tag gPool[64];
size_t gUsed;

BACnet_Datatype_By_Context_Tag* guide(BACnet_Datatype_By_Context_Tag* parent, int contextTag) {
    if (contextTag >= 8 || gUsed == sizeof gPool / sizeof gPool[0]) return nullptr;
    BACnet_Datatype_By_Context_Tag* r = &gPool[gUsed++];
    init_bacnet_datatype_by_context_tag(r, contextTag == 7 ? 5000 : contextTag);
    r->markup = contextTag == 7 ? 9u : BACNET_MARKUP_NONE;
    r->parent = parent;
    return r;
}

void readProperty(const uint8_t* p, uint32_t n) {
    BACNET_READ_PROPERTY_DATA d{};
    const int r = rp_decode_service_request(p, n, &d);
    FUZZ_CHECK(r <= int(n));
    if (r <= 0) return;
    const int len = rp_encode_service_request(gOut, &d);
    FUZZ_CHECK(len > 0);
    BACNET_READ_PROPERTY_DATA back{};
    FUZZ_CHECK(rp_decode_service_request(gOut, uint32_t(len), &back) == len);
    FUZZ_CHECK(back.object_type == d.object_type && back.object_instance == d.object_instance &&
               back.object_property == d.object_property && back.array_index == d.array_index);
}

void readPropertyAck(const uint8_t* p, uint32_t n) {
    BACNET_READ_PROPERTY_DATA d{};
    const int r = rp_ack_decode_service_request(p, n, &d);
    FUZZ_CHECK(r <= int(n));
    if (r <= 0) return;
    FUZZ_CHECK(d.application_data >= p && d.application_data + d.application_data_len <= p + n);
    // What fits one APDU must encode again.
    if (r + APDU_COMPLEX_ACK_HEADER_LEN > MAX_APDU) return;
    const int len = rp_ack_encode_service_request(gOut, &d);
    FUZZ_CHECK(len > 0);
    BACNET_READ_PROPERTY_DATA back{};
    FUZZ_CHECK(rp_ack_decode_service_request(gOut, uint32_t(len), &back) == len);
    FUZZ_CHECK(back.application_data_len == d.application_data_len);
}

void writeProperty(const uint8_t* p, uint32_t n) {
    const int r = wp_decode_service_request(p, n, &gWp);
    FUZZ_CHECK(r <= int(n));
    if (r <= 0 || r + APDU_CONFIRMED_HEADER_LEN > MAX_APDU) return;
    const int len = wp_encode_service_request(gOut, &gWp);
    FUZZ_CHECK(len > 0);
    FUZZ_CHECK(wp_decode_service_request(gOut, uint32_t(len), &gWpBack) == len);
    FUZZ_CHECK(
        gWpBack.application_data_len == gWp.application_data_len && gWpBack.priority == gWp.priority &&
        std::memcmp(gWpBack.application_data, gWp.application_data, size_t(gWp.application_data_len)) == 0);
}

void readPropertyMultipleAck(const uint8_t* p, uint32_t n) {
    BACNET_READ_ACCESS_DATA rad;
    const int r = rpm_ack_decode_service_request(p, n, &rad);
    FUZZ_CHECK(r <= int(n));
    if (r < 0) FUZZ_CHECK(!rad.listOfProperties && !rad.next);
    rpm_ack_free_all(&rad);
}

void fullyDecoded(const uint8_t* p, uint32_t n) {
    BACnet_Datatype_By_Context_Tag root;
    init_bacnet_datatype_by_context_tag(&root, 1000);
    gUsed = 0;
    BACNET_READ_ACCESS_DATA rad;
    FUZZ_CHECK(rp_ack_fully_decode_service_request(p, n, &root, guide, &rad) <= int(n));
    free_BACNET_READ_ACCESS_DATA_Internals(&rad);
    gUsed = 0;
    BACNET_APPLICATION_DATA_VALUE* values = nullptr;
    const int r = bacapp_decode_by_context(p, n, &root, guide, &values);
    FUZZ_CHECK(r < 0 ? values == nullptr : r == int(n));
    bacapp_value_list_free(values);
}

void readRange(const uint8_t* p, uint32_t n) {
    BACNET_READ_RANGE_DATA d{};
    const int r = rr_decode_service_request(p, n, &d);
    FUZZ_CHECK(r <= int(n));
    if (r > 0) {
        const int len = rr_encode_service_request(gOut, &d);
        FUZZ_CHECK(len > 0);
        BACNET_READ_RANGE_DATA back{};
        FUZZ_CHECK(rr_decode_service_request(gOut, uint32_t(len), &back) == len);
        FUZZ_CHECK(back.request_type == d.request_type && back.count == d.count);
    }
    BACNET_READ_RANGE_DATA ack{};
    FUZZ_CHECK(rr_ack_decode_service_request(p, n, &ack) <= int(n));
}

void unconfirmed(const uint8_t* p, uint32_t n) {
    int32_t low, high;
    FUZZ_CHECK(whois_decode_service_request(p, n, &low, &high) <= int(n));
    uint32_t device;
    unsigned maxApdu;
    int segmentation;
    uint16_t vendor;
    if (iam_decode_service_request(p, n, &device, &maxApdu, &segmentation, &vendor) > 0)
        FUZZ_CHECK(device <= BACNET_MAX_INSTANCE && segmentation >= 0 && segmentation <= 3);
    BACNET_DATE date;
    BACNET_TIME time;
    FUZZ_CHECK(timesync_decode_service_request(p, n, &date, &time) <= int(n));
}

void headers(const uint8_t* p, uint32_t n) {
    BACNET_CONFIRMED_SERVICE_DATA h;
    FUZZ_CHECK(apdu_decode_confirmed_header(p, n, &h) <= int(n));
    uint8_t a, b;
    bool flag;
    FUZZ_CHECK(apdu_decode_complex_ack_header(p, n, &a, &b, &flag) <= int(n));
    BACNET_ERROR_CLASS cls;
    BACNET_ERROR_CODE code;
    FUZZ_CHECK(apdu_decode_error(p, n, &a, &b, &cls, &code) <= int(n));
}

using Target = void (*)(const uint8_t*, uint32_t);
const Target kTargets[] = {readProperty, readPropertyAck, writeProperty, readPropertyMultipleAck,
                           fullyDecoded, readRange,       unconfirmed,   headers};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 4 * MAX_APDU) return 0;
    kTargets[data[0] % (sizeof kTargets / sizeof kTargets[0])](data + 1, uint32_t(size - 1));
    return 0;
}
