// Column lists, name constants and the row shape every entity class shares.

#include "TestCatalogue.h"

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnDeviceObject.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"
#include "TQ_BACnet/Entity/BnDeviceObjectPropertyValue.h"
#include "TQ_BACnet/Entity/BnGw.h"
#include "TQ_BACnet/Entity/BnMarkupType.h"
#include "TQ_BACnet/Entity/BnPropertiesInObject.h"
#include "TQ_BACnet/Entity/BnWsError.h"
#include "TQ_BACnet/Entity/BnWsMetadataQueryOptions.h"
#include "TQ_BACnet/Entity/Names.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <vector>

using namespace TQ::BACnet::Entity;
using TQ::Utility::Data::EntityServer;

namespace {

// Each class with its table, its columns in order and its index constants in the same order.
struct TableShape {
    std::shared_ptr<Bn> entity;
    std::string table;
    std::string columns;
    std::vector<int> constants;
};

std::vector<TableShape> allTables() {
    return {
        {std::make_shared<BnGw>(false),
         "bn_gw",
         "id_bn_gw id_bn_device name dnet id_dv_bus enabled load_autoconfigured",
         {BnGw::_COL_ID_BN_GW, BnGw::_COL_ID_BN_DEVICE, BnGw::_COL_NAME, BnGw::_COL_DNET,
          BnGw::_COL_ID_DV_BUS, BnGw::_COL_ENABLED, BnGw::_COL_LOAD_AUTOCONFIGURED}},
        {std::make_shared<BnDevice>(false),
         "bn_device",
         "id_bn_device id_bn_gw created id_dv_controller max_commit_timeout_sec enabled template",
         {BnDevice::_COL_ID_BN_DEVICE, BnDevice::_COL_ID_BN_GATEWAY, BnDevice::_COL_ID_CREATED,
          BnDevice::_COL_ID_DV_CONTROLLER, BnDevice::_COL_MAX_COMMIT_TIMEOUT_SEC, BnDevice::_COL_ENABLED,
          BnDevice::_COL_TEMPLATE}},
        {std::make_shared<BnDeviceObject>(false),
         "bn_device_object",
         "id_bn_device_object id_bn_device id_bn_object_type instance_nr cov_enabled enabled",
         {BnDeviceObject::_COL_ID_BN_DEVICE_OBJECT, BnDeviceObject::_COL_ID_BN_DEVICE,
          BnDeviceObject::_COL_ID_BN_OBJECT_TYPE, BnDeviceObject::_COL_INSTANCE_NR,
          BnDeviceObject::_COL_COV_ENABLED, BnDeviceObject::_COL_ENABLED}},
        {std::make_shared<BnDeviceObjectProperty>(false),
         "bn_device_object_property",
         "id_bn_device_object_property id_bn_property_type id_bn_device_object id_bn_properties_in_object "
         "id_dv_port value poll_rate_sec",
         {BnDeviceObjectProperty::_COL_ID_BN_DEVICE_OBJECT_PROPERTY,
          BnDeviceObjectProperty::_COL_ID_BN_PROPERTY_TYPE, BnDeviceObjectProperty::_COL_ID_BN_DEVICE_OBJECT,
          BnDeviceObjectProperty::_COL_ID_BN_PROPERTIES_IN_OBJECT, BnDeviceObjectProperty::_COL_ID_DV_PORT,
          BnDeviceObjectProperty::_COL_VALUE, BnDeviceObjectProperty::_COL_POLL_RATE_SEC}},
        {std::make_shared<BnDeviceObjectPropertyValue>(false),
         "bn_device_object_property_value",
         "id_bn_device_object_property_value id_bn_device_object_property sort value",
         {BnDeviceObjectPropertyValue::_COL_ID_BN_DEVICE_OBJECT_PROPERTY_VALUE,
          BnDeviceObjectPropertyValue::_COL_ID_BN_DEVICE_OBJECT_PROPERTY,
          BnDeviceObjectPropertyValue::_COL_SORT, BnDeviceObjectPropertyValue::_COL_VALUE}},
        {std::make_shared<BnPropertiesInObject>(false),
         "bn_properties_in_object",
         "id_bn_properties_in_object id_bn_object_type id_bn_property_type optional empty_allowed "
         "default_value "
         "id_bn_datatype tag tag_structure list_request_types description managed_internally",
         {BnPropertiesInObject::_COL_ID_BN_PROPERTIES_IN_OBJECT, BnPropertiesInObject::_COL_ID_BN_OBJECT_TYPE,
          BnPropertiesInObject::_COL_ID_BN_PROPERTY_TYPE, BnPropertiesInObject::_COL_OPTIONAL,
          BnPropertiesInObject::_COL_EMPTY_ALLOWED, BnPropertiesInObject::_COL_DEFAULT_VALUE,
          BnPropertiesInObject::_COL_ID_BN_DATATYPE, BnPropertiesInObject::_COL_TAG,
          BnPropertiesInObject::_COL_TAG_STRUCTURE, BnPropertiesInObject::_COL_LIST_REQUEST_TYPES,
          BnPropertiesInObject::_COL_DESCRIPTION, BnPropertiesInObject::_COL_MANAGED_INTERNALLY}},
        {std::make_shared<BnDataType>(false),
         "bn_datatype",
         "id_bn_datatype name",
         {BnDataType::_COL_ID_BN_DATATYPE, BnDataType::_COL_NAME}},
        {std::make_shared<BnDataTypeConstruct>(false),
         "bn_datatype_construct",
         "id_bn_datatype_construct id_parent id_bn_datatype id_bn_datatype_internal context_nr id_bn_markup "
         "name "
         "optional sort",
         {BnDataTypeConstruct::_COL_ID_BN_DATATYPE_CONSTRUCT, BnDataTypeConstruct::_COL_ID_PARENT,
          BnDataTypeConstruct::_COL_ID_BN_DATATYPE, BnDataTypeConstruct::_COL_ID_BN_DATATYPE_INTERNAL,
          BnDataTypeConstruct::_COL_CONTEXT_NR, BnDataTypeConstruct::_COL_ID_BN_MARKUP,
          BnDataTypeConstruct::_COL_NAME, BnDataTypeConstruct::_COL_OPTIONAL,
          BnDataTypeConstruct::_COL_SORT}},
        {std::make_shared<BnDataTypeEnum>(false),
         "bn_datatype_enum",
         "id_bn_datatype_enum id_bn_datatype_construct value name",
         {BnDataTypeEnum::_COL_ID_BN_DATATYPE_ENUM, BnDataTypeEnum::_COL_ID_BN_DATATYPE_CONSTRUCT,
          BnDataTypeEnum::_COL_VALUE, BnDataTypeEnum::_COL_NAME}},
        {std::make_shared<BnWsError>(false),
         "bn_ws_error",
         "id_bn_ws_error name http_status error_text",
         {BnWsError::_COL_ID_BN_WS_ERROR, BnWsError::_COL_NAME, BnWsError::_COL_HTTP_STATUS,
          BnWsError::_COL_ERROR_TEXT}},
        {std::make_shared<BnWsMetadataQueryOptions>(false),
         "bn_ws_metadata_query_options",
         "id catagory_enum_value metadata_enum_value",
         {BnWsMetadataQueryOptions::_COL_ID, BnWsMetadataQueryOptions::_COL_CATEGORY_ENUM_VALUE,
          BnWsMetadataQueryOptions::_COL_METADATA_ENUM_VALUE}},
        {std::make_shared<BnMarkupType>(false),
         "bn_markup_type",
         "id_bn_markup_type name",
         {BnMarkupType::_COL_ID_BN_MARKUP_TYPE, BnMarkupType::_COL_NAME}},
    };
}

}  // namespace

