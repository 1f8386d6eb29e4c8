#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include "TQ/Utility/Data/DataAutoIncrement.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "tq_stack/enums.h"

#include <Poco/Nullable.h>

#include <cstdint>
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
class BACnetPropertyValue;
}
namespace Entity {

class BnDevice;
class BnDeviceObjectProperty;

/// A BACnet object of a device (bn_device_object). Objects are keyed in maps by their packed
/// object identifier (type in bits 31..22, instance in bits 21..0) and always read in type,
/// then instance order.
class BnDeviceObject : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_DEVICE_OBJECT = 0;
    static constexpr int _COL_ID_BN_DEVICE = 1;
    static constexpr int _COL_ID_BN_OBJECT_TYPE = 2;
    static constexpr int _COL_INSTANCE_NR = 3;
    static constexpr int _COL_COV_ENABLED = 4;
    static constexpr int _COL_ENABLED = 5;

    explicit BnDeviceObject(bool isNew = false);
    /// Copies the row and deep-copies the loaded property map; an owned device is read again
    /// on demand, one handed in is referred to by the copy as well.
    BnDeviceObject(const BnDeviceObject& other);
    BnDeviceObject& operator=(const BnDeviceObject& other);
    ~BnDeviceObject() override;

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    /// Also writes the key into id_bn_device_object of every loaded property, marked as changed.
    void setPK(int pk, bool flag) override;
    /// The packed object identifier, so that object maps are keyed by it.
    int operator()() const override;
    /// Compares the packed identifiers as unsigned numbers; against an entity of another
    /// class the keys are compared.
    bool operator<(const TQ::Utility::Data::Entity& other) const override;
    std::string sqlOrderBy() const override;

    static uint32_t packObjectIdentifier(uint32_t objectType, uint32_t instance) noexcept {
        return ((objectType & 0x3FFu) << 22) | (instance & 0x3FFFFFu);
    }

    int getIdBnDeviceObject() const;
    int getIdBnDevice() const;
    void setIdBnDevice(int idBnDevice);
    uint32_t getIdBnObjectType() const;
    uint32_t getInstanceNr() const;
    uint32_t getPackedObjectIdentifier() const;
    /// Writes type and instance of a packed identifier, marked as changed.
    void setPackedObjectIdentifier(uint32_t packed);
    Poco::Nullable<bool> getCovEnabled() const;
    void setCovEnabled(bool enabled);
    Poco::Nullable<bool> getEnabled() const;
    void setEnabled(bool enabled);

    /// Reads the object `id` of device `idDevice` into this entity; the row count.
    int retrieve(int idDevice, const DataType::ObjectIdentifier& id, TQ::Utility::Data::EntityServer& server);
    DataType::ObjectIdentifier getObjectIdentifier() const;
    void setObjectIdentifier(const DataType::ObjectIdentifier& id);

    /// The device: one handed in is not owned (null: none); its key goes into id_bn_device.
    void setBnDevice(BnDevice* device);
    BnDevice* retrieveBnDevice();
    BnDevice* getBnDevice();

    /// (Re)reads the stored properties of this object (only those whose catalogue row exists),
    /// narrowed by `where` (ANDed, columns qualified "a.") with `binds`; null when none.
    std::map<int, BnDeviceObjectProperty>* retrieveBnDeviceObjectProperties(
        std::string* where = nullptr, const std::vector<Poco::Dynamic::Var>* binds = nullptr);
    std::map<int, BnDeviceObjectProperty>* getBnDeviceObjectProperties();
    BnDeviceObjectProperty* findBnDeviceObjectProperty(BACNET_PROPERTY_ID property);
    /// Puts a copy of `property`, marked new and pointing at this object, under its property
    /// identifier, replacing a property with the same identifier.
    void addBnDeviceObjectProperty(BnDeviceObjectProperty& property);
    /// A new property from `value` (identifier linked to the catalogue, value as text), with
    /// host port `idDvPort` and poll rate `pollRateSec` (NULL when null).
    void addBnDeviceObjectProperty(DataType::BACnetPropertyValue& value, int idDvPort,
                                   const Poco::Nullable<int>& pollRateSec);
    /// Writes this object, then every loaded property; the rows written.
    int updateAll(TQ::Utility::Data::EntityServer& server,
                  std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements);

    void printIt() const;

private:
    friend class BnDevice;
    void attachBnDevice(BnDevice* device);
    void dropProperties();

    BnDevice* _pBnDevice = nullptr;
    bool _ownsBnDevice = true;
    std::map<int, BnDeviceObjectProperty>* _pProperties = nullptr;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
