// Date-times and device object (property) references, plain and enclosed; what decodes must
// re-encode to bytes that decode to the same value.
#include <cstddef>
#include <cstdint>

#include "fuzz_check.h"
#include "tq_stack/datetime.h"
#include "tq_stack/references.h"

namespace {

uint8_t gOut[64];

bool sameRef(const BACNET_DEVICE_OBJECT_REFERENCE& a, const BACNET_DEVICE_OBJECT_REFERENCE& b) {
    return a.objectIdentifier.type == b.objectIdentifier.type &&
           a.objectIdentifier.instance == b.objectIdentifier.instance &&
           a.deviceIdentifier.type == b.deviceIdentifier.type &&
           a.deviceIdentifier.instance == b.deviceIdentifier.instance;
}

bool samePropRef(const BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE& a,
                 const BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE& b) {
    return a.objectIdentifier.type == b.objectIdentifier.type &&
           a.objectIdentifier.instance == b.objectIdentifier.instance &&
           a.propertyIdentifier == b.propertyIdentifier && a.arrayIndex == b.arrayIndex &&
           a.deviceIdentifier.type == b.deviceIdentifier.type &&
           a.deviceIdentifier.instance == b.deviceIdentifier.instance;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > MAX_APDU) return 0;
    const uint8_t tag = data[0];
    const uint8_t* apdu = data + 1;
    const uint32_t len = uint32_t(size - 1);

    BACNET_DATE_TIME dt, dtBack;
    int n = bacapp_decode_datetime(apdu, len, &dt);
    FUZZ_CHECK(n <= int(len));
    if (n > 0) {
        const int m = bacapp_encode_datetime(gOut, &dt);
        FUZZ_CHECK(bacapp_decode_datetime(gOut, uint32_t(m), &dtBack) == m);
        FUZZ_CHECK(datetime_compare(&dt, &dtBack) == 0 && dt.date.wday == dtBack.date.wday);
    }
    n = bacapp_decode_context_datetime(apdu, len, tag, &dt);
    FUZZ_CHECK(n <= int(len));
    if (n > 0) {
        const int m = bacapp_encode_context_datetime(gOut, tag, &dt);
        FUZZ_CHECK(m <= int(sizeof gOut));
        FUZZ_CHECK(bacapp_decode_context_datetime(gOut, uint32_t(m), tag, &dtBack) == m);
    }

    BACNET_DEVICE_OBJECT_REFERENCE ref, refBack;
    n = bacapp_decode_device_obj_ref(apdu, len, &ref);
    FUZZ_CHECK(n <= int(len));
    if (n > 0) {
        const int m = bacapp_encode_device_obj_ref(gOut, &ref);
        FUZZ_CHECK(bacapp_decode_device_obj_ref(gOut, uint32_t(m), &refBack) == m);
        // A decoded device is always of type device or absent, so it survives the round trip.
        FUZZ_CHECK(sameRef(ref, refBack) || ref.deviceIdentifier.type != OBJECT_DEVICE);
    }
    n = bacapp_decode_context_device_obj_ref(apdu, len, tag, &ref);
    FUZZ_CHECK(n <= int(len));

    BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE pref, prefBack;
    n = bacapp_decode_device_obj_property_ref(apdu, len, &pref);
    FUZZ_CHECK(n <= int(len));
    if (n > 0) {
        const int m = bacapp_encode_device_obj_property_ref(gOut, &pref);
        FUZZ_CHECK(bacapp_decode_device_obj_property_ref(gOut, uint32_t(m), &prefBack) == m);
        FUZZ_CHECK(samePropRef(pref, prefBack) || pref.deviceIdentifier.type != OBJECT_DEVICE);
    }
    n = bacapp_decode_context_device_obj_property_ref(apdu, len, tag, &pref);
    FUZZ_CHECK(n <= int(len));
    return 0;
}
