#include "TQTestCatalogue.h"
#include "TQTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"

#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQTest;
using TQ::BACnet::DataType::Proprietary::Vendor947::BACnetTrendLogLastUploaded;

namespace {

using Chain = std::vector<DataApplicationValue>;

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);
const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);
const DataPropertyInObject0 descriptor;

Chain linked(Chain values) {
    link(values);
    return values;
}

/// The value's primitives followed by one stray primitive, linked as the container links them.
template <class T>
Chain primitivesOf(const T& value) {
    Chain out;
    value.getBACnetPrimitives(out);
    out.push_back(uintValue(99));
    link(out);
    return out;
}

/// "[tag]" per context primitive, "A<tag>" per application primitive.
std::string tagsOf(const Chain& values) {
    std::string tags;
    for (const DataApplicationValue& v : values)
        tags += v.context_specific ? "[" + std::to_string(v.context_tag) + "]" : "A" + std::to_string(v.tag);
    return tags;
}

}  // namespace

// What getBACnetPrimitives gives is what the primitive constructors read back, member for
// member, with the cursor left on the stray primitive after the value.
TEST(ReferencePrimitives, ReadBackThroughTheWalkOfEachClass) {
    const DataApplicationValue* next = nullptr;
    const BACnetDeviceObjectPropertyReference dopr(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u);
    Chain chain = primitivesOf(dopr);
    EXPECT_EQ("[0][1][2][3]A2", tagsOf(chain));
    EXPECT_EQ(dopr, BACnetDeviceObjectPropertyReference(descriptor, chain.front(), &next));
    EXPECT_EQ(&chain.back(), next);
    const BACnetDeviceObjectPropertyReference bare(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL,
                                                   ObjectIdentifier());
    chain = primitivesOf(bare);
    EXPECT_EQ("[0][1]A2", tagsOf(chain));
    EXPECT_EQ(bare, BACnetDeviceObjectPropertyReference(descriptor, chain.front(), &next));
    const BACnetObjectPropertyReference opr(AI3, PROP_PRIORITY_ARRAY, 0);
    chain = primitivesOf(opr);
    EXPECT_EQ("[0][1][2]A2", tagsOf(chain));
    EXPECT_EQ(opr, BACnetObjectPropertyReference(descriptor, chain.front(), &next));
    EXPECT_EQ(&chain.back(), next);
    const BACnetPropertyReference pr(PROP_PRIORITY_ARRAY, 4, 3);
    chain = primitivesOf(pr);
    EXPECT_EQ("[3][4]A2", tagsOf(chain));
    EXPECT_EQ(pr, BACnetPropertyReference(descriptor, chain.front(), &next, 3));
    EXPECT_EQ(&chain.back(), next);
    // The device-object reference leaves the cursor on its own last primitive.
    const BACnetDeviceObjectReference dor(1234u, AI3);
    chain = primitivesOf(dor);
    EXPECT_EQ("[0][1]A2", tagsOf(chain));
    EXPECT_EQ(dor, BACnetDeviceObjectReference(descriptor, chain.front(), &next));
    EXPECT_EQ(&chain[1], next);
    const BACnetTrendLogLastUploaded uploaded(DEVICE1234, ObjectIdentifier(OBJECT_TREND_LOG, 1),
                                              Poco::LocalDateTime(2024, 3, 15, 10, 20, 30, 450).timestamp());
    chain = primitivesOf(uploaded);
    EXPECT_EQ("[0][1]A10A11A2", tagsOf(chain));
    EXPECT_EQ(uploaded, BACnetTrendLogLastUploaded(descriptor, chain.front(), &next));
    EXPECT_EQ(&chain.back(), next);
}

