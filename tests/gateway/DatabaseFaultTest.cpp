// The gateway's database goes away under it: the SQLite file's directory made read-only (a
// read-only bind mount in a mount namespace of this process: as root, file modes would not stop
// a write), or its own PostgreSQL server stopped. Requests that need the database get a clear
// web-service error, live reads go on, and once the database is back everything works again.
#include "../net/NetTestSupport.h"

#include "TQ_BACnet/Gateway/Gateway.h"
#include "TQ_BACnet/Gateway/Server.h"

#include <Poco/File.h>
#include <Poco/Glob.h>
#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPRequest.h>
#include <Poco/Net/HTTPResponse.h>
#include <Poco/Path.h>
#include <Poco/Process.h>
#include <Poco/StreamCopier.h>
#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>

using namespace tq_net_test;
namespace GW = TQ::BACnet::Gateway;

namespace {

const std::string kDiscover = "/bacnetws/.bacnet/.local?discover=true&alt=json";
const std::string kPresentValue = "/bacnetws/.bacnet/.local/61/analog-value,1/present-value?alt=json";

struct Reply {
    int status = 0;
    std::string body;
};

Reply get(uint16_t port, const std::string& path) {
    Poco::Net::HTTPClientSession session("127.0.0.1", port);
    session.setTimeout(Poco::Timespan(20, 0));
    Poco::Net::HTTPRequest request("GET", path);
    request.set("Authorization", "Bearer t");
    session.sendRequest(request);
    Poco::Net::HTTPResponse response;
    Reply reply;
    Poco::StreamCopier::copyToString(session.receiveResponse(response), reply.body);
    reply.status = response.getStatus();
    return reply;
}

// The gateway with one simulated device, reading live (stored values never count as fresh)
// so that every read stores what it read.
struct Rig {
    explicit Rig(const std::string& database, uint16_t port)
        : port(port),
          device("127.0.0.2", port, 61),
          config(GW::Config::parse(R"({"listen":{"port":0},"bacnet":{"interface":"127.0.0.1","port":)" +
                                       std::to_string(port) + R"(,"discoverMs":300},"database":{)" + database +
                                       R"(,"maxAgeMs":0},"tokens":[{"sha256":")" + GW::Config::hashToken("t") +
                                       R"(","rights":"read"}]})",
                                   "fault test")),
          gateway(config),
          server(gateway, config) {
        server.start();
    }
    ~Rig() { server.stop(); }
    Reply get(const std::string& path) { return ::get(server.port(), path); }

    // A new present value, written by another client: storing it is a real write (SQLite
    // writes nothing for a value that did not change).
    void changeValue() {
        BipSocket socket(portAt("127.0.0.9", port));
        Link link(socket, "other client");
        Client other(link);
        TQ::BACnet::ValueContainer v;
        v.setReal(float(++changes));
        const TQ::BACnet::DataType::BACnetObjectPropertyReference pv(
            TQ::BACnet::DataType::ObjectIdentifier(OBJECT_ANALOG_VALUE, 1), PROP_PRESENT_VALUE, BACNET_ARRAY_ALL);
        ASSERT_TRUE(DeviceOperations(other).writeProperty(Target::at(bip("127.0.0.2", port)), pv, v, 0).ok());
    }

    // Up: discovery stores, a read answers and stores. Down: discovery is refused as not
    // ready and says why; the live read still answers, its store failing aside.
    void expectDatabase(bool up, const char* when) {
        SCOPED_TRACE(when);
        changeValue();
        const unsigned failures = gateway.store().failures();
        const Reply discovered = get(kDiscover);
        EXPECT_EQ(discovered.status, up ? 200 : 503) << discovered.body;
        if (!up) {
            EXPECT_EQ(discovered.body.rfind("WS_ERR_NOT_READY: devices found but not stored: database: ", 0), 0u)
                << discovered.body;
        }
        const Reply read = get(kPresentValue);
        EXPECT_EQ(read.status, 200) << read.body;
        EXPECT_EQ(read.body, "{\"$value\":" + std::to_string(changes) + "}");
        if (up) {
            EXPECT_EQ(gateway.store().failures(), failures) << gateway.store().lastError();
        } else {
            EXPECT_GE(gateway.store().failures(), failures + 2) << "the discovery's and the read's store";
        }
    }

    uint16_t port;
    int changes = 0;
    DeviceThread device;
    GW::Config config;
    GW::Gateway gateway;
    GW::Server server;
};

