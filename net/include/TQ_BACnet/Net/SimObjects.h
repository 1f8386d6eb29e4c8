#pragma once

#include "tq_stack/enums.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Net {

using Encoded = std::vector<uint8_t>;

/// A protocol error: class and code.
struct Failure {
    BACNET_ERROR_CLASS errorClass;
    BACNET_ERROR_CODE errorCode;
};

/// One property: a single value, or the elements of an array; each held as its encoding.
struct SimProperty {
    bool array = false;
    bool writable = false;
    std::vector<Encoded> elements;
};

/// One object of the simulated device. A commandable object's present value is the highest
/// priority slot that is not NULL, or the relinquish default.
struct SimObject {
    BACNET_OBJECT_TYPE type = OBJECT_DEVICE;
    uint32_t instance = 0;
    std::map<uint32_t, SimProperty> properties;
    bool commandable = false;
    std::array<Encoded, 16> priority;  ///< empty: NULL
    /// Trend log: encoded BACnetLogRecords with their time stamps as sortable keys.
    std::vector<Encoded> logBuffer;
    std::vector<uint64_t> logTimes;
};

/// The object database of the simulated device: the device object and whatever else it holds.
class SimObjects {
public:
    /// A device object with the given instance and name.
    SimObjects(uint32_t deviceInstance, const std::string& name);

    /// Analog, binary and multi-state objects (two of them commandable), a trend log with
    /// `logRecords` records and a schedule; then `extraAnalogValues` analog values.
    void addDemoSet(unsigned logRecords = 100, unsigned extraAnalogValues = 0);

    SimObject* find(uint32_t type, uint32_t instance);
    uint32_t deviceInstance() const { return _device; }
    std::size_t size() const { return _order.size(); }
    /// Every object, in object-list order: type in the upper, instance in the lower 32 bits.
    const std::vector<uint64_t>& objectIds() const { return _order; }

    /// The value of one property (an array element with an index, 0 the array's size).
    bool read(uint32_t type, uint32_t instance, uint32_t property, uint32_t index, Encoded& out, Failure& why);
    /// The properties ReadPropertyMultiple's ALL, REQUIRED and OPTIONAL stand for.
    std::vector<uint32_t> propertyIds(const SimObject& object) const;
    /// A written value must carry the application tag the property holds; NULL relinquishes a
    /// commandable object's slot. priority 0 means the default (16).
    bool write(uint32_t type, uint32_t instance, uint32_t property, uint32_t index, const uint8_t* value,
               unsigned length, uint8_t priority, Failure& why);
    /// instance BACNET_MAX_INSTANCE + 1: the next free one. The new instance in `instance`.
    bool create(uint32_t type, uint32_t& instance, Failure& why);
    bool remove(uint32_t type, uint32_t instance, Failure& why);

private:
    SimObject& add(BACNET_OBJECT_TYPE type, uint32_t instance, const std::string& name);
    void addPoint(BACNET_OBJECT_TYPE type, uint32_t instance, const std::string& name, bool commandable);
    void addTrendLog(uint32_t instance, unsigned records);
    void addSchedule(uint32_t instance);
    void touch();

    uint32_t _device;
    std::map<uint64_t, SimObject> _objects;
    std::vector<uint64_t> _order;  ///< object-list order
    uint32_t _databaseRevision = 1;
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
