#include "ProbeEntities.h"

#include "TQ/BACnet/Client/DataPropertyKey.h"
#include "TQ/BACnet/Server/LboDeviceManager.h"
#include "TQ/Peripherals/Entity/DvBus.h"
#include "TQ/Utility/Data/EntityServer.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>
#include <unordered_set>
#include <vector>

using namespace TQ::BACnet::Client;
using namespace TQ::BACnet::Server;
using namespace TQ::Peripherals::Entity;

TEST(LboDeviceManager, RegistryFindsRegistersAndForgets) {
    EXPECT_EQ(LboDeviceManager::findDeviceManager(1001, false), nullptr);
    auto manager = std::make_shared<LboDeviceManager>(1001, "main");
    EXPECT_TRUE(LboDeviceManager::registerDeviceManager(manager));
    EXPECT_FALSE(LboDeviceManager::registerDeviceManager(std::make_shared<LboDeviceManager>(1001)))
        << "an instance has one manager";
    EXPECT_EQ(LboDeviceManager::findDeviceManager(1001, false), manager);

    auto created = LboDeviceManager::findDeviceManager(1002, true);
    ASSERT_NE(created, nullptr);
    EXPECT_TRUE(created->getDeviceInstance() == 1002 &&
                LboDeviceManager::findDeviceManager(1002, true) == created)
        << "create does not replace";
    EXPECT_EQ(LboDeviceManager::getDeviceInstances(), (std::vector<uint32_t>{1001, 1002}));

    EXPECT_TRUE(LboDeviceManager::unregisterDeviceManager(1001) &&
                !LboDeviceManager::unregisterDeviceManager(1001));
    EXPECT_EQ(LboDeviceManager::findDeviceManager(1001, false), nullptr);
    EXPECT_EQ(manager->getName(), "main") << "a held manager outlives its registration";
    EXPECT_TRUE(LboDeviceManager::unregisterDeviceManager(1002));

    EXPECT_THROW(LboDeviceManager(4194303), Poco::InvalidArgumentException);
    EXPECT_NO_THROW(LboDeviceManager(4194302));
    EXPECT_THROW(LboDeviceManager::findDeviceManager(4194303, true), Poco::InvalidArgumentException);
    EXPECT_THROW(LboDeviceManager::registerDeviceManager(nullptr), Poco::NullPointerException);
}

TEST(LboDeviceManager, ConcurrentCreatesAgreeOnOneManager) {
    std::vector<std::shared_ptr<LboDeviceManager>> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < seen.size(); ++t)
        threads.emplace_back([&seen, t] {
            for (uint32_t i = 0; i < 200; ++i) {
                auto manager = LboDeviceManager::findDeviceManager(5000 + i, true);
                if (i == 199) seen[t] = manager;
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (const auto& manager : seen) EXPECT_EQ(manager, seen[0]);
    EXPECT_EQ(LboDeviceManager::getDeviceInstances().size(), 200u);
    for (uint32_t i = 0; i < 200; ++i) EXPECT_TRUE(LboDeviceManager::unregisterDeviceManager(5000 + i));
}

TEST(DataPropertyKey, PartsOrderAndText) {
    DataPropertyKey key = DataPropertyKey::fromObject(260001, 8, 260001, 85);
    EXPECT_TRUE(key.getObjectIdentifier() == ((8u << 22) | 260001u) && key.getObjectType() == 8);
    EXPECT_TRUE(!key.hasArrayIndex() && key.toString() == "260001,8:260001,85");
    EXPECT_EQ(DataPropertyKey(1, 5, 87, 3).toString(), "1,0:5,87[3]");
    EXPECT_EQ(DataPropertyKey::fromObject(1, 1023, 0x7FFFFF, 1).getObjectInstance(), 0x3FFFFFu)
        << "instance cut to 22 bits";

    // Ordered by device, object, property, then index (no index last); equal keys collapse.
    const std::vector<DataPropertyKey> ordered{DataPropertyKey(1, 2, 7, 0), DataPropertyKey(1, 2, 7, 1),
                                               DataPropertyKey(1, 2, 7), DataPropertyKey(1, 9, 0),
                                               DataPropertyKey(2, 0, 0)};
    std::map<DataPropertyKey, int> byKey;
    for (auto it = ordered.rbegin(); it != ordered.rend(); ++it) byKey[*it] = 1;
    byKey[DataPropertyKey(1, 2, 7, 0)] = 42;
    std::vector<DataPropertyKey> keys;
    for (const auto& entry : byKey) keys.push_back(entry.first);
    EXPECT_TRUE(keys == ordered && byKey.begin()->second == 42);

    std::unordered_set<DataPropertyKey, TQ::BACnet::Client::DataPropertyKeyHash> hashed(ordered.begin(),
                                                                                        ordered.end());
    hashed.insert(DataPropertyKey(2, 0, 0));
    EXPECT_EQ(hashed.size(), 5u);
}

TEST(DvBus, ReadsAndWritesTheBusTable) {
    TQTest::TempDatabase scratch;
    using Poco::Data::Keywords::now;
    scratch.session() << "INSERT INTO dv_bus (id_dv_bus, id_dv_bus_type, name) VALUES (3, 102, NULL)", now;
    DvBus bus(false);
    EXPECT_EQ(bus.getColName(DvBus::_COL_ID_DV_BUS_TYPE), "id_dv_bus_type");
    ASSERT_EQ(bus.retrieve(3), 1);
    EXPECT_TRUE(bus.getPK() == 3 && bus.getIdDvBusType() == 102 && bus.getName().empty()) << "NULL name";
    EXPECT_EQ(bus.retrieve(4), 0);

    DvBus fresh(true);
    fresh.setIdDvBusType(7);
    fresh.setName("rs485");
    TQ::Utility::Data::EntityServer server;
    ASSERT_EQ(server.update(fresh, nullptr), 1);
    DvBus back(false);
    ASSERT_EQ(back.retrieve(fresh.getPK()), 1);
    EXPECT_TRUE(back.getName() == "rs485" && back.getIdDvBusType() == 7);
    EXPECT_EQ(TQTest::messageOf([] { DvBus(false).getIdDvBusType(); }), "Can not convert empty value.");
}
