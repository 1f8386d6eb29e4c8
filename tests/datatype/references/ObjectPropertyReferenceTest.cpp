#include "ReferenceTestSupport.h"

#include "../../value/ValueTestSupport.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "tq_stack/rp.h"
#include "tq_stack/rr.h"

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQReferenceTest;

namespace {

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);

}  // namespace

TEST(ObjectPropertyReference, EncodesTheArrayIndexOnlyWhenPresent) {
    // [0] analog-input,3  [1] present-value (85)
    EXPECT_EQ(hex("0C 00000003 19 55"),
              encoded(BACnetObjectPropertyReference(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL)));
    // Index 0 is a real index (the array's length), not "absent".
    EXPECT_EQ(hex("0C 00000003 19 57 29 00"),
              encoded(BACnetObjectPropertyReference(AI3, PROP_PRIORITY_ARRAY, 0)));
    // A property number above 255 and a two-byte index.
    EXPECT_EQ(hex("0C 02000001 1A 0200 2A 012C"),
              encoded(BACnetObjectPropertyReference(ObjectIdentifier(OBJECT_DEVICE, 1),
                                                    static_cast<BACNET_PROPERTY_ID>(512), 300)));

    const BACnetObjectPropertyReference fresh;
    EXPECT_EQ(0u, fresh.getObjectIdentifier().getValue());
    EXPECT_FALSE(fresh.hasArrayIndex());
    EXPECT_EQ(BACnetObjectPropertyReference::NO_PROPERTY, fresh.getPropertyIdentifier());
    EXPECT_EQ(BACNET_DT_OBJECT_PROPERTY_REFERENCE, fresh.getBACnetDataType());
}

TEST(ObjectPropertyReference, DecodesOptionalIndexAndRejectsMissingMembers) {
    BACnetObjectPropertyReference ref;
    Bytes bytes = hex("0C 00000003 19 57 29 08");
    ASSERT_EQ(9, ref.decode(bytes.data(), static_cast<unsigned>(bytes.size())));
    EXPECT_EQ(BACnetObjectPropertyReference(AI3, PROP_PRIORITY_ARRAY, 8), ref);

    // What follows a reference without index belongs to the caller.
    bytes = hex("0C 00000003 19 55 3E");
    ASSERT_EQ(7, ref.decode(bytes.data(), static_cast<unsigned>(bytes.size())));
    EXPECT_FALSE(ref.hasArrayIndex());

    const BACnetObjectPropertyReference before = ref;
    for (const char* broken :
         {"19 55", "0C 00000003", "0C 00000003 29 08", "1C 00000003 19 55", "0C 00000003 19 55 29"}) {
        bytes = hex(broken);
        EXPECT_EQ(-1, ref.decode(bytes.data(), static_cast<unsigned>(bytes.size()))) << broken;
        EXPECT_EQ(before, ref) << broken;
    }
    EXPECT_EQ(-1, ref.decode(nullptr, 10));
}

TEST(ObjectPropertyReference, NeverReadsPastTheGivenLength) {
    const Bytes full = hex("0C 00000003 19 57 29 08");
    for (std::size_t n = 0; n < full.size(); ++n) {
        BACnetObjectPropertyReference ref;
        const int len = decodeExactly(ref, full, n);
        // Cut inside the optional index it reads as broken; cut before it, as a reference without one.
        if (n == 7) {
            EXPECT_EQ(7, len);
        } else {
            EXPECT_EQ(-1, len) << n;
        }
    }
}

