// The stored tree on the test's database (SQLite, or PostgreSQL under with-postgres.sh):
// build, store, reload in another process, update through the prepared statement, delete;
// navigation edge cases; several writer processes at once.
#include "TQ/Peripherals/Entity/DvBus.h"
#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/Entity/BnDeviceObjectPropertyValue.h"
#include "TQ_BACnet/Entity/Names.h"
#include "TreeDatabase.h"
#include "TreeDump.h"

#include <Poco/Data/Statement.h>
#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <Poco/StreamCopier.h>

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;
using TQ::Utility::Data::EntityServer;
using TQ::Utility::Data::pDB;

namespace {

struct ChildResult {
    int status;
    std::string output;
};

Poco::ProcessHandle launchChild(const std::vector<std::string>& args, Poco::Pipe* out) {
    std::vector<std::string> all{TQTest::TreeDatabase::open().isPostgreSQL() ? "postgresql" : "sqlite",
                                 TQTest::TreeDatabase::open().location()};
    all.insert(all.end(), args.begin(), args.end());
    return Poco::Process::launch(TQ_BINARY_DIR "/tests/entity/tree/tq_tree_child", all, nullptr, out,
                                 nullptr);
}

ChildResult runChild(const std::vector<std::string>& args) {
    Poco::Pipe out;
    Poco::ProcessHandle handle = launchChild(args, &out);
    Poco::PipeInputStream stream(out);
    std::string text;
    Poco::StreamCopier::copyToString(stream, text);
    return {handle.wait(), text};
}

DataType::BACnetPropertyValue propertyValue(BACNET_PROPERTY_ID property, const ValueContainer& value) {
    return DataType::BACnetPropertyValue(DataType::BACnetPropertyReference(property, BACNET_ARRAY_ALL, 0),
                                         value, -1);
}

using TQTest::count;
using TQTest::real;
using TQTest::storeDevice;
using TQTest::text;

// The property identifiers stored under an object below the `below` class.
int propertyIds(int object, BnDeviceObjectProperty::Optional below, std::vector<int>& listed) {
    return BnDeviceObjectProperty::retrievePropertyIDs(static_cast<unsigned>(object), BnDeviceObjectProperty::OPTIONAL_NONE,
                                                       below, listed);
}

TEST(PostgreSQLPlaceholders, NumberedOutsideQuotesAndComments) {
    const std::pair<const char*, const char*> cases[] = {
        {"a=? AND b=?", "a=$1 AND b=$2"},
        {"v='?' AND \"c?\"=? -- ?\n AND d=?", "v='?' AND \"c?\"=$1 -- ?\n AND d=$2"},
        {"v='it''s?' OR w=?", "v='it''s?' OR w=$1"},
        {"no placeholders", "no placeholders"},
    };
    for (const auto& c : cases) EXPECT_EQ(TQ::Utility::Data::numberPlaceholders(c.first), c.second);
}

class Tree : public ::testing::Test {
protected:
    void SetUp() override {
        TQ_TREE_DATABASE();
        _server.reset(new EntityServer());
    }
    EntityServer& server() { return *_server; }

private:
    std::unique_ptr<EntityServer> _server;
};

TEST_F(Tree, GatewayOfTwoDevicesAndFiftyObjectsSurvivesAFreshProcessAnUpdateAndADelete) {
    BnGw gw(true);
    gw.setName("site");
    for (int d = 0; d < 2; ++d) {
        BnDevice device(true);
        device.setEnabled(d == 0);
        gw.addDevice(device);
    }
    ASSERT_EQ(gw.getDevices()->size(), 2u);
    for (auto& device : *gw.getDevices())
        for (unsigned i = 25; i-- > 0;) {  // added backwards: the map orders them
            BnDeviceObject object(true);
            object.setObjectIdentifier(
                DataType::ObjectIdentifier(i % 2 ? OBJECT_ANALOG_INPUT : OBJECT_ANALOG_VALUE, i));
            object.setEnabled(i != 3);
            device.second.addObject(object);
            BnDeviceObject* placed = device.second.findBnDeviceObject(object.getObjectIdentifier());
            auto present = propertyValue(PROP_PRESENT_VALUE, real(static_cast<float>(i) + 0.5f));
            placed->addBnDeviceObjectProperty(present, 1, Poco::Nullable<int>(5));
            auto name = propertyValue(PROP_OBJECT_NAME, text("point " + std::to_string(i)));
            placed->addBnDeviceObjectProperty(name, 1, Poco::Nullable<int>());
        }

    std::vector<TQ::Utility::Data::DataAutoIncrement> keys;
    pDB->begin();
    EXPECT_EQ(gw.updateAll(server(), &keys), 1 + 2 + 50 + 100);
    pDB->commit();
    EXPECT_EQ(keys.size(), 153u);
    for (auto& device : *gw.getDevices()) {
        EXPECT_EQ(device.first, device.second.getPK()) << "devices are moved under their stored keys";
        EXPECT_EQ(device.second.getIdBnGw().value(), gw.getPK());
    }

    const std::string stored = TQTest::dumpTree(gw);
    ChildResult fresh = runChild({"dump", std::to_string(gw.getPK())});
    ASSERT_EQ(fresh.status, 0);
    EXPECT_EQ(fresh.output, stored);
    EXPECT_NE(stored.find("property 85 = 3.5 poll 5"), std::string::npos) << stored;

    // One value through the prepared statement, which later calls re-execute with new values.
    BnDevice& first = gw.getDevices()->begin()->second;
    BnDeviceObject* object = first.findBnDeviceObject(DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 3));
    ASSERT_NE(object, nullptr);
    const int key = object->findBnDeviceObjectProperty(PROP_PRESENT_VALUE)->getPK();
    const int nameKey = object->findBnDeviceObjectProperty(PROP_OBJECT_NAME)->getPK();
    static Poco::Data::Statement* statement = new Poco::Data::Statement(pDB->getSession());
    EXPECT_EQ(BnDeviceObjectProperty::dbUpdatePropertyValue(key, "42.25", statement), 1);
    EXPECT_EQ(BnDeviceObjectProperty::dbUpdatePropertyValue(nameKey, "renamed", statement), 1);
    std::string value;
    EXPECT_TRUE(BnDeviceObjectProperty::dbGetPropertyValue(key, value));
    EXPECT_EQ(value, "42.25");
    EXPECT_TRUE(BnDeviceObjectProperty::dbGetPropertyValue(nameKey, value));
    EXPECT_EQ(value, "renamed");

