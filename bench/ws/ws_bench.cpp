// Rendering costs: a ReadProperty result of 16 REALs to compact JSON in memory (writer creation
// included) as a run of elements and one markup per value, the same value's text, a priority
// array through the catalogue walk and a trend log's buffer. Instruction counts:
// bench/ws/measure.sh.
#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryMaker.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"
#include "tq_stack/codec.h"
#include "tq_stack/context_decode.h"

#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <deque>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
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

// A memory stream that keeps its storage from response to response.
class Sink : public std::streambuf {
public:
    Sink() { text.reserve(8192); }
    std::string text;

protected:
    std::streamsize xsputn(const char* data, std::streamsize count) override {
        text.append(data, static_cast<std::size_t>(count));
        return count;
    }
    int_type overflow(int_type c) override {
        if (c != traits_type::eof()) text.push_back(static_cast<char>(c));
        return c;
    }
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

// Sixteen REALs (20.0, 20.1, ...) decoded as an array, as a ReadProperty answer holds them.
void decode16Reals(ValueContainer& container) {
    std::vector<uint8_t> bytes(16 * 5);
    for (int i = 0; i < 16; ++i)
        encode_application_real(bytes.data() + 5 * i, 20.0f + 0.1f * static_cast<float>(i));
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    DataErrorRef error(errorClass, errorCode);
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL,
                                                          BACNET_DTS_ARRAY, true, 4);
    container.decode(bytes.data(), static_cast<int>(bytes.size()), 0, descriptor, -1, error);
}

