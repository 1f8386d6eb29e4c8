// The measured operations, shared by the Google Benchmark runner and the callgrind driver so both
// time exactly the same code. Each op returns something derived from its result so the compiler
// cannot drop the work.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/strings.h"

namespace bench_ops {

// Keeps a value alive without a memory round trip per use.
template <typename T>
inline void keep(T const& v) {
    asm volatile("" : : "r,m"(v) : "memory");
}

struct Inputs {
    uint8_t real[5] = {0x44, 0x42, 0x90, 0x99, 0x9A};
    uint8_t unsignedValue[4] = {0x23, 0x01, 0x86, 0xA0};  // 100000
    std::vector<uint8_t> string20;
    std::vector<uint8_t> rpAck16;  // service data of a ReadProperty-ACK with 16 REALs
    std::vector<uint8_t> rpmAck3;  // service data of a ReadPropertyMultiple-ACK with 3 results
    BACNET_READ_PROPERTY_DATA rpRequest{};
    uint8_t out[64] = {};
    BACNET_APPLICATION_DATA_VALUE* value;

    Inputs() {
        BACNET_CHARACTER_STRING s;
        characterstring_init_ansi(&s, "Supply Air Temp AHU1");  // 20 characters
        string20.resize(32);
        string20.resize(size_t(encode_application_character_string(string20.data(), &s)));

        std::vector<uint8_t> reals;
        for (int i = 0; i < 16; ++i) {
            uint8_t b[5];
            encode_application_real(b, float(i) * 1.5f);
            reals.insert(reals.end(), b, b + 5);
        }
        BACNET_READ_PROPERTY_DATA ack{};
        ack.object_type = OBJECT_ANALOG_INPUT;
        ack.object_instance = 1;
        ack.object_property = PROP_PRIORITY_ARRAY;
        ack.array_index = BACNET_ARRAY_ALL;
        ack.application_data = reals.data();
        ack.application_data_len = int(reals.size());
        rpAck16.resize(size_t(rp_ack_encode_service_request(nullptr, &ack)));
        rp_ack_encode_service_request(rpAck16.data(), &ack);

        // analog-input 16: present-value 72.3, reliability 0, description "Room"
        const uint8_t rpm[] = {0x0C, 0x00, 0x00, 0x00, 0x10, 0x1E, 0x29, 0x55, 0x4E, 0x44, 0x42,
                               0x90, 0x99, 0x9A, 0x4F, 0x29, 0x67, 0x4E, 0x91, 0x00, 0x4F, 0x29,
                               0x1C, 0x4E, 0x75, 0x05, 0x00, 0x52, 0x6F, 0x6F, 0x6D, 0x4F, 0x1F};
        rpmAck3.assign(rpm, rpm + sizeof rpm);

        rpRequest.object_type = OBJECT_ANALOG_INPUT;
        rpRequest.object_instance = 5;
        rpRequest.object_property = PROP_PRESENT_VALUE;
        rpRequest.array_index = BACNET_ARRAY_ALL;
        value = new BACNET_APPLICATION_DATA_VALUE;
        bacapp_value_init(value);
    }
    ~Inputs() { delete value; }
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;
};

// A straightforward C decoder of the same rules, for comparison: tag octet, length, content.
inline int referenceDecodeReal(const uint8_t* p, uint32_t len, float* out) {
    if (len < 5 || p[0] != 0x44) return -1;
    uint32_t bits = (uint32_t(p[1]) << 24) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 8) | p[4];
    std::memcpy(out, &bits, 4);
    return 5;
}

inline int referenceDecodeUnsigned(const uint8_t* p, uint32_t len, uint32_t* out) {
    if (len < 1 || (p[0] & 0xF8) != 0x20) return -1;
    const uint32_t n = p[0] & 0x07;
    if (n < 1 || n > 4 || len < 1 + n) return -1;
    uint32_t v = 0;
    for (uint32_t i = 0; i < n; ++i) v = (v << 8) | p[1 + i];
    *out = v;
    return int(1 + n);
}

