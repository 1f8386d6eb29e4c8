// Simulated devices, a router and a BBMD on loopback addresses, each on its own thread, for the
// tests of the network runtime. Only 127.x addresses; broadcasts go to 127.255.255.255.
#pragma once

#include "TQ_BACnet/Net/Client.h"
#include "TQ_BACnet/Net/SimDevice.h"
#include "TQ_BACnet/Net/TreeStore.h"
#include "tq_stack/bvlc.h"
#include "tq_stack/npdu.h"

#include <arpa/inet.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace tq_net_test {

using namespace TQ::BACnet::Net;

// Ports of this test process: distinct per process, so test programs may run side by side.
inline uint16_t basePort() { return uint16_t(30000 + (getpid() % 2000) * 8); }

inline BACNET_ADDRESS bip(const std::string& ip, uint16_t port) {
    BACNET_ADDRESS a{};
    a.mac_len = 6;
    const uint32_t address = inet_addr(ip.c_str());
    const uint16_t p = htons(port);
    std::memcpy(a.mac, &address, 4);
    std::memcpy(a.mac + 4, &p, 2);
    return a;
}

inline PortOptions portAt(const std::string& ip, uint16_t port, bool processPort = false) {
    PortOptions o;
    o.interface = ip;
    o.udpPort = port;
    o.processPort = processPort;
    return o;
}

// Something that polls on a thread of its own until destroyed.
class Runner {
public:
    virtual ~Runner() = default;

protected:
    void start() {
        _thread = std::thread([this] {
            while (!_stop) step();
        });
    }
    void stop() {
        _stop = true;
        if (_thread.joinable()) _thread.join();
    }
    virtual void step() = 0;

private:
    std::atomic<bool> _stop{false};
    std::thread _thread;
};

class DeviceThread : public Runner {
public:
    DeviceThread(const std::string& ip, uint16_t port, uint32_t instance, const SimDeviceOptions& options = {},
                 unsigned extraObjects = 0, TreeStore* store = nullptr)
        : socket(portAt(ip, port)), link(socket, "device " + std::to_string(instance)),
          objects(instance, "device " + std::to_string(instance)), device(link, objects, options) {
        objects.addDemoSet(100, extraObjects);
        if (store) store->storeAll(objects);
        device.setStore(store);
        start();
    }
    ~DeviceThread() override { stop(); }
    BipSocket socket;
    Link link;
    SimObjects objects;
    SimDevice device;

private:
    void step() override { device.poll(20); }
};

// A router between the B/IP network and network 5, where one device sits at MAC 07.
class RouterThread : public Runner {
public:
    static constexpr uint16_t kNetwork = 5;
    static constexpr uint8_t kDeviceMac = 0x07;

    RouterThread(const std::string& ip, uint16_t port, uint32_t instance)
        : socket(portAt(ip, port)), link(socket, "router"), objects(instance, "routed device"),
          device(link, objects) {
        objects.addDemoSet();
        device.setSender([this](const BACNET_ADDRESS& to, const uint8_t* apdu, unsigned length) {
            toIp(to, apdu, length);
        });
        start();
    }
    ~RouterThread() override { stop(); }
    BipSocket socket;
    Link link;
    SimObjects objects;
    SimDevice device;

private:
    // From the device: SNET/SADR name it; a broadcast goes to the B/IP broadcast address.
    void toIp(const BACNET_ADDRESS& to, const uint8_t* apdu, unsigned length) {
        BACNET_ADDRESS source{};
        source.net = kNetwork;
        source.len = 1;
        source.adr[0] = kDeviceMac;
        BACNET_NPDU_DATA data{};
        uint8_t frame[1600];
        const int n = npdu_encode(frame + 4, nullptr, &source, &data);
        std::memcpy(frame + 4 + n, apdu, length);
        const bool broadcast = to.mac_len == 0;
        bvlc_encode_npdu_header(frame, broadcast ? BVLC_ORIGINAL_BROADCAST_NPDU : BVLC_ORIGINAL_UNICAST_NPDU,
                                unsigned(n) + length);
        socket.send(broadcast ? socket.broadcastAddress() : to.mac, frame, 4 + unsigned(n) + length);
    }
    void step() override {
        uint8_t datagram[1600], from[6];
        const int n = socket.receive(datagram, sizeof datagram, from, 20);
        BACNET_BVLC_MESSAGE m;
        if (n <= 0 || bvlc_decode(datagram, unsigned(n), &m) < 0) return;
        if (m.function != BVLC_ORIGINAL_UNICAST_NPDU && m.function != BVLC_ORIGINAL_BROADCAST_NPDU) return;
        BACNET_ADDRESS dest{};
        Received r{};
        const int h = npdu_decode(m.payload, m.payload_len, &dest, nullptr, &r.npdu);
        if (h < 0 || r.npdu.network_layer_message || (dest.net != kNetwork && dest.net != BACNET_BROADCAST_NETWORK))
            return;
        if (dest.net == kNetwork && dest.len != 0 && (dest.len != 1 || dest.adr[0] != kDeviceMac)) return;
        r.source.mac_len = 6;
        std::memcpy(r.source.mac, from, 6);
        r.apdu = m.payload + h;
        r.apduLength = m.payload_len - unsigned(h);
        device.handle(r);
    }
};

// A BBMD with a foreign-device table; no peers.
class BbmdThread : public Runner {
public:
    BbmdThread(const std::string& ip, uint16_t port) : socket(portAt(ip, port)) { start(); }
    ~BbmdThread() override { stop(); }
    BipSocket socket;
    std::atomic<unsigned> registrations{0};

private:
    bool registered(const uint8_t* mac) const {
        for (const auto& fd : _table)
            if (std::memcmp(fd.data(), mac, 6) == 0) return true;
        return false;
    }
    void forward(const BACNET_BVLC_MESSAGE& m, const uint8_t* source, bool toLocal) {
        uint8_t frame[1600];
        const int h = bvlc_encode_forwarded_npdu_header(frame, source, m.payload_len);
        std::memcpy(frame + h, m.payload, m.payload_len);
        const unsigned length = unsigned(h) + m.payload_len;
        if (toLocal) socket.send(socket.broadcastAddress(), frame, length);
        for (const auto& fd : _table)
            if (std::memcmp(fd.data(), source, 6) != 0) socket.send(fd.data(), frame, length);
    }
    void step() override {
        uint8_t datagram[1600], from[6];
        const int n = socket.receive(datagram, sizeof datagram, from, 20);
        BACNET_BVLC_MESSAGE m;
        if (n <= 0 || bvlc_decode(datagram, unsigned(n), &m) < 0) return;
        uint8_t result[BVLC_RESULT_LEN];
        switch (m.function) {
            case BVLC_REGISTER_FOREIGN_DEVICE:
                if (!registered(from)) _table.emplace_back(from, from + 6);
                ++registrations;
                bvlc_encode_result(result, BVLC_RESULT_SUCCESSFUL_COMPLETION);
                socket.send(from, result, sizeof result);
                break;
            case BVLC_DISTRIBUTE_BROADCAST_TO_NETWORK:
                if (registered(from)) {
                    forward(m, from, true);
                } else {
                    bvlc_encode_result(result, BVLC_RESULT_DISTRIBUTE_BROADCAST_TO_NETWORK_NAK);
                    socket.send(from, result, sizeof result);
                }
                break;
            case BVLC_ORIGINAL_BROADCAST_NPDU:
                forward(m, from, false);
                break;
            default:
                break;
        }
    }
    std::vector<std::vector<uint8_t>> _table;
};

}  // namespace tq_net_test
