// CreateObject and DeleteObject on the stored tree (SQLite, or PostgreSQL under
// with-postgres.sh): what they write, what they refuse, and that a write failing half-way
// leaves the database as it was.
#include "../entity/tree/TreeDatabase.h"
#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnDeviceObject.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"
#include "TQ_BACnet/Entity/BnGw.h"
#include "TQ_BACnet/Service/ObjectAccess/CreateObject.h"
#include "TQ_BACnet/Service/ObjectAccess/DeleteObject.h"

#include <Poco/Data/Statement.h>

#include <gtest/gtest.h>

#include <functional>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Service::ObjectAccess;
using TQ::Utility::Data::EntityServer;
using TQ::Utility::Data::pDB;

namespace {

const DataType::ObjectIdentifier kAi7(OBJECT_ANALOG_INPUT, 7);

using TQTest::count;
using TQTest::real;
using TQTest::text;

void exec(const std::string& sql) {
    pDB->getSession() << sql, Poco::Data::Keywords::now;
}

/// Objects, properties and value texts under all devices: what "unchanged" compares.
std::string snapshot() {
    std::vector<std::string> rows;
    Poco::Data::Statement statement(pDB->getSession());
    statement << "SELECT " +
                     std::string(
                         "o.id_bn_object_type || ',' || o.instance_nr || ':' || "
                         "COALESCE(p.id_bn_property_type, -1) || '=' || COALESCE(p.value, 'NULL')") +
                     " FROM bn_device_object o LEFT JOIN bn_device_object_property p ON "
                     "p.id_bn_device_object=o.id_bn_device_object ORDER BY 1",
        Poco::Data::Keywords::into(rows);
    statement.execute();
    std::string all;
    for (const auto& row : rows) all += row + "\n";
    return all;
}

class ObjectLifecycle : public ::testing::Test {
protected:
    void SetUp() override {
        TQ_TREE_DATABASE();
        _device = TQTest::storeDevice();
    }

    CreateObject ai7(bool updateExisting, float present, const std::string& name) const {
        CreateObject create(kAi7, updateExisting);
        create.addInitialValue(PROP_PRESENT_VALUE, real(present));
        create.addInitialValue(PROP_OBJECT_NAME, text(name));
        return create;
    }

    int _device = -1;
};

TEST_F(ObjectLifecycle, CreateUpdateAndDelete) {
    DataError error;
    EXPECT_EQ(ai7(false, 1.5f, "hall").dbUpdate(_device, 1, 4, Poco::Nullable<int>(30), &error), 3);
    EntityServer server;
    TQ::BACnet::Entity::BnDeviceObject object(false);
    ASSERT_EQ(object.retrieve(_device, kAi7, server), 1);
    EXPECT_FALSE(object.getCovEnabled().value());
    EXPECT_TRUE(object.getEnabled().value());
    auto* present = object.findBnDeviceObjectProperty(PROP_PRESENT_VALUE);
    ASSERT_NE(present, nullptr);
    EXPECT_EQ(present->getIdDvPort().value(), 4);
    EXPECT_EQ(present->getPollRateSec().value(), 30);
    auto* name = object.findBnDeviceObjectProperty(PROP_OBJECT_NAME);
    EXPECT_EQ(name->getIdDvPort().value(), -1);
    EXPECT_TRUE(name->getPollRateSec().isNull());

    const std::string created = snapshot();
    EXPECT_EQ(ai7(false, 2.5f, "other").dbUpdate(_device, 1, 4, Poco::Nullable<int>(), &error), -1);
    EXPECT_EQ(error.getErrorCode(), ERROR_CODE_OBJECT_IDENTIFIER_ALREADY_EXISTS);
    EXPECT_EQ(snapshot(), created);

    CreateObject update = ai7(true, 2.5f, "other");
    update.addInitialValue(PROP_DESCRIPTION, text("added"));
    EXPECT_EQ(update.dbUpdate(_device, 0, 4, Poco::Nullable<int>(), &error), 4);
    ASSERT_EQ(object.retrieve(_device, kAi7, server), 1);
    EXPECT_FALSE(object.getEnabled().value());
    EXPECT_EQ(object.retrieveBnDeviceObjectProperties()->size(), 3u);
    EXPECT_EQ(object.findBnDeviceObjectProperty(PROP_OBJECT_NAME)->getValueText().value(), "other");

    EXPECT_EQ(DeleteObject(kAi7).dbUpdate(_device, &error), 1);
    EXPECT_EQ(count("SELECT COUNT(*) FROM bn_device_object WHERE id_bn_device=" + std::to_string(_device)),
              0);
    EXPECT_EQ(count("SELECT COUNT(*) FROM bn_device_object_property WHERE id_bn_device_object=" +
                    std::to_string(object.getPK())),
              0)
        << "the properties go with their object";
    EXPECT_EQ(DeleteObject(kAi7).dbUpdate(_device, &error), 0);
    EXPECT_EQ(error.getErrorCode(), ERROR_CODE_UNKNOWN_OBJECT);

    CreateObject device(DataType::ObjectIdentifier(OBJECT_DEVICE, 99), false);
    ASSERT_GT(device.dbUpdate(_device, 1, -1, Poco::Nullable<int>()), 0);
    EXPECT_EQ(DeleteObject(DataType::ObjectIdentifier(OBJECT_DEVICE, 99)).dbUpdate(_device, &error), -1);
    EXPECT_EQ(error.getErrorCode(), ERROR_CODE_OBJECT_DELETION_NOT_PERMITTED);
    EXPECT_EQ(count("SELECT COUNT(*) FROM bn_device_object WHERE id_bn_device=" + std::to_string(_device)),
              1);
}

TEST_F(ObjectLifecycle, InitialValuesThatDoNotFitWriteNothing) {
    ValueContainer flag;
    flag.setBool(true);
    struct Case { const char* name; std::function<void(CreateObject&)> add; BACNET_ERROR_CODE code; };
    const auto badType = ERROR_CODE_INVALID_DATA_TYPE;
    // clang-format off
    const Case cases[] = {
        {"text for a REAL", [](CreateObject& c) { c.addInitialValue(PROP_PRESENT_VALUE, text("21.5")); }, badType},
        {"BOOLEAN for a name", [&](CreateObject& c) { c.addInitialValue(PROP_OBJECT_NAME, flag); }, badType},
        {"an Error as a value", [](CreateObject& c) { c.addInitialValue(PROP_PRESENT_VALUE, DataType::Error(ERROR_CLASS_PROPERTY, ERROR_CODE_OTHER)); }, badType},
        {"a property analog inputs lack", [](CreateObject& c) { c.addInitialValue(PROP_PRIORITY_ARRAY); }, ERROR_CODE_UNKNOWN_PROPERTY},
    };
    // clang-format on
    const std::string before = snapshot();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CreateObject create = ai7(false, 1.0f, "fits");
        c.add(create);
        DataError error;
        EXPECT_EQ(create.dbUpdate(_device, 1, -1, Poco::Nullable<int>(), &error), -1);
        EXPECT_EQ(error.getErrorCode(), c.code);
        EXPECT_EQ(snapshot(), before);
    }
    CreateObject empty(kAi7, false);
    empty.addInitialValue(PROP_DESCRIPTION);
    EXPECT_EQ(empty.dbUpdate(_device, 1, -1, Poco::Nullable<int>()), 2)
        << "no value at all fits any property";
}

