#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace Client {

/// Names one property of one object of one device: device instance, packed object identifier
/// (object type in bits 31 to 22, instance in bits 21 to 0), property identifier and array
/// index (ARRAY_ALL for the whole property). Ordered field by field in that order, so it
/// serves as a map key.
class DataPropertyKey {
public:
    static constexpr uint32_t ARRAY_ALL = 0xFFFFFFFFu;

    DataPropertyKey() noexcept = default;
    DataPropertyKey(uint32_t deviceInstance, uint32_t objectIdentifier, uint32_t propertyIdentifier,
                    uint32_t arrayIndex = ARRAY_ALL) noexcept;
    /// The object given as type and instance; the instance is cut to 22 bits, the type to 10.
    static DataPropertyKey fromObject(uint32_t deviceInstance, uint32_t objectType, uint32_t objectInstance,
                                      uint32_t propertyIdentifier, uint32_t arrayIndex = ARRAY_ALL) noexcept;

    uint32_t getDeviceInstance() const noexcept { return _deviceInstance; }
    uint32_t getObjectIdentifier() const noexcept { return _objectIdentifier; }
    uint32_t getObjectType() const noexcept { return _objectIdentifier >> 22; }
    uint32_t getObjectInstance() const noexcept { return _objectIdentifier & 0x3FFFFFu; }
    uint32_t getPropertyIdentifier() const noexcept { return _propertyIdentifier; }
    uint32_t getArrayIndex() const noexcept { return _arrayIndex; }
    bool hasArrayIndex() const noexcept { return _arrayIndex != ARRAY_ALL; }

    /// "device,type:instance,property" followed by "[index]" when an index is given.
    std::string toString() const;

    bool operator<(const DataPropertyKey& other) const noexcept;
    bool operator==(const DataPropertyKey& other) const noexcept;
    bool operator!=(const DataPropertyKey& other) const noexcept { return !(*this == other); }

private:
    uint32_t _deviceInstance = 0;
    uint32_t _objectIdentifier = 0;
    uint32_t _propertyIdentifier = 0;
    uint32_t _arrayIndex = ARRAY_ALL;
};

/// For unordered containers.
struct DataPropertyKeyHash {
    std::size_t operator()(const DataPropertyKey& key) const noexcept;
};

}  // namespace Client
}  // namespace BACnet
}  // namespace TQ