TEST(EntityColumns, EveryClassListsItsTableColumnsInOrderAndItsConstantsIndexThem) {
    for (const TableShape& shape : allTables()) {
        SCOPED_TRACE(shape.table);
        const Bn& entity = *shape.entity;
        EXPECT_EQ(entity.getTableName(), shape.table);
        std::string listed;
        for (const std::string* name : entity.getColNames()) listed += (listed.empty() ? "" : " ") + *name;
        EXPECT_EQ(listed, shape.columns);
        EXPECT_EQ(entity.getColumnCnt(), entity.getColNames().size());
        for (std::size_t i = 0; i < shape.constants.size(); ++i)
            EXPECT_EQ(shape.constants[i], static_cast<int>(i));
        EXPECT_EQ(shape.constants.size(), entity.getColNames().size()) << "one constant per column";
    }
}

TEST(EntityColumns, ColumnListsShareTheNameConstants) {
    EXPECT_EQ(BnGw::_colNames[BnGw::_COL_ID_BN_DEVICE], &Names::ID_BN_DEVICE);
    EXPECT_EQ(BnWsMetadataQueryOptions::_colNames[1], &Names::CATAGORY_ENUM_VALUE);
    EXPECT_EQ(&BnDataType(false).getTableName(), &Names::BN_DATATYPE);
}

