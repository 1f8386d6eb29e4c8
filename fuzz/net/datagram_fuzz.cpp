// Whole datagrams into the receive path. The first input byte picks the receiver: odd the
// simulated device, even the client, which always has one request outstanding to the sender so
// that answers and segments find a transaction. Nothing is sent anywhere: both links transmit
// into the void.
#include "TQ_BACnet/Net/Client.h"
#include "TQ_BACnet/Net/Cov.h"
#include "TQ_BACnet/Net/SimDevice.h"

#include <cstddef>
#include <cstdint>

using namespace TQ::BACnet::Net;

namespace {

const uint8_t kPeer[6] = {127, 0, 0, 1, 0xBA, 0xC1};

struct Harness {
    Harness() : socket(options()), clientLink(socket, "fuzz client"), deviceLink(socket, "fuzz device"),
                client(clientLink), objects(7, "fuzz"), device(deviceLink, objects) {
        const Link::Transmit none = [](const uint8_t*, const uint8_t*, unsigned) {};
        clientLink.setTransmit(none);
        deviceLink.setTransmit(none);
        objects.addDemoSet(20, 0);
        // COV notifications are taken (and confirmed ones acknowledged) like a subscriber does.
        client.onCovNotification([this](const CovNotification& n) { notified += unsigned(n.values.size()); });
        peer.mac_len = 6;
        for (int i = 0; i < 6; ++i) peer.mac[i] = kPeer[i];
    }
    static PortOptions options() {
        PortOptions o;
        o.interface = "127.0.0.1";
        o.udpPort = 0;
        o.processPort = false;
        o.listenBroadcast = false;
        return o;
    }
    void keepOneOutstanding() {
        if (handle >= 0 && !client.isDone(handle)) return;
        if (handle >= 0) client.take(handle);
        const uint8_t request[] = {0x0C, 0x02, 0x00, 0x00, 0x07, 0x19, 0x4C};
        handle = client.submit(peer, 12, request, sizeof request);
    }

    BipSocket socket;
    Link clientLink, deviceLink;
    Client client;
    SimObjects objects;
    SimDevice device;
    BACNET_ADDRESS peer{};
    int handle = -1;
    unsigned notified = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Harness h;
    if (size < 1 || size > 1600) return 0;
    const bool toDevice = data[0] & 1;
    Received frame;
    if (toDevice) {
        if (h.deviceLink.accept(data + 1, unsigned(size - 1), kPeer, frame)) h.device.handle(frame);
    } else {
        h.keepOneOutstanding();
        if (h.clientLink.accept(data + 1, unsigned(size - 1), kPeer, frame)) h.client.dispatch(frame);
    }
    return 0;
}
