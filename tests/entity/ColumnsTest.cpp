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

struct TableShape {
    std::shared_ptr<Bn> entity;
    std::string table;
    std::vector<std::string> columns;
    // Each index constant with the column it must name.
    std::vector<std::pair<int, std::string>> constants;
};

std::vector<TableShape> allTables() {
    return {
        {std::make_shared<BnGw>(false),
         "bn_gw",
         {"id_bn_gw", "id_bn_device", "name", "dnet", "id_dv_bus", "enabled", "load_autoconfigured"},
         {{BnGw::_COL_ID_BN_GW, "id_bn_gw"},
          {BnGw::_COL_ID_BN_DEVICE, "id_bn_device"},
          {BnGw::_COL_NAME, "name"},
          {BnGw::_COL_DNET, "dnet"},
          {BnGw::_COL_ID_DV_BUS, "id_dv_bus"},
          {BnGw::_COL_ENABLED, "enabled"},
          {BnGw::_COL_LOAD_AUTOCONFIGURED, "load_autoconfigured"}}},
        {std::make_shared<BnDevice>(false),
         "bn_device",
         {"id_bn_device", "id_bn_gw", "created", "id_dv_controller", "max_commit_timeout_sec", "enabled",
          "template"},
         {{BnDevice::_COL_ID_BN_DEVICE, "id_bn_device"},
          {BnDevice::_COL_ID_BN_GATEWAY, "id_bn_gw"},
          {BnDevice::_COL_ID_CREATED, "created"},
          {BnDevice::_COL_ID_DV_CONTROLLER, "id_dv_controller"},
          {BnDevice::_COL_MAX_COMMIT_TIMEOUT_SEC, "max_commit_timeout_sec"},
          {BnDevice::_COL_ENABLED, "enabled"},
          {BnDevice::_COL_TEMPLATE, "template"}}},
        {std::make_shared<BnDeviceObject>(false),
         "bn_device_object",
         {"id_bn_device_object", "id_bn_device", "id_bn_object_type", "instance_nr", "cov_enabled",
          "enabled"},
         {{BnDeviceObject::_COL_ID_BN_DEVICE_OBJECT, "id_bn_device_object"},
          {BnDeviceObject::_COL_ID_BN_DEVICE, "id_bn_device"},
          {BnDeviceObject::_COL_ID_BN_OBJECT_TYPE, "id_bn_object_type"},
          {BnDeviceObject::_COL_INSTANCE_NR, "instance_nr"},
          {BnDeviceObject::_COL_COV_ENABLED, "cov_enabled"},
          {BnDeviceObject::_COL_ENABLED, "enabled"}}},
        {std::make_shared<BnDeviceObjectProperty>(false),
         "bn_device_object_property",
         {"id_bn_device_object_property", "id_bn_property_type", "id_bn_device_object",
          "id_bn_properties_in_object", "id_dv_port", "value", "poll_rate_sec"},
         {{BnDeviceObjectProperty::_COL_ID_BN_DEVICE_OBJECT_PROPERTY, "id_bn_device_object_property"},
          {BnDeviceObjectProperty::_COL_ID_BN_PROPERTY_TYPE, "id_bn_property_type"},
          {BnDeviceObjectProperty::_COL_ID_BN_DEVICE_OBJECT, "id_bn_device_object"},
          {BnDeviceObjectProperty::_COL_ID_BN_PROPERTIES_IN_OBJECT, "id_bn_properties_in_object"},
          {BnDeviceObjectProperty::_COL_ID_DV_PORT, "id_dv_port"},
          {BnDeviceObjectProperty::_COL_VALUE, "value"},
          {BnDeviceObjectProperty::_COL_POLL_RATE_SEC, "poll_rate_sec"}}},
        {std::make_shared<BnDeviceObjectPropertyValue>(false),
         "bn_device_object_property_value",
         {"id_bn_device_object_property_value", "id_bn_device_object_property", "sort", "value"},
         {{BnDeviceObjectPropertyValue::_COL_ID_BN_DEVICE_OBJECT_PROPERTY_VALUE,
           "id_bn_device_object_property_value"},
          {BnDeviceObjectPropertyValue::_COL_ID_BN_DEVICE_OBJECT_PROPERTY, "id_bn_device_object_property"},
          {BnDeviceObjectPropertyValue::_COL_SORT, "sort"},
          {BnDeviceObjectPropertyValue::_COL_VALUE, "value"}}},
        {std::make_shared<BnPropertiesInObject>(false),
         "bn_properties_in_object",
         {"id_bn_properties_in_object", "id_bn_object_type", "id_bn_property_type", "optional",
          "empty_allowed", "default_value", "id_bn_datatype", "tag", "tag_structure", "list_request_types",
          "description", "managed_internally"},
         {{BnPropertiesInObject::_COL_ID_BN_PROPERTIES_IN_OBJECT, "id_bn_properties_in_object"},
          {BnPropertiesInObject::_COL_ID_BN_OBJECT_TYPE, "id_bn_object_type"},
          {BnPropertiesInObject::_COL_ID_BN_PROPERTY_TYPE, "id_bn_property_type"},
          {BnPropertiesInObject::_COL_OPTIONAL, "optional"},
          {BnPropertiesInObject::_COL_EMPTY_ALLOWED, "empty_allowed"},
          {BnPropertiesInObject::_COL_DEFAULT_VALUE, "default_value"},
          {BnPropertiesInObject::_COL_ID_BN_DATATYPE, "id_bn_datatype"},
          {BnPropertiesInObject::_COL_TAG, "tag"},
          {BnPropertiesInObject::_COL_TAG_STRUCTURE, "tag_structure"},
          {BnPropertiesInObject::_COL_LIST_REQUEST_TYPES, "list_request_types"},
          {BnPropertiesInObject::_COL_DESCRIPTION, "description"},
          {BnPropertiesInObject::_COL_MANAGED_INTERNALLY, "managed_internally"}}},
        {std::make_shared<BnDataType>(false),
         "bn_datatype",
         {"id_bn_datatype", "name"},
         {{BnDataType::_COL_ID_BN_DATATYPE, "id_bn_datatype"}, {BnDataType::_COL_NAME, "name"}}},
        {std::make_shared<BnDataTypeConstruct>(false),
         "bn_datatype_construct",
         {"id_bn_datatype_construct", "id_parent", "id_bn_datatype", "id_bn_datatype_internal", "context_nr",
          "id_bn_markup", "name", "optional", "sort"},
         {{BnDataTypeConstruct::_COL_ID_BN_DATATYPE_CONSTRUCT, "id_bn_datatype_construct"},
          {BnDataTypeConstruct::_COL_ID_PARENT, "id_parent"},
          {BnDataTypeConstruct::_COL_ID_BN_DATATYPE, "id_bn_datatype"},
          {BnDataTypeConstruct::_COL_ID_BN_DATATYPE_INTERNAL, "id_bn_datatype_internal"},
          {BnDataTypeConstruct::_COL_CONTEXT_NR, "context_nr"},
          {BnDataTypeConstruct::_COL_ID_BN_MARKUP, "id_bn_markup"},
          {BnDataTypeConstruct::_COL_NAME, "name"},
          {BnDataTypeConstruct::_COL_OPTIONAL, "optional"},
          {BnDataTypeConstruct::_COL_SORT, "sort"}}},
        {std::make_shared<BnDataTypeEnum>(false),
         "bn_datatype_enum",
         {"id_bn_datatype_enum", "id_bn_datatype_construct", "value", "name"},
         {{BnDataTypeEnum::_COL_ID_BN_DATATYPE_ENUM, "id_bn_datatype_enum"},
          {BnDataTypeEnum::_COL_ID_BN_DATATYPE_CONSTRUCT, "id_bn_datatype_construct"},
          {BnDataTypeEnum::_COL_VALUE, "value"},
          {BnDataTypeEnum::_COL_NAME, "name"}}},
        {std::make_shared<BnWsError>(false),
         "bn_ws_error",
         {"id_bn_ws_error", "name", "http_status", "error_text"},
         {{BnWsError::_COL_ID_BN_WS_ERROR, "id_bn_ws_error"},
          {BnWsError::_COL_NAME, "name"},
          {BnWsError::_COL_HTTP_STATUS, "http_status"},
          {BnWsError::_COL_ERROR_TEXT, "error_text"}}},
        {std::make_shared<BnWsMetadataQueryOptions>(false),
         "bn_ws_metadata_query_options",
         {"id", "catagory_enum_value", "metadata_enum_value"},
         {{BnWsMetadataQueryOptions::_COL_ID, "id"},
          {BnWsMetadataQueryOptions::_COL_CATEGORY_ENUM_VALUE, "catagory_enum_value"},
          {BnWsMetadataQueryOptions::_COL_METADATA_ENUM_VALUE, "metadata_enum_value"}}},
        {std::make_shared<BnMarkupType>(false),
         "bn_markup_type",
         {"id_bn_markup_type", "name"},
         {{BnMarkupType::_COL_ID_BN_MARKUP_TYPE, "id_bn_markup_type"}, {BnMarkupType::_COL_NAME, "name"}}},
    };
}

}  // namespace