TEST(EntityRows, NewRowsGetTheirDefaultsAndReadRowsOnlyWhatTheDatabaseHolds) {
    BnGw newGw(true);
    EXPECT_FALSE(newGw.isEnabled());
    EXPECT_TRUE(newGw.isChanged(BnGw::_COL_ENABLED));
    EXPECT_TRUE(BnGw(false).getVar(BnGw::_COL_ENABLED).isEmpty());
    BnDevice newDevice(true);
    EXPECT_EQ(newDevice.getIdDvController().value(), 0);
    EXPECT_EQ(newDevice.getMaxCommitTimeoutSec().value(), 30);
    EXPECT_TRUE(BnDevice(false).getMaxCommitTimeoutSec().isNull());
    BnDeviceObject newObject(true);
    for (unsigned column = 1; column < newObject.getColumnCnt(); ++column)
        EXPECT_TRUE(newObject.getVar(static_cast<int>(column)).isEmpty());
    // The identifier of a stored property never changes through an UPDATE.
    EXPECT_FALSE(BnDeviceObjectProperty(true).isUpdateable(BnDeviceObjectProperty::_COL_ID_BN_PROPERTY_TYPE));
}

TEST(EntityRows, NullColumnsReadEmptyTypedGettersRefuseThemAndTheKeyGoesThroughSetPK) {
    TQTest::TestCatalogue::get();
    EntityServer server;
    server.setWhere(Names::ID_BN_GW + "=?");
    server.addBind(1);
    BnGw gw(false);
    ASSERT_EQ(server.retrieve(gw), 1);
    EXPECT_EQ(gw.getPK(), 1);
    EXPECT_EQ(gw.getName().value(), "gateway one");
    EXPECT_TRUE(gw.getIdDvBus().isNull());
    EXPECT_TRUE(gw.getLoadAutoconfigured().isEmpty());
    EXPECT_TRUE(gw.isEnabled());

    BnDevice device(false);
    EntityServer deviceServer;
    ASSERT_EQ(device.retrieve(10, deviceServer), 1);
    EXPECT_EQ(device.getPK(), 10);
    EXPECT_EQ(device.getIdBnGw().value(), 1);
    EXPECT_EQ(device.getMaxCommitTimeoutSec().value(), 45);
    EXPECT_TRUE(device.getCreated().isEmpty());
    BnDevice missing(false);
    EXPECT_LT(missing.retrieve(4711, deviceServer), 1);
    EXPECT_EQ(missing.getPK(), -1);

    BnDeviceObject object(false);
    EXPECT_EQ(TQTest::messageOf<Poco::InvalidAccessException>([&] { object.getIdBnDevice(); }),
              "Can not convert empty value.");
}