    object->setDeleted(true);
    EXPECT_EQ(server().update(*object), 1);
    std::string expected = stored;
    const std::string line = "  object 0,3 enabled 0\n";
    const std::size_t at = expected.find(" device " + std::to_string(first.getPK()));
    const std::size_t begin = expected.find(line, at);
    ASSERT_NE(begin, std::string::npos);
    expected.erase(begin, expected.find("  object", begin + line.size()) - begin);
    EXPECT_EQ(runChild({"dump", std::to_string(gw.getPK())}).output, expected);
}

TEST_F(Tree, NavigationEdges) {
    BnDevice device(false);
    ASSERT_EQ(device.retrieve(storeDevice(), server()), 1);
    EXPECT_EQ(device.findBnDeviceObject(DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 1)), nullptr);
    EXPECT_EQ(device.getBnDeviceObjects(), nullptr) << "an empty map is not kept";

    // Stored out of order, read in type then instance order.
    const uint32_t ids[] = {DataType::ObjectIdentifier(OBJECT_ANALOG_VALUE, 1).getValue(),
                            DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 5).getValue(),
                            DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 1).getValue(),
                            DataType::ObjectIdentifier(OBJECT_ANALOG_OUTPUT, 0).getValue()};
    for (uint32_t id : ids) {
        BnDeviceObject object(true);
        object.setObjectIdentifier(DataType::ObjectIdentifier(id));
        object.setBnDevice(&device);
        server().update(object);
    }
    std::vector<uint32_t> order;
    for (auto& entry : *device.retrieveBnDeviceObjects()) {
        order.push_back(entry.second.getPackedObjectIdentifier());
        EXPECT_EQ(entry.second.getBnDevice(), &device);
    }
    EXPECT_EQ(order, (std::vector<uint32_t>{ids[2], ids[1], ids[3], ids[0]}));

    // A copy owns its own objects, which point at the copy.
    auto* copy = new BnDevice(device);
    for (auto& entry : *copy->getBnDeviceObjects()) EXPECT_EQ(entry.second.getBnDevice(), copy);
    BnDeviceObject replacement(true);
    replacement.setObjectIdentifier(DataType::ObjectIdentifier(ids[0]));
    replacement.setEnabled(false);
    copy->addObject(replacement);
    EXPECT_EQ(copy->getBnDeviceObjects()->size(), 4u) << "same identifier: replaced";
    EXPECT_FALSE(copy->findBnDeviceObject(DataType::ObjectIdentifier(ids[0]))->getEnabled().value());
    EXPECT_TRUE(device.findBnDeviceObject(DataType::ObjectIdentifier(ids[0]))->getEnabled().isNull());
    delete copy;

    device.setPK(7, true);
    for (auto& entry : *device.getBnDeviceObjects()) {
        EXPECT_EQ(entry.second.getIdBnDevice(), 7);
        EXPECT_TRUE(entry.second.isChanged(BnDeviceObject::_COL_ID_BN_DEVICE));
    }
}

