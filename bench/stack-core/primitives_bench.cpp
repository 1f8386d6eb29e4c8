#include <benchmark/benchmark.h>

#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"

namespace {

const uint8_t kReal[] = {0x44, 0x41, 0xAC, 0x00, 0x00};
const uint8_t kUnsigned[] = {0x22, 0x01, 0x00};
const uint8_t kString[] = {0x75, 21,  0,   'o', 'u', 't', 's', 'i', 'd', 'e', ' ', 'a',
                           'i',  'r', ' ', 't', 'e', 'm', 'p', 'e', 'r', 'a', 't'};

void decodeApplicationReal(benchmark::State& state) {
    BACNET_APPLICATION_DATA_VALUE value;
    for (auto _ : state) {
        const uint8_t* apdu = kReal;
        benchmark::DoNotOptimize(apdu);  // keep the input opaque to the inlined fast path
        benchmark::DoNotOptimize(bacapp_decode_application_data(apdu, sizeof kReal, &value));
        benchmark::DoNotOptimize(value.type.Real);
    }
}
BENCHMARK(decodeApplicationReal);

void decodeApplicationUnsigned(benchmark::State& state) {
    BACNET_APPLICATION_DATA_VALUE value;
    for (auto _ : state) {
        const uint8_t* apdu = kUnsigned;
        benchmark::DoNotOptimize(apdu);  // keep the input opaque to the inlined fast path
        benchmark::DoNotOptimize(bacapp_decode_application_data(apdu, sizeof kUnsigned, &value));
        benchmark::DoNotOptimize(value.type.Unsigned_Int);
    }
}
BENCHMARK(decodeApplicationUnsigned);

void decodeApplicationString20(benchmark::State& state) {
    BACNET_APPLICATION_DATA_VALUE value;
    for (auto _ : state) {
        const uint8_t* apdu = kString;
        benchmark::DoNotOptimize(apdu);  // keep the input opaque to the inlined fast path
        benchmark::DoNotOptimize(bacapp_decode_application_data(apdu, sizeof kString, &value));
        benchmark::DoNotOptimize(value.type.Character_String.length);
    }
}
BENCHMARK(decodeApplicationString20);

void encodeApplicationReal(benchmark::State& state) {
    uint8_t apdu[8];
    float value = 21.5f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        benchmark::DoNotOptimize(encode_application_real(apdu, value));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(encodeApplicationReal);

}  // namespace
