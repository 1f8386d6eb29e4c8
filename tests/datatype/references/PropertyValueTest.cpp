#include "ReferenceTestSupport.h"

#include "../../value/ValueTestSupport.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQReferenceTest;

TEST(PropertyReference, MembersStartAtTheFirstTag) {
    EXPECT_EQ(hex("09 55"), encoded(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0)));
    EXPECT_EQ(hex("09 57 19 00"), encoded(BACnetPropertyReference(PROP_PRIORITY_ARRAY, 0, 0)));
    // First tag 3: property under [3], index under [4].
    const BACnetPropertyReference third(PROP_PRIORITY_ARRAY, 16, 3);
    const Bytes thirdBytes = hex("39 57 49 10");
    EXPECT_EQ(thirdBytes, encoded(third));
    // Tag numbers from 15 on take an extension octet.
    EXPECT_EQ(hex("F9 0F 55"), encoded(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 15)));
    uint8_t buffer[8];
    EXPECT_EQ(-1, BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 254).encode(buffer));

    BACnetPropertyReference decoded(3);
    EXPECT_EQ(4, decodeExactly(decoded, thirdBytes, thirdBytes.size()));
    EXPECT_EQ(third, decoded);
    EXPECT_EQ(2, decodeExactly(decoded, thirdBytes, 2));
    EXPECT_FALSE(decoded.hasArrayIndex());
    EXPECT_EQ(-1, decodeExactly(decoded, thirdBytes, 3));
    EXPECT_EQ(-1, decodeExactly(decoded, thirdBytes, 1));
    // Read with the standard's first tag, the same bytes are not a reference.
    BACnetPropertyReference standard;
    EXPECT_EQ(-1, decodeExactly(standard, thirdBytes, thirdBytes.size()));
    EXPECT_EQ(BACNET_DT_PROPERTY_REFERENCE, standard.getBACnetDataType());

    uint8_t framed[8];
    ASSERT_EQ(6, third.encodeContext(framed, 1));
    EXPECT_EQ(hex("1E 39 57 49 10 1F"), Bytes(framed, framed + 6));
    EXPECT_EQ(6, decoded.decodeContext(framed, 6u, 1));
}

TEST(PropertyReference, BuildsFromDecodedPrimitives) {
    const DataPropertyInObject0 descriptor;
    const DataApplicationValue* next = nullptr;

    Chain chain;
    chain.ctx(3, enumerated(87)).ctx(4, unsignedInt(2)).ctx(3, enumerated(85));
    // The index tag follows the first tag: read with first tag 0, [4] is not an index.
    const BACnetPropertyReference b(descriptor, chain.first(), &next);
    EXPECT_FALSE(b.hasArrayIndex());
    EXPECT_EQ(chain.at(1), next);

    Chain asUnsigned;
    asUnsigned.app(unsignedInt(85));
    EXPECT_EQ(PROP_PRESENT_VALUE,
              BACnetPropertyReference(descriptor, asUnsigned.first(), &next).getPropertyIdentifier());
    EXPECT_EQ(nullptr, next);

    Chain wrong;
    wrong.app(real(1.0f));
    EXPECT_TRUE(TQValueTest::assertsWith(
        [&] { BACnetPropertyReference(descriptor, wrong.first(), &next); },
        "tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
}

TEST(PropertyValue, EncodesReferenceValueAndOptionalPriority) {
    ValueContainer value;
    value.setReal(21.5f);
    const BACnetPropertyValue withPriority(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 7),
                                           value, 8);
    EXPECT_EQ(0u, withPriority.getFirstTag());
    // [0] present-value  [2] { REAL 21.5 }  [3] 8
    const Bytes bytes = hex("09 55 2E 44 41AC0000 2F 39 08");
    EXPECT_EQ(bytes, encoded(withPriority));
    EXPECT_EQ(hex("09 57 19 03 2E 44 41AC0000 2F"),
              encoded(BACnetPropertyValue(BACnetPropertyReference(PROP_PRIORITY_ARRAY, 3, 0), value, -1)));
    EXPECT_EQ(BACNET_DT_PROPERTY_VALUE, withPriority.getBACnetDataType());

    const BACnetPropertyValue empty;
    // No property yet and a null value.
    EXPECT_EQ(hex("0B FFFFFE 2E 00 2F"), encoded(empty));
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY, empty.getPriority());

    BACnetPropertyValue decoded;
    ASSERT_EQ(static_cast<int>(bytes.size()), decodeExactly(decoded, bytes, bytes.size()));
    EXPECT_EQ(PROP_PRESENT_VALUE, decoded.getPropertyIdentifier());
    EXPECT_EQ(8, decoded.getPriority());
    EXPECT_FLOAT_EQ(21.5f, decoded.getValue().getReal(false));
    EXPECT_EQ(bytes, encoded(decoded));

    // A list value: every primitive between the tags is kept.
    const Bytes list = hex("09 57 2E 21 01 21 02 2F");
    ASSERT_EQ(8, decodeExactly(decoded, list, list.size()));
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY, decoded.getPriority());
    EXPECT_EQ(list, encoded(decoded));
}

