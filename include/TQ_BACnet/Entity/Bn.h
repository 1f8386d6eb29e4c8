#pragma once

#include "TQ/Utility/Data/Entity.h"

#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {

/// Common base of the entity classes of the bn_* tables. Each derived class names its table,
/// lists its columns in table order (column 0 is the integer key) and stores its key.
class Bn : public TQ::Utility::Data::Entity {
public:
    explicit Bn(bool isNew);
    ~Bn() override;

    const std::string& getTableName() const override = 0;
    const std::vector<const std::string*>& getColNames() const override = 0;
    void setPK(int pk, bool flag) override = 0;

protected:
    Bn(const Bn&) = default;
    Bn& operator=(const Bn&) = default;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
