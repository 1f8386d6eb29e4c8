#include "ReferenceTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"

#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQReferenceTest;
using TQ::BACnet::DataType::Proprietary::Vendor947::BACnetTrendLogLastUploaded;

namespace {

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);
const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);

/// The value's primitives followed by one stray primitive, linked as the container links them.
template <class T>
std::vector<DataApplicationValue> primitivesOf(const T& value) {
    std::vector<DataApplicationValue> out;
    value.getBACnetPrimitives(out);
    out.push_back(unsignedInt(99));
    for (std::size_t i = 0; i + 1 < out.size(); ++i) out[i].next = &out[i + 1];
    return out;
}

/// "[tag] " per context primitive, as the container prints a constructed value's primitives.
std::string tagsOf(const std::vector<DataApplicationValue>& values) {
    std::string tags;
    for (const DataApplicationValue& v : values)
        tags += v.context_specific ? "[" + std::to_string(v.context_tag) + "]" : "A" + std::to_string(v.tag);
    return tags;
}

}  // namespace

// What getBACnetPrimitives gives is what the primitive constructors read back, member for
// member, with the cursor left on the stray primitive after the value.
TEST(ReferencePrimitives, ReadBackThroughTheWalkOfEachClass) {
    const DataPropertyInObject0 descriptor;
    const DataApplicationValue* next = nullptr;

    const BACnetDeviceObjectPropertyReference dopr(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u);
    auto chain = primitivesOf(dopr);
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
