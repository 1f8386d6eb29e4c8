#include "TQ_BACnet/Entity/Bn.h"

namespace TQ {
namespace BACnet {
namespace Entity {

Bn::Bn(bool isNew) : TQ::Utility::Data::Entity(isNew) {}

Bn::~Bn() = default;

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