TEST(ReferencePrimitives, OptionalMembersAndForeignPrimitivesEndTheWalk) {
    const DataApplicationValue* next = nullptr;
    // DOPR: index absent, device present; an application primitive belongs to what follows.
    Chain chain = linked(
        {context(objectIdValue(AI3), 0), context(enumValue(85), 1), context(objectIdValue(DEVICE1234), 3)});
    const BACnetDeviceObjectPropertyReference dopr(descriptor, chain[0], &next);
    EXPECT_FALSE(dopr.hasArrayIndex());
    EXPECT_TRUE(dopr.hasDevice());
    EXPECT_EQ(nullptr, next);
    chain = linked({context(objectIdValue(AI3), 0), enumValue(85)});
    const BACnetDeviceObjectPropertyReference objectOnly(descriptor, chain[0], &next);
    EXPECT_EQ(0xFFFFFEu, static_cast<unsigned>(objectOnly.propertyIdentifier));
    EXPECT_FALSE(objectOnly.hasDevice());
    EXPECT_EQ(&chain[1], next);
    // OPR: an unsigned after the property that is not context [2] is not an index.
    chain = linked({context(objectIdValue(AI3), 0), context(enumValue(85), 1), context(uintValue(5), 3)});
    EXPECT_FALSE(BACnetObjectPropertyReference(descriptor, chain[0], &next).hasArrayIndex());
    EXPECT_EQ(&chain[2], next);
    chain = linked({objectIdValue(AI3)});
    EXPECT_EQ(BACnetObjectPropertyReference::NO_PROPERTY,
              BACnetObjectPropertyReference(descriptor, chain[0], &next).getPropertyIdentifier());
    EXPECT_EQ(nullptr, next);
    // PR: the index tag follows the first tag, so read with first tag 0, [4] is not an index.
    chain = linked({context(enumValue(87), 3), context(uintValue(2), 4), context(enumValue(85), 3)});
    EXPECT_FALSE(BACnetPropertyReference(descriptor, chain[0], &next).hasArrayIndex());
    EXPECT_EQ(&chain[1], next);
    chain = linked({uintValue(85)});
    EXPECT_EQ(PROP_PRESENT_VALUE,
              BACnetPropertyReference(descriptor, chain[0], &next).getPropertyIdentifier());
    EXPECT_EQ(nullptr, next);
    // DOR: the cursor stays on the last primitive looked at; a [0] that is no object identifier
    // is not taken at all, and a device alone leaves the object unset.
    chain = linked({context(objectIdValue(DEVICE1234), 0), context(objectIdValue(AI3), 1), uintValue(1)});
    EXPECT_EQ(BACnetDeviceObjectReference(1234u, AI3),
              BACnetDeviceObjectReference(BACNET_DT_DEVICE_OBJECT_REFERENCE, chain[0], &next));
    EXPECT_EQ(&chain[1], next);
    chain = linked({context(objectIdValue(AI3), 1)});
    const BACnetDeviceObjectReference noDevice(descriptor, chain[0], &next);
    EXPECT_FALSE(noDevice.hasDevice());
    EXPECT_EQ(AI3, noDevice.getObjectIdentifier());
    EXPECT_EQ(&chain[0], next);
    chain = linked({context(uintValue(5), 0), context(objectIdValue(AI3), 1)});
    EXPECT_EQ(BACnetDeviceObjectReference(),
              BACnetDeviceObjectReference(BACNET_DT_DEVICE_OBJECT_REFERENCE, chain[0], &next));
    EXPECT_EQ(&chain[0], next);
    chain = linked({context(objectIdValue(DEVICE1234), 0)});
    const BACnetDeviceObjectReference deviceOnly(BACNET_DT_DEVICE_OBJECT_REFERENCE, chain[0], &next);
    EXPECT_EQ(DEVICE1234, deviceOnly.getDeviceIdentifier());
    EXPECT_EQ(1024u, deviceOnly.objectIdentifier.type);
    EXPECT_EQ(&chain[0], next);
    // Primitives of the wrong kind where the walk starts are refused.
    chain = linked({context(enumValue(85), 1)});
    EXPECT_TRUE(assertsWith([&] { BACnetDeviceObjectPropertyReference(descriptor, chain[0], &next); },
                            "tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
    EXPECT_TRUE(assertsWith([&] { BACnetObjectPropertyReference(descriptor, chain[0], &next); },
                            "tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
    chain = linked({realValue(1.0f)});
    EXPECT_TRUE(assertsWith(
        [&] { BACnetPropertyReference(descriptor, chain[0], &next); },
        "tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
}

TEST(ReferencePrimitives, PropertyValueTakesOneValueAndAnUnsignedPriority) {
    const DataApplicationValue sentinel;
    const DataApplicationValue* next = &sentinel;
    Chain chain = linked({context(enumValue(87), 0), context(uintValue(8), 1), realValue(21.5f),
                          uintValue(12), realValue(1.0f)});
    const BACnetPropertyValue a(descriptor, chain[0], &next);
    EXPECT_EQ(PROP_PRIORITY_ARRAY, a.getPropertyIdentifier());
    EXPECT_EQ(8u, a.getArrayIndex());
    EXPECT_FLOAT_EQ(21.5f, a.getValue().getReal(false));
    EXPECT_EQ(BACNET_DTS_SINGLE_VALUE, a.getValue().getStructure());
    EXPECT_EQ(12, a.getPriority());
    EXPECT_EQ(&chain[4], next);
    // Only an unsigned after the value is a priority; the value is exactly one primitive.
    chain = linked({enumValue(85), uintValue(3), realValue(1.0f)});
    const BACnetPropertyValue b(descriptor, chain[0], &next);
    EXPECT_FALSE(b.hasArrayIndex());
    EXPECT_EQ(3u, b.getValue().getUInt());
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY, b.getPriority());
    EXPECT_EQ(&chain[2], next);
    next = &sentinel;
    chain = linked({enumValue(85)});
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY,
              BACnetPropertyValue(descriptor, chain[0], &next).getPriority());
    EXPECT_EQ(nullptr, next);
}

// The names come from the catalogue's object-type and property enumerations.
TEST(ReferencePath, BuildsBACnetWsPathsFromCatalogueNames) {
    TQTest::Catalogue::open();
    EXPECT_EQ("/present-value", BACnetPropertyReference::getPath(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL));
    EXPECT_EQ("/priority-array/0", BACnetPropertyReference::getPath(PROP_PRIORITY_ARRAY, 0));
    EXPECT_EQ("/analog-input,3/present-value",
              BACnetObjectPropertyReference::getPath(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL));
    EXPECT_EQ("/1234/analog-input,3", BACnetDeviceObjectReference::getPath(1234, AI3));
    EXPECT_EQ("/1234/analog-input,3/present-value",
              BACnetDeviceObjectPropertyReference::getPath(1234, AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL));
    EXPECT_EQ("/1234/analog-input,3/priority-array/8",
              BACnetDeviceObjectPropertyReference::getPath(1234, AI3, PROP_PRIORITY_ARRAY, 8));
    // A proprietary property has no catalogue name: its number stands in, so the path still parses.
    EXPECT_EQ("/4000000/2", BACnetPropertyReference::getPath(static_cast<BACNET_PROPERTY_ID>(4000000), 2));
}
