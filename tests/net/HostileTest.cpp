// Datagrams nobody should send: each is dropped (or answered as the standard says), counted,
// and the node keeps working.
#include "NetTestSupport.h"

#include "tq_stack/apdu.h"
#include "tq_stack/rp.h"
#include "tq_stack/segment.h"

#include "TQTestSupport.h"

#include <gtest/gtest.h>
#include <poll.h>

using namespace tq_net_test;

namespace {

using TQTest::Bytes;
using TQTest::hex;

// A raw UDP socket on 127.0.0.9 playing the misbehaving peer.
struct Peer {
    int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    BACNET_ADDRESS at;
    explicit Peer(uint16_t port) : at(bip("127.0.0.9", port)) {
        sockaddr_in a{};
        a.sin_family = AF_INET;
        std::memcpy(&a.sin_addr.s_addr, at.mac, 4);
        std::memcpy(&a.sin_port, at.mac + 4, 2);
        ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
    }
    ~Peer() { ::close(fd); }
    void send(const BACNET_ADDRESS& to, const Bytes& frame) const {
        sockaddr_in a{};
        a.sin_family = AF_INET;
        std::memcpy(&a.sin_addr.s_addr, to.mac, 4);
        std::memcpy(&a.sin_port, to.mac + 4, 2);
        ::sendto(fd, frame.data(), frame.size(), 0, reinterpret_cast<sockaddr*>(&a), sizeof a);
    }
    Bytes receive(int timeoutMs) const {
        pollfd p{fd, POLLIN, 0};
        if (::poll(&p, 1, timeoutMs) <= 0) return {};
        Bytes b(1600);
        b.resize(size_t(std::max(0L, long(::recv(fd, b.data(), b.size(), 0)))));
        return b;
    }
    // An NPDU carrying this APDU, as Original-Unicast.
    static Bytes unicast(const Bytes& apdu) {
        Bytes f{0x81, 0x0A, 0, uint8_t(6 + apdu.size()), 0x01, 0x00};
        f.insert(f.end(), apdu.begin(), apdu.end());
        return f;
    }
};

TEST(HostileFrames, DeviceDropsOrNaksAndStillAnswers) {
    const uint16_t port = uint16_t(basePort() + 2);
    DeviceThread d("127.0.0.2", port, 7);
    Peer peer(port);
    const BACNET_ADDRESS device = bip("127.0.0.2", port);
    // frame, the drop counted, the reply expected (empty for none)
    const struct { const char* name, *frame; Drop counted; const char* answer; } cases[] = {
        {"length longer than the datagram", "81 0A 00 09 01 00 10 08", Drop::BadBvlc, ""},
        {"length shorter than the datagram", "81 0A 00 05 01 00 10 08", Drop::BadBvlc, ""},
        {"not BACnet/IP", "82 0A 00 06 01 00", Drop::BadBvlc, ""},
        {"result of the wrong size", "81 00 00 05 00", Drop::BadBvlc, ""},
        {"unknown function", "81 0D 00 04", Drop::UnknownFunction, ""},
        {"secure BVLL", "81 0C 00 05 00", Drop::UnknownFunction, ""},
        {"register with a non-BBMD", "81 05 00 06 00 3C", Drop::BbmdRequest, "81 00 00 06 00 30"},
        {"distribute via a non-BBMD", "81 09 00 08 01 00 10 08", Drop::BbmdRequest, "81 00 00 06 00 60"},
        {"read BDT of a non-BBMD", "81 02 00 04", Drop::BbmdRequest, "81 00 00 06 00 20"},
        {"NPDU version 2", "81 0A 00 08 02 00 10 08", Drop::BadNpdu, ""},
        {"DNET cut short", "81 0A 00 07 01 20 00", Drop::BadNpdu, ""},
        {"DADR longer than the frame", "81 0A 00 0A 01 20 00 05 06 01", Drop::BadNpdu, ""},
        {"SLEN zero", "81 0A 00 0B 01 08 00 05 00 10 08", Drop::BadNpdu, ""},
        {"DLEN above 7", "81 0A 00 12 01 20 00 05 08 01 02 03 04 05 06 07 08 FF", Drop::BadNpdu, ""},
        {"network-layer message", "81 0A 00 07 01 80 01", Drop::NetworkMessage, ""},
        {"routed elsewhere", "81 0A 00 0C 01 20 00 09 00 FF 10 08", Drop::NotForUs, ""},
        {"no APDU", "81 0A 00 06 01 00", Drop::BadApdu, ""},
        {"confirmed header cut short", "81 0A 00 08 01 04 00 05", Drop::BadApdu, ""},
        {"segment-ACK for nothing", "81 0A 00 0A 01 00 40 11 00 01", Drop::UnmatchedInvokeId, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const unsigned before = d.link.drops().count(c.counted);
        peer.send(device, hex(c.frame));
        const Bytes reply = peer.receive(*c.answer ? 1000 : 0);
        for (int i = 0; i < 200 && d.link.drops().count(c.counted) == before; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_EQ(d.link.drops().count(c.counted), before + 1);
        EXPECT_EQ(*c.answer ? reply : peer.receive(0), hex(c.answer));
    }
    // A segmented request is refused, and a request still gets its answer.
    peer.send(device, Peer::unicast(hex("08 05 01 00 01 0C 0C 02 00 00 07 19 4D")));
    EXPECT_EQ(peer.receive(1000), hex("81 0A 00 09 01 00 71 01 04"));
    peer.send(device, Peer::unicast(hex("00 05 02 0C 0C 02 00 00 07 19 4D")));
    const Bytes answer = peer.receive(1000);
    ASSERT_GT(answer.size(), 9u);
    EXPECT_EQ(answer[6], 0x30);
}

// A client talking to a peer that answers with what no transaction expects, segments out of
// order, and a Complex-ACK that never ends.
TEST(HostileFrames, ClientSurvivesBadAnswers) {
    const uint16_t port = uint16_t(basePort() + 3);
    Peer peer(port);
    BipSocket socket(portAt("127.0.0.1", port, true));
    Link link(socket, "client");
    ClientOptions options;
    options.apduTimeoutMs = 500;
    options.retries = 0;
    options.windowSize = 4;
    Client client(link, options);
    const uint8_t request[] = {0x0C, 0x02, 0x00, 0x00, 0x07, 0x19, 0x4D};
    const BACNET_ADDRESS me = link.ownAddress();

    // An answer to an invoke id nobody used, and one from the wrong address.
    int h = client.submit(peer.at, SERVICE_CONFIRMED_READ_PROPERTY, request, sizeof request);
    ASSERT_EQ(peer.receive(1000).size(), 17u);
    peer.send(me, Peer::unicast({0x20, uint8_t(h + 1), 0x0C}));
    client.poll(200);
    EXPECT_EQ(link.drops().count(Drop::UnmatchedInvokeId), 1u);
    peer.send(me, Peer::unicast({0x20, uint8_t(h), 0x0C}));
    while (!client.isDone(h)) client.poll(100);
    EXPECT_EQ(client.take(h).kind, Result::SimpleAck);

    // Segments: 0 is acknowledged, 5 is out of order (negative ACK naming 0), then in-order
    // segments with more-follows for ever: the client aborts once 64 arrived.
    h = client.submit(peer.at, SERVICE_CONFIRMED_READ_PROPERTY, request, sizeof request);
    peer.receive(1000);
    auto segment = [&](uint8_t sequence) {
        return Peer::unicast({0x3C, uint8_t(h), sequence, 0x04, 0x0C, 0xAA, 0xBB});
    };
    peer.send(me, segment(0));
    client.poll(200);
    EXPECT_EQ(peer.receive(1000), Peer::unicast({0x40, uint8_t(h), 0x00, 0x04}));
    peer.send(me, segment(5));
    client.poll(200);
    EXPECT_EQ(peer.receive(1000), Peer::unicast({0x42, uint8_t(h), 0x00, 0x04}));
    EXPECT_EQ(link.drops().count(Drop::SegmentOutOfOrder), 1u);
    Bytes last;
    for (unsigned s = 1; s < 80 && !client.isDone(h); ++s) {
        peer.send(me, segment(uint8_t(s)));
        client.poll(200);
        if (s % 4 == 0 || client.isDone(h)) last = peer.receive(1000);
    }
    ASSERT_TRUE(client.isDone(h));
    const Result r = client.take(h);
    EXPECT_EQ(r.kind, Result::Abort);
    EXPECT_EQ(r.reason, ABORT_REASON_BUFFER_OVERFLOW);
    EXPECT_FALSE(r.byServer);
    EXPECT_TRUE(r.data.empty());
    EXPECT_EQ(last, Peer::unicast({0x70, uint8_t(h), 0x01}));
    EXPECT_EQ(link.drops().count(Drop::Overflow), 1u);
}

}  // namespace