TEST(EntityColumns, EveryClassListsItsTableColumnsInOrderAndItsConstantsIndexThem) {
    for (const TableShape& shape : allTables()) {
        SCOPED_TRACE(shape.table);
        const Bn& entity = *shape.entity;
        EXPECT_EQ(entity.getTableName(), shape.table);
        ASSERT_EQ(entity.getColNames().size(), shape.columns.size());
        EXPECT_EQ(entity.getColumnCnt(), shape.columns.size());
        for (std::size_t i = 0; i < shape.columns.size(); ++i) {
            ASSERT_NE(entity.getColNames()[i], nullptr);
            EXPECT_EQ(*entity.getColNames()[i], shape.columns[i]) << "column " << i;
            EXPECT_EQ(entity.getColName(static_cast<unsigned>(i)), shape.columns[i]);
        }
        EXPECT_EQ(shape.constants.size(), shape.columns.size()) << "one constant per column";
        for (const auto& constant : shape.constants)
            EXPECT_EQ(shape.columns.at(constant.first), constant.second);
    }
}

TEST(EntityColumns, NameConstantsPointAtTheSharedTextsAndKeepTheDatabaseSpelling) {
    EXPECT_EQ(Names::CATAGORY_ENUM_VALUE, "catagory_enum_value");
    EXPECT_EQ(Names::ID_BN_DEVICE_OBJECT_PROPERTY_VALUE, "id_bn_device_object_property_value");
    EXPECT_EQ(Names::BN_WS_METADATA_QUERY_OPTIONS, "bn_ws_metadata_query_options");
    // The column lists refer to the constants themselves, not to copies.
    EXPECT_EQ(BnGw::_colNames[BnGw::_COL_ID_BN_DEVICE], &Names::ID_BN_DEVICE);
    EXPECT_EQ(BnDevice::_colNames[BnDevice::_COL_ID_BN_GATEWAY], &Names::ID_BN_GW);
    EXPECT_EQ(BnWsMetadataQueryOptions::_colNames[1], &Names::CATAGORY_ENUM_VALUE);
    EXPECT_EQ(&BnDataType(false).getTableName(), &Names::BN_DATATYPE);
}

