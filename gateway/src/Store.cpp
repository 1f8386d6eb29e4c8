#include "TQ_BACnet/Gateway/Store.h"

#include "TQ_BACnet/Net/DeviceStore.h"

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/EntityServer.h"
#include "TQ/Utility/Data/PostgreSQLDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"
#include "TQ_BACnet/Entity/BnGw.h"
#include "TQ_BACnet/Gateway/Config.h"
#include "TQ_BACnet/Service/ObjectAccess/CreateObject.h"

#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Gateway {

using namespace Poco::Data::Keywords;
using TQ::Utility::Data::pDB;
// Every database call below holds the session, so that the catalogue lookups of the request
// threads never meet it half-way; inside the try, so that a failure marks it for checking.
using Session = TQ::Utility::Data::SmoDbSession::Use;

namespace {

// The prepared update statement of the stored values: the library prepares a statement object
// on its first use and keeps its bound values, so one statement serves the first store made; a
// later store of the same process (tests) updates without it. A statement that failed (its state
// is then unusable) or belongs to a lost connection is retired, never destroyed (its connection
// may be gone), and once an update without it succeeds a new one is made: one per outage.
struct Prepared {
    std::unique_ptr<Poco::Data::Statement> statement;
    std::vector<std::unique_ptr<Poco::Data::Statement>> retired;
    const void* owner = nullptr;
    unsigned connection = 0;  ///< prepared on this connection of the session
    bool failed = false;
};
Prepared& prepared() {
    // Never destroyed: at exit its session may be gone already.
    static Prepared* p = new Prepared;
    return *p;
}

}  // namespace

Store::Store(const Config& config) {
    _db = config.postgresql.empty() ? Utility::Data::openEmbeddedDatabase(config.sqliteFile)
                                    : Utility::Data::openPostgreSQLDatabase(config.postgresql);
    pDB = _db.get();
    if (!prepared().statement) {
        prepared().statement = std::make_unique<Poco::Data::Statement>(_db->getSession());
        prepared().owner = this;
        prepared().connection = _db->getConnection();
    }
    try {
        Session use(*_db);
        loadIndex();
    } catch (const std::exception& e) {
        fail("reading the stored tree", e);
    }
}

Store::~Store() {
    std::lock_guard<std::mutex> lock(_mutex);
    // The statement stays (the library holds on to it); no later store may take it for its own.
    if (prepared().owner == this) prepared().owner = &prepared();
    if (pDB == _db.get()) pDB = nullptr;
}

void Store::fail(const std::string& what, const std::exception& e) {
    const auto* poco = dynamic_cast<const Poco::Exception*>(&e);
    _lastError = "database: " + what + ": " + (poco ? poco->displayText() : std::string(e.what()));
    ++_failures;
    std::cerr << _lastError << std::endl;
}

std::string Store::lastError() const {
    std::lock_guard<std::mutex> lock(_mutex);
    return _lastError;
}

unsigned Store::failures() const {
    std::lock_guard<std::mutex> lock(_mutex);
    return _failures;
}

void Store::loadIndex() {
    std::vector<int> devices, types, instances, properties, rows, deviceKeys, deviceInstances;
    {
        Poco::Data::Statement s(_db->getSession());
        s << "SELECT id_bn_device, instance_nr FROM bn_device_object WHERE id_bn_object_type=8",
            into(deviceKeys), into(deviceInstances), now;
    }
    std::map<int, uint32_t> instanceOf;
    for (std::size_t i = 0; i < deviceKeys.size(); ++i) instanceOf[deviceKeys[i]] = uint32_t(deviceInstances[i]);
    Poco::Data::Statement s(_db->getSession());
    s << "SELECT o.id_bn_device, o.id_bn_object_type, o.instance_nr, "
         "COALESCE(p.id_bn_property_type, -1), COALESCE(p.id_bn_device_object_property, -1) "
         "FROM bn_device_object o LEFT JOIN bn_device_object_property p "
         "ON p.id_bn_device_object=o.id_bn_device_object ORDER BY 1, 2, 3",
        into(devices), into(types), into(instances), into(properties), into(rows), now;
    _rows.clear();
    _objects.clear();
    for (std::size_t i = 0; i < devices.size(); ++i) {
        const auto device = instanceOf.find(devices[i]);
        if (device == instanceOf.end()) continue;
        const DataType::ObjectIdentifier id{BACNET_OBJECT_TYPE(types[i]), unsigned(instances[i])};
        auto& objects = _objects[device->second];
        if (objects.empty() || objects.back() != id) objects.push_back(id);
        if (rows[i] >= 0) _rows[Key(device->second, id.getValue(), uint32_t(properties[i]))] = rows[i];
    }
}

