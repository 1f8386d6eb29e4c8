#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/Nullable.h>

#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {

/// A BACnet gateway (bn_gw), attached to one bus of the host and represented on BACnet by its
/// own device row.
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

    /// A new gateway starts disabled.
    explicit BnGw(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

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
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
