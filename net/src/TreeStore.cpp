#include "TQ_BACnet/Net/TreeStore.h"

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnGw.h"
#include "TQ_BACnet/Service/ObjectAccess/CreateObject.h"
#include "TQ_BACnet/Service/ObjectAccess/DeleteObject.h"

#include <Poco/Data/Statement.h>

namespace TQ {
namespace BACnet {
namespace Net {

using Service::ObjectAccess::CreateObject;
using Service::ObjectAccess::DeleteObject;

namespace {

Failure failureOf(const DataError& error) {
    return Failure{BACNET_ERROR_CLASS(error.getErrorClass()), BACNET_ERROR_CODE(error.getErrorCode())};
}

}  // namespace

TreeStore::TreeStore(const std::string& gatewayName) {
    TQ::Utility::Data::EntityServer server;
    Entity::BnGw gw(true);
    gw.setName(gatewayName);
    Entity::BnDevice device(true);
    gw.addDevice(device);
    gw.updateAll(server, nullptr);
    _deviceKey = gw.getDevices()->begin()->first;
}

bool TreeStore::store(uint32_t type, uint32_t instance, const BACNET_PROPERTY_VALUE_REF* values, unsigned count,
                      bool updateExisting, Failure& why) {
    CreateObject create(DataType::ObjectIdentifier(BACNET_OBJECT_TYPE(type), instance), updateExisting);
    for (unsigned i = 0; i < count; ++i) {
        ValueContainer value;
        BACNET_ERROR_CLASS errorClass = ERROR_CLASS_PROPERTY;
        BACNET_ERROR_CODE errorCode = ERROR_CODE_INVALID_DATA_TYPE;
        DataErrorRef ref(errorClass, errorCode);
        if (value.decode(values[i].value, int(values[i].value_len), 0, BACNET_OBJECT_TYPE(type), values[i].property,
                         values[i].array_index == BACNET_ARRAY_ALL ? -1 : int(values[i].array_index), ref) < 0) {
            why = {ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE};
            return false;
        }
        create.addInitialValue(values[i].property, value);
    }
    DataError error;
    if (create.dbUpdate(_deviceKey, 1, -1, Poco::Nullable<int>(), &error) < 0) {
        why = failureOf(error);
        return false;
    }
    return true;
}

bool TreeStore::create(uint32_t type, uint32_t instance, const BACNET_PROPERTY_VALUE_REF* values, unsigned count,
                       Failure& why) {
    return store(type, instance, values, count, false, why);
}

void TreeStore::storeAll(SimObjects& objects) {
    for (const auto& key : objects.objectIds()) {
        const uint32_t type = uint32_t(key >> 32), instance = uint32_t(key);
        BACNET_PROPERTY_VALUE_REF values[2];
        Encoded encoded[2];
        unsigned count = 0;
        Failure why;
        for (uint32_t property : {uint32_t(PROP_OBJECT_NAME), uint32_t(PROP_PRESENT_VALUE)}) {
            if (!objects.read(type, instance, property, BACNET_ARRAY_ALL, encoded[count], why)) continue;
            values[count] = {BACNET_PROPERTY_ID(property), BACNET_ARRAY_ALL, encoded[count].data(),
                             uint32_t(encoded[count].size()), 0};
            ++count;
        }
        store(type, instance, values, count, true, why);
    }
}

bool TreeStore::remove(uint32_t type, uint32_t instance, Failure& why) {
    DataError error;
    DeleteObject del(DataType::ObjectIdentifier(BACNET_OBJECT_TYPE(type), instance));
    if (del.dbUpdate(_deviceKey, &error) <= 0) {
        why = failureOf(error);
        return false;
    }
    return true;
}

int TreeStore::objectCount() const {
    Poco::Int64 n = 0;
    int device = _deviceKey;
    Poco::Data::Statement statement(TQ::Utility::Data::pDB->getSession());
    statement << "SELECT COUNT(*) FROM bn_device_object WHERE id_bn_device = ?", Poco::Data::Keywords::use(device),
        Poco::Data::Keywords::into(n);
    statement.execute();
    return int(n);
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
