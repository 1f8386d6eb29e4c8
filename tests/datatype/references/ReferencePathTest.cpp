#include "../../value/ValueDatabase.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;

// The names come from the catalogue's object-type and property enumerations.
TEST(ReferencePath, BuildsBACnetWsPathsFromCatalogueNames) {
    TQValueTest::ValueDatabase::instance();
    const ObjectIdentifier ai3(OBJECT_ANALOG_INPUT, 3);

    EXPECT_EQ("/present-value", BACnetPropertyReference::getPath(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL));
    EXPECT_EQ("/priority-array/0", BACnetPropertyReference::getPath(PROP_PRIORITY_ARRAY, 0));
    EXPECT_EQ("/analog-input,3/present-value",
              BACnetObjectPropertyReference::getPath(ai3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL));
    EXPECT_EQ("/1234/analog-input,3", BACnetDeviceObjectReference::getPath(1234, ai3));
    EXPECT_EQ("/1234/analog-input,3/present-value",
              BACnetDeviceObjectPropertyReference::getPath(1234, ai3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL));
    EXPECT_EQ("/1234/analog-input,3/priority-array/8",
              BACnetDeviceObjectPropertyReference::getPath(1234, ai3, PROP_PRIORITY_ARRAY, 8));

    // A proprietary property has no catalogue name: its number stands in, so the path still parses.
    EXPECT_EQ("/4000000/2", BACnetPropertyReference::getPath(static_cast<BACNET_PROPERTY_ID>(4000000), 2));
}
