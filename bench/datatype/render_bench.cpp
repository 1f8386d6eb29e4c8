// A trend log's buffer of 50 records (REALs with status flags) rendered from its value container,
// as a ReadRange answer is shown to a web client.
#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <sstream>

using namespace TQ::BACnet;

namespace {

constexpr int RECORDS = 50;

ValueContainer trendLog() {
    std::vector<DataApplicationValue> primitives;
    for (int i = 0; i < RECORDS; ++i) {
        DataType::BACnetLogRecord r;
        r.setTimestamp(Poco::Timestamp((1700000000LL + 60 * i) * 1000000));
        r.setReal(20.0f + 0.25f * static_cast<float>(i));
        r.setStatusFlags(i % 3 == 0 ? 0x01 : 0x00);
        r.getBACnetPrimitives(primitives);
    }
    ValueContainer c;
    c.setApplicationValueLinks(primitives);
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_LOG_RECORD, BACNET_APPLICATION_TAG_NULL,
                                                          BACNET_DTS_LIST, false, 4);
    c.setApplicationValue(primitives.front(), &descriptor);
    return c;
}

template <class Factory>
void renderTrendLog(benchmark::State& state) {
    TQTest::Catalogue::open();
    const ValueContainer log = trendLog();
    std::ostringstream out;
    size_t bytes = 0;
    for (auto _ : state) {
        out.str(std::string());
        Factory factory(out, false, true, -1);
        factory.markup(WS::MarkupFactory::BT_SEQUENCE, "log-buffer", "", false, false, BACNET_DT_NULL, true);
        log.markup(factory, "records", false, BACNET_DT_NULL);
        factory.closeAllOpenMarkups();
        factory.flush();
        bytes += out.str().size();
    }
    state.SetItemsProcessed(state.iterations() * RECORDS);
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void BM_TrendLogJson(benchmark::State& state) {
    renderTrendLog<WS::MarkupFactoryJSON>(state);
}
void BM_TrendLogXml(benchmark::State& state) {
    renderTrendLog<WS::MarkupFactoryXML>(state);
}

// TQ_BENCH_ITERATIONS fixes the iteration count, so that two callgrind runs differ by a known
// number of renders (set-up and cold caches cancel out).
void fixedIterations(benchmark::internal::Benchmark* b) {
    if (const char* n = std::getenv("TQ_BENCH_ITERATIONS")) b->Iterations(std::strtoll(n, nullptr, 10));
}

}  // namespace

BENCHMARK(BM_TrendLogJson)->Apply(fixedIterations);
BENCHMARK(BM_TrendLogXml)->Apply(fixedIterations);