TEST_F(Tree, ApduGatewayFollowsTheBusType) {
    // bus type (-1: no bus row), whether the gateway is an APDU gateway
    for (const auto& c : {std::make_pair(102, true), std::make_pair(101, false), std::make_pair(-1, false)}) {
        BnGw gw(true);
        TQ::Peripherals::Entity::DvBus bus(true);
        bus.setIdDvBusType(c.first);
        if (c.first >= 0) server().update(bus);
        gw.setIdDvBus(c.first >= 0 ? bus.getPK() : 999999);
        server().update(gw);
        BnGw read(false);
        server().setWhere(Names::ID_BN_GW + "=?");
        server().clearBinds();
        server().addBind(gw.getPK());
        ASSERT_EQ(server().retrieve(read), 1);
        EXPECT_EQ(read.isApduGateway(), c.second) << c.first;
    }
}

TEST_F(Tree, StoredValuesReadBackTyped) {
    BnDevice device(false);
    ASSERT_EQ(device.retrieve(storeDevice(), server()), 1);
    BnDeviceObject object(true);
    object.setObjectIdentifier(DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 9));
    device.addObject(object);
    BnDeviceObject* placed = device.findBnDeviceObject(object.getObjectIdentifier());

    ValueContainer flag;
    flag.setBool(true);
    ValueContainer units;
    units.setEnum(62);
    ValueContainer interval;
    interval.setUInt(4000000000u);
    const std::vector<std::pair<BACNET_PROPERTY_ID, ValueContainer>> values{
        {PROP_PRESENT_VALUE, real(-21.75f)}, {PROP_OBJECT_NAME, text("Hall 'north'; ü")},
        {PROP_OUT_OF_SERVICE, flag},         {PROP_UNITS, units},
        {PROP_UPDATE_INTERVAL, interval},    {PROP_DESCRIPTION, text("x")}};
    for (const auto& entry : values) {
        auto value = propertyValue(entry.first, entry.second);
        placed->addBnDeviceObjectProperty(value, 3, Poco::Nullable<int>());
    }
    placed->updateAll(server(), nullptr);

    BnDeviceObject read(false);
    ASSERT_EQ(read.retrieve(device.getPK(), object.getObjectIdentifier(), server()), 1);
    for (const auto& entry : values) {
        SCOPED_TRACE(entry.first);
        BnDeviceObjectProperty* property = read.findBnDeviceObjectProperty(entry.first);
        ASSERT_NE(property, nullptr);
        EXPECT_TRUE(property->getPollRateSec().isNull());
        ValueContainer back;
        std::string expected, actual;
        property->getValue(back).getText(actual, false);
        EXPECT_EQ(actual, entry.second.getText(expected, false));
    }

    std::vector<int> listed;
    EXPECT_EQ(propertyIds(read.getPK(), BnDeviceObjectProperty::OPTIONAL_ALL, listed), 6);
    EXPECT_EQ(listed.back(), -1);
    EXPECT_EQ(propertyIds(read.getPK(), BnDeviceObjectProperty::OPTIONAL_REQUIRED_WRITABLE, listed), 4)
        << "description and update-interval are optional";
}

