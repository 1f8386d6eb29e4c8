// The gateway killed while it writes a device's tree: whenever it dies, the database holds the
// device whole or not at all, and a restarted gateway completes it and serves.
#include "TQ_BACnet/Gateway/Config.h"

#include <Poco/Data/SQLite/Connector.h>
#include <Poco/Data/Session.h>
#include <Poco/File.h>
#include <Poco/FileStream.h>
#include <Poco/Path.h>
#include <Poco/Process.h>
#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <thread>

namespace {

using namespace Poco::Data::Keywords;

constexpr int kObjects = 1 + 8 + 1500;  // the device, its demo set and the extra analog values

// The objects stored for device 101; 0 also when the gateway died before its tables existed.
int storedObjects(const std::string& file, std::string& integrity) {
    Poco::Data::Session db("SQLite", file);
    db << "PRAGMA integrity_check", into(integrity), now;
    int tables = 0;
    db << "SELECT COUNT(*) FROM sqlite_master WHERE name='bn_device_object'", into(tables), now;
    int count = 0;
    if (tables == 1)
        db << "SELECT COUNT(*) FROM bn_device_object WHERE id_bn_device IN "
              "(SELECT id_bn_device FROM bn_device_object WHERE id_bn_object_type=8 AND instance_nr=101)",
            into(count), now;
    return count;
}

TEST(GatewayCrash, TheTreeIsWholeOrAbsentAfterAKill) {
    Poco::Data::SQLite::Connector::registerConnector();
    const std::string dir = Poco::TemporaryFile::tempName();
    Poco::File(dir).createDirectories();
    const std::string db = Poco::Path(dir, "gw.db").toString(), config = Poco::Path(dir, "gw.json").toString();
    const uint16_t udp = uint16_t(46000 + (getpid() % 1000) * 2);
    Poco::ProcessHandle device = Poco::Process::launch(
        TQ_SIM_DEVICE_EXE, {"--instance", "101", "--interface", "127.0.0.2", "--port", std::to_string(udp),
                            "--objects", "1500"});
    Poco::FileOutputStream(config) << R"({"listen":{"port":)" << udp + 1 << R"(},
        "bacnet":{"interface":"127.0.0.1","port":)" << udp << R"(,"discoverMs":300},"database":{"sqlite":")"
                                   << db << R"("},"tokens":[{"sha256":")"
                                   << TQ::BACnet::Gateway::Config::hashToken("t") << R"(","rights":"read"}]})";
    // Killed at different moments of its start: before, while and after it writes the tree.
    for (int delayMs : {150, 400, 700, 1000, 1500}) {
        Poco::ProcessHandle gateway = Poco::Process::launch(TQ_GATEWAY_EXE, {"--config", config});
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
        Poco::Process::kill(gateway);  // SIGKILL: no chance to finish anything
        gateway.wait();
        if (!Poco::File(db).exists()) continue;
        std::string integrity;
        const int stored = storedObjects(db, integrity);
        EXPECT_EQ(integrity, "ok") << "killed after " << delayMs << " ms";
        EXPECT_TRUE(stored == 0 || stored == kObjects) << stored << " objects after a kill at " << delayMs << " ms";
    }
    // Started again on the same database and left alone: the tree is complete.
    Poco::ProcessHandle gateway = Poco::Process::launch(TQ_GATEWAY_EXE, {"--config", config});
    std::string integrity;
    int stored = 0;
    for (int i = 0; i < 100 && stored != kObjects; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        stored = storedObjects(db, integrity);
    }
    EXPECT_EQ(stored, kObjects);
    Poco::Process::requestTermination(gateway.id());
    gateway.wait();
    Poco::Process::kill(device);
    device.wait();
    Poco::File(dir).remove(true);
}

}  // namespace
