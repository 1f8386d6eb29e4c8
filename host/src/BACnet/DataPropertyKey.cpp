#include "TQ/BACnet/Client/DataPropertyKey.h"

#include <tuple>

namespace TQ {
namespace BACnet {
namespace Client {

DataPropertyKey::DataPropertyKey(uint32_t deviceInstance, uint32_t objectIdentifier,
                                 uint32_t propertyIdentifier, uint32_t arrayIndex) noexcept
    : _deviceInstance(deviceInstance),
      _objectIdentifier(objectIdentifier),
      _propertyIdentifier(propertyIdentifier),
      _arrayIndex(arrayIndex) {}

DataPropertyKey DataPropertyKey::fromObject(uint32_t deviceInstance, uint32_t objectType,
                                            uint32_t objectInstance, uint32_t propertyIdentifier,
                                            uint32_t arrayIndex) noexcept {
    return DataPropertyKey(deviceInstance, (objectType & 0x3FFu) << 22 | (objectInstance & 0x3FFFFFu),
                           propertyIdentifier, arrayIndex);
}

std::string DataPropertyKey::toString() const {
    std::string text = std::to_string(_deviceInstance) + "," + std::to_string(getObjectType()) + ":" +
                       std::to_string(getObjectInstance()) + "," + std::to_string(_propertyIdentifier);
    if (hasArrayIndex()) text += "[" + std::to_string(_arrayIndex) + "]";
    return text;
}

bool DataPropertyKey::operator<(const DataPropertyKey& other) const noexcept {
    return std::tie(_deviceInstance, _objectIdentifier, _propertyIdentifier, _arrayIndex) <
           std::tie(other._deviceInstance, other._objectIdentifier, other._propertyIdentifier,
                    other._arrayIndex);
}

bool DataPropertyKey::operator==(const DataPropertyKey& other) const noexcept {
    return _deviceInstance == other._deviceInstance && _objectIdentifier == other._objectIdentifier &&
           _propertyIdentifier == other._propertyIdentifier && _arrayIndex == other._arrayIndex;
}

std::size_t DataPropertyKeyHash::operator()(const DataPropertyKey& key) const noexcept {
    uint64_t high = static_cast<uint64_t>(key.getDeviceInstance()) << 32 | key.getObjectIdentifier();
    uint64_t low = static_cast<uint64_t>(key.getPropertyIdentifier()) << 32 | key.getArrayIndex();
    // 64-bit mix (splitmix finaliser) of both halves.
    uint64_t h = high * 0x9E3779B97F4A7C15ull ^ (low + 0x7F4A7C159E3779B9ull + (high << 6) + (high >> 2));
    h ^= h >> 31;
    h *= 0xBF58476D1CE4E5B9ull;
    h ^= h >> 27;
    return static_cast<std::size_t>(h);
}

}  // namespace Client
}  // namespace BACnet
}  // namespace TQ
