#pragma once

#include "TQ_BACnet/Net/SimObjects.h"
#include "tq_stack/create_object.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace Net {

/// The stored tree (gateway, device, objects and their property rows in the process-wide
/// database session) behind a simulated device: objects are created and deleted there first,
/// through the CreateObject and DeleteObject services, and only what the tree accepts changes
/// the device.
class TreeStore {
public:
    /// A gateway row with one device row; the device's objects are stored under it.
    explicit TreeStore(const std::string& gatewayName);

    int deviceKey() const { return _deviceKey; }

    /// Stores every object of `objects` (name and present value as initial values); objects
    /// already stored are updated.
    void storeAll(SimObjects& objects);
    /// The object with the given initial values (encoded as in a CreateObject request).
    bool create(uint32_t type, uint32_t instance, const BACNET_PROPERTY_VALUE_REF* values, unsigned count,
                Failure& why);
    bool remove(uint32_t type, uint32_t instance, Failure& why);
    /// Object rows under the device.
    int objectCount() const;

private:
    bool store(uint32_t type, uint32_t instance, const BACNET_PROPERTY_VALUE_REF* values, unsigned count,
               bool updateExisting, Failure& why);

    int _deviceKey = -1;
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
