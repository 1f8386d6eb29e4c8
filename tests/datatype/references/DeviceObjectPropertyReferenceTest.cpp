#include "ReferenceTestSupport.h"

#include "../../value/ValueTestSupport.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQReferenceTest;

namespace {

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);
const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);

}  // namespace

TEST(DeviceObjectPropertyReference, DefaultResetAndInitGiveDefinedValues) {
    BACnetDeviceObjectPropertyReference ref;
    EXPECT_EQ(1023u, ref.objectIdentifier.type);
    EXPECT_EQ(0u, ref.objectIdentifier.instance);
    EXPECT_EQ(0xFFFFFEu, static_cast<unsigned>(ref.propertyIdentifier));
    EXPECT_EQ(BACNET_ARRAY_ALL, ref.arrayIndex);
    EXPECT_EQ(0xFFFFu, ref.deviceIdentifier.type);
    EXPECT_EQ(0xFFFFFFFFu, ref.deviceIdentifier.instance);
    EXPECT_EQ(BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE, ref.getBACnetDataType());

    ref = BACnetDeviceObjectPropertyReference(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u);
    ref.reset();
    EXPECT_EQ(1023u, ref.objectIdentifier.type);
    EXPECT_EQ(0xFFFFFEu, static_cast<unsigned>(ref.propertyIdentifier));
    EXPECT_EQ(BACNET_ARRAY_ALL, ref.arrayIndex);
    EXPECT_EQ(1023u, ref.deviceIdentifier.type);
    EXPECT_EQ(0u, ref.deviceIdentifier.instance);

    ref = BACnetDeviceObjectPropertyReference(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u);
    ref.init();
    EXPECT_EQ(AI3, ref.getObjectIdentifier());
    EXPECT_EQ(PROP_PRIORITY_ARRAY, ref.propertyIdentifier);
    EXPECT_FALSE(ref.hasArrayIndex());
    EXPECT_FALSE(ref.hasDevice());

    // Every spelling of "no device" is the same reference.
    BACnetDeviceObjectPropertyReference viaReset(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL,
                                                 ObjectIdentifier());
    BACnetDeviceObjectPropertyReference viaInit(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL,
                                                ObjectIdentifier());
    viaInit.init();
    EXPECT_EQ(viaReset, viaInit);
    EXPECT_NE(viaReset,
              BACnetDeviceObjectPropertyReference(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, DEVICE1234));
}

TEST(DeviceObjectPropertyReference, EncodesEachOptionalMemberOnlyWhenPresent) {
    const BACnetDeviceObjectPropertyReference full(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u);
    // [0] analog-input,3  [1] priority-array  [2] 8  [3] device,1234
    const Bytes fullBytes = hex("0C 00000003 19 57 29 08 3C 020004D2");
    EXPECT_EQ(fullBytes, encoded(full));
    EXPECT_EQ(hex("0C 00000003 19 55"), encoded(BACnetDeviceObjectPropertyReference(
                                            AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, ObjectIdentifier())));

    BACnetDeviceObjectPropertyReference decoded;
    EXPECT_EQ(14, decodeExactly(decoded, fullBytes, fullBytes.size()));
    EXPECT_EQ(full, decoded);

    const Bytes short1 = hex("0C 00000003 19 55 3C 020004D2");
    EXPECT_EQ(12, decodeExactly(decoded, short1, short1.size()));
    EXPECT_FALSE(decoded.hasArrayIndex());
    EXPECT_EQ(DEVICE1234, decoded.getDeviceIdentifier());

    // Cut anywhere inside a member: an error, never a read past the cut.
    for (std::size_t n : {0u, 3u, 5u, 6u, 8u, 11u, 13u}) {
        BACnetDeviceObjectPropertyReference cut;
        EXPECT_EQ(-1, decodeExactly(cut, fullBytes, n)) << n;
    }
    BACnetDeviceObjectPropertyReference cut;
    EXPECT_EQ(7, decodeExactly(cut, fullBytes, 7));
    EXPECT_EQ(9, decodeExactly(cut, fullBytes, 9));

    uint8_t framed[20];
    BACnetDeviceObjectPropertyReference source = full;
    ASSERT_EQ(16, source.encodeContext(framed, 0));
    EXPECT_EQ(0x0E, framed[0]);
    EXPECT_EQ(0x0F, framed[15]);
    BACnetDeviceObjectPropertyReference back;
    EXPECT_EQ(16, back.decodeContext(framed, 16u, 0));
    EXPECT_EQ(full, back);
    EXPECT_EQ(-1, back.decodeContext(framed, 16u, 1));
}

TEST(DeviceObjectPropertyReference, HexTextIsTheValueContainersTextForm) {
    // The value container stores these values as the hexadecimal text of their encoding.
    const BACnetDeviceObjectPropertyReference full(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u);
    std::string text;
    full.getString(text);
    EXPECT_EQ("0C00000003195729083C020004D2", text);

    BACnetDeviceObjectPropertyReference parsed;
    EXPECT_TRUE(parsed.setString(text));
    EXPECT_EQ(full, parsed);
    EXPECT_FALSE(parsed.setString("0C000000031"));
    EXPECT_FALSE(parsed.setString("zz"));
    EXPECT_FALSE(parsed.setString(""));
}

TEST(DeviceObjectPropertyReference, HexIdentifierUsesTheDefaultDeviceWhenItHasNone) {
    const ObjectIdentifier otherDevice(OBJECT_DEVICE, 99);
    std::string out = "stale";
    BACnetDeviceObjectPropertyReference(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, ObjectIdentifier())
        .getHexIdentifier(DEVICE1234, out);
    EXPECT_EQ("020004D20000000300000055FFFFFFFF", out);

    BACnetDeviceObjectPropertyReference(AI3, PROP_PRIORITY_ARRAY, 16, DEVICE1234)
        .getHexIdentifier(otherDevice, out);
    EXPECT_EQ("020004D2000000030000005700000010", out);
}

TEST(DeviceObjectPropertyReference, BuildsFromDecodedPrimitives) {
    const DataPropertyInObject0 descriptor;
    const DataApplicationValue* next = nullptr;

    // Index absent, device present.
    Chain noIndex;
    noIndex.ctx(0, objectId(AI3.getValue())).ctx(1, enumerated(85)).ctx(3, objectId(DEVICE1234.getValue()));
    const BACnetDeviceObjectPropertyReference b(descriptor, noIndex.first(), &next);
    EXPECT_FALSE(b.hasArrayIndex());
    EXPECT_TRUE(b.hasDevice());
    EXPECT_EQ(nullptr, next);

    // An application-tagged primitive belongs to what follows: it ends the walk.
    Chain ended;
    ended.ctx(0, objectId(AI3.getValue())).app(enumerated(85));
    const BACnetDeviceObjectPropertyReference c(descriptor, ended.first(), &next);
    EXPECT_EQ(0xFFFFFEu, static_cast<unsigned>(c.propertyIdentifier));
    EXPECT_FALSE(c.hasDevice());
    EXPECT_EQ(ended.at(1), next);

    Chain wrong;
    wrong.ctx(1, enumerated(85));
    EXPECT_TRUE(TQValueTest::assertsWith(
        [&] { BACnetDeviceObjectPropertyReference(descriptor, wrong.first(), &next); },
        "tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
}
