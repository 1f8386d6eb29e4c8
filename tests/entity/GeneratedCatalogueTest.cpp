// The entity classes against the generated catalogue as a fresh embedded database holds it:
// the numbers the library uses by name must mean the same types there.

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Entity/BnPropertiesInObject.h"

#include "tq_stack/context_decode.h"
#include "tq_stack/rpm.h"

#include "TQTestCatalogue.h"
#include "TQTestCodec.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

namespace {

class GeneratedCatalogue : public testing::Test {
protected:
    static void SetUpTestSuite() { TQTest::Catalogue::open(); }
};

}  // namespace

TEST_F(GeneratedCatalogue, TheTypeNumbersTheLibraryUsesNameTheExpectedTypes) {
    const std::pair<BACnetDataType, const char*> pinned[] = {
        {BACNET_DT_DATE_TIME, "BACnetDateTime"},
        {BACNET_DT_ADDRESS_BINDING, "BACnetAddressBinding"},
        {BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE, "BACnetDeviceObjectPropertyReference"},
        {BACNET_DT_DEVICE_OBJECT_REFERENCE, "BACnetDeviceObjectReference"},
        {BACNET_DT_LOG_MULTIPLE_RECORD, "BACnetLogMultipleRecord"},
        {BACNET_DT_LOG_RECORD, "BACnetLogRecord"},
        {BACNET_DT_OBJECT_PROPERTY_REFERENCE, "BACnetObjectPropertyReference"},
        {BACNET_DT_RECIPIENT, "BACnetRecipient"},
        {BACNET_DT_READ_ACCESS_RESULT, "ReadAccessResult"},
        {BACNET_DT_READ_ACCESS_SPECIFICATION, "ReadAccessSpecification"},
        {BACNET_DT_OBJECT_TYPE, "BACnetObjectType"},
        {BACNET_DT_ADDRESS, "BACnetAddress"},
        {BACNET_DT_PROPERTY_REFERENCE, "BACnetPropertyReference"},
        {BACNET_DT_PROPERTY_VALUE, "BACnetPropertyValue"},
        {BACNET_DT_ERROR, "Error"},
        {BACNET_DT_ABORT_REASON, "BACnetAbortReason"},
        {BACNET_DT_REJECT_REASON, "BACnetRejectReason"},
        {BACNET_DT_TREND_LOG_LAST_UPLOADED, "ProprietaryBACnetTrendLogLastUploaded"},
    };
    for (const auto& type : pinned) {
        EXPECT_EQ(BnDataType::find(type.first), type.second) << type.first;
        EXPECT_EQ(BnDataType::findReverse(type.second), type.first);
    }
    EXPECT_EQ(BnDataType::find(BACNET_DT_NOT_FOUND), "");
    EXPECT_EQ(BnDataType::find(BACNET_DT_UNKNOWN), "");

    // Their primitive forms agree with the fixed table the descriptor uses.
    for (BACnetDataType fixed :
         {BACNET_DT_UNSIGNED_1006, BACNET_DT_UNSIGNED_1085, BACNET_DT_UNSIGNED_1088, BACNET_DT_UNSIGNED_1176,
          BACNET_DT_SIGNED_1113, BACNET_DT_SIGNED_1178, BACNET_DT_DATE_1179, BACNET_DT_TIME_1180}) {
        const BnDataTypeConstruct* definition = BnDataTypeConstruct::find(fixed);
        ASSERT_NE(definition, nullptr) << fixed;
        EXPECT_EQ(definition->getIdBnMarkup().value(), DataPropertyInObject0::getPrimitiveType(fixed))
            << fixed;
    }
    EXPECT_EQ(DataPropertyInObject0::getPrimitiveType(BACNET_DT_OBJECT_TYPE),
              BACNET_APPLICATION_TAG_ENUMERATED);
}

TEST_F(GeneratedCatalogue, ObjectTypeAndPropertyNamesComeFromConstructs120And51) {
    EXPECT_EQ(BnDataTypeEnum::find(120, OBJECT_ANALOG_INPUT), "analog-input");
    EXPECT_EQ(BnDataTypeEnum::find(120, 8), "device");
    EXPECT_EQ(BnDataTypeEnum::find(121, 8), "device");
    EXPECT_EQ(BnDataTypeEnum::findReverse(120, "analog-output"), 1u);
    EXPECT_EQ(BnDataTypeEnum::find(51, PROP_PRESENT_VALUE), "present-value");
    EXPECT_EQ(BnDataTypeEnum::getEnumNameByType(BACNET_DT_OBJECT_TYPE, 8), "device");
    EXPECT_EQ(BnDataTypeEnum::getEnumValueByType(static_cast<BACnetDataType>(1090), "object-name"),
              static_cast<unsigned int>(PROP_OBJECT_NAME));

    BACnetDataType statusFlags = BnDataType::findReverse("BACnetStatusFlags");
    ASSERT_NE(statusFlags, BACNET_DT_NOT_FOUND);
    const BnDataTypeConstruct* flags = BnDataTypeConstruct::find(statusFlags);
    ASSERT_NE(flags, nullptr);
    unsigned int construct = static_cast<unsigned int>(flags->getIdBnDataTypeConstruct());
    EXPECT_EQ(BnDataTypeEnum::getBitCount(construct), 4);
    std::string text;
    EXPECT_TRUE(BnDataTypeEnum::getBitString(construct, "fault;out-of-service", text));
    EXPECT_EQ(text, "false,true,false,true");
}