bool Store::storeDevice(uint32_t instance, const std::vector<FoundObject>& objects) {
    std::lock_guard<std::mutex> lock(_mutex);
    try {
        Session use(*_db);
        Net::DeviceStore::storeDevice(*_db, instance, objects);
        loadIndex();
        // What discovery read is as fresh as any polled value.
        const auto now = Clock::now();
        for (const FoundObject& found : objects)
            for (const auto& value : found.values) {
                const auto row = _rows.find(Key(instance, found.id.getValue(), uint32_t(value.first)));
                if (row == _rows.end()) continue;
                Written& w = _written[row->second];
                w.at = now;
                value.second.getText(w.text, false);
            }
        return true;
    } catch (const std::exception& e) {
        fail("storing device " + std::to_string(instance), e);
        return false;
    }
}

int Store::propertyRow(uint32_t device, DataType::ObjectIdentifier object, BACNET_PROPERTY_ID property) const {
    std::lock_guard<std::mutex> lock(_mutex);
    const auto it = _rows.find(Key(device, object.getValue(), uint32_t(property)));
    return it == _rows.end() ? -1 : it->second;
}

bool Store::freshValue(int row, unsigned maxAgeMs, std::string& text) {
    std::lock_guard<std::mutex> lock(_mutex);
    const auto written = _written.find(row);
    if (written == _written.end() || Clock::now() - written->second.at > std::chrono::milliseconds(maxAgeMs))
        return false;
    text = written->second.text;
    return true;
}

bool Store::vouchFor(int row) {
    std::lock_guard<std::mutex> lock(_mutex);
    const auto written = _written.find(row);
    if (written == _written.end()) return false;
    written->second.at = Clock::now();
    return true;
}

bool Store::update(int row, const ValueContainer& value) {
    std::string text;
    value.getText(text, false);
    std::lock_guard<std::mutex> lock(_mutex);
    try {
        Session use(*_db);
        Prepared& p = prepared();
        const bool mine = p.owner == this;
        Poco::Data::Statement* statement =
            mine && !p.failed && p.connection == _db->getConnection() ? p.statement.get() : nullptr;
        if (statement) p.failed = true;  // until it succeeds
        Entity::BnDeviceObjectProperty::dbUpdatePropertyValue(row, text, statement);
        if (statement) p.failed = false;
        if (mine && !statement) {
            p.retired.push_back(std::move(p.statement));
            p.statement = std::make_unique<Poco::Data::Statement>(_db->getSession());
            p.connection = _db->getConnection();
            p.failed = false;
        }
        Written& w = _written[row];
        w.at = Clock::now();
        w.text = std::move(text);
        return true;
    } catch (const std::exception& e) {
        _written.erase(row);
        fail("storing a value", e);
        return false;
    }
}

std::map<uint32_t, std::vector<DataType::ObjectIdentifier>> Store::tree() const {
    std::lock_guard<std::mutex> lock(_mutex);
    return _objects;
}

std::vector<DataType::ObjectIdentifier> Store::objectsOf(uint32_t device) const {
    std::lock_guard<std::mutex> lock(_mutex);
    const auto it = _objects.find(device);
    return it == _objects.end() ? std::vector<DataType::ObjectIdentifier>() : it->second;
}

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
