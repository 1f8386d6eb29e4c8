#include "TQ/BACnet/Server/LboDeviceManager.h"

#include <Poco/Exception.h>
#include <Poco/Mutex.h>

#include <map>

namespace TQ {
namespace BACnet {
namespace Server {

namespace {

struct Registry {
    Poco::FastMutex mutex;
    std::map<uint32_t, std::shared_ptr<LboDeviceManager>> managers;
};

// Function-local so that registration from other static initialisers is safe.
Registry& registry() {
    static Registry instance;
    return instance;
}

}  // namespace

LboDeviceManager::LboDeviceManager(uint32_t deviceInstance, const std::string& name)
    : _deviceInstance(deviceInstance), _name(name) {
    if (deviceInstance > MAX_DEVICE_INSTANCE)
        throw Poco::InvalidArgumentException("LboDeviceManager: device instance out of range",
                                             std::to_string(deviceInstance));
}

LboDeviceManager::~LboDeviceManager() = default;

std::shared_ptr<LboDeviceManager> LboDeviceManager::findDeviceManager(uint32_t deviceInstance, bool create) {
    Registry& r = registry();
    Poco::FastMutex::ScopedLock lock(r.mutex);
    auto found = r.managers.find(deviceInstance);
    if (found != r.managers.end()) return found->second;
    if (!create) return nullptr;
    auto manager = std::make_shared<LboDeviceManager>(deviceInstance);
    r.managers.emplace(deviceInstance, manager);
    return manager;
}

bool LboDeviceManager::registerDeviceManager(const std::shared_ptr<LboDeviceManager>& manager) {
    if (!manager) throw Poco::NullPointerException("LboDeviceManager::registerDeviceManager()");
    Registry& r = registry();
    Poco::FastMutex::ScopedLock lock(r.mutex);
    return r.managers.emplace(manager->getDeviceInstance(), manager).second;
}

bool LboDeviceManager::unregisterDeviceManager(uint32_t deviceInstance) {
    Registry& r = registry();
    Poco::FastMutex::ScopedLock lock(r.mutex);
    return r.managers.erase(deviceInstance) != 0;
}

std::vector<uint32_t> LboDeviceManager::getDeviceInstances() {
    Registry& r = registry();
    Poco::FastMutex::ScopedLock lock(r.mutex);
    std::vector<uint32_t> instances;
    instances.reserve(r.managers.size());
    for (const auto& entry : r.managers) instances.push_back(entry.first);
    return instances;
}

}  // namespace Server
}  // namespace BACnet
}  // namespace TQ
