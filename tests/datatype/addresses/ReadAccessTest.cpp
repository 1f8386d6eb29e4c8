#include "../../value/ValueDatabase.h"
#include "AddressTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/ReadAccessSpecification.h"

#include <gtest/gtest.h>

#include <cstdlib>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::DataType::BACnetPropertyReference;
using TQ::BACnet::DataType::ObjectIdentifier;
using TQ::BACnet::DataType::ReadAccessResult;
using TQ::BACnet::DataType::ReadAccessSpecification;
using namespace TQAddressTest;

namespace {

/// A record as the codec's decoder leaves it: nodes and values on the heap, released by the
/// codec's own function, so ownership is what the code under test meets in the field.
struct Record {
    BACnet_Read_Access_Data first{};
    BACNET_PROPERTY_REFERENCE* last = nullptr;

    Record(BACNET_OBJECT_TYPE type, uint32_t instance) {
        first.object_type = type;
        first.object_instance = instance;
    }
    ~Record() { rpm_ack_free_all(&first); }

    /// A result node with the given values (none: an empty value).
    Record& add(unsigned property, uint32_t index, std::vector<DataApplicationValue> values = {}) {
        auto* node =
            static_cast<BACNET_PROPERTY_REFERENCE*>(std::calloc(1, sizeof(BACNET_PROPERTY_REFERENCE)));
        node->propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(property);
        node->propertyArrayIndex = index;
        (last ? last->next : first.listOfProperties) = node;
        last = node;
        for (auto v = values.rbegin(); v != values.rend(); ++v) {
            auto* copy = static_cast<BACNET_APPLICATION_DATA_VALUE*>(
                std::malloc(sizeof(BACNET_APPLICATION_DATA_VALUE)));
            *copy = *v;
            copy->next = node->value;
            node->value = copy;
        }
        return *this;
    }
    Record& addError(unsigned property, BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode) {
        add(property, BACNET_ARRAY_ALL);
        last->has_error = true;
        last->error_class = errorClass;
        last->error_code = errorCode;
        return *this;
    }
};

DataApplicationValue real(float number) {
    DataApplicationValue v;
    v.setReal(number);
    return v;
}

}  // namespace

TEST(ReadAccessSpecification, HandsTheCodecAListAndFreesIt) {
    ReadAccessSpecification request(ObjectIdentifier(OBJECT_ANALOG_INPUT, 7));
    request.addPropertyReference(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0));
    request.addPropertyReference(BACnetPropertyReference(PROP_PRIORITY_ARRAY, 8, 0));
    request.addPropertyReference(BACnetPropertyReference(PROP_OBJECT_NAME, BACNET_ARRAY_ALL, 0));

    BACnet_Read_Access_Data record;
    request.get(record);
    EXPECT_EQ(ObjectIdentifier(record.object_type, record.object_instance), request.getObjectIdentifier());
    EXPECT_EQ(record.next, nullptr);
    std::vector<std::pair<unsigned, uint32_t>> nodes;
    for (const auto* node = record.listOfProperties; node != nullptr; node = node->next) {
        nodes.emplace_back(node->propertyIdentifier, node->propertyArrayIndex);
        EXPECT_TRUE(node->value == nullptr && !node->has_error);
    }
    EXPECT_EQ(nodes, (std::vector<std::pair<unsigned, uint32_t>>{{PROP_PRESENT_VALUE, BACNET_ARRAY_ALL},
                                                                 {PROP_PRIORITY_ARRAY, 8},
                                                                 {PROP_OBJECT_NAME, BACNET_ARRAY_ALL}}));

    // Read back, the references are appended to those already there.
    ReadAccessSpecification back(ObjectIdentifier(OBJECT_DEVICE, 1));
    back.addPropertyReference(BACnetPropertyReference(PROP_OBJECT_LIST, BACNET_ARRAY_ALL, 0));
    back = record;
    EXPECT_EQ(back.getObjectIdentifier(), request.getObjectIdentifier());
    ASSERT_EQ(back.getPropertyReferences().size(), 4u);
    EXPECT_TRUE(std::equal(request.getPropertyReferences().begin(), request.getPropertyReferences().end(),
                           back.getPropertyReferences().begin() + 1));

    // A chain: every node and every record but the first is freed (the sanitizer build reports
    // a leak or a double free); a second call finds nothing left.
    auto* second = static_cast<BACnet_Read_Access_Data*>(std::calloc(1, sizeof(BACnet_Read_Access_Data)));
    request.get(*second);
    record.next = second;
    ReadAccessSpecification::freeRAS(record);
    EXPECT_TRUE(record.listOfProperties == nullptr && record.next == nullptr);
    ReadAccessSpecification::freeRAS(record);

    uint8_t apdu[8] = {0x0C, 0, 0, 0, 1};
    EXPECT_EQ(request.encode(apdu), -1);
    EXPECT_EQ(request.decode(apdu, 5), -1);
}

