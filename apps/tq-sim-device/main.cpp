// tq-sim-device: a BACnet/IP device for tests and demonstrations.
//
//   tq-sim-device [--instance N] [--name TEXT] [--interface NAME|ADDRESS] [--port UDP]
//                 [--broadcast ADDRESS] [--objects N] [--log-records N] [--drop-first N]
//                 [--bbmd ADDRESS:PORT [--ttl SECONDS]] [--database FILE]
//
// Serves a device object and a demo set (analog, binary and multi-state objects, a trend log,
// a schedule, and N further analog values) until interrupted. With --database the objects are
// also rows of the stored tree in that embedded database (created on first use), and objects
// are created and deleted there first.
#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/Net/SimDevice.h"
#include "TQ_BACnet/Net/TreeStore.h"

#include <arpa/inet.h>

#include <Poco/Exception.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

namespace {

std::atomic<bool> gStop{false};

void onSignal(int) { gStop = true; }

int usage() {
    std::cerr << "usage: tq-sim-device [--instance N] [--name TEXT] [--interface NAME|ADDRESS] [--port UDP]\n"
                 "                     [--broadcast ADDRESS] [--objects N] [--log-records N] [--drop-first N]\n"
                 "                     [--bbmd ADDRESS:PORT [--ttl SECONDS]] [--database FILE]\n";
    return 2;
}

bool parseEndpoint(const std::string& text, uint8_t mac[6]) {
    const auto colon = text.find(':');
    in_addr address{};
    if (colon == std::string::npos || inet_pton(AF_INET, text.substr(0, colon).c_str(), &address) != 1) return false;
    const unsigned long port = std::strtoul(text.c_str() + colon + 1, nullptr, 10);
    if (port == 0 || port > 65535) return false;
    const uint16_t netPort = htons(uint16_t(port));
    std::memcpy(mac, &address.s_addr, 4);
    std::memcpy(mac + 4, &netPort, 2);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace TQ::BACnet::Net;
    PortOptions port;
    SimDeviceOptions device;
    uint32_t instance = 1234;
    std::string name = "simulated device", databaseFile;
    unsigned objects = 0, logRecords = 100, ttl = 60;
    uint8_t bbmd[6];
    bool foreign = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (i + 1 >= argc) return usage();
        const std::string value = argv[++i];
        const unsigned long number = std::strtoul(value.c_str(), nullptr, 10);
        if (arg == "--instance") instance = uint32_t(number);
        else if (arg == "--name") name = value;
        else if (arg == "--interface") port.interface = value;
        else if (arg == "--port") port.udpPort = uint16_t(number);
        else if (arg == "--broadcast") port.broadcast = value;
        else if (arg == "--objects") objects = unsigned(number);
        else if (arg == "--log-records") logRecords = unsigned(number);
        else if (arg == "--drop-first") device.dropFirstRequests = unsigned(number);
        else if (arg == "--ttl") ttl = unsigned(number);
        else if (arg == "--database") databaseFile = value;
        else if (arg == "--bbmd") {
            if (!parseEndpoint(value, bbmd)) return usage();
            foreign = true;
        } else return usage();
    }
    if (instance > 4194302) return usage();
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> session;
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    try {
        BipSocket socket(port);
        Link link(socket, "tq-sim-device");
        SimObjects database(instance, name);
        database.addDemoSet(logRecords, objects);
        SimDevice sim(link, database, device);
        std::unique_ptr<TreeStore> tree;
        if (!databaseFile.empty()) {
            session = TQ::Utility::Data::openEmbeddedDatabase(databaseFile);
            TQ::Utility::Data::pDB = session.get();
            tree = std::make_unique<TreeStore>(name);
            tree->storeAll(database);
            sim.setStore(tree.get());
        }
        if (foreign) link.registerForeignDevice(bbmd, uint16_t(ttl));
        const uint8_t* own = socket.address();
        std::cout << "device " << instance << " at " << unsigned(own[0]) << "." << unsigned(own[1]) << "."
                  << unsigned(own[2]) << "." << unsigned(own[3]) << ":" << (unsigned(own[4]) << 8 | own[5]) << ", "
                  << database.size() << " objects" << std::endl;
        sim.announce();
        sim.run(gStop);
    } catch (const Poco::Exception& e) {
        std::cerr << "tq-sim-device: " << e.displayText() << std::endl;
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "tq-sim-device: " << e.what() << std::endl;
        return 1;
    }
    TQ::Utility::Data::pDB = nullptr;
    return 0;
}
