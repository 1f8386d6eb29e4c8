// The receive path per datagram without system calls, for callgrind: each op takes one datagram
// through Link::accept and on into the client or the simulated device; what they send goes into
// the void. Usage: tq_net_callgrind_driver <op> <iterations> | list
#include "TQ_BACnet/Net/Client.h"
#include "TQ_BACnet/Net/SimDevice.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

using namespace TQ::BACnet::Net;

namespace {

const uint8_t kPeer[6] = {127, 0, 0, 1, 0xBA, 0xC1};

PortOptions quiet() {
    PortOptions o;
    o.interface = "127.0.0.1";
    o.udpPort = 0;
    o.processPort = false;
    o.listenBroadcast = false;
    return o;
}

}  // namespace

int main(int argc, char** argv) {
    BipSocket socket(quiet());
    Link link(socket, "driver");
    link.setTransmit([](const uint8_t*, const uint8_t*, unsigned) {});
    Client client(link);
    SimObjects objects(7, "driver");
    objects.addDemoSet(20, 0);
    SimDevice device(link, objects);
    BACNET_ADDRESS peer{};
    peer.mac_len = 6;
    std::memcpy(peer.mac, kPeer, 6);
    const uint8_t request[] = {0x0C, 0x00, 0x00, 0x00, 0x01, 0x19, 0x55};
    // ReadProperty-ACK of analog-input 1 present-value for invoke id 0 (patched per round).
    uint8_t ack[] = {0x81, 0x0A, 0x00, 0x14, 0x01, 0x00, 0x30, 0x00, 0x0C, 0x0C, 0x00,
                     0x00, 0x00, 0x01, 0x19, 0x55, 0x3E, 0x44, 0x41, 0xA4, 0x00, 0x00, 0x3F};
    ack[3] = sizeof ack;
    const uint8_t rpRequest[] = {0x81, 0x0A, 0x00, 0x13, 0x01, 0x04, 0x00, 0x05, 0x01, 0x0C,
                                 0x0C, 0x00, 0x00, 0x00, 0x01, 0x19, 0x55};
    uint8_t rp[sizeof rpRequest];
    std::memcpy(rp, rpRequest, sizeof rp);
    rp[3] = sizeof rp;
    Received frame;
    struct Op {
        const char* name;
        std::function<bool()> run;
    };
    const std::vector<Op> ops = {
        {"baseline", [] { return true; }},
        {"link-accept", [&] { return link.accept(ack, sizeof ack, kPeer, frame); }},
        // One whole client transaction without the sockets: submit, the answer's receive path, take.
        {"client-answer", [&] {
             const int h = client.submit(peer, 12, request, sizeof request);
             ack[7] = uint8_t(h);
             if (!link.accept(ack, sizeof ack, kPeer, frame)) return false;
             client.dispatch(frame);
             return client.take(h).kind == Result::ComplexAck;
         }},
        {"device-request", [&] {
             if (!link.accept(rp, sizeof rp, kPeer, frame)) return false;
             device.handle(frame);
             return true;
         }},
    };
    if (argc == 2 && std::strcmp(argv[1], "list") == 0) {
        for (const Op& op : ops) std::printf("%s\n", op.name);
        return 0;
    }
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <op>|list <iterations>\n", argv[0]);
        return 2;
    }
    const long n = std::atol(argv[2]);
    for (const Op& op : ops) {
        if (std::strcmp(op.name, argv[1]) != 0) continue;
        for (long i = 0; i < n; ++i)
            if (!op.run()) return 1;
        return 0;
    }
    return 2;
}