TEST_F(Tree, StoredValueRowsEdges) {
    BnDevice device(false);
    ASSERT_EQ(device.retrieve(storeDevice(), server()), 1);
    BnDeviceObject object(true);
    object.setObjectIdentifier(DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 1));
    object.setBnDevice(&device);
    server().update(object);
    std::vector<int> listed{1, 2};
    EXPECT_EQ(propertyIds(object.getPK(), BnDeviceObjectProperty::OPTIONAL_ALL, listed), 0);
    EXPECT_EQ(listed, std::vector<int>{-1});

    // A NULL value, a row whose catalogue row is gone, and the property list (never listed).
    BnDeviceObjectProperty nullValue(true);
    nullValue.setBnDeviceObject(&object);
    nullValue.setPropertyIdentifier(PROP_PRESENT_VALUE);
    BnDeviceObjectPropertyValue extra(true);
    extra.setSort(2);
    extra.setValue("later");
    nullValue.addBnDeviceObjectPropertyValue(extra);
    EXPECT_EQ(nullValue.updateAll(server(), nullptr), 2);
    BnDeviceObjectProperty orphan(true);
    orphan.setBnDeviceObject(&object);
    orphan.setVar(BnDeviceObjectProperty::_COL_ID_BN_PROPERTY_TYPE, static_cast<int>(PROP_UNITS), true);
    orphan.setVar(BnDeviceObjectProperty::_COL_ID_BN_PROPERTIES_IN_OBJECT, 999999, true);
    server().update(orphan);
    ValueContainer untyped;
    EXPECT_THROW(orphan.getValue(untyped), Poco::NullPointerException) << "no catalogue row";
    BnDeviceObjectProperty list(true);
    list.setBnDeviceObject(&object);
    list.setPropertyIdentifier(PROP_PROPERTY_LIST);
    ASSERT_FALSE(list.getVar(BnDeviceObjectProperty::_COL_ID_BN_PROPERTY_TYPE).isEmpty());
    server().update(list);

    std::string value = "untouched";
    EXPECT_TRUE(BnDeviceObjectProperty::dbGetPropertyValue(nullValue.getPK(), value));
    EXPECT_EQ(value, "NULL");
    value = "untouched";
    EXPECT_FALSE(BnDeviceObjectProperty::dbGetPropertyValue(999999, value));
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(propertyIds(object.getPK(), BnDeviceObjectProperty::OPTIONAL_ALL, listed), 1);
    EXPECT_EQ(listed, (std::vector<int>{PROP_PRESENT_VALUE, -1}));

    BnDeviceObject read(false);
    ASSERT_EQ(read.retrieve(device.getPK(), object.getObjectIdentifier(), server()), 1);
    ASSERT_EQ(read.getBnDeviceObjectProperties()->size(), 2u) << "the orphan is not read";
    BnDeviceObjectPropertyValue* row =
        read.findBnDeviceObjectProperty(PROP_PRESENT_VALUE)->getBnDeviceObjectPropertyValue();
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->getValue().convert<std::string>(), "later");
    EXPECT_EQ(read.findBnDeviceObjectProperty(PROP_PROPERTY_LIST)->getBnDeviceObjectPropertyValue(), nullptr);
}

TEST_F(Tree, WriterProcessesAtOnceLoseNothing) {
    const int deviceKey = storeDevice();
    constexpr int kWriters = 4;
    constexpr int kEach = 15;
    std::vector<Poco::ProcessHandle> writers;
    for (int w = 0; w < kWriters; ++w)
        writers.push_back(launchChild(
            {"write", std::to_string(deviceKey), std::to_string(1000 + w * kEach), std::to_string(kEach)},
            nullptr));
    for (auto& writer : writers) EXPECT_EQ(writer.wait(), 0);

    const std::string device = std::to_string(deviceKey);
    EXPECT_EQ(count("SELECT COUNT(*) FROM bn_device_object WHERE id_bn_device=" + device), kWriters * kEach);
    // Every property landed under its own object: the generated keys did not cross.
    EXPECT_EQ(count("SELECT COUNT(*) FROM bn_device_object o, bn_device_object_property p "
                    "WHERE p.id_bn_device_object=o.id_bn_device_object AND o.id_bn_device=" +
                    device + " AND p.id_bn_property_type=77 AND p.value='AI ' || o.instance_nr"),
              kWriters * kEach);
    EXPECT_EQ(count("SELECT COUNT(*) FROM bn_device_object o, bn_device_object_property p "
                    "WHERE p.id_bn_device_object=o.id_bn_device_object AND o.id_bn_device=" +
                    device),
              2 * kWriters * kEach);
}

}  // namespace