TEST(ReadAccessResult, TypesEachResultOrKeepsTheServersError) {
    TQValueTest::ValueDatabase::instance();
    DataApplicationValue text;
    text.setCharString("not a number");
    Record record(OBJECT_ANALOG_INPUT, 3);
    record.add(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, {real(21.5f)})
        .addError(4000, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY)
        .add(PROP_PRIORITY_ARRAY, 3)
        .add(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, {text})       // does not fit the catalogue's REAL
        .add(4001, BACNET_ARRAY_ALL, {real(1.0f), real(2.0f)});  // no catalogue entry

    ReadAccessResult result;
    result = record.first;
    EXPECT_EQ(result.getObjectIdentifier(), ObjectIdentifier(OBJECT_ANALOG_INPUT, 3));
    const auto& values = result.getPropertyValues();
    ASSERT_EQ(values.size(), 5u);
    for (const auto& value : values) EXPECT_EQ(value.getPriority(), -1);

    EXPECT_EQ(values[0].getValue().getDataType(), TQ::BACnet::BACNET_DT_REAL);
    EXPECT_FLOAT_EQ(values[0].getValue().getReal(false), 21.5f);

    // The server's error stands in for the value, under the Error data type.
    EXPECT_EQ(values[1].getPropertyIdentifier(), 4000u);
    EXPECT_EQ(values[1].getValue().getDataType(), TQ::BACnet::BACNET_DT_ERROR);
    EXPECT_EQ(values[1].getValue().getStructure(), TQ::BACnet::BACNET_DTS_SINGLE_VALUE);
    uint8_t apdu[32];
    ASSERT_EQ(values[1].getValue().encode(apdu), 4);
    EXPECT_EQ(Bytes(apdu, apdu + 4), (Bytes{0x91, 0x02, 0x91, 0x20}));

    EXPECT_EQ(values[2].getArrayIndex(), 3u);
    std::vector<DataApplicationValue> held;
    EXPECT_TRUE(values[2].getValue().getValues(held).empty());

    // What does not fit the catalogue, or has no entry there, keeps the primitives it came as.
    std::string kept;
    values[3].getValue().getCharString(kept);
    EXPECT_EQ(kept, "not a number");
    values[4].getValue().getValues(held);
    ASSERT_EQ(held.size(), 2u);
    EXPECT_FLOAT_EQ(held[1].getReal(false), 2.0f);

    // A second record appends, and its object is the one kept.
    Record more(OBJECT_DEVICE, 9);
    more.add(PROP_OBJECT_LIST, 1, {DataApplicationValue(BACNET_APPLICATION_TAG_OBJECT_ID, true)});
    result = more.first;
    EXPECT_EQ(result.getPropertyValues().size(), 6u);
    EXPECT_EQ(result.getObjectIdentifier(), ObjectIdentifier(OBJECT_DEVICE, 9));

    BACnet_Read_Access_Data untouched{};
    result.get(untouched);
    EXPECT_TRUE(untouched.object_instance == 0 && untouched.listOfProperties == nullptr);
}
