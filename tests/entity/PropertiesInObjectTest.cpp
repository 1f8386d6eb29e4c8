// Properties per object type: one row, listings in display order, the numeric test and the
// stored properties that use a catalogue row.

#include "TestCatalogue.h"

#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnPropertiesInObject.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

TEST(BnPropertiesInObject, ReadsTheRowOfAnObjectTypeAndProperty) {
    TQTest::TestCatalogue::get();
    BnPropertiesInObject row(false);
    ASSERT_EQ(row.retrieve(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE), 1);
    EXPECT_EQ(row.getPK(), 1);
    EXPECT_EQ(row.getIdBnObjectType(), 0);
    EXPECT_EQ(row.getIdBnPropertyType(), 85);
    EXPECT_EQ(row.getOptional(), BnPropertiesInObject::OPTIONAL_REQUIRED);
    EXPECT_FALSE(row.isEmptyAllowed());
    EXPECT_TRUE(row.getDefaultValue().isEmpty());
    EXPECT_EQ(row.getIdBnDataType(), 4);
    EXPECT_EQ(row.getTag(), 4);
    EXPECT_EQ(row.getTagStructure(), 0);
    EXPECT_EQ(row.getDescription().value(), "present value");
    EXPECT_EQ(row.getManagedInternally(), 1);

    BnPropertiesInObject missing(false);
    EXPECT_LT(missing.retrieve(OBJECT_ANALOG_OUTPUT, PROP_DESCRIPTION), 1);
    EXPECT_EQ(missing.getPK(), -1);
    // Through the descriptor's own path the catalogue gives the same type.
    EXPECT_EQ(BnDataTypeConstruct::get_datatype(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE), BACNET_DT_REAL);
    EXPECT_EQ(BnDataTypeConstruct::get_datatype(OBJECT_ANALOG_OUTPUT, PROP_DESCRIPTION), BACNET_DT_NULL);
}

TEST(BnPropertiesInObject, ListingsUseExclusiveBoundsDisplayOrderAndNeverThePropertyList) {
    TQTest::TestCatalogue::get();
    using P = BnPropertiesInObject;
    // object type, bounds (both exclusive), count, identifiers in display order ending in -1
    const std::tuple<unsigned, P::Optional, P::Optional, int, std::vector<int>> cases[] = {
        {OBJECT_ANALOG_INPUT, P::OPTIONAL_NONE, P::OPTIONAL_REQUIRED_WRITABLE, 4, {77, 85, 36, 111, -1}},
        {OBJECT_ANALOG_INPUT, P::OPTIONAL_NONE, P::OPTIONAL_ALL, 6, {77, 85, 36, 28, 87, 111, -1}},
        {OBJECT_ANALOG_INPUT, P::OPTIONAL_REQUIRED, P::OPTIONAL_OPTIONAL, 1, {87, -1}},
        {50, P::OPTIONAL_NONE, P::OPTIONAL_ALL, 0, {-1}}};
    std::vector<int> ids{42, 43};
    for (const auto& c : cases) {
        EXPECT_EQ(P::retrieve(static_cast<BACNET_OBJECT_TYPE>(std::get<0>(c)), std::get<1>(c), std::get<2>(c), ids), std::get<3>(c));
        EXPECT_EQ(ids, std::get<4>(c));
    }
}

TEST(BnPropertiesInObject, NumericMeansASingleUnsignedSignedRealOrDouble) {
    TQTest::TestCatalogue::get();
    Poco::Nullable<bool> real = BnPropertiesInObject::isNumeric(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE);
    ASSERT_FALSE(real.isNull());
    EXPECT_TRUE(real.value());
    EXPECT_FALSE(BnPropertiesInObject::isNumeric(OBJECT_ANALOG_INPUT, PROP_PRIORITY_ARRAY).value());
    EXPECT_FALSE(BnPropertiesInObject::isNumeric(OBJECT_ANALOG_INPUT, PROP_EVENT_STATE).value());
    EXPECT_FALSE(BnPropertiesInObject::isNumeric(OBJECT_ANALOG_INPUT, PROP_OBJECT_NAME).value());
    EXPECT_TRUE(BnPropertiesInObject::isNumeric(OBJECT_ANALOG_OUTPUT, PROP_RELINQUISH_DEFAULT).value());
    EXPECT_TRUE(BnPropertiesInObject::isNumeric(OBJECT_ANALOG_OUTPUT, PROP_OBJECT_NAME).isNull());
}

TEST(BnPropertiesInObject, StoredPropertiesOfARowLoadOnDemandAndFollowItsKey) {
    TQTest::TestCatalogue::get();
    BnPropertiesInObject row(false);
    ASSERT_EQ(row.retrieve(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE), 1);
    std::map<int, BnDeviceObjectProperty>* stored = row.getBnDeviceObjectProperties();
    ASSERT_NE(stored, nullptr);
    // Two objects store Present_Value under this row; the map keeps one per identifier.
    ASSERT_EQ(stored->size(), 1u);
    BnDeviceObjectProperty& presentValue = stored->begin()->second;
    EXPECT_EQ(stored->begin()->first, 85);
    EXPECT_EQ(presentValue.getBnPropertiesInObject(), &row);
    EXPECT_EQ(row.getBnDeviceObjectProperties(), stored);
    EXPECT_EQ(row.findBnDeviceObjectProperty(85), &presentValue);
    EXPECT_EQ(row.findBnDeviceObjectProperty(77), nullptr);

    // Narrowed to one object through an extra condition.
    std::string where = "a.id_bn_device_object=?";
    std::vector<Poco::Dynamic::Var> binds{33};
    stored = row.retrieveBnDeviceObjectProperties(&where, &binds);
    ASSERT_NE(stored, nullptr);
    ASSERT_EQ(stored->size(), 1u);
    EXPECT_EQ(stored->at(85).getPK(), 1002);
    EXPECT_TRUE(stored->at(85).getValueText().isNull());

    row.setPK(9, true);
    EXPECT_EQ(stored->at(85).getIdBnPropertiesInObject().value(), 9);
    EXPECT_TRUE(stored->at(85).isChanged(BnDeviceObjectProperty::_COL_ID_BN_PROPERTIES_IN_OBJECT));

    // Copies own their properties, which point at the copy.
    BnPropertiesInObject copy(row);
    ASSERT_NE(copy.getBnDeviceObjectProperties(), nullptr);
    EXPECT_NE(copy.getBnDeviceObjectProperties(), stored);
    EXPECT_EQ(copy.findBnDeviceObjectProperty(85)->getBnPropertiesInObject(), &copy);

    // A row no stored property uses gives no map, and asks again next time.
    BnPropertiesInObject unused(false);
    ASSERT_EQ(unused.retrieve(OBJECT_ANALOG_INPUT, PROP_EVENT_STATE), 1);
    EXPECT_EQ(unused.getBnDeviceObjectProperties(), nullptr);
    EXPECT_EQ(unused.findBnDeviceObjectProperty(36), nullptr);

    // Reading another row drops the loaded map.
    ASSERT_EQ(row.retrieve(OBJECT_ANALOG_INPUT, PROP_OBJECT_NAME), 1);
    stored = row.getBnDeviceObjectProperties();
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->begin()->first, 77);
}
