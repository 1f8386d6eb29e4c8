#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Server {

/// The manager of one BACnet device that this controller serves, and the process-wide
/// registry of them by device instance. The registry is thread-safe; a manager found in it
/// stays valid for its holder even if it is unregistered meanwhile.
class LboDeviceManager {
public:
    /// The highest device instance; 4194303 is the wildcard of Who-Is and never a device.
    static constexpr uint32_t MAX_DEVICE_INSTANCE = 4194302;

    /// A device instance above MAX_DEVICE_INSTANCE raises Poco::InvalidArgumentException.
    explicit LboDeviceManager(uint32_t deviceInstance, const std::string& name = std::string());
    virtual ~LboDeviceManager();

    uint32_t getDeviceInstance() const noexcept { return _deviceInstance; }
    const std::string& getName() const noexcept { return _name; }

    /// The manager registered for `deviceInstance`; null when there is none, unless `create`
    /// is true, which registers and returns a new one.
    static std::shared_ptr<LboDeviceManager> findDeviceManager(uint32_t deviceInstance, bool create = false);
    /// False (and nothing changes) when the instance already has a manager.
    static bool registerDeviceManager(const std::shared_ptr<LboDeviceManager>& manager);
    /// False when the instance had no manager.
    static bool unregisterDeviceManager(uint32_t deviceInstance);
    /// The registered device instances in ascending order.
    static std::vector<uint32_t> getDeviceInstances();

private:
    uint32_t _deviceInstance;
    std::string _name;
};

}  // namespace Server
}  // namespace BACnet
}  // namespace TQ
