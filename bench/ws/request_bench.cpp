// Request paths and JSON bodies with warm catalogue caches. After the warm-up the database
// session is withdrawn, so a benchmark that would still query the catalogue fails instead of
// measuring the query.
#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/WS/EncoderJSON.h"
#include "TQ_BACnet/WS/UriParser.h"

#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace TQ::BACnet;
using SD = WS::DotBACnetPathParams::ServiceDescriptor;

const std::string kPath = "/bacnetws/.bacnet/.local/1234/analog-value,3/present-value?alt=json&priority=8";
const std::string kRealBody = R"({"$value":21.5})";
const std::string kPriorityBody =
    R"({"1":{"null":""},"2":{"null":""},"3":{"null":""},"4":{"null":""},"5":{"null":""},"6":{"null":""},)"
    R"("7":{"null":""},"8":{"real":21.5},"9":{"null":""},"10":{"null":""},"11":{"null":""},"12":{"null":""},)"
    R"("13":{"null":""},"14":{"null":""},"15":{"null":""},"16":{"real":18}})";
const DataPropertyInObject0 kReal(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, BACNET_DTS_SINGLE_VALUE, true,
                                  0);
const DataPropertyInObject0 kPriorityArray(static_cast<BACnetDataType>(1064), BACNET_APPLICATION_TAG_NULL,
                                           BACNET_DTS_ARRAY, false, 0);

bool parsePath() {
    WS::UriParser parser(kPath);
    WS::DotBACnetPathParams params(SD::HM_READ, SERVICE_SUPPORTED_READ_PROPERTY);
    WS::DataWsError error;
    return parser.getAndValidatePath(params, error);
}

int encodeBody(const DataPropertyInObject0& d, const std::string& body, TQ::Utility::OctetBuffer& buffer) {
    WS::DataWsError error;
    return WS::EncoderJSON().encode(d, body, buffer, 0, error);
}

// Opens the generated catalogue, warms every cache the benchmarks touch, then withdraws the
// session for good.
void warmCatalogueOnce() {
    static bool done = false;
    if (done) return;
    done = true;
    const std::string dir = Poco::TemporaryFile::tempName();
    Poco::File(dir).createDirectories();
    Poco::TemporaryFile::registerForDeletion(dir);
    static std::unique_ptr<TQ::Utility::Data::SmoDbSession> db =
        TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(dir, "catalogue.db").toString());
    TQ::Utility::Data::pDB = db.get();
    WS::UriParser::setLocalDevInstance(1234);
    TQ::Utility::OctetBuffer buffer(MAX_APDU);
    if (!parsePath() || encodeBody(kReal, kRealBody, buffer) != 5 ||
        encodeBody(kPriorityArray, kPriorityBody, buffer) != 24)
        std::abort();
    TQ::Utility::Data::pDB = nullptr;
}

void BM_PathFiveItemsTwoOptions(benchmark::State& state) {
    warmCatalogueOnce();
    for (auto _ : state)
        if (!parsePath()) state.SkipWithError("path refused or catalogue queried");
}

void BM_JsonRealBody(benchmark::State& state) {
    warmCatalogueOnce();
    TQ::Utility::OctetBuffer buffer(MAX_APDU);
    for (auto _ : state)
        if (encodeBody(kReal, kRealBody, buffer) != 5) state.SkipWithError("body refused");
}

void BM_JsonPriorityArrayBody(benchmark::State& state) {
    warmCatalogueOnce();
    TQ::Utility::OctetBuffer buffer(MAX_APDU);
    for (auto _ : state)
        if (encodeBody(kPriorityArray, kPriorityBody, buffer) != 24) state.SkipWithError("body refused");
}

// TQ_BENCH_ITERATIONS fixes the iteration count, so that two callgrind runs can be subtracted.
void fixedIterations(benchmark::internal::Benchmark* b) {
    if (const char* n = std::getenv("TQ_BENCH_ITERATIONS")) b->Iterations(std::strtoll(n, nullptr, 10));
}

}  // namespace

BENCHMARK(BM_PathFiveItemsTwoOptions)->Apply(fixedIterations);
BENCHMARK(BM_JsonRealBody)->Apply(fixedIterations);
BENCHMARK(BM_JsonPriorityArrayBody)->Apply(fixedIterations);
