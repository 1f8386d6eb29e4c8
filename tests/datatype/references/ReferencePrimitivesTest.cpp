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

/// What getBACnetPrimitives gives is what the primitive constructor reads back, member for
/// member; the cursor is left on primitive `cursor` (-1: the stray one after the value).
template <class T, class... Extra>
void expectWalk(const T& value, const char* tags, int cursor, Extra... extra) {
    SCOPED_TRACE(tags);
    const Chain chain = primitivesOf(value);
    const DataApplicationValue* next = nullptr;
    EXPECT_EQ(tags, tagsOf(chain));
    EXPECT_EQ(value, T(descriptor, chain.front(), &next, extra...));
    EXPECT_EQ(&chain[cursor < 0 ? chain.size() - 1 : size_t(cursor)], next);
}

}  // namespace

TEST(ReferencePrimitives, ReadBackThroughTheWalkOfEachClass) {
    expectWalk(BACnetDeviceObjectPropertyReference(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u),
               "[0][1][2][3]A2", -1);
    expectWalk(
        BACnetDeviceObjectPropertyReference(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, ObjectIdentifier()),
        "[0][1]A2", -1);
    expectWalk(BACnetObjectPropertyReference(AI3, PROP_PRIORITY_ARRAY, 0), "[0][1][2]A2", -1);
    expectWalk(BACnetPropertyReference(PROP_PRIORITY_ARRAY, 4, 3), "[3][4]A2", -1, 3);
    // The device-object reference leaves the cursor on its own last primitive.
    expectWalk(BACnetDeviceObjectReference(1234u, AI3), "[0][1]A2", 1);
    expectWalk(BACnetTrendLogLastUploaded(DEVICE1234, ObjectIdentifier(OBJECT_TREND_LOG, 1),
                                          Poco::LocalDateTime(2024, 3, 15, 10, 20, 30, 450).timestamp()),
               "[0][1]A10A11A2", -1);
}

TEST(ReferencePrimitives, OptionalMembersAndForeignPrimitivesEndTheWalk) {
    const DataApplicationValue* next = nullptr;
    // DOPR: index absent, device present; an application primitive belongs to what follows.
    Chain chain = linked(
        {context(objectIdValue(AI3), 0), context(enumValue(85), 1), context(objectIdValue(DEVICE1234), 3)});
    const BACnetDeviceObjectPropertyReference dopr(descriptor, chain[0], &next);
    EXPECT_TRUE(!dopr.hasArrayIndex() && dopr.hasDevice() && next == nullptr);
    chain = linked({context(objectIdValue(AI3), 0), enumValue(85)});
    const BACnetDeviceObjectPropertyReference objectOnly(descriptor, chain[0], &next);
    EXPECT_TRUE(objectOnly.propertyIdentifier == 0xFFFFFE && !objectOnly.hasDevice() && next == &chain[1]);
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
    EXPECT_TRUE(!noDevice.hasDevice() && noDevice.getObjectIdentifier() == AI3 && next == &chain[0]);
    chain = linked({context(uintValue(5), 0), context(objectIdValue(AI3), 1)});
    EXPECT_EQ(BACnetDeviceObjectReference(),
              BACnetDeviceObjectReference(BACNET_DT_DEVICE_OBJECT_REFERENCE, chain[0], &next));
    EXPECT_EQ(&chain[0], next);
    chain = linked({context(objectIdValue(DEVICE1234), 0)});
    const BACnetDeviceObjectReference deviceOnly(BACNET_DT_DEVICE_OBJECT_REFERENCE, chain[0], &next);
    EXPECT_TRUE(deviceOnly.getDeviceIdentifier() == DEVICE1234 && deviceOnly.objectIdentifier.type == 1024 &&
                next == &chain[0]);
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
    EXPECT_EQ(std::make_tuple(PROP_PRIORITY_ARRAY, 8u, 21.5f, BACNET_DTS_SINGLE_VALUE, 12, &chain[4]),
              std::make_tuple(a.getPropertyIdentifier(), a.getArrayIndex(), a.getValue().getReal(false),
                              a.getValue().getStructure(), a.getPriority(), next));
    // Only an unsigned after the value is a priority; the value is exactly one primitive.
    chain = linked({enumValue(85), uintValue(3), realValue(1.0f)});
    const BACnetPropertyValue b(descriptor, chain[0], &next);
    EXPECT_TRUE(!b.hasArrayIndex() && b.getValue().getUInt() == 3 && next == &chain[2]);
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY, b.getPriority());
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
