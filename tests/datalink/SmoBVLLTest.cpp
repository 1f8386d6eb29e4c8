// Local delivery and address tracking of the BVLL hooks, on real loopback sockets.
#include "TQ/BACnet/Server/LboDeviceManager.h"
#include "TQ_BACnet/DataLink/BVLL/BipPort.h"
#include "TQ_BACnet/DataLink/BVLL/SmoBVLL.h"
#include "TQ_BACnet/DataLink/BVLL/bvll.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

using namespace TQ::BACnet::DataLink::BVLL;
using namespace TQ::BACnet::DataType;

namespace {

uint32_t ip(const char* text) {
    return inet_addr(text);
}

sockaddr_in endpoint(uint32_t address, uint16_t port) {
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = address;
    to.sin_port = port;
    return to;
}

// A UDP socket bound to 127.0.0.1 on a free port.
struct Udp {
    int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in at = endpoint(ip("127.0.0.1"), 0);
    Udp() {
        socklen_t n = sizeof at;
        ::bind(fd, reinterpret_cast<sockaddr*>(&at), sizeof at);
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&at), &n);
    }
    ~Udp() { ::close(fd); }
};

class SmoBVLLTest : public ::testing::Test {
protected:
    void SetUp() override {
        while (SmoBVLL::staticSocket.queued()) drain();
        BipPort::setSocket(-1);
        BipPort::setAddress(ip("127.0.0.2"));
        BipPort::setPort(htons(47808));
        BipPort::setBroadcastAddress(ip("127.255.255.255"));
    }
    void TearDown() override { SetUp(); }

    static int drain() {
        uint8_t buffer[2048];
        return bvllRcvFromSocket(-1, buffer, sizeof buffer, 0, nullptr, nullptr);
    }
    static int send(int socket, const std::vector<uint8_t>& frame, const sockaddr_in& to) {
        return bvllSndToSocket(socket, frame.data(), unsigned(frame.size()), 0,
                               reinterpret_cast<const sockaddr*>(&to), sizeof to);
    }
};

TEST_F(SmoBVLLTest, OwnAddressFrameComesBackFromOwnAddress) {
    const std::vector<uint8_t> frame{0x81, 0x0A, 0x00, 0x06, 0x01, 0x00};
    ASSERT_EQ(send(-1, frame, endpoint(ip("127.0.0.2"), htons(47808))), 6);
    fd_set read;
    FD_ZERO(&read);
    EXPECT_EQ(bvllWaitForData(0, &read, nullptr, nullptr, nullptr), 1);

    uint8_t buffer[16];
    sockaddr_in from;
    std::memset(&from, 0xAA, sizeof from);
    socklen_t fromLength = sizeof from;
    ASSERT_EQ(
        bvllRcvFromSocket(-1, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &fromLength), 6);
    EXPECT_EQ(std::vector<uint8_t>(buffer, buffer + 6), frame);
    // Family, address, port and zero padding, nothing beyond the 10 bytes it reports.
    const sockaddr_in own = endpoint(ip("127.0.0.2"), htons(47808));
    EXPECT_TRUE(fromLength == 10 && std::memcmp(&from, &own, sizeof from) == 0);
    EXPECT_EQ(SmoBVLL::staticSocket.queued(), 0u);
}

