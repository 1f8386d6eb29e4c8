#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/Nullable.h>

#include <cstdint>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {

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

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
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

    void printIt() const;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
