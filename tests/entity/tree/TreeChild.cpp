// A second process on the test's database:
//   tq_tree_child <sqlite|postgresql> <location> dump <gateway key>
//       prints the gateway's subtree as read from the database;
//   tq_tree_child <sqlite|postgresql> <location> write <device key> <first instance> <count>
//       adds <count> analog inputs from <first instance> on, each with two properties, each
//       object in a transaction of its own.
#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/Entity/Names.h"
#include "TreeDatabase.h"
#include "TreeDump.h"

#include <iostream>

using namespace TQ::BACnet;

namespace {

int write(int deviceKey, unsigned first, unsigned count) {
    TQ::Utility::Data::EntityServer server;
    for (unsigned instance = first; instance < first + count; ++instance) {
        Entity::BnDevice device(false);
        if (device.retrieve(deviceKey, server) < 1) return 3;
        Entity::BnDeviceObject object(true);
        object.setObjectIdentifier(DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, instance));
        device.addObject(object);
        Entity::BnDeviceObject* placed = device.findBnDeviceObject(object.getObjectIdentifier());
        ValueContainer name;
        name.setCharString("AI " + std::to_string(instance));
        DataType::BACnetPropertyValue nameValue(
            DataType::BACnetPropertyReference(PROP_OBJECT_NAME, BACNET_ARRAY_ALL, 0), name, -1);
        placed->addBnDeviceObjectProperty(nameValue, 0, Poco::Nullable<int>());
        ValueContainer present;
        present.setReal(static_cast<float>(instance));
        DataType::BACnetPropertyValue presentValue(
            DataType::BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0), present, -1);
        placed->addBnDeviceObjectProperty(presentValue, 0, Poco::Nullable<int>(10));
        TQ::Utility::Data::pDB->begin();
        placed->updateAll(server, nullptr);
        TQ::Utility::Data::pDB->commit(50, 20);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5) return 2;
    try {
        auto db = TQTest::TreeDatabase::openAt(std::string(argv[1]) == "postgresql", argv[2]);
        TQ::Utility::Data::pDB = db.get();
        const std::string mode = argv[3];
        int status = 2;
        if (mode == "dump") {
            Entity::BnGw gw(false);
            TQ::Utility::Data::EntityServer server(nullptr, nullptr, nullptr);
            server.setWhere(Entity::Names::ID_BN_GW + "=?");
            server.addBind(std::stoi(argv[4]));
            if (server.retrieve(gw) == 1) {
                std::cout << TQTest::dumpTree(gw);
                status = 0;
            }
        } else if (mode == "write" && argc == 7) {
            status = write(std::stoi(argv[4]), static_cast<unsigned>(std::stoul(argv[5])),
                           static_cast<unsigned>(std::stoul(argv[6])));
        }
        TQ::Utility::Data::pDB = nullptr;
        return status;
    } catch (const Poco::Exception& e) {
        std::cerr << e.displayText() << std::endl;
        return 1;
    }
}
