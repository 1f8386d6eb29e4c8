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

#include <Poco/Data/Session.h>
#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <vector>

using namespace TQ::BACnet::Entity;
using TQ::Utility::Data::EntityServer;

// Each class names its table's columns in the order of the generated schema: the rows are read
// by position, so a column missing, added or moved in either shows up here.
TEST(EntityColumns, EveryClassListsTheColumnsOfItsTableInTheSchema) {
    const std::shared_ptr<Bn> entities[] = {
        std::make_shared<BnGw>(false),
        std::make_shared<BnDevice>(false),
        std::make_shared<BnDeviceObject>(false),
        std::make_shared<BnDeviceObjectProperty>(false),
        std::make_shared<BnDeviceObjectPropertyValue>(false),
        std::make_shared<BnPropertiesInObject>(false),
        std::make_shared<BnDataType>(false),
        std::make_shared<BnDataTypeConstruct>(false),
        std::make_shared<BnDataTypeEnum>(false),
        std::make_shared<BnWsError>(false),
        std::make_shared<BnWsMetadataQueryOptions>(false),
        std::make_shared<BnMarkupType>(false)};
    for (const auto& entity : entities) {
        const std::string& table = entity->getTableName();
        SCOPED_TRACE(table);
        std::vector<std::string> schema, listed;
        TQTest::TestCatalogue::get().session() << "SELECT name FROM pragma_table_info('" + table + "')",
            Poco::Data::Keywords::into(schema), Poco::Data::Keywords::now;
        for (const std::string* name : entity->getColNames()) listed.push_back(*name);
        EXPECT_FALSE(schema.empty());
        EXPECT_EQ(listed, schema);
        EXPECT_EQ(entity->getColumnCnt(), listed.size());
    }
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
