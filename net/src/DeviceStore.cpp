#include "TQ_BACnet/Net/DeviceStore.h"

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnGw.h"
#include "TQ_BACnet/Service/ObjectAccess/CreateObject.h"

#include <Poco/Data/Statement.h>

namespace TQ {
namespace BACnet {
namespace Net {

using namespace Poco::Data::Keywords;

int DeviceStore::findDevice(Utility::Data::SmoDbSession& db, uint32_t instance) {
    int key = -1;
    Poco::Data::Statement s(db.getSession());
    s << "SELECT id_bn_device FROM bn_device_object WHERE id_bn_object_type=8 AND instance_nr=?", into(key),
        useRef(instance), limit(1), now;
    return key;
}

int DeviceStore::storeDevice(Utility::Data::SmoDbSession& db, uint32_t instance,
                             const std::vector<FoundObject>& objects) {
    db.begin();
    try {
        int key = findDevice(db, instance);
        if (key < 0) {
            Utility::Data::EntityServer server(&db);
            Entity::BnGw gw(true);
            Entity::BnDevice device(true);
            device.setEnabled(true);
            gw.addDevice(device);
            gw.updateAll(server, nullptr);
            key = gw.getDevices()->begin()->first;
        }
        for (const FoundObject& found : objects) {
            Service::ObjectAccess::CreateObject create(found.id, true);
            for (const auto& value : found.values) create.addInitialValue(value.first, value.second);
            DataError why;
            if (create.dbUpdate(key, 1, -1, Poco::Nullable<int>(), &why) < 0) {
                Service::ObjectAccess::CreateObject bare(found.id, true);
                bare.dbUpdate(key, 1, -1, Poco::Nullable<int>(), &why);
            }
        }
        db.commit();
        return key;
    } catch (...) {
        db.rollback();
        throw;
    }
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
