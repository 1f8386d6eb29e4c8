// What a cache hit of the catalogue costs: time, heap allocations and database statements per
// hit, and the cost of decoding constructed values with the catalogue as the stack's guide.

#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"

#include "tq_stack/context_decode.h"
#include "tq_stack/rpm.h"

#include <Poco/Data/SQLite/Utility.h>
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <valgrind/callgrind.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>

// Every heap allocation of the process is counted.
static std::atomic<long> allocations{0};

void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

namespace {

std::atomic<long> statements{0};

int onStatement(unsigned, void*, void*, void*) {
    statements.fetch_add(1, std::memory_order_relaxed);
    return 0;
}

// The generated catalogue for the life of the process, every statement it runs counted.
TQTest::Catalogue& catalogue() {
    static TQTest::Catalogue& instance = [] () -> TQTest::Catalogue& {
        TQTest::Catalogue& opened = TQTest::Catalogue::open();
        sqlite3_trace_v2(Poco::Data::SQLite::Utility::dbHandle(opened.session()), SQLITE_TRACE_STMT, onStatement,
                         nullptr);
        return opened;
    }();
    return instance;
}

// ReadProperty-ACK service data: object, property, then the value in opening/closing tag 3.
const uint8_t kDateTimeAck[] = {0x0C, 0x02, 0x00, 0x00, 0x01, 0x19, 0x8E, 0x3E, 0xA4, 0x7B,
                                0x0B, 0x17, 0x01, 0xB4, 0x0C, 0x1E, 0x00, 0x00, 0x3F};
const uint8_t kReferenceAck[] = {0x0C, 0x05, 0x00, 0x00, 0x01, 0x19, 0x84, 0x3E, 0x0C, 0x00, 0x00,
                                 0x00, 0x05, 0x19, 0x55, 0x3C, 0x02, 0x00, 0x00, 0x01, 0x3F};
const uint8_t kPriorityArrayAck[] = {0x0C, 0x00, 0x40, 0x00, 0x01, 0x19, 0x57, 0x3E, 0x00, 0x00,
                                     0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                     0x00, 0x00, 0x00, 0x44, 0x41, 0xAC, 0x00, 0x00, 0x3F};

struct DecodeCase {
    const uint8_t* bytes;
    std::size_t length;
    int datatype;
};

const std::map<std::string, DecodeCase>& decodeCases() {
    static const std::map<std::string, DecodeCase> cases{
        {"DateTime", {kDateTimeAck, sizeof kDateTimeAck, BACNET_DT_DATE_TIME}},
        {"DeviceObjectPropertyReference",
         {kReferenceAck, sizeof kReferenceAck, BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE}},
        {"PriorityArray", {kPriorityArrayAck, sizeof kPriorityArrayAck, 1064}},
    };
    return cases;
}

int decodeOnce(const DecodeCase& value) {
    BACnet_Datatype_By_Context_Tag guide;
    init_bacnet_datatype_by_context_tag(&guide, value.datatype);
    BACNET_READ_ACCESS_DATA data;
    std::memset(&data, 0, sizeof data);
    int length = rp_ack_fully_decode_service_request(value.bytes, static_cast<uint32_t>(value.length), &guide,
                                                     BnDataTypeConstruct::get_datatype_by_context, &data);
    free_BACNET_READ_ACCESS_DATA_Internals(&data);
    BnDataTypeConstruct::deleteBdbct(&guide.child);
    return length;
}

// The lookups measured, each answered from a warm cache.
const std::map<std::string, std::function<void()>>& hitCases() {
    static const std::map<std::string, std::function<void()>> cases{
        {"BnDataType::find", [] { benchmark::DoNotOptimize(BnDataType::find(BACNET_DT_DATE_TIME)); }},
        {"BnDataTypeEnum::find", [] { benchmark::DoNotOptimize(BnDataTypeEnum::find(120, 8)); }},
        {"BnDataTypeConstruct::find",
         [] {
             benchmark::DoNotOptimize(BnDataTypeConstruct::find(BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE));
         }},
        {"DataPropertyInObject0::getValueTypeAndStructure",
         [] {
             DataPropertyInObject0 out;
             benchmark::DoNotOptimize(DataPropertyInObject0::getValueTypeAndStructure(
                 OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE, out, false));
             benchmark::DoNotOptimize(out);
         }},
    };
    return cases;
}

void warmUp() {
    catalogue();
    for (const auto& hit : hitCases()) hit.second();
    for (const auto& value : decodeCases())
        if (decodeOnce(value.second) <= 0) std::fprintf(stderr, "decoding %s failed\n", value.first.c_str());
}

void benchHit(benchmark::State& state, const std::function<void()>& hit) {
    warmUp();
    long allocationsBefore = allocations.load();
    long statementsBefore = statements.load();
    for (auto _ : state) hit();
    double hits = static_cast<double>(state.iterations());
    state.counters["allocs/hit"] = static_cast<double>(allocations.load() - allocationsBefore) / hits;
    state.counters["queries/hit"] = static_cast<double>(statements.load() - statementsBefore) / hits;
}

void benchDecode(benchmark::State& state, const DecodeCase& value) {
    warmUp();
    long statementsBefore = statements.load();
    for (auto _ : state) benchmark::DoNotOptimize(decodeOnce(value));
    state.counters["queries/value"] =
        static_cast<double>(statements.load() - statementsBefore) / static_cast<double>(state.iterations());
}

// Runs one case `rounds` times with callgrind instrumentation on, so that the instructions
// counted divided by `rounds` are the cost of one hit or one decoded value.
int runUnderCallgrind(const std::string& name, int rounds) {
    warmUp();
    auto hit = hitCases().find(name);
    auto value = decodeCases().find(name);
    if (hit == hitCases().end() && value == decodeCases().end()) {
        std::fprintf(stderr, "no case %s\n", name.c_str());
        return 2;
    }
    CALLGRIND_ZERO_STATS;
    CALLGRIND_START_INSTRUMENTATION;
    for (int i = 0; i < rounds; ++i) {
        if (hit != hitCases().end())
            hit->second();
        else
            decodeOnce(value->second);
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    std::printf("%s: %d rounds\n", name.c_str(), rounds);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc >= 3 && std::strcmp(argv[1], "--callgrind") == 0)
        return runUnderCallgrind(argv[2], argc >= 4 ? std::atoi(argv[3]) : 10000);
    for (const auto& hit : hitCases())
        benchmark::RegisterBenchmark(("Hit/" + hit.first).c_str(), benchHit, hit.second);
    for (const auto& value : decodeCases())
        benchmark::RegisterBenchmark(("Decode/" + value.first).c_str(), benchDecode, value.second);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