TEST(ObjectPropertyReference, ContextFormsAndHexText) {
    const BACnetObjectPropertyReference ref(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL);
    uint8_t buffer[32];
    ASSERT_EQ(9, ref.encodeContext(buffer, 1));
    EXPECT_EQ(hex("1E 0C 00000003 19 55 1F"), Bytes(buffer, buffer + 9));

    BACnetObjectPropertyReference back;
    EXPECT_EQ(9, back.decodeContext(buffer, 9u, 1));
    EXPECT_EQ(ref, back);
    EXPECT_EQ(-1, back.decodeContext(buffer, 9u, 2));
    const Bytes wrongClose = hex("1E 0C 00000003 19 55 2F");
    EXPECT_EQ(-1, back.decodeContext(wrongClose.data(), 9u, 1));

    std::string text;
    ref.getString(text);
    EXPECT_EQ("0C000000031955", text);
    BACnetObjectPropertyReference parsed;
    EXPECT_TRUE(parsed.setString("0C0000000319572903"));
    EXPECT_FALSE(parsed.setString("0C0000000319"));
    EXPECT_FALSE(parsed.setString("0C0000000"));
}

TEST(ObjectPropertyReference, ConvertsToAndFromRequestRecords) {
    const BACnetObjectPropertyReference ref(ObjectIdentifier(OBJECT_TREND_LOG, 7), PROP_LOG_BUFFER, 4);

    BACNET_READ_PROPERTY_DATA rp;
    rp.application_data_len = 99;
    ref.get(rp);
    EXPECT_EQ(OBJECT_TREND_LOG, rp.object_type);
    EXPECT_EQ(7u, rp.object_instance);
    EXPECT_EQ(PROP_LOG_BUFFER, rp.object_property);
    EXPECT_EQ(4u, rp.array_index);
    EXPECT_EQ(0, rp.application_data_len);
    EXPECT_EQ(8, static_cast<int>(rp.error_class));
    EXPECT_EQ(0, static_cast<int>(rp.error_code));

    BACNET_READ_RANGE_DATA rr;
    ref.get(rr);
    EXPECT_EQ(OBJECT_TREND_LOG, rr.object_type);
    EXPECT_EQ(7u, rr.object_instance);
    EXPECT_EQ(4u, rr.array_index);
    EXPECT_EQ(0, rr.application_data_len);
    EXPECT_EQ(8, static_cast<int>(rr.error_class));

    BACnetObjectPropertyReference fromRp;
    fromRp = rp;
    EXPECT_EQ(ref, fromRp);
    rr.object_instance = 8;
    rr.array_index = BACNET_ARRAY_ALL;
    BACnetObjectPropertyReference fromRr;
    fromRr = rr;
    EXPECT_EQ(BACnetObjectPropertyReference(ObjectIdentifier(OBJECT_TREND_LOG, 8), PROP_LOG_BUFFER,
                                            BACNET_ARRAY_ALL),
              fromRr);

    const BACnetDeviceObjectPropertyReference withDevice(AI3, PROP_PRESENT_VALUE, 2,
                                                         ObjectIdentifier(OBJECT_DEVICE, 9));
    EXPECT_EQ(BACnetObjectPropertyReference(AI3, PROP_PRESENT_VALUE, 2),
              BACnetObjectPropertyReference(withDevice));
}

TEST(ObjectPropertyReference, BuildsFromDecodedPrimitives) {
    const DataPropertyInObject0 descriptor;
    const DataApplicationValue* next = nullptr;

    // An unsigned after the property that is not context [2] is not an index.
    Chain noIndex;
    noIndex.ctx(0, objectId(AI3.getValue())).ctx(1, enumerated(85)).ctx(3, unsignedInt(5));
    const BACnetObjectPropertyReference b(descriptor, noIndex.first(), &next);
    EXPECT_FALSE(b.hasArrayIndex());
    EXPECT_EQ(noIndex.at(2), next);

    Chain alone;
    alone.app(objectId(AI3.getValue()));
    const BACnetObjectPropertyReference c(descriptor, alone.first(), &next);
    EXPECT_EQ(nullptr, next);
    EXPECT_EQ(BACnetObjectPropertyReference::NO_PROPERTY, c.getPropertyIdentifier());

    Chain wrong;
    wrong.app(enumerated(85));
    EXPECT_TRUE(
        TQValueTest::assertsWith([&] { BACnetObjectPropertyReference(descriptor, wrong.first(), &next); },
                                 "tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
}
