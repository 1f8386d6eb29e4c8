#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include "TQ/Utility/Data/DataAutoIncrement.h"

#include <Poco/Nullable.h>

#include <map>
#include <string>
#include <vector>

namespace TQ {
namespace Peripherals {
namespace Entity {
class DvBus;
}
}  // namespace Peripherals
namespace Utility {
namespace Data {
class EntityServer;
}
}  // namespace Utility
namespace BACnet {
namespace Entity {

class BnDevice;

/// A BACnet gateway (bn_gw), attached to one bus of the host and represented on BACnet by its
/// own device row; the root of the stored tree gateway -> device -> object -> property. Each
/// level is read on first use and kept in a map of its parent.
class BnGw : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_GW = 0;
    static constexpr int _COL_ID_BN_DEVICE = 1;
    static constexpr int _COL_NAME = 2;
    static constexpr int _COL_DNET = 3;
    static constexpr int _COL_ID_DV_BUS = 4;
    static constexpr int _COL_ENABLED = 5;
    static constexpr int _COL_LOAD_AUTOCONFIGURED = 6;

    /// The bus type of a host bus that carries APDUs itself.
    static constexpr int APDU_BUS_TYPE = 102;

    /// A new gateway starts disabled.
    explicit BnGw(bool isNew = false);
    /// Copies the row and deep-copies the loaded device map; the own device and the bus are
    /// read again on demand unless the source merely refers to a device handed in.
    BnGw(const BnGw& other);
    BnGw& operator=(const BnGw& other);
    ~BnGw() override;

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    /// Also writes the key into id_bn_gw of every loaded device, marked as changed.
    void setPK(int pk, bool flag) override;

    /// The gateway's own device: a device handed in is not owned (null: none, the next
    /// `getBnDevice` reads it); its key goes into id_bn_device.
    void setBnDevice(BnDevice* device);
    /// The device named by id_bn_device, read from the database unless one was handed in.
    BnDevice* retrieveBnDevice();
    /// As `retrieveBnDevice`, but only reads when no device is held.
    BnDevice* getBnDevice();
    /// The host bus named by id_dv_bus, read from the database (owned).
    TQ::Peripherals::Entity::DvBus* retrieveDvBus();
    TQ::Peripherals::Entity::DvBus* getDvBus();
    /// Whether the host bus is of type APDU_BUS_TYPE; false without a bus row. A bus row whose
    /// type is NULL raises Poco::InvalidAccessException.
    bool isApduGateway();

    /// (Re)reads the devices of this gateway, narrowed by `where` (ANDed) with `binds`; null
    /// when there are none.
    std::map<int, BnDevice>* retrieveDevices(std::string* where = nullptr,
                                             const std::vector<Poco::Dynamic::Var>* binds = nullptr);
    /// The loaded device map, read first when there is none.
    std::map<int, BnDevice>* getDevices();
    /// The device with key `id`, or null.
    BnDevice* findDevice(int id);
    /// Puts a copy of `device`, marked new and pointing at this gateway, under its key. A
    /// device without a key yet (negative) gets a distinct negative place, so several new
    /// devices can wait for `updateAll`, which moves them under their stored keys.
    void addDevice(BnDevice& device);
    /// Writes this gateway, then every loaded device with its subtree; the rows written.
    int updateAll(TQ::Utility::Data::EntityServer& server,
                  std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements);

    int getIdBnGw() const;
    Poco::Nullable<int> getIdBnDevice() const;
    void setIdBnDevice(int idBnDevice);
    Poco::Nullable<std::string> getName() const;
    void setName(const std::string& name);
    const Poco::Dynamic::Var& getDnet() const;
    void setDnet(const Poco::Dynamic::Var& dnet);
    Poco::Nullable<int> getIdDvBus() const;
    void setIdDvBus(int idDvBus);
    bool isEnabled() const;
    void setEnabled(bool enabled);
    const Poco::Dynamic::Var& getLoadAutoconfigured() const;
    void setLoadAutoconfigured(const Poco::Dynamic::Var& value);

    void printIt() const;

private:
    void dropDevices();

    TQ::Peripherals::Entity::DvBus* _pDvBus = nullptr;
    BnDevice* _pBnDevice = nullptr;
    bool _ownsBnDevice = true;
    std::map<int, BnDevice>* _pDevices = nullptr;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
