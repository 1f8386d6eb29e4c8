#pragma once

#include "tq_stack/values.h"

#include <cstdint>

namespace TQ {
namespace BACnet {

/// An object identifier held unpacked: object type and 22-bit instance.
class DataObjectIdentifier {
public:
    DataObjectIdentifier(uint32_t objectType, uint32_t instance)
        : _objectType(objectType), _instance(instance & 0x3FFFFFu) {}
    explicit DataObjectIdentifier(uint32_t packed) : DataObjectIdentifier(packed >> 22, packed) {}
    explicit DataObjectIdentifier(const BACnet_Object_Id& id) : DataObjectIdentifier(id.type, id.instance) {}

    uint32_t getObjectType() const { return _objectType; }
    uint32_t getInstance() const { return _instance; }
    uint32_t getObjectIdentifier() const { return (_objectType << 22) | _instance; }

private:
    uint32_t _objectType;
    uint32_t _instance;
};

}  // namespace BACnet
}  // namespace TQ
