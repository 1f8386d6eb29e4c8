// Decoding a ReadPropertyMultiple-ACK of 20 objects x 5 properties into typed containers
// against the raw codec on the same bytes, and storing 10,000 property values with the
// prepared update statement (SQLite; PostgreSQL when TQ_PG_CONNECT names a server).
// Instructions per property: bench/service/measure.sh <build-dir>.
#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/PostgreSQLDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultipleAck.h"
#include "tq_stack/rpm.h"

#include <Poco/Data/PostgreSQL/Connector.h>
#include <Poco/Data/Statement.h>
#include <Poco/Environment.h>
#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/Process.h>
#include <Poco/TemporaryFile.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

using namespace TQ::BACnet;
using TQ::Utility::Data::pDB;

namespace {

constexpr int kObjects = 20;
constexpr int kPropertiesPerObject = 5;
constexpr int kStoredValues = 10000;

// The generated catalogue in a scratch file: the process-wide session while the benchmarks run.
struct Catalogue {
    Catalogue() : dir(Poco::TemporaryFile::tempName()) {
        Poco::File(dir).createDirectories();
        db = TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(dir, "bench.db").toString());
        pDB = db.get();
    }
    ~Catalogue() {
        pDB = nullptr;
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

// Per analog input: present-value REAL, object-name, status-flags, units, out-of-service.
std::vector<uint8_t> rpmAck() {
    std::vector<uint8_t> out;
    auto add = [&](std::initializer_list<uint8_t> bytes) { out.insert(out.end(), bytes); };
    for (uint8_t i = 0; i < kObjects; ++i) {
        add({0x0C, 0x00, 0x00, 0x00, i, 0x1E});
        add({0x29, 0x55, 0x4E, 0x44, 0x41, 0xA8, 0x00, i, 0x4F});
        add({0x29, 0x4D, 0x4E, 0x75, 0x07, 0x00, 'A', 'I', '-', '0', '0', 'x', 0x4F});
        out[out.size() - 3] = static_cast<uint8_t>('0' + i % 10);
        add({0x29, 0x6F, 0x4E, 0x82, 0x04, 0x00, 0x4F});
        add({0x29, 0x75, 0x4E, 0x91, 0x3E, 0x4F});
        add({0x29, 0x51, 0x4E, 0x10, 0x4F});
        add({0x1F});
    }
    return out;
}

void BM_RpmAckIntoContainers(benchmark::State& state) {
    catalogue();
    const std::vector<uint8_t> bytes = rpmAck();
    Service::ObjectAccess::ReadPropertyMultipleAck ack;
    for (auto _ : state) {
        const int length =
            ack.decodeServiceRequest(bytes.data(), static_cast<unsigned>(bytes.size()), nullptr);
        if (length != static_cast<int>(bytes.size()) || ack.sizeRAR() != kObjects)
            state.SkipWithError("decode");
        benchmark::DoNotOptimize(length);
    }
    state.SetItemsProcessed(state.iterations() * kObjects * kPropertiesPerObject);
}

void BM_RpmAckRawCodec(benchmark::State& state) {
    const std::vector<uint8_t> bytes = rpmAck();
    for (auto _ : state) {
        BACNET_READ_ACCESS_DATA first{};
        const int length =
            rpm_ack_decode_service_request(bytes.data(), static_cast<uint32_t>(bytes.size()), &first);
        if (length != static_cast<int>(bytes.size())) state.SkipWithError("decode");
        rpm_ack_free_all(&first);
        benchmark::DoNotOptimize(length);
    }
    state.SetItemsProcessed(state.iterations() * kObjects * kPropertiesPerObject);
}

/// kStoredValues property rows under one object; their keys.
std::vector<int> storedRows() {
    using Poco::Data::Keywords::into;
    using Poco::Data::Keywords::now;
    using Poco::Data::Keywords::use;
    pDB->begin();
    pDB->getSession() << "INSERT INTO bn_device_object (id_bn_device, id_bn_object_type, instance_nr) VALUES "
                         "(1, 0, 1)",
        now;
    int property = 0;
    Poco::Data::Statement insert(pDB->getSession());
    insert << "INSERT INTO bn_device_object_property (id_bn_property_type, id_bn_device_object, value) "
              "VALUES (?, 1, 'x')",
        use(property);
    for (property = 0; property < kStoredValues; ++property) insert.execute();
    pDB->commit();
    std::vector<int> keys;
    pDB->getSession() << "SELECT id_bn_device_object_property FROM bn_device_object_property", into(keys),
        now;
    return keys;
}

void storeValues(benchmark::State& state) {
    static const std::vector<int> keys = storedRows();
    // One statement object for the life of the process, as the prepared update requires.
    static Poco::Data::Statement* statement = new Poco::Data::Statement(pDB->getSession());
    long round = 0;
    for (auto _ : state) {
        const std::string value = std::to_string(++round) + ".5";
        pDB->begin();
        for (int key : keys) Entity::BnDeviceObjectProperty::dbUpdatePropertyValue(key, value, statement);
        pDB->commit();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(keys.size()));
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(state.iterations() * keys.size()),
                                                  benchmark::Counter::kIsRate);
}

void BM_Store10000ValuesSqlite(benchmark::State& state) {
    catalogue();
    storeValues(state);
}

void BM_Store10000ValuesPostgreSQL(benchmark::State& state) {
    if (!Poco::Environment::has("TQ_PG_CONNECT")) {
        state.SkipWithError("no PostgreSQL server (run under scripts/with-postgres.sh)");
        return;
    }
    static std::unique_ptr<TQ::Utility::Data::SmoDbSession> db = [] {
        const std::string server = Poco::Environment::get("TQ_PG_CONNECT");
        const std::string name = "tq_bench_" + std::to_string(Poco::Process::id());
        Poco::Data::PostgreSQL::Connector::registerConnector();
        Poco::Data::Session admin(Poco::Data::PostgreSQL::Connector::KEY, server + " dbname=postgres");
        admin << "CREATE DATABASE " + name, Poco::Data::Keywords::now;
        return TQ::Utility::Data::openPostgreSQLDatabase(server + " dbname=" + name);
    }();
    pDB = db.get();
    storeValues(state);
}

}  // namespace

// TQ_BENCH_ITERATIONS fixes the iteration count, so that an instruction count taken under
// callgrind divides by a known number.
void fixedIterations(benchmark::internal::Benchmark* b) {
    if (const char* n = std::getenv("TQ_BENCH_ITERATIONS")) b->Iterations(std::strtoll(n, nullptr, 10));
}

BENCHMARK(BM_RpmAckIntoContainers)->Apply(fixedIterations);
BENCHMARK(BM_RpmAckRawCodec)->Apply(fixedIterations);
// The prepared statement belongs to one session for the process: run these one per process
// (--benchmark_filter=Sqlite, --benchmark_filter=PostgreSQL).
BENCHMARK(BM_Store10000ValuesSqlite)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_Store10000ValuesPostgreSQL)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
