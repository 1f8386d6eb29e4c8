#include <benchmark/benchmark.h>

#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"

namespace {

const uint8_t kReal[] = {0x44, 0x41, 0xAC, 0x00, 0x00};
const uint8_t kUnsigned[] = {0x22, 0x01, 0x00};
const uint8_t kString[] = {0x75, 21,  0,   'o', 'u', 't', 's', 'i', 'd', 'e', ' ', 'a',
                           'i',  'r', ' ', 't', 'e', 'm', 'p', 'e', 'r', 'a', 't'};

// One application-tagged value decoded and read out, as a property read does it.
template <class Read>
void decodeApplication(benchmark::State& state, const uint8_t* bytes, uint32_t length, Read read) {
    BACNET_APPLICATION_DATA_VALUE value;
    for (auto _ : state) {
        const uint8_t* apdu = bytes;
        benchmark::DoNotOptimize(apdu);  // keep the input opaque to the inlined fast path
        benchmark::DoNotOptimize(bacapp_decode_application_data(apdu, length, &value));
        benchmark::DoNotOptimize(read(value));
    }
}
BENCHMARK_CAPTURE(decodeApplication, Real, kReal, sizeof kReal,
                  [](const BACNET_APPLICATION_DATA_VALUE& v) { return v.type.Real; });
BENCHMARK_CAPTURE(decodeApplication, Unsigned, kUnsigned, sizeof kUnsigned,
                  [](const BACNET_APPLICATION_DATA_VALUE& v) { return v.type.Unsigned_Int; });
BENCHMARK_CAPTURE(decodeApplication, String20, kString, sizeof kString,
                  [](const BACNET_APPLICATION_DATA_VALUE& v) { return v.type.Character_String.length; });

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