// Which destinations stay local depends on whether the socket is open.
TEST_F(SmoBVLLTest, DestinationDecidesBetweenQueueAndSocket) {
    Udp receiver, sender;
    struct Case {
        const char* name;
        bool openSocket;
        uint32_t address;
        uint16_t port;
        bool queued;
    } cases[] = {
        {"own address, socket open", true, ip("127.0.0.2"), htons(47808), true},
        {"broadcast, no socket", false, ip("127.255.255.255"), htons(47808), true},
        {"broadcast on another port, no socket", false, ip("127.255.255.255"), htons(47809), false},
        {"own address on another port, socket open", true, ip("127.0.0.2"), htons(47809), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const int n = send(c.openSocket ? sender.fd : -1, {1, 2, 3}, endpoint(c.address, c.port));
        EXPECT_EQ(SmoBVLL::staticSocket.queued(), c.queued ? 1u : 0u);
        if (c.queued) {
            EXPECT_EQ(n, 3);
        } else if (!c.openSocket) {
            EXPECT_LT(n, 0);  // sendto on -1 fails as the system says
        }
        drain();
    }
    // A broadcast with an open socket reaches the network: here the receiver plays the broadcast.
    BipPort::setBroadcastAddress(receiver.at.sin_addr.s_addr);
    BipPort::setPort(receiver.at.sin_port);
    ASSERT_EQ(send(sender.fd, {9, 8}, receiver.at), 2);
    EXPECT_EQ(SmoBVLL::staticSocket.queued(), 0u);
    uint8_t buffer[8];
    EXPECT_EQ(::recv(receiver.fd, buffer, sizeof buffer, 0), 2);
}

TEST_F(SmoBVLLTest, LongFrameIsDeliveredInPiecesAndNothingIsLost) {
    std::vector<uint8_t> frame(600);
    for (size_t i = 0; i < frame.size(); ++i) frame[i] = uint8_t(i);
    ASSERT_EQ(send(-1, frame, endpoint(ip("127.0.0.2"), htons(47808))), 600);
    send(-1, {0xEE}, endpoint(ip("127.0.0.2"), htons(47808)));
    std::vector<uint8_t> buffer(500);
    testing::internal::CaptureStdout();
    ASSERT_EQ(bvllRcvFromSocket(-1, buffer.data(), 500, 0, nullptr, nullptr), 500);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("SmoBVLL::rcv() Receive SOMETHING IS LEFT \n"),
              std::string::npos);
    EXPECT_EQ(buffer[499], frame[499]);
    ASSERT_EQ(bvllRcvFromSocket(-1, buffer.data(), 500, 0, nullptr, nullptr), 100);
    EXPECT_EQ(std::vector<uint8_t>(buffer.begin(), buffer.begin() + 100),
              std::vector<uint8_t>(frame.begin() + 500, frame.end()));
    EXPECT_EQ(bvllRcvFromSocket(-1, buffer.data(), 500, 0, nullptr, nullptr), 1);
}

TEST_F(SmoBVLLTest, EmptyQueueReadsTheSocketOrNothing) {
    uint8_t buffer[8];
    EXPECT_EQ(bvllRcvFromSocket(-1, buffer, sizeof buffer, 0, nullptr, nullptr), 0);
    timeval timeout{0, 1000};
    EXPECT_EQ(bvllWaitForData(0, nullptr, nullptr, nullptr, &timeout), 0);

    Udp receiver, sender;
    BipPort::setSocket(receiver.fd);
    ::sendto(sender.fd, "abc", 3, 0, reinterpret_cast<const sockaddr*>(&receiver.at), sizeof receiver.at);
    fd_set read;
    FD_ZERO(&read);
    FD_SET(receiver.fd, &read);
    timeval wait{2, 0};
    EXPECT_EQ(bvllWaitForData(receiver.fd + 1, &read, nullptr, nullptr, &wait), 1);
    sockaddr_in from{};
    socklen_t fromLength = sizeof from;
    EXPECT_EQ(bvllRcvFromSocket(receiver.fd, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from),
                                &fromLength),
              3);
    EXPECT_TRUE(fromLength == sizeof from && from.sin_port == sender.at.sin_port);
}

TEST_F(SmoBVLLTest, AddressChangeFollowsServedDevicesAndInterfaces) {
    auto manager = std::make_shared<TQ::BACnet::Server::LboDeviceManager>(4711);
    TQ::BACnet::Server::LboDeviceManager::registerDeviceManager(manager);
    auto mac = [](const char* address, uint8_t length) {
        BACnetAddress a;
        uint8_t bytes[7] = {0, 0, 0, 0, 0xBA, 0xC0, 0};
        const uint32_t v = inet_addr(address);
        std::memcpy(bytes, &v, 4);
        a.setMAC(bytes, length);
        return a;
    };
    struct Case {
        const char* name;
        unsigned device;
        BACnetAddress address;
        int result;
        uint32_t address_after;
    } cases[] = {
        {"unknown device", 4712, mac("127.0.0.1", 6), 0, ip("127.0.0.2")},
        {"7-byte MAC", 4711, mac("127.0.0.1", 7), 1, ip("127.0.0.2")},
        {"same address", 4711, mac("127.0.0.2", 6), 1, ip("127.0.0.2")},
        // lo carries no broadcast address: only the own address moves.
        {"loopback interface", 4711, mac("127.0.0.1", 6), 1, ip("127.0.0.1")},
        {"on no interface", 4711, mac("192.0.2.7", 6), 1, ip("192.0.2.7")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BipPort::setAddress(ip("127.0.0.2"));
        EXPECT_EQ(bvllUpdateBipAddress(c.device, &c.address), c.result);
        EXPECT_EQ(std::make_tuple(c.address_after, ip("127.255.255.255")),
                  std::make_tuple(BipPort::getAddress(), BipPort::getBroadcastAddress()));
    }
    EXPECT_EQ(bvllUpdateBipAddress(4711, nullptr), 0);
    TQ::BACnet::Server::LboDeviceManager::unregisterDeviceManager(4711);
}

}  // namespace