// The ReadProperty result as the web service shows it (WS::PropertyDocument's primitive form):
// the decoded array under the property's name, its elements named 1 to 16. Each response gets
// its own writer: on the stack, or from the maker on the heap and flushed at the end, as the
// gateway makes it.
void render16Reals(benchmark::State& state, bool fromMaker) {
    ValueContainer container;
    decode16Reals(container);
    const std::string property = "present-value";
    // The request's options, parsed on the request path (bench/ws/request_bench.cpp).
    WS::MarkupOptions options;
    options.alt = WS::MarkupOptions::ALT_JSON;
    // The response stream is the server's, reused.
    Sink sink;
    std::ostream out(&sink);
    std::size_t bytes = 0;
    const auto render = [&](MF& f) {
        f.markupOpen(MF::BT_ARRAY, property, false, true);
        std::size_t count = 0;
        const DataApplicationValue* values = container.primitives(count);
        f.markupElements(values, count, BACNET_DT_REAL, true);
        f.closeAllOpenMarkups();
    };
    for (auto _ : state) {
        sink.text.clear();
        if (!fromMaker) {
            WS::MarkupFactoryJSON f(out, false, true, -1);
            render(f);
        } else {
            MF* f = WS::MarkupFactoryMaker::getMarkupFactoryPointer(options, out, true);
            render(*f);
            WS::MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer(f);
        }
        bytes += sink.text.size();
        benchmark::DoNotOptimize(sink.text.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void BM_Render16RealsJson(benchmark::State& state) {
    render16Reals(state, false);
}
void BM_Render16RealsJsonFromMaker(benchmark::State& state) {
    render16Reals(state, true);
}

// The same elements one markup at a time, the way every value of a walk goes.
void BM_Render16RealsJsonPerValue(benchmark::State& state) {
    const std::vector<DataApplicationValue> values = reals(16);
    const std::string property = "present-value";
    std::vector<std::string> names;
    for (int i = 1; i <= 16; ++i) names.push_back(std::to_string(i));
    Sink sink;
    std::ostream out(&sink);
    std::size_t bytes = 0;
    for (auto _ : state) {
        sink.text.clear();
        WS::MarkupFactoryJSON f(out, false, false, -1);
        f.markup(MF::BT_ARRAY, property, "", false, false, BACNET_DT_REAL, true);
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i].markup(f, names[i], false, BACNET_DT_REAL, false, -1, false);
        f.closeAllOpenMarkups();
        bytes += sink.text.size();
        benchmark::DoNotOptimize(sink.text.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void BM_GetText16Reals(benchmark::State& state) {
    ValueContainer container;
    decode16Reals(container);
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
    Sink sink;
    std::ostream out(&sink);
    const std::string property = "priority-array";
    std::size_t bytes = 0;
    for (auto _ : state) {
        sink.text.clear();
        WS::MarkupFactoryJSON f(out, false, false, -1);
        DataApplicationValue* cursor = &values[0];
        f.markup2(static_cast<BACnetDataType>(1064), &cursor, property, true,
                  Poco::Nullable<unsigned char>());
        f.closeAllOpenMarkups();
        bytes += sink.text.size();
        benchmark::DoNotOptimize(sink.text.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * 16));
}

// A trend log's buffer of 50 records (date-time, REAL datum, status flags) as decoded, walked
// record by record from the catalogue into JSON (argument 0) or XML (1).
void BM_TrendLog50Records(benchmark::State& state) {
    catalogue();
    std::deque<DataApplicationValue> run;
    const auto tag = [&run](uint8_t which, uint8_t context) {
        run.emplace_back();
        run.back().tag = which;
        run.back().context_specific = true;
        run.back().context_tag = context;
    };
    for (int record = 0; record < 50; ++record) {
        tag(BACNET_PSEUDO_TAG_OPENING, 0);
        run.emplace_back(BACNET_APPLICATION_TAG_DATE, true);
        run.emplace_back(BACNET_APPLICATION_TAG_TIME, true);
        tag(BACNET_PSEUDO_TAG_CLOSING, 0);
        tag(BACNET_PSEUDO_TAG_OPENING, 1);
        run.emplace_back();
        run.back().setReal(20.0f + 0.1f * static_cast<float>(record));
        run.back().context_specific = true;
        run.back().context_tag = 2;
        tag(BACNET_PSEUDO_TAG_CLOSING, 1);
        run.emplace_back(BACNET_APPLICATION_TAG_BIT_STRING, true);
        run.back().context_specific = true;
        run.back().context_tag = 2;
    }
    for (std::size_t i = 0; i + 1 < run.size(); ++i) run[i].next = &run[i + 1];
    std::vector<std::string> names;
    for (int i = 1; i <= 50; ++i) names.push_back(std::to_string(i));
    const std::string property = "log-buffer";
    Sink sink;
    std::ostream out(&sink);
    std::size_t bytes = 0;
    for (auto _ : state) {
        sink.text.clear();
        std::unique_ptr<MF> f;
        if (state.range(0) == 0)
            f.reset(new WS::MarkupFactoryJSON(out, false, false, -1));
        else
            f.reset(new WS::MarkupFactoryXML(out, false, false, -1));
        f->markup(MF::BT_LIST, property, "", false, false, BACNET_DT_LOG_RECORD, true);
        DataApplicationValue* cursor = &run[0];
        for (const std::string& name : names)
            f->markup2(BACNET_DT_LOG_RECORD, &cursor, name, false, Poco::Nullable<unsigned char>());
        f->closeAllOpenMarkups();
        bytes += sink.text.size();
        benchmark::DoNotOptimize(sink.text.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * 50));
}

void fixedIterations(benchmark::internal::Benchmark* b) {
    if (const char* n = std::getenv("TQ_BENCH_ITERATIONS")) b->Iterations(std::strtoll(n, nullptr, 10));
}

}  // namespace

BENCHMARK(BM_Render16RealsJson)->Apply(fixedIterations);
BENCHMARK(BM_Render16RealsJsonFromMaker)->Apply(fixedIterations);
BENCHMARK(BM_Render16RealsJsonPerValue)->Apply(fixedIterations);
BENCHMARK(BM_GetText16Reals)->Apply(fixedIterations);
BENCHMARK(BM_PriorityArrayWalkJson)->Apply(fixedIterations);
BENCHMARK(BM_TrendLog50Records)->Arg(0)->Arg(1)->Apply(fixedIterations);