// Nothing but the call and the result: the driver's own cost per iteration, which the other ops'
// counts include.
inline int baseline(Inputs& in) {
    keep(in.out[0]);
    return 1;
}

inline int decodeReal(Inputs& in) {
    float f = 0;
    int n = decode_application_real(in.real, 5, &f);
    keep(f);
    return n;
}

inline int decodeRealValue(Inputs& in) {
    int n = bacapp_decode_application_data(in.real, 5, in.value);
    keep(in.value->type.Real);
    return n;
}

inline int decodeUnsigned(Inputs& in) {
    BACNET_UNSIGNED_INTEGER u = 0;
    int n = decode_application_unsigned(in.unsignedValue, 4, &u);
    keep(u);
    return n;
}

inline int decodeUnsignedValue(Inputs& in) {
    int n = bacapp_decode_application_data(in.unsignedValue, 4, in.value);
    keep(in.value->type.Unsigned_Int);
    return n;
}

inline int decodeString20(Inputs& in) {
    int n = bacapp_decode_application_data(in.string20.data(), uint32_t(in.string20.size()), in.value);
    keep(in.value->type.Character_String.length);
    return n;
}

inline int referenceReal(Inputs& in) {
    float f = 0;
    int n = referenceDecodeReal(in.real, 5, &f);
    keep(f);
    return n;
}

inline int referenceUnsigned(Inputs& in) {
    uint32_t u = 0;
    int n = referenceDecodeUnsigned(in.unsignedValue, 4, &u);
    keep(u);
    return n;
}

inline int encodeReal(Inputs& in) {
    int n = encode_application_real(in.out, 72.3f);
    keep(in.out[1]);
    return n;
}

inline int encodeRpRequest(Inputs& in) {
    int n = rp_encode_apdu(in.out, 1, &in.rpRequest);
    keep(in.out[4]);
    return n;
}

// The acknowledgement split, then every value decoded as the value container does it.
inline int decodeRpAck16(Inputs& in) {
    BACNET_READ_PROPERTY_DATA d;
    int n = rp_ack_decode_service_request(in.rpAck16.data(), uint32_t(in.rpAck16.size()), &d);
    const uint8_t* p = d.application_data;
    uint32_t left = uint32_t(d.application_data_len);
    float sum = 0;
    while (left) {
        const int used = bacapp_decode_application_data(p, left, in.value);
        if (used <= 0) return -1;
        sum += in.value->type.Real;
        p += used;
        left -= uint32_t(used);
    }
    keep(sum);
    return n;
}

inline int decodeRpmAck3(Inputs& in) {
    BACNET_READ_ACCESS_DATA rad;
    int n = rpm_ack_decode_service_request(in.rpmAck3.data(), uint32_t(in.rpmAck3.size()), &rad);
    keep(rad.listOfProperties);
    rpm_ack_free_all(&rad);
    return n;
}

struct Op {
    const char* name;
    int (*run)(Inputs&);
    unsigned target;  // instructions per operation, 0 when only for comparison
};

inline const std::vector<Op>& ops() {
    static const std::vector<Op> table = {
        {"baseline", baseline, 0},
        {"decode_real", decodeReal, 30},
        {"decode_real_value", decodeRealValue, 30},
        {"reference_real", referenceReal, 0},
        {"decode_unsigned", decodeUnsigned, 40},
        {"decode_unsigned_value", decodeUnsignedValue, 40},
        {"reference_unsigned", referenceUnsigned, 0},
        {"decode_string20_value", decodeString20, 400},
        {"encode_real", encodeReal, 20},
        {"encode_rp_request", encodeRpRequest, 100},
        {"decode_rp_ack_16_reals", decodeRpAck16, 1000},
        {"decode_free_rpm_ack_3", decodeRpmAck3, 5000},
    };
    return table;
}

}  // namespace bench_ops
