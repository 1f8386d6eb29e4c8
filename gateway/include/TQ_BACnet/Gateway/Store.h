#pragma once

#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/Net/DeviceOperations.h"
#include "TQ_BACnet/ValueContainer.h"

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {
class SmoDbSession;
}
}  // namespace Utility
namespace BACnet {
namespace Gateway {

struct Config;

/// The stored tree of the devices the gateway found (embedded SQLite, or PostgreSQL when
/// configured) and the values kept in it. Every database call is serialised here: the session
/// and the prepared update statement belong to one thread at a time. A database that fails
/// (read-only file, server gone) makes the calls that need it return false with `lastError`;
/// the gateway goes on without it, and uses the database again once it is back (a lost
/// connection is made again).
class Store {
public:
    using Clock = std::chrono::steady_clock;

    /// Opens the database (creating the catalogue on first use) and makes it the process-wide
    /// session. The first store of the process updates values through the prepared statement.
    explicit Store(const Config& config);
    ~Store();

    /// One object found on a device, with the values stored at discovery.
    using FoundObject = Net::FoundObject;
    /// Stores (or updates) a device and its objects in one transaction; false on failure.
    bool storeDevice(uint32_t instance, const std::vector<FoundObject>& objects);

    /// The row of a stored property, or -1.
    int propertyRow(uint32_t device, DataType::ObjectIdentifier object, BACNET_PROPERTY_ID property) const;
    /// The value text this process stored in a row within maxAgeMs (kept beside the database as
    /// well, so that a fresh read costs no query); false when older or unknown.
    bool freshValue(int row, unsigned maxAgeMs, std::string& text);
    /// The value this process stored in a row is still the device's (a COV subscription vouches
    /// for it): its age starts again. False when nothing was stored there.
    bool vouchFor(int row);
    /// Writes a value through the prepared update statement and notes its time.
    bool update(int row, const ValueContainer& value);

    /// The devices and their objects as stored.
    std::map<uint32_t, std::vector<DataType::ObjectIdentifier>> tree() const;
    std::vector<DataType::ObjectIdentifier> objectsOf(uint32_t device) const;
    std::string lastError() const;
    /// How many database calls failed so far: a caller compares it before and after its work.
    unsigned failures() const;

private:
    void loadIndex();
    void fail(const std::string& what, const std::exception& e);

    using Key = std::tuple<uint32_t, uint32_t, uint32_t>;  // device, packed object, property
    mutable std::mutex _mutex;
    std::unique_ptr<Utility::Data::SmoDbSession> _db;
    std::map<Key, int> _rows;
    std::map<uint32_t, std::vector<DataType::ObjectIdentifier>> _objects;
    /// What this process last wrote to a row, and when: a fresh value answers without a query.
    struct Written {
        Clock::time_point at;
        std::string text;
    };
    std::unordered_map<int, Written> _written;
    std::string _lastError;
    unsigned _failures = 0;
};

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
