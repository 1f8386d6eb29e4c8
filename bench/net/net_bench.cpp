// ReadProperty round trips per second between the client (the process port, through the BVLL
// hooks) and a simulated device on its own thread, over loopback; 1 and 16 requests outstanding.
#include "TQ_BACnet/Net/Client.h"
#include "TQ_BACnet/Net/SimDevice.h"

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <thread>

using namespace TQ::BACnet::Net;

namespace {

PortOptions at(const char* ip, uint16_t port, bool processPort) {
    PortOptions o;
    o.interface = ip;
    o.udpPort = port;
    o.processPort = processPort;
    o.listenBroadcast = false;
    return o;
}

void roundTrips(benchmark::State& state) {
    const uint16_t port = uint16_t(36000 + getpid() % 1000);
    BipSocket deviceSocket(at("127.0.0.2", port, false));
    Link deviceLink(deviceSocket, "device");
    SimObjects objects(7, "bench device");
    objects.addDemoSet();
    SimDevice device(deviceLink, objects);
    std::atomic<bool> stop{false};
    std::thread server([&] { device.run(stop); });

    BipSocket socket(at("127.0.0.1", port, true));
    Link link(socket, "client");
    Client client(link);
    BACNET_ADDRESS to{};
    to.mac_len = 6;
    std::memcpy(to.mac, deviceSocket.address(), 6);
    // ReadProperty analog-input 1 present-value.
    const uint8_t request[] = {0x0C, 0x00, 0x00, 0x00, 0x01, 0x19, 0x55};
    const int outstanding = int(state.range(0));
    std::vector<int> handles;
    int64_t done = 0, failed = 0;
    for (auto _ : state) {
        while (int(handles.size()) < outstanding)
            handles.push_back(client.submit(to, 12, request, sizeof request));
        client.poll(1000);
        for (auto& h : handles) {
            if (!client.isDone(h)) continue;
            if (client.take(h).kind == Result::ComplexAck) ++done; else ++failed;
            h = client.submit(to, 12, request, sizeof request);
        }
    }
    for (int h : handles) {
        while (!client.isDone(h)) client.poll(100);
        client.take(h);
    }
    stop = true;
    server.join();
    state.counters["round_trips_per_s"] = benchmark::Counter(double(done), benchmark::Counter::kIsRate);
    state.counters["failed"] = double(failed);
}

}  // namespace

BENCHMARK(roundTrips)->Arg(1)->Arg(16)->UseRealTime()->MinTime(2.0);
BENCHMARK_MAIN();
