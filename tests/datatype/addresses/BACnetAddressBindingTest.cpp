#include "../../value/ValueDatabase.h"
#include "AddressTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetAddressBinding.h"
#include "TQ_BACnet/DataType/OctetString.h"

#include <gtest/gtest.h>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::DataPropertyInObject0;
using TQ::BACnet::DataType::BACnetAddress;
using TQ::BACnet::DataType::BACnetAddressBinding;
using TQ::BACnet::DataType::ObjectIdentifier;
using TQ::BACnet::DataType::OctetString;
using TQ::Utility::OctetBuffer;
using namespace TQAddressTest;

namespace {

const Bytes ipMac = {0xC0, 0xA8, 0x01, 0x0A, 0xBA, 0xC0};

/// Device identifier, network number and MAC: the primitives of one binding.
void appendBinding(std::vector<DataApplicationValue>& chain, unsigned instance, unsigned network,
                   const Bytes& octets) {
    chain.emplace_back();
    chain.back().setObjectIdentifier(ObjectIdentifier(OBJECT_DEVICE, instance));
    chain.emplace_back();
    chain.back().setUInt(network);
    chain.emplace_back();
    chain.back().setOctetString(OctetString(octets.data(), octets.size()));
}

}  // namespace

TEST(BACnetAddressBinding, BuildsOneBindingPerThreePrimitives) {
    std::vector<DataApplicationValue> chain;
    appendBinding(chain, 12, 0, ipMac);
    appendBinding(chain, 13, 5, {0x03});
    link(chain);

    const DataPropertyInObject0 descriptor;
    const DataApplicationValue* cursor = &chain[0];
    const BACnetAddressBinding first(descriptor, *cursor, &cursor);
    ASSERT_EQ(cursor, &chain[3]);
    const BACnetAddressBinding second(descriptor, *cursor, &cursor);
    EXPECT_EQ(cursor, nullptr);

    EXPECT_EQ(first.getDevice(), ObjectIdentifier(OBJECT_DEVICE, 12));
    EXPECT_EQ(first.getAddress(), BACnetAddress(OctetBuffer(ipMac.data(), ipMac.size()), 0, nullptr));
    EXPECT_EQ(second.getAddress().getNetwork(), 5);
    // Unlike the decoder, the primitive form always names the MAC, whatever the network.
    EXPECT_EQ(second.getAddress().getMACLength(), 1);
    EXPECT_EQ(second.getAddress().getMAC()[0], 0x03);
    EXPECT_EQ(second.getAddress().getAddrLength(), 0);

    // Broken back into the same primitives.
    std::vector<DataApplicationValue> primitives;
    first.getBACnetPrimitives(primitives);
    ASSERT_EQ(primitives.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(primitives[i], chain[i]) << i;

    // A chain that ends early or starts elsewhere is refused, not read past.
    chain[0].next = nullptr;
    EXPECT_TRUE(
        assertsWith([&] { BACnetAddressBinding(descriptor, chain[0], nullptr); }, "cursor != nullptr"));
    EXPECT_TRUE(assertsWith([&] { BACnetAddressBinding(descriptor, chain[1], nullptr); },
                            "tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
}

TEST(BACnetAddressBinding, PrintsDevicePathAndAddressButHasNoEncoding) {
    TQValueTest::ValueDatabase::instance();
    const BACnetAddressBinding binding(ObjectIdentifier(OBJECT_DEVICE, 12),
                                       BACnetAddress(OctetBuffer(ipMac.data(), ipMac.size()), 0, nullptr));
    std::string text;
    binding.getString2(text, true);
    EXPECT_EQ(text, "device,12, 0:192.168.1.10:47808");
    binding.getString(text);
    EXPECT_EQ(text, "device,12, 0:192.168.1.10:47808");

    uint8_t apdu[32] = {0x21, 0x00, 0x60};
    BACnetAddressBinding target;
    EXPECT_EQ(messageOf<Poco::NotImplementedException>([&] { binding.encode(apdu); }),
              "BACnetAddressBinding::encode");
    EXPECT_EQ(messageOf<Poco::NotImplementedException>([&] { target.decode(apdu, 3); }),
              "BACnetAddressBinding::decode");
}
