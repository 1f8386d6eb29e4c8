// Application values: the whole input decoded as a chain of values, each re-encoded, decoded
// again, copied and compared.
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "fuzz_check.h"
#include "tq_stack/bacapp.h"

namespace {

BACNET_APPLICATION_DATA_VALUE gValue;
BACNET_APPLICATION_DATA_VALUE gBack;
BACNET_APPLICATION_DATA_VALUE gCopy;
uint8_t gOut[MAX_APDU + 16];

bool isNan(const BACNET_APPLICATION_DATA_VALUE& v) {
    return (v.tag == BACNET_APPLICATION_TAG_REAL && std::isnan(v.type.Real)) ||
           (v.tag == BACNET_APPLICATION_TAG_DOUBLE && std::isnan(v.type.Double));
}

void roundTrip(const BACNET_APPLICATION_DATA_VALUE& v, bool context) {
    const int size = bacapp_encode_data(nullptr, &v);
    FUZZ_CHECK(size > 0 && size <= int(sizeof gOut));
    FUZZ_CHECK(bacapp_encode_data(gOut, &v) == size);
    const int back = context ? bacapp_decode_context_data(gOut, uint32_t(size), &gBack, v.tag)
                             : bacapp_decode_application_data(gOut, uint32_t(size), &gBack);
    FUZZ_CHECK(back == size);
    FUZZ_CHECK(isNan(v) || bacapp_same_value(&v, &gBack));
    FUZZ_CHECK(bacapp_copy(&gCopy, &v));
    FUZZ_CHECK(isNan(v) || bacapp_same_value(&v, &gCopy));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > size_t(4) * MAX_APDU) return 0;
    const uint32_t len = uint32_t(size);
    uint32_t pos = 0;
    while (pos < len) {
        const int n = bacapp_decode_application_data(data + pos, len - pos, &gValue);
        FUZZ_CHECK(n <= int(len - pos));
        if (n <= 0) break;
        roundTrip(gValue, false);
        pos += uint32_t(n);
    }
    // The same bytes read as context-tagged data of the type the first byte picks.
    if (len > 1) {
        const int n = bacapp_decode_context_data(data + 1, len - 1, &gValue, uint8_t(data[0] % 14));
        FUZZ_CHECK(n <= int(len - 1));
        if (n > 0) roundTrip(gValue, true);
    }
    return 0;
}
