// The database behind tq-bacnet's names and types, and the reading of object and property
// arguments (names or numbers).
#pragma once

#include "Cli.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "tq_stack/enums.h"

#include <memory>
#include <string>

namespace TQ {
namespace Utility {
namespace Data {
class SmoDbSession;
}
}  // namespace Utility
namespace Apps {

/// Opens the catalogue database named by --db (default: the user's embedded database,
/// created with the full catalogue on first use) and makes it the library's session.
class Catalogue {
public:
    explicit Catalogue(const Args& args);
    ~Catalogue();
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    const std::string& location() const { return _location; }
    Utility::Data::SmoDbSession& session() { return *_session; }
    bool created() const { return _created; }

    /// The default database file: $TQ_BACNET_DB, else $XDG_DATA_HOME (or ~/.local/share)
    /// /tq-bacnet/tq_bacnet.db.
    static std::string defaultLocation();

private:
    std::unique_ptr<Utility::Data::SmoDbSession> _session;
    std::string _location;
    bool _created = false;
};

/// An object type by name ("analog-input") or number; InputError otherwise.
BACNET_OBJECT_TYPE parseObjectType(const std::string& text);
/// A property identifier by name ("present-value") or number; InputError otherwise.
BACNET_PROPERTY_ID parseProperty(const std::string& text);

struct ObjectId {
    BACNET_OBJECT_TYPE type;
    uint32_t instance;
};
/// "analog-input,3", "analog-input:3" or "0,3"; InputError otherwise.
ObjectId parseObjectId(const std::string& text);

/// The catalogue's descriptor of a property of an object type; InputError when unknown.
BACnet::DataPropertyInObject0 describe(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property);

/// The descriptor of one element of a property: the element type of an array or list, or of a
/// catalogued SEQUENCE OF (the priority array); InputError for a property that has no elements.
BACnet::DataPropertyInObject0 elementOf(const BACnet::DataPropertyInObject0& property);

std::string objectTypeName(BACNET_OBJECT_TYPE type);
std::string propertyName(BACNET_PROPERTY_ID property);

}  // namespace Apps
}  // namespace TQ
