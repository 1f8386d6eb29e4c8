#include "TQ_BACnet/Service/ObjectAccess/DeleteObject.h"

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/Entity/BnDeviceObject.h"
#include "TQ_BACnet/Entity/Names.h"

#include <Poco/Data/Statement.h>

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

using TQ::Utility::Data::pDB;
namespace Names = Entity::Names;

namespace {

// The object's properties and their value rows go with it: a later object that receives
// the same key must not inherit them.
void deleteProperties(int objectKey) {
    using Poco::Data::Keywords::use;
    static const std::string values =
        "DELETE FROM " + Names::BN_DEVICE_OBJECT_PROPERTY_VALUE + " WHERE " +
        Names::ID_BN_DEVICE_OBJECT_PROPERTY + " IN (SELECT " + Names::ID_BN_DEVICE_OBJECT_PROPERTY +
        " FROM " + Names::BN_DEVICE_OBJECT_PROPERTY + " WHERE " + Names::ID_BN_DEVICE_OBJECT + "=?)";
    static const std::string properties =
        "DELETE FROM " + Names::BN_DEVICE_OBJECT_PROPERTY + " WHERE " + Names::ID_BN_DEVICE_OBJECT + "=?";
    int key = objectKey;
    Poco::Data::Statement(pDB->getSession()) << values, use(key), Poco::Data::Keywords::now;
    Poco::Data::Statement(pDB->getSession()) << properties, use(key), Poco::Data::Keywords::now;
}

}  // namespace

int DeleteObject::dbUpdate(int deviceKey, DataError* error) {
    TQ::Utility::Data::EntityServer server(pDB, nullptr, nullptr);
    Entity::BnDeviceObject object(false);
    const int found = object.retrieve(deviceKey, _object, server);
    if (found < 1) {
        if (error) error->setError(ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT);
        return found;
    }
    if (_object.getObjectType() == OBJECT_DEVICE) {
        if (error) error->setError(ERROR_CLASS_OBJECT, ERROR_CODE_OBJECT_DELETION_NOT_PERMITTED);
        return -1;
    }
    object.setDeleted(true);
    pDB->begin();
    try {
        deleteProperties(object.getPK());
        const int rows = server.update(object);
        pDB->commit();
        return rows;
    } catch (...) {
        pDB->rollback();
        throw;
    }
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
