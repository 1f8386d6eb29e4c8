#pragma once

#include "TQ/Utility/Data/Entity.h"

#include <string>
#include <vector>

namespace TQ {
namespace Peripherals {
namespace Entity {

/// One bus of the controller (table dv_bus): its key, its type and its name.
class DvBus : public TQ::Utility::Data::Entity {
public:
    static const std::string TABLE_NAME;  // "dv_bus"
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_DV_BUS = 0;
    static constexpr int _COL_ID_DV_BUS_TYPE = 1;
    static constexpr int _COL_NAME = 2;

    explicit DvBus(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;

    int getIdDvBus() const;
    /// Raises Poco::InvalidAccessException "Can not convert empty value." for a NULL type.
    int getIdDvBusType() const;
    void setIdDvBusType(int type);
    /// Empty for a NULL name.
    std::string getName() const;
    void setName(const std::string& name);

    /// Reads the bus with key `id`; returns the row count (below 1 when there is none).
    int retrieve(int id, TQ::Utility::Data::SmoDbSession* session = nullptr);
};

}  // namespace Entity
}  // namespace Peripherals
}  // namespace TQ
