#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/Nullable.h>

#include <string>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {
class EntityServer;
}
}  // namespace Utility
namespace BACnet {
namespace Entity {

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

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
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

    void printIt() const;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
