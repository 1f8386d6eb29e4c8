#include "ReferenceTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQReferenceTest;

namespace {

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);
const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);

}  // namespace

TEST(DeviceObjectReference, ConstructorsAndDefaults) {
    const BACnetDeviceObjectReference none;
    EXPECT_FALSE(none.hasDevice());
    EXPECT_EQ(0u, none.getDeviceIdentifier().getValue());
    EXPECT_EQ(1024u, none.objectIdentifier.type);
    EXPECT_EQ(0x3FFFFFu, none.objectIdentifier.instance);
    EXPECT_EQ(BACNET_DT_DEVICE_OBJECT_REFERENCE, none.getBACnetDataType());

    // A device instance wider than 22 bits keeps only what the identifier can carry.
    const BACnetDeviceObjectReference masked(0x400000u | 1234u, OBJECT_ANALOG_INPUT, 3);
    EXPECT_EQ(DEVICE1234, masked.getDeviceIdentifier());
    EXPECT_EQ(AI3, masked.getObjectIdentifier());
    EXPECT_EQ(masked, BACnetDeviceObjectReference(1234u, AI3));
    EXPECT_EQ(masked, BACnetDeviceObjectReference(DEVICE1234, AI3));
    EXPECT_NE(masked, BACnetDeviceObjectReference(1235u, AI3));
    EXPECT_NE(masked, BACnetDeviceObjectReference(1234u, ObjectIdentifier(OBJECT_ANALOG_INPUT, 4)));
}

TEST(DeviceObjectReference, KeyPacksDeviceHighAndObjectLow) {
    const BACnetDeviceObjectReference ref(1234u, AI3);
    EXPECT_EQ(0x020004D200000003ull, ref.getKey());
    BACnetDeviceObjectReference back;
    back.setKey(ref.getKey());
    EXPECT_EQ(ref, back);
    EXPECT_EQ(OBJECT_DEVICE, back.deviceIdentifier.type);
    EXPECT_EQ(ref, BACnetDeviceObjectReference(ref.getKey()));

    // A bare device instance in the high word names the same device.
    EXPECT_EQ(ref, BACnetDeviceObjectReference(0x000004D200000003ull));

    // All ones in the high word: no device, which keys back as 0.
    BACnetDeviceObjectReference local(0xFFFFFFFF00000003ull);
    EXPECT_FALSE(local.hasDevice());
    EXPECT_EQ(0u, local.deviceIdentifier.type);
    EXPECT_EQ(0u, local.deviceIdentifier.instance);
    EXPECT_EQ(0x0000000000000003ull, local.getKey());
}

TEST(DeviceObjectReference, EncodesAndDecodesWithTheOptionalDevice) {
    // [0] device,1234  [1] analog-input,3
    const Bytes withDevice = hex("0C 020004D2 1C 00000003");
    EXPECT_EQ(withDevice, encoded(BACnetDeviceObjectReference(1234u, AI3)));
    const Bytes withoutDevice = hex("1C 00000003");
    BACnetDeviceObjectReference local(ObjectIdentifier(), AI3);
    EXPECT_EQ(withoutDevice, encoded(local));

    BACnetDeviceObjectReference decoded;
    EXPECT_EQ(10, decodeExactly(decoded, withDevice, withDevice.size()));
    EXPECT_EQ(BACnetDeviceObjectReference(1234u, AI3), decoded);
    // An absent device reads like the default's "no device", so both compare and key alike.
    EXPECT_EQ(5, decodeExactly(decoded, withoutDevice, withoutDevice.size()));
    EXPECT_EQ(local, decoded);
    EXPECT_EQ(3ull, decoded.getKey());

    for (std::size_t n = 0; n < withDevice.size(); ++n) {
        BACnetDeviceObjectReference cut;
        EXPECT_EQ(-1, decodeExactly(cut, withDevice, n)) << n;
        EXPECT_EQ(BACnetDeviceObjectReference(), cut) << n;
    }

    uint8_t framed[16];
    BACnetDeviceObjectReference source(1234u, AI3);
    ASSERT_EQ(12, source.encodeContext(framed, 3));
    EXPECT_EQ(hex("3E 0C 020004D2 1C 00000003 3F"), Bytes(framed, framed + 12));
    EXPECT_EQ(12, decoded.decodeContext(framed, 12u, 3));
    EXPECT_EQ(source, decoded);
    EXPECT_EQ(-1, decoded.decodeContext(framed, 12u, 4));
    EXPECT_EQ(-1, decoded.decodeContext(framed, 11u, 3));
}

TEST(DeviceObjectReference, WalkLeavesTheCursorOnTheLastPrimitiveLookedAt) {
    const DataApplicationValue* next = nullptr;

    Chain both;
    both.ctx(0, objectId(DEVICE1234.getValue())).ctx(1, objectId(AI3.getValue())).app(unsignedInt(1));
    const BACnetDeviceObjectReference a(BACNET_DT_DEVICE_OBJECT_REFERENCE, both.first(), &next);
    EXPECT_EQ(BACnetDeviceObjectReference(1234u, AI3), a);
    EXPECT_EQ(both.at(1), next);

    Chain objectOnly;
    objectOnly.ctx(1, objectId(AI3.getValue()));
    const BACnetDeviceObjectReference b(DataPropertyInObject0(), objectOnly.first(), &next);
    EXPECT_FALSE(b.hasDevice());
    EXPECT_EQ(AI3, b.getObjectIdentifier());
    EXPECT_EQ(objectOnly.at(0), next);

    // A context [0] that is not an object identifier is not taken at all.
    Chain wrong;
    wrong.ctx(0, unsignedInt(5)).ctx(1, objectId(AI3.getValue()));
    const BACnetDeviceObjectReference c(BACNET_DT_DEVICE_OBJECT_REFERENCE, wrong.first(), &next);
    EXPECT_EQ(BACnetDeviceObjectReference(), c);
    EXPECT_EQ(wrong.at(0), next);

    // A device at the end of the chain: taken, the object stays unset.
    Chain deviceOnly;
    deviceOnly.ctx(0, objectId(DEVICE1234.getValue()));
    const BACnetDeviceObjectReference d(BACNET_DT_DEVICE_OBJECT_REFERENCE, deviceOnly.first(), &next);
    EXPECT_EQ(DEVICE1234, d.getDeviceIdentifier());
    EXPECT_EQ(1024u, d.objectIdentifier.type);
    EXPECT_EQ(deviceOnly.at(0), next);
}
