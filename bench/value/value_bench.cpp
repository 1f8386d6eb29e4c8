#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/ValueContainer.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <vector>

using namespace TQ::BACnet;

namespace {

const auto BENCH_OBJECT = static_cast<BACNET_OBJECT_TYPE>(700);
const auto PRESENT_VALUE = static_cast<BACNET_PROPERTY_ID>(85);
const auto PRIORITY_ARRAY = static_cast<BACNET_PROPERTY_ID>(87);

// The generated catalogue with the two benchmarked properties, the process-wide session while
// the benchmarks run.
TQTest::Catalogue& catalogue() {
    static TQTest::Catalogue& instance = [] () -> TQTest::Catalogue& {
        TQTest::Catalogue& opened = TQTest::Catalogue::open();
        opened.seedProperty(700, 85, 4, 0, true);
        opened.seedProperty(700, 87, 4, 1, true);
        return opened;
    }();
    return instance;
}

std::vector<uint8_t> reals(int count) {
    std::vector<uint8_t> out(static_cast<size_t>(count) * 5);
    for (int i = 0; i < count; ++i)
        encode_application_real(out.data() + 5 * i, 20.0f + 0.25f * static_cast<float>(i));
    return out;
}

struct Error {
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    DataErrorRef ref{errorClass, errorCode};
};

void decodeContainer(benchmark::State& state, BACNET_PROPERTY_ID property, int count) {
    catalogue();
    const auto bytes = reals(count);
    Error error;
    ValueContainer container;
    for (auto _ : state) {
        const int len = container.decode(bytes.data(), static_cast<int>(bytes.size()), 0, BENCH_OBJECT,
                                         property, -1, error.ref);
        benchmark::DoNotOptimize(len);
    }
}

void BM_ContainerDecode1Real(benchmark::State& state) {
    decodeContainer(state, PRESENT_VALUE, 1);
}
void BM_ContainerDecode16Reals(benchmark::State& state) {
    decodeContainer(state, PRIORITY_ARRAY, 16);
}

// The same decode with the descriptor at hand: the container's own cost without the lookup.
void BM_ContainerDecode16RealsDescriptor(benchmark::State& state) {
    const auto bytes = reals(16);
    Error error;
    ValueContainer container;
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL,
                                                          BACNET_DTS_ARRAY, true, 4);
    for (auto _ : state) {
        const int len =
            container.decode(bytes.data(), static_cast<int>(bytes.size()), 0, descriptor, -1, error.ref);
        benchmark::DoNotOptimize(len);
    }
}

// The codec alone on the same bytes: the floor the container is measured against.
void rawDecode(benchmark::State& state, int count) {
    const auto bytes = reals(count);
    BACNET_APPLICATION_DATA_VALUE value;
    for (auto _ : state) {
        uint32_t position = 0;
        while (position < bytes.size()) {
            const int len = bacapp_decode_application_data(
                bytes.data() + position, static_cast<uint32_t>(bytes.size() - position), &value);
            if (len < 0) break;
            position += static_cast<uint32_t>(len);
            benchmark::DoNotOptimize(value.type.Real);
        }
    }
}

void BM_RawDecode1Real(benchmark::State& state) {
    rawDecode(state, 1);
}
void BM_RawDecode16Reals(benchmark::State& state) {
    rawDecode(state, 16);
}

void BM_DescriptorLookup(benchmark::State& state) {
    catalogue();
    DataPropertyInObject0 descriptor;
    for (auto _ : state) {
        const bool found =
            DataPropertyInObject0::getValueTypeAndStructure(BENCH_OBJECT, PRIORITY_ARRAY, descriptor, false);
        benchmark::DoNotOptimize(found);
    }
}

void BM_GetText16Reals(benchmark::State& state) {
    const auto bytes = reals(16);
    Error error;
    ValueContainer container;
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL,
                                                          BACNET_DTS_ARRAY, true, 4);
    container.decode(bytes.data(), static_cast<int>(bytes.size()), 0, descriptor, -1, error.ref);
    std::string text;
    for (auto _ : state) {
        container.getText(text, false);
        benchmark::DoNotOptimize(text.data());
    }
}

void BM_Encode16Reals(benchmark::State& state) {
    const auto bytes = reals(16);
    Error error;
    ValueContainer container;
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL,
                                                          BACNET_DTS_ARRAY, true, 4);
    container.decode(bytes.data(), static_cast<int>(bytes.size()), 0, descriptor, -1, error.ref);
    uint8_t apdu[MAX_APDU];
    for (auto _ : state) {
        benchmark::DoNotOptimize(container.encode(apdu));
    }
}

}  // namespace

// TQ_BENCH_ITERATIONS fixes the iteration count, so that an instruction count taken under
// callgrind divides by a known number.
void fixedIterations(benchmark::internal::Benchmark* b) {
    if (const char* n = std::getenv("TQ_BENCH_ITERATIONS")) b->Iterations(std::strtoll(n, nullptr, 10));
}

BENCHMARK(BM_ContainerDecode1Real)->Apply(fixedIterations);
BENCHMARK(BM_ContainerDecode16Reals)->Apply(fixedIterations);
BENCHMARK(BM_ContainerDecode16RealsDescriptor)->Apply(fixedIterations);
BENCHMARK(BM_RawDecode1Real)->Apply(fixedIterations);
BENCHMARK(BM_RawDecode16Reals)->Apply(fixedIterations);
BENCHMARK(BM_DescriptorLookup)->Apply(fixedIterations);
BENCHMARK(BM_GetText16Reals)->Apply(fixedIterations);
BENCHMARK(BM_Encode16Reals)->Apply(fixedIterations);
