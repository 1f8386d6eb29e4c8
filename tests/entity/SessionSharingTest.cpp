// Request threads whose catalogue lookups miss their caches share the process's one session with
// a writer that opens, commits and rolls back transactions: every lookup gets the catalogue's
// answer, no statement fails, and the writer's rollbacks undo only its own rows, never a value
// another thread updated meanwhile (without the session's lock they did). On SQLite and,
// with TQ_TEST_BACKEND=postgresql, on the throwaway PostgreSQL server.
#include "tree/TreeDatabase.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <numeric>
#include <random>
#include <functional>
#include <thread>
#include <vector>

using namespace Poco::Data::Keywords;
using namespace TQ::BACnet;

namespace {

constexpr int kReaders = 4;

// One cold lookup and the catalogue's answer to it, read beforehand by plain SQL.
struct Lookup {
    std::function<bool()> matches;
};

std::vector<Lookup> lookups(Poco::Data::Session& session) {
    std::vector<Lookup> all;
    std::vector<int> constructs, values, types, objects, properties, datatypes;
    std::vector<std::string> names, typeNames;
    // Left out: the object types supported (named as the object types are) and values above
    // 16 bits (the cache keeps 16 bits of a value).
    session << "SELECT id_bn_datatype_construct, value, name FROM bn_datatype_enum WHERE value<65536 AND "
               "id_bn_datatype_construct<>" + std::to_string(Entity::BnDataTypeEnum::kObjectTypesSupported),
        into(constructs), into(values), into(names), now;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const unsigned construct = unsigned(constructs[i]), value = unsigned(values[i]);
        const std::string name = names[i];
        all.push_back({[=] { return Entity::BnDataTypeEnum::find(construct, value) == name; }});
    }
    session << "SELECT id_bn_datatype, name FROM bn_datatype", into(types), into(typeNames), now;
    for (std::size_t i = 0; i < types.size(); ++i) {
        const int type = types[i];
        const std::string name = typeNames[i];
        all.push_back({[=] { return Entity::BnDataType::find(BACnetDataType(type)) == name; }});
    }
    session << "SELECT id_bn_object_type, id_bn_property_type, id_bn_datatype FROM bn_properties_in_object",
        into(objects), into(properties), into(datatypes), now;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const int object = objects[i], property = properties[i], datatype = datatypes[i];
        all.push_back({[=] {
            DataPropertyInObject0 d;
            return DataPropertyInObject0::getValueTypeAndStructure(BACNET_OBJECT_TYPE(object),
                                                                   BACNET_PROPERTY_ID(property), d, false) &&
                   int(d.datatype) == datatype;
        }});
    }
    return all;
}

TEST(SessionSharing, ColdLookupsAndTransactionsShareOneSession) {
    TQ_TREE_DATABASE();
    TQ::Utility::Data::SmoDbSession& db = TQTest::TreeDatabase::open().db();
    db.getSession() << "CREATE TABLE h6_writes (n INTEGER NOT NULL)", now;
    const std::vector<Lookup> all = lookups(db.getSession());
    ASSERT_GT(all.size(), 1000u);

    std::atomic<int> wrong{0}, failed{0}, readersLeft{kReaders};
    std::vector<std::thread> readers;
    for (int r = 0; r < kReaders; ++r)
        readers.emplace_back([&, r] {
            // Each reader walks the whole list in an order of its own, so that misses of
            // different caches (each with a lock of its own) meet.
            std::vector<std::size_t> order(all.size());
            std::iota(order.begin(), order.end(), 0);
            std::shuffle(order.begin(), order.end(), std::mt19937(unsigned(r)));
            for (std::size_t i : order) {
                try {
                    if (!all[i].matches()) ++wrong;
                } catch (const Poco::Exception& e) {
                    if (failed++ == 0) ADD_FAILURE() << e.displayText();
                }
            }
            --readersLeft;
        });
    // A value updated beside the writer's brackets is never undone by its rollbacks.
    db.getSession() << "INSERT INTO bn_device_object_property (id_bn_property_type, id_bn_device_object, value) "
                       "VALUES (85, 1, '0')",
        now;
    int row = -1;
    db.getSession() << "SELECT MAX(id_bn_device_object_property) FROM bn_device_object_property", into(row), now;
    std::atomic<int> undone{0};
    std::thread updater([&] {
        for (int n = 1; readersLeft > 0; ++n) {
            std::string back;
            try {
                Entity::BnDeviceObjectProperty::dbUpdatePropertyValue(row, std::to_string(n), nullptr);
                if (!Entity::BnDeviceObjectProperty::dbGetPropertyValue(row, back) || back != std::to_string(n))
                    ++undone;
            } catch (const Poco::Exception& e) {
                if (failed++ == 0) ADD_FAILURE() << "updater: " << e.displayText();
            }
        }
    });
    int committed = 0;
    for (int n = 0; readersLeft > 0 || n < 20; ++n) {
        try {
            db.begin();
            db.getSession() << "INSERT INTO h6_writes (n) VALUES (?)", bind(n), now;
            if (n % 2 == 0) {
                db.commit();
                ++committed;
            } else {
                db.rollback();
            }
        } catch (const Poco::Exception& e) {
            if (failed++ == 0) ADD_FAILURE() << "writer: " << e.displayText();
            db.rollback();
        }
    }
    for (std::thread& t : readers) t.join();
    updater.join();
    EXPECT_EQ(undone.load(), 0);
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(failed.load(), 0);
    int rows = -1;
    db.getSession() << "SELECT COUNT(*) FROM h6_writes", into(rows), now;
    EXPECT_EQ(rows, committed);
}

}  // namespace
