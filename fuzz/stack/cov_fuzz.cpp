// COV notification decoder (what any device on the network may send a subscriber), and the
// SubscribeCOV decoder (what a client sends a device): the first octet picks one. Each must stay
// inside the input; what decodes must encode again to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz_check.h"
#include "tq_stack/cov.h"

namespace {

uint8_t gOut[2 * MAX_APDU];

void notification(const uint8_t* p, uint32_t n) {
    BACNET_PROPERTY_VALUE_REF values[8];
    BACNET_COV_DATA d{};
    d.values = values;
    d.capacity = 8;
    const int r = cov_notify_decode_service_request(p, n, &d);
    FUZZ_CHECK(r <= int(n));
    if (r <= 0) return;
    FUZZ_CHECK(d.count <= d.capacity);
    for (unsigned i = 0; i < d.count; ++i)
        FUZZ_CHECK(values[i].value >= p && values[i].value + values[i].value_len <= p + n);
    // Another form of the same tags (extended lengths, padded numbers) may decode too; the
    // encoder writes the shortest form, which must decode to the same fields.
    const int len = cov_notify_encode_service_request(gOut, &d);
    if (len < 0) return;
    BACNET_PROPERTY_VALUE_REF back[8];
    BACNET_COV_DATA again{};
    again.values = back;
    again.capacity = 8;
    FUZZ_CHECK(cov_notify_decode_service_request(gOut, uint32_t(len), &again) == len);
    FUZZ_CHECK(again.count == d.count && again.subscriber_process_identifier == d.subscriber_process_identifier &&
               again.monitored_object_instance == d.monitored_object_instance &&
               again.time_remaining == d.time_remaining);
}

void subscription(const uint8_t* p, uint32_t n) {
    BACNET_SUBSCRIBE_COV_DATA d{};
    const int r = cov_subscribe_decode_service_request(p, n, &d);
    FUZZ_CHECK(r <= int(n));
    if (r <= 0) return;
    const int len = cov_subscribe_encode_service_request(gOut, &d);
    FUZZ_CHECK(len > 0);
    BACNET_SUBSCRIBE_COV_DATA back{};
    FUZZ_CHECK(cov_subscribe_decode_service_request(gOut, uint32_t(len), &back) == len);
    FUZZ_CHECK(back.cancellation_request == d.cancellation_request && back.lifetime == d.lifetime &&
               back.issue_confirmed_notifications == d.issue_confirmed_notifications);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 4 * MAX_APDU) return 0;
    // An exact copy, so that one byte read too far is seen.
    uint8_t* copy = new uint8_t[size - 1 ? size - 1 : 1];
    std::memcpy(copy, data + 1, size - 1);
    if (data[0] & 1)
        subscription(copy, uint32_t(size - 1));
    else
        notification(copy, uint32_t(size - 1));
    delete[] copy;
    return 0;
}