TEST_F(GeneratedCatalogue, DescriptorsAndListingsOfAnalogInput) {
    DataPropertyInObject0 presentValue;
    ASSERT_TRUE(DataPropertyInObject0::getValueTypeAndStructure(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE,
                                                                presentValue, false));
    EXPECT_EQ(presentValue.datatype, BACNET_DT_REAL);
    EXPECT_EQ(presentValue.tag, BACNET_APPLICATION_TAG_REAL);
    EXPECT_EQ(presentValue.structure, BACNET_DTS_SINGLE_VALUE);
    EXPECT_EQ(BnPropertiesInObject::isNumeric(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE).value(), true);

    DataPropertyInObject0 propertyList;
    ASSERT_TRUE(DataPropertyInObject0::getValueTypeAndStructure(OBJECT_ANALOG_INPUT, PROP_PROPERTY_LIST,
                                                                propertyList, false));
    EXPECT_EQ(propertyList.structure, BACNET_DTS_ARRAY);

    std::vector<int> required;
    int count = BnPropertiesInObject::retrieve(OBJECT_ANALOG_INPUT, BnPropertiesInObject::OPTIONAL_NONE,
                                               BnPropertiesInObject::OPTIONAL_OPTIONAL, required);
    ASSERT_GT(count, 3);
    EXPECT_EQ(required.back(), -1);
    auto has = [&required](int id) {
        return std::find(required.begin(), required.end(), id) != required.end();
    };
    EXPECT_TRUE(has(PROP_PRESENT_VALUE));
    EXPECT_TRUE(has(PROP_OBJECT_NAME));
    EXPECT_FALSE(has(PROP_PROPERTY_LIST));
    EXPECT_FALSE(has(PROP_DESCRIPTION));

    const BnDataTypeConstruct* dateTime = BnDataTypeConstruct::find(BACNET_DT_DATE_TIME);
    ASSERT_NE(dateTime, nullptr);
    ASSERT_EQ(dateTime->getInternalBDTCs().size(), 2u);
    ASSERT_NE(dateTime->getInternalBDTCs()[0].pDTC, nullptr);
    EXPECT_EQ(dateTime->getInternalBDTCs()[0].pDTC->getIdBnDataType(), BACNET_DT_DATE);
    EXPECT_EQ(dateTime->getInternalBDTCs()[1].pDTC->getIdBnDataType(), BACNET_DT_TIME);

    std::vector<BnDataType::Record> visible;
    ASSERT_GT(BnDataType::retrieveAllUserVisible(visible), 100);
    auto listed = [&visible](const std::string& name) {
        return std::any_of(visible.begin(), visible.end(),
                           [&name](const BnDataType::Record& record) { return record.name == name; });
    };
    EXPECT_TRUE(listed("0-BACnetDateTime"));
    EXPECT_TRUE(listed("947-BACnetTrendLogLastUploaded"));
    EXPECT_FALSE(listed("0-DataPropertyInObject"));
}

TEST_F(GeneratedCatalogue, TheGuideDecodesAReferenceByItsCatalogueMembers) {
    // BACnetDeviceObjectPropertyReference: [0] analog-input 5, [1] present-value, [3] device 1.
    const uint8_t bytes[] = {0x0C, 0x00, 0x00, 0x00, 0x05, 0x19, 0x55, 0x3C, 0x02, 0x00, 0x00, 0x01};
    BACnet_Datatype_By_Context_Tag guide;
    init_bacnet_datatype_by_context_tag(&guide, BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE);
    BACNET_APPLICATION_DATA_VALUE* values = nullptr;
    ASSERT_EQ(bacapp_decode_by_context(bytes, sizeof bytes, &guide,
                                       BnDataTypeConstruct::get_datatype_by_context, &values),
              static_cast<int>(sizeof bytes));
    EXPECT_EQ(TQTest::describe(values), "[0]o0,5 [1]e85 [3]o8,1");
    bacapp_value_list_free(values);
    BnDataTypeConstruct::deleteBdbct(&guide.child);
}
