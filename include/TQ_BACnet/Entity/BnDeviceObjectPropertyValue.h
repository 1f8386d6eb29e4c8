#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/Nullable.h>

#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {

/// A further stored value row of a stored property (bn_device_object_property_value).
class BnDeviceObjectPropertyValue : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_DEVICE_OBJECT_PROPERTY_VALUE = 0;
    static constexpr int _COL_ID_BN_DEVICE_OBJECT_PROPERTY = 1;
    static constexpr int _COL_SORT = 2;
    static constexpr int _COL_VALUE = 3;

    explicit BnDeviceObjectPropertyValue(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

    int getIdBnDeviceObjectPropertyValue() const;
    Poco::Nullable<int> getIdBnDeviceObjectProperty() const;
    void setIdBnDeviceObjectProperty(int idBnDeviceObjectProperty);
    const Poco::Dynamic::Var& getSort() const;
    void setSort(const Poco::Dynamic::Var& sort);
    const Poco::Dynamic::Var& getValue() const;
    void setValue(const Poco::Dynamic::Var& value);

    void printIt() const;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