TEST(EntityRows, ObjectsAreKeyedByPackedIdentifierAndReadInTypeThenInstanceOrder) {
    TQTest::TestCatalogue::get();

    EntityServer server;
    server.setWhere(Names::ID_BN_DEVICE + "=?");
    server.addBind(10);
    std::vector<BnDeviceObject> objects;
    ASSERT_EQ(server.retrieve(objects), 4);
    std::vector<uint32_t> order;
    for (const BnDeviceObject& object : objects) order.push_back(object.getPackedObjectIdentifier());
    EXPECT_EQ(order, (std::vector<uint32_t>{2u, 7u, (1u << 22) | 0u, (8u << 22) | 1u}));

    std::map<int, BnDeviceObject> byId;
    ASSERT_EQ(server.retrieve(byId), 4);
    ASSERT_EQ(byId.count(static_cast<int>((8u << 22) | 1u)), 1u);
    EXPECT_EQ(byId.at(static_cast<int>((8u << 22) | 1u)).getPK(), 31);
    ASSERT_FALSE(byId.at(7).getCovEnabled().isNull());
    EXPECT_FALSE(byId.at(7).getCovEnabled().value());
    EXPECT_TRUE(byId.at(2).getEnabled().isNull());

    // Packed identifiers compare unsigned: a device (type 8) sorts above an analog input,
    // and a type above 511 sets the sign bit without turning the order round.
    BnDeviceObject high(false);
    high.setPackedObjectIdentifier(0xFFC00001u);
    EXPECT_EQ(high.getIdBnObjectType(), 1023u);
    EXPECT_EQ(high.getInstanceNr(), 1u);
    EXPECT_TRUE(objects.front() < high);
    EXPECT_FALSE(high < objects.front());
}

TEST(EntityRows, StoredPropertiesAreReadOnlyWithTheirCatalogueRowAndKeyedByIdentifier) {
    TQTest::TestCatalogue::get();
    BnDeviceObjectProperty probe(false);
    EXPECT_EQ(probe.sqlFrom(), "bn_device_object_property a,bn_properties_in_object b");
    EXPECT_EQ(probe.sqlJoin(), "a.id_bn_properties_in_object=b.id_bn_properties_in_object");
    EXPECT_EQ(probe.sqlOrderBy(), "2");

    EntityServer server;
    std::vector<BnDeviceObjectProperty> all;
    // Row 1004 names a catalogue row that does not exist.
    ASSERT_EQ(server.retrieve(all), 4);
    for (const BnDeviceObjectProperty& property : all) EXPECT_NE(property.getPK(), 1004);
    EXPECT_TRUE(all.front().getIdBnPropertyType() <= all.back().getIdBnPropertyType());

    server.setWhere("a." + Names::ID_BN_DEVICE_OBJECT + "=?");
    server.addBind(32);
    std::map<int, BnDeviceObjectProperty> ofObject;
    ASSERT_EQ(server.retrieve(ofObject), 3);
    EXPECT_EQ(ofObject.at(85).getPK(), 1000);
    EXPECT_EQ(ofObject.at(85).getValueText().value(), "21.5");
    EXPECT_EQ(ofObject.at(85).getPollRateSec().value(), 10);
    EXPECT_TRUE(ofObject.at(77).getPollRateSec().isNull());
    EXPECT_EQ(ofObject.at(77).getIdDvPort().value(), 4);

    BnDeviceObjectProperty stored(true);
    stored.setPollRateSec(Poco::Nullable<int>());
    EXPECT_TRUE(stored.getVar(BnDeviceObjectProperty::_COL_POLL_RATE_SEC).isEmpty());
    EXPECT_TRUE(stored.isChanged(BnDeviceObjectProperty::_COL_POLL_RATE_SEC));

    // The catalogue row is read on demand and owned by the property; copies read their own.
    BnDeviceObjectProperty& presentValue = ofObject.at(85);
    BnPropertiesInObject* catalogueRow = presentValue.getBnPropertiesInObject();
    ASSERT_NE(catalogueRow, nullptr);
    EXPECT_EQ(catalogueRow->getIdBnPropertyType(), 85);
    EXPECT_EQ(presentValue.getBnPropertiesInObject(), catalogueRow);
    BnDeviceObjectProperty copy(presentValue);
    BnPropertiesInObject* copiedRow = copy.getBnPropertiesInObject();
    ASSERT_NE(copiedRow, nullptr);
    EXPECT_NE(copiedRow, catalogueRow);
    EXPECT_EQ(copiedRow->getPK(), 1);

    BnDeviceObjectPropertyValue value(false);
    EntityServer valueServer;
    valueServer.setWhere(Names::ID_BN_DEVICE_OBJECT_PROPERTY + "=?");
    valueServer.addBind(1000);
    ASSERT_EQ(valueServer.retrieve(value), 1);
    EXPECT_EQ(value.getValue().convert<std::string>(), "x");
    EXPECT_EQ(value.getIdBnDeviceObjectProperty().value(), 1000);
}