TEST(EntityRows, NewRowsGetTheirDefaultsAndReadRowsOnlyWhatTheDatabaseHolds) {
    BnGw newGw(true);
    EXPECT_TRUE(newGw.isNew());
    EXPECT_FALSE(newGw.isEnabled());
    EXPECT_TRUE(newGw.isChanged(BnGw::_COL_ENABLED));
    BnGw readGw(false);
    EXPECT_TRUE(readGw.getVar(BnGw::_COL_ENABLED).isEmpty());

    BnDevice newDevice(true);
    EXPECT_FALSE(newDevice.isEnabled());
    EXPECT_EQ(newDevice.getIdDvController().value(), 0);
    EXPECT_EQ(newDevice.getMaxCommitTimeoutSec().value(), 30);
    EXPECT_TRUE(BnDevice(false).getMaxCommitTimeoutSec().isNull());

    BnDeviceObject newObject(true);
    for (unsigned column = 1; column < newObject.getColumnCnt(); ++column)
        EXPECT_TRUE(newObject.getVar(static_cast<int>(column)).isEmpty());

    // The identifier of a stored property never changes through an UPDATE.
    BnDeviceObjectProperty property(true);
    EXPECT_FALSE(property.isUpdateable(BnDeviceObjectProperty::_COL_ID_BN_PROPERTY_TYPE));
    EXPECT_TRUE(property.isUpdateable(BnDeviceObjectProperty::_COL_VALUE));
}

TEST(EntityRows, NullColumnsReadEmptyTypedGettersRefuseThemAndTheKeyGoesThroughSetPK) {
    TQTest::TestCatalogue::get();
    EntityServer server;
    server.setWhere(Names::ID_BN_GW + "=?");
    server.addBind(1);
    BnGw gw(false);
    ASSERT_EQ(server.retrieve(gw), 1);
    EXPECT_EQ(gw.getPK(), 1);
    EXPECT_EQ(gw.getIdBnGw(), 1);
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
    try {
        object.getIdBnDevice();
        FAIL() << "an empty column converted";
    } catch (const Poco::InvalidAccessException& e) {
        EXPECT_EQ(e.message(), "Can not convert empty value.");
    }
}

TEST(EntityRows, ObjectsAreKeyedByPackedIdentifierAndReadInTypeThenInstanceOrder) {
    TQTest::TestCatalogue::get();
    BnDeviceObject probe(false);
    EXPECT_EQ(probe.sqlOrderBy(), "id_bn_object_type,instance_nr");

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
    EXPECT_EQ(high(), static_cast<int>(0xFFC00001u));
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