int run(const std::vector<std::string>& command) {
    std::string line;
    for (const std::string& word : command) line += "'" + word + "' ";
    return std::system((line + ">/dev/null 2>&1").c_str());
}

TEST(GatewayDatabaseFault, SqliteDirectoryMadeReadOnlyAndWritableAgain) {
    // A mount namespace of this process alone, so that the read-only mount is seen by nobody else.
    ASSERT_EQ(unshare(CLONE_NEWNS), 0) << "unshare: " << std::strerror(errno) << " (needs root)";
    ASSERT_EQ(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0) << std::strerror(errno);
    const std::string dir = Poco::TemporaryFile::tempName();
    Poco::File(dir).createDirectories();
    {
        Rig rig(R"("sqlite":")" + Poco::Path(dir, "gw.db").toString() + "\"", uint16_t(basePort() + 1));
        rig.expectDatabase(true, "before");
        // A read-only mount over the directory: SQLite cannot make its journal, so no write
        // succeeds, while reads through the open file go on.
        ASSERT_EQ(mount(dir.c_str(), dir.c_str(), nullptr, MS_BIND, nullptr), 0) << std::strerror(errno);
        ASSERT_EQ(mount(nullptr, dir.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0)
            << std::strerror(errno);
        rig.expectDatabase(false, "read-only");
        ASSERT_EQ(umount2(dir.c_str(), 0), 0) << std::strerror(errno);
        rig.expectDatabase(true, "writable again");
    }
    Poco::File(dir).remove(true);
}

// A PostgreSQL server of the test's own, run as the postgres user when the test runs as root.
class PostgreSQLServer {
public:
    PostgreSQLServer() {
        std::set<std::string> found;
        Poco::Glob::glob("/usr/lib/postgresql/*/bin/pg_ctl", found);
        if (found.empty()) return;
        _bin = Poco::Path(*found.rbegin()).parent().toString();
        _dir = Poco::TemporaryFile::tempName();
        Poco::File(_dir).createDirectories();
        if (geteuid() == 0) {
            _as = {"runuser", "-u", "postgres", "--"};
            run({"chown", "postgres", _dir});
        }
        _port = uint16_t(basePort() + 6);
        if (command({"initdb", "-D", _dir + "/data", "-U", "tq", "--auth=trust", "--no-sync"}) != 0 || !start())
            _bin.clear();
    }
    ~PostgreSQLServer() {
        if (!_dir.empty()) {
            command({"pg_ctl", "-D", _dir + "/data", "-m", "immediate", "-w", "stop"});
            Poco::File(_dir).remove(true);
        }
    }
    bool available() const { return !_bin.empty(); }
    std::string connection() const { return "host=127.0.0.1 port=" + std::to_string(_port) + " user=tq dbname=postgres"; }
    bool start() {
        return command({"pg_ctl", "-D", _dir + "/data", "-l", _dir + "/server.log", "-w", "-o",
                        "-c listen_addresses=127.0.0.1 -p " + std::to_string(_port) + " -k " + _dir +
                            " -c fsync=off",
                        "start"}) == 0;
    }
    bool stop() { return command({"pg_ctl", "-D", _dir + "/data", "-m", "fast", "-w", "stop"}) == 0; }

private:
    int command(std::vector<std::string> words) {
        words[0] = _bin + "/" + words[0];
        words.insert(words.begin(), _as.begin(), _as.end());
        return run(words);
    }

    std::string _bin, _dir;
    std::vector<std::string> _as;
    uint16_t _port = 0;
};

TEST(GatewayDatabaseFault, PostgreSQLServerStoppedAndStartedAgain) {
    PostgreSQLServer postgres;
    if (!postgres.available()) GTEST_SKIP() << "no PostgreSQL server programs";
    Rig rig(R"("postgresql":")" + postgres.connection() + "\"", uint16_t(basePort() + 3));
    rig.expectDatabase(true, "before");
    ASSERT_TRUE(postgres.stop());
    rig.expectDatabase(false, "server stopped");
    ASSERT_TRUE(postgres.start());
    rig.expectDatabase(true, "server started again");
}

}  // namespace
