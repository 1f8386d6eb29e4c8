#pragma once

#include "TQ_BACnet/Net/DeviceOperations.h"

#include <cstdint>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {
class SmoDbSession;
}
}  // namespace Utility
namespace BACnet {
namespace Net {

/// What discovery found, kept in the stored device tree: the device (found by its device
/// object, else added under a new gateway row) and each object with the properties read.
class DeviceStore {
public:
    /// Stores `objects` of device `instance` in one transaction and returns the device's key.
    /// An object whose values the catalogue cannot place (a proprietary type) is stored bare.
    /// Any failure rolls the whole back and is raised again.
    static int storeDevice(Utility::Data::SmoDbSession& db, uint32_t instance, const std::vector<FoundObject>& objects);
    /// The key of the stored device whose device object has `instance`, or -1.
    static int findDevice(Utility::Data::SmoDbSession& db, uint32_t instance);

    DeviceStore() = delete;
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
