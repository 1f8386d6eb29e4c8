#include "TQ_BACnet/Entity/Names.h"

#include "EntitySupport.h"

namespace TQ {
namespace BACnet {
namespace Entity {
namespace Names {

#define TQ_BACNET_ENTITY_DEFINE_NAME(id, text) TQ_ENTITY_NAMES_INIT const std::string id(text);
TQ_BACNET_ENTITY_NAMES(TQ_BACNET_ENTITY_DEFINE_NAME)
#undef TQ_BACNET_ENTITY_DEFINE_NAME

}  // namespace Names
}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