TEST_F(ObjectLifecycle, AWriteFailingHalfWayLeavesTheDatabaseAsItWas) {
    // The second property cannot be written: its value would repeat a value that a unique
    // index allows only once. The object row and first property were already written.
    ai7(false, 1.0f, "first").dbUpdate(_device, 1, -1, Poco::Nullable<int>());
    exec("CREATE UNIQUE INDEX tq_test_unique_value ON bn_device_object_property (value)");
    const std::string before = snapshot();
    CreateObject clash(DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 8), false);
    clash.addInitialValue(PROP_PRESENT_VALUE, real(2.0f));
    clash.addInitialValue(PROP_OBJECT_NAME, text("first"));
    EXPECT_THROW(clash.dbUpdate(_device, 1, -1, Poco::Nullable<int>()), Poco::Exception);
    EXPECT_FALSE(pDB->isInTransaction());
    EXPECT_EQ(snapshot(), before);
    exec("DROP INDEX tq_test_unique_value");

    // A session that may only read.
    exec(TQTest::TreeDatabase::open().isPostgreSQL() ? "SET default_transaction_read_only = on"
                                                     : "PRAGMA query_only = 1");
    EXPECT_THROW(ai7(true, 3.0f, "read only").dbUpdate(_device, 1, -1, Poco::Nullable<int>()),
                 Poco::Exception);
    EXPECT_THROW(DeleteObject(kAi7).dbUpdate(_device), Poco::Exception);
    exec(TQTest::TreeDatabase::open().isPostgreSQL() ? "SET default_transaction_read_only = off"
                                                     : "PRAGMA query_only = 0");
    EXPECT_EQ(snapshot(), before);

    // A session that was closed.
    {
        auto closed = TQTest::TreeDatabase::openAt(TQTest::TreeDatabase::open().isPostgreSQL(),
                                                   TQTest::TreeDatabase::open().location());
        closed->getSession().close();
        TQ::Utility::Data::SmoDbSession* open = pDB;
        pDB = closed.get();
        EXPECT_THROW(ai7(true, 4.0f, "closed").dbUpdate(_device, 1, -1, Poco::Nullable<int>()),
                     Poco::Exception);
        pDB = open;
    }
    EXPECT_EQ(snapshot(), before);
}

}  // namespace