TEST(PropertyValue, RejectsBrokenInputAndKeepsTheValue) {
    ValueContainer value;
    value.setUInt(4);
    BACnetPropertyValue decoded(BACnetPropertyReference(PROP_OUT_OF_SERVICE, BACNET_ARRAY_ALL, 0), value, 1);
    const Bytes before = encoded(decoded);
    const Bytes full = hex("09 55 2E 44 41AC0000 2F 39 08");
    for (std::size_t n = 3; n < full.size(); ++n) {
        // Cut inside the value or the priority.
        if (n == 9) continue;  // after the closing tag the priority is optional
        EXPECT_EQ(-1, decodeExactly(decoded, full, n)) << n;
        EXPECT_EQ(before, encoded(decoded)) << n;
    }
    for (const char* broken :
         {"09 55 2E 2F", "09 55 2E 0C 00000003 2F", "09 55 2E 44 41AC0000 3F", "19 55 2E 44 41AC0000 2F"}) {
        const Bytes bytes = hex(broken);
        EXPECT_EQ(-1, decodeExactly(decoded, bytes, bytes.size())) << broken;
        EXPECT_EQ(before, encoded(decoded)) << broken;
    }
    // Without a value only the reference is read.
    const Bytes bare = hex("09 55 39 08");
    EXPECT_EQ(2, decodeExactly(decoded, bare, bare.size()));

    EXPECT_EQ(0, BACnetPropertyValue().encode(nullptr));
    uint8_t buffer[16];
    const BACnetPropertyValue framed(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0), value,
                                     -1);
    ASSERT_EQ(8, framed.encodeContext(buffer, 0));
    EXPECT_EQ(hex("0E 09 55 2E 21 04 2F 0F"), Bytes(buffer, buffer + 8));
}

TEST(PropertyValue, BuildsFromDecodedPrimitives) {
    const DataPropertyInObject0 descriptor;
    const DataApplicationValue sentinel;
    const DataApplicationValue* next = &sentinel;

    Chain chain;
    chain.ctx(0, enumerated(87)).ctx(1, unsignedInt(8)).app(real(21.5f)).app(unsignedInt(12)).app(real(1.0f));
    const BACnetPropertyValue a(descriptor, chain.first(), &next);
    EXPECT_EQ(PROP_PRIORITY_ARRAY, a.getPropertyIdentifier());
    EXPECT_EQ(8u, a.getArrayIndex());
    EXPECT_FLOAT_EQ(21.5f, a.getValue().getReal(false));
    EXPECT_EQ(BACNET_DTS_SINGLE_VALUE, a.getValue().getStructure());
    EXPECT_EQ(12, a.getPriority());
    EXPECT_EQ(chain.at(4), next);

    // Only an unsigned after the value is a priority; the value is exactly one primitive.
    Chain noPriority;
    noPriority.app(enumerated(85)).app(unsignedInt(3)).app(real(1.0f));
    const BACnetPropertyValue b(descriptor, noPriority.first(), &next);
    EXPECT_FALSE(b.hasArrayIndex());
    EXPECT_EQ(3u, b.getValue().getUInt());
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY, b.getPriority());
    EXPECT_EQ(noPriority.at(2), next);

    next = &sentinel;
    Chain referenceOnly;
    referenceOnly.app(enumerated(85));
    const BACnetPropertyValue c(descriptor, referenceOnly.first(), &next);
    EXPECT_EQ(nullptr, next);
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY, c.getPriority());
}
