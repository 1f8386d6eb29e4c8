// Exercises the port on the loopback interface only.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstring>
#include <tuple>

#include "tq_stack/bip.h"

TEST(BipPort, OpensSendsToItselfOnLoopbackAndCloses) {
    ASSERT_TRUE(bip_init(0));
    const int sock = bip_socket();
    ASSERT_GE(sock, 0);
    const uint16_t port = bip_get_port();
    EXPECT_NE(port, 0);

    // The port's own address and broadcast address are held as given, in network order.
    const uint32_t loopback = htonl(INADDR_LOOPBACK);
    bip_set_addr(loopback);
    bip_set_broadcast_addr(htonl(0x7FFFFFFF));
    EXPECT_EQ(std::make_tuple(bip_get_addr(), bip_get_broadcast_addr()),
              std::make_tuple(loopback, htonl(0x7FFFFFFF)));

    sockaddr_in self{};
    self.sin_family = AF_INET;
    self.sin_addr.s_addr = bip_get_addr();
    self.sin_port = bip_get_port();
    const uint8_t frame[] = {0x81, 0x0A, 0x00, 0x06, 0x01, 0x00};
    ASSERT_EQ(sendto(sock, frame, sizeof frame, 0, reinterpret_cast<sockaddr*>(&self), sizeof self),
              ssize_t(sizeof frame));
    timeval timeout{2, 0};
    setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    uint8_t in[16] = {};
    sockaddr_in from{};
    socklen_t fromLength = sizeof from;
    ASSERT_EQ(recvfrom(sock, in, sizeof in, 0, reinterpret_cast<sockaddr*>(&from), &fromLength),
              ssize_t(sizeof frame));
    EXPECT_EQ(0, memcmp(in, frame, sizeof frame));
    EXPECT_EQ(from.sin_port, port);

    // Reopening closes the previous socket first; cleanup leaves the addresses.
    ASSERT_TRUE(bip_init(0));
    EXPECT_GE(bip_socket(), 0);
    bip_cleanup();
    EXPECT_EQ(std::make_tuple(bip_socket(), bip_get_addr()), std::make_tuple(-1, loopback));
    bip_cleanup();  // closing twice is harmless
    EXPECT_EQ(bip_socket(), -1);
    // The host may hand in its own socket and port.
    bip_set_socket(-1);
    EXPECT_EQ(bip_socket(), -1);
    bip_set_port(htons(47808));
    EXPECT_EQ(bip_get_port(), htons(47808));
}
