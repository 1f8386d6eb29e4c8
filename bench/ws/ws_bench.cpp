// Rendering costs: a ReadProperty result of 16 REALs to compact JSON in memory, the same value's
// text, and a priority array through the catalogue walk. Instruction counts: bench/ws/measure.sh.
#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"
#include "tq_stack/codec.h"
#include "tq_stack/context_decode.h"

#include <Poco/File.h>
#include <Poco/MemoryStream.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <vector>

using namespace TQ::BACnet;
using MF = WS::MarkupFactory;

namespace {

struct Catalogue {
    Catalogue() : dir(Poco::TemporaryFile::tempName()) {
        Poco::File(dir).createDirectories();
        db = TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(dir, "bench.db").toString());
        TQ::Utility::Data::pDB = db.get();
    }
    ~Catalogue() {
        TQ::Utility::Data::pDB = nullptr;
        db.reset();
        Poco::File(dir).remove(true);
    }
    std::string dir;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> db;
};

Catalogue& catalogue() {
    static Catalogue instance;
    return instance;
}

std::vector<DataApplicationValue> reals(int count) {
    std::vector<DataApplicationValue> values(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        values[static_cast<std::size_t>(i)].setReal(20.0f + 0.1f * static_cast<float>(i));
    for (int i = 0; i + 1 < count; ++i)
        values[static_cast<std::size_t>(i)].next = &values[static_cast<std::size_t>(i) + 1];
    return values;
}

// The ReadProperty result as the web service shows it: the array under the property's name.
void BM_Render16RealsJson(benchmark::State& state) {
    const std::vector<DataApplicationValue> values = reals(16);
    char buffer[4096];
    std::size_t bytes = 0;
    for (auto _ : state) {
        Poco::MemoryOutputStream out(buffer, sizeof buffer);
        WS::MarkupFactoryJSON f(out, false, false, -1);
        f.markup(MF::BT_ARRAY, "present-value", "", false, false, BACNET_DT_REAL, true);
        static const char* const names[] = {"1", "2",  "3",  "4",  "5",  "6",  "7",  "8",
                                            "9", "10", "11", "12", "13", "14", "15", "16"};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i].markup(f, names[i], false, BACNET_DT_REAL, false, -1, false);
        f.closeAllOpenMarkups();
        bytes += static_cast<std::size_t>(out.charsWritten());
        benchmark::DoNotOptimize(buffer);
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void BM_GetText16Reals(benchmark::State& state) {
    std::vector<uint8_t> bytes(16 * 5);
    for (int i = 0; i < 16; ++i)
        encode_application_real(bytes.data() + 5 * i, 20.0f + 0.1f * static_cast<float>(i));
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    DataErrorRef error(errorClass, errorCode);
    ValueContainer container;
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL,
                                                          BACNET_DTS_ARRAY, true, 4);
    container.decode(bytes.data(), static_cast<int>(bytes.size()), 0, descriptor, -1, error);
    std::string text;
    for (auto _ : state) {
        container.getText(text, false);
        benchmark::DoNotOptimize(text.data());
    }
}

// BACnetPriorityArray: 16 choices of the priority value, walked from the catalogue.
void BM_PriorityArrayWalkJson(benchmark::State& state) {
    catalogue();
    std::vector<DataApplicationValue> values(16);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i % 4 == 0)
            values[i].setReal(21.5f);
        else
            values[i] = DataApplicationValue(BACNET_APPLICATION_TAG_NULL, false);
        if (i + 1 < values.size()) values[i].next = &values[i + 1];
    }
    char buffer[4096];
    Poco::MemoryOutputStream out(buffer, sizeof buffer);
    const std::string property = "priority-array";
    std::size_t bytes = 0;
    for (auto _ : state) {
        out.seekp(0);
        WS::MarkupFactoryJSON f(out, false, false, -1);
        DataApplicationValue* cursor = &values[0];
        f.markup2(static_cast<BACnetDataType>(1064), &cursor, "priority-array", true,
                  Poco::Nullable<unsigned char>());
        f.closeAllOpenMarkups();
        bytes += static_cast<std::size_t>(out.charsWritten());
        benchmark::DoNotOptimize(buffer);
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * 16));
}

void fixedIterations(benchmark::internal::Benchmark* b) {
    if (const char* n = std::getenv("TQ_BENCH_ITERATIONS")) b->Iterations(std::strtoll(n, nullptr, 10));
}

}  // namespace

BENCHMARK(BM_Render16RealsJson)->Apply(fixedIterations);
BENCHMARK(BM_GetText16Reals)->Apply(fixedIterations);
BENCHMARK(BM_PriorityArrayWalkJson)->Apply(fixedIterations);
