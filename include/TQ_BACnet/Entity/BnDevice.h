#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include "TQ/Utility/Data/DataAutoIncrement.h"

#include <Poco/Nullable.h>

#include <map>
#include <string>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {
class EntityServer;
}
}  // namespace Utility
namespace BACnet {
namespace DataType {
class ObjectIdentifier;
}
namespace Entity {

class BnGw;
class BnDeviceObject;

/// A BACnet device served or reached through a gateway (bn_device).
class BnDevice : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_DEVICE = 0;
    static constexpr int _COL_ID_BN_GATEWAY = 1;
    static constexpr int _COL_ID_CREATED = 2;
    static constexpr int _COL_ID_DV_CONTROLLER = 3;
    static constexpr int _COL_MAX_COMMIT_TIMEOUT_SEC = 4;
    static constexpr int _COL_ENABLED = 5;
    static constexpr int _COL_TEMPLATE = 6;

    explicit BnDevice(bool isNew = false);
    /// A new device starts disabled, without controller (0) and with a 30 s commit timeout.
    void init(bool isNew);
    /// Copies the row and deep-copies the loaded object map; an owned gateway is read again
    /// on demand, one handed in is referred to by the copy as well.
    BnDevice(const BnDevice& other);
    BnDevice& operator=(const BnDevice& other);
    ~BnDevice() override;

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    /// Also writes the key into id_bn_device of every loaded object, marked as changed.
    void setPK(int pk, bool flag) override;

    /// Reads the device with key `idDevice` into this entity; the row count (below 1: none).
    int retrieve(int idDevice, TQ::Utility::Data::EntityServer& server);

    int getIdBnDevice() const;
    Poco::Nullable<int> getIdBnGw() const;
    void setIdBnGw(int idBnGw);
    const Poco::Dynamic::Var& getCreated() const;
    void setCreated(const Poco::Dynamic::Var& created);
    Poco::Nullable<int> getIdDvController() const;
    void setIdDvController(int idDvController);
    Poco::Nullable<int> getMaxCommitTimeoutSec() const;
    void setMaxCommitTimeoutSec(int seconds);
    bool isEnabled() const;
    void setEnabled(bool enabled);
    const Poco::Dynamic::Var& getTemplate() const;
    void setTemplate(const Poco::Dynamic::Var& value);

    /// The gateway: one handed in is not owned (null: none); its key goes into id_bn_gw.
    void setBnGw(BnGw* gw);
    /// The gateway named by id_bn_gw, read from the database unless one was handed in.
    BnGw* retrieveBnGw();
    BnGw* getBnGw();

    /// (Re)reads the objects of this device in object type, then instance order, narrowed by
    /// `where` (ANDed) with `binds`; null when there are none.
    std::map<int, BnDeviceObject>* retrieveBnDeviceObjects(
        std::string* where = nullptr, const std::vector<Poco::Dynamic::Var>* binds = nullptr);
    std::map<int, BnDeviceObject>* getBnDeviceObjects();
    /// The object with that identifier, or null.
    BnDeviceObject* findBnDeviceObject(const DataType::ObjectIdentifier& id);
    /// Puts a copy of `object`, marked new and pointing at this device, under its packed
    /// identifier, replacing an object with the same identifier.
    void addObject(BnDeviceObject& object);
    /// Writes this device, then every loaded object with its properties; the rows written.
    int updateAll(TQ::Utility::Data::EntityServer& server,
                  std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements);

    void printIt() const;

private:
    friend class BnGw;
    /// Points at the gateway whose map holds this device, leaving the columns untouched.
    void attachBnGw(BnGw* gw);
    void dropObjects();

    BnGw* _pBnGw = nullptr;
    bool _ownsBnGw = true;
    std::map<int, BnDeviceObject>* _pObjects = nullptr;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
