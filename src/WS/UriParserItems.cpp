// The item converters of the path parser and the names of addressing scopes.
#include "TQ_BACnet/WS/UriParser.h"

#include "TQ_BACnet/ProtocolText.h"
#include "TQ_BACnet/WS/PathItemNames.h"
#include "UriParserSupport.h"

#include <Poco/Exception.h>

#include <deque>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

constexpr uint32_t kInstanceLimit = 0x400000;
constexpr uint32_t kObjectTypeLimit = 1024;
constexpr uint32_t kPropertyLimit = 0xFFFFFF;

bool startsWithDigit(std::string_view item) {
    return !item.empty() && item[0] >= '0' && item[0] <= '9';
}

// Names found in the catalogue, kept per thread so that a parse takes no lock: the catalogue's
// names only ever grow. Misses are not kept, and a full cache starts over. The map's keys view
// the names kept beside it (a deque never moves what it holds), so a path item is looked up as
// it stands, without a copy.
template <class T>
class NameCache {
public:
    explicit NameCache(bool (*catalogue)(const std::string&, T&)) : _catalogue(catalogue) {}

    bool lookUp(std::string_view name, T& out) {
        const auto hit = _map.find(name);
        if (hit != _map.end()) {
            out = hit->second;
            return true;
        }
        std::string key(name);
        if (!_catalogue(key, out)) return false;
        if (_map.size() >= 512) {
            _map.clear();
            _names.clear();
        }
        _names.push_back(std::move(key));
        _map.emplace(_names.back(), out);
        return true;
    }

private:
    bool (*_catalogue)(const std::string&, T&);
    std::deque<std::string> _names;
    std::unordered_map<std::string_view, T> _map;
};

bool objectTypeIndex(std::string_view name, BACNET_OBJECT_TYPE& out) {
    thread_local NameCache<BACNET_OBJECT_TYPE> cache(&ProtocolText::objectTypeIndex);
    return cache.lookUp(name, out);
}

bool propertyIndex(std::string_view name, BACNET_PROPERTY_ID& out) {
    thread_local NameCache<BACNET_PROPERTY_ID> cache(&ProtocolText::propertyIndex);
    return cache.lookUp(name, out);
}

}  // namespace

unsigned int UriParser::_localDevInstance = 0xFFFFFFFFu;

bool UriParser::isPathBACnetRWRequest(std::string_view item) {
    return item == PathItemNames::PI_947_BACNET_SRV;
}

bool UriParser::isPathBACnetServiceRequest(std::string_view item) {
    return item == PathItemNames::PI_DOT_BACNET || item == PathItemNames::PI_DOT_BLT ||
           item == PathItemNames::PI_DOT_BLTD;
}

bool UriParser::isPathBACnetRequest(std::string_view item) {
    return isPathBACnetRWRequest(item) || isPathBACnetServiceRequest(item);
}

BACNET_OBJECT_TYPE UriParser::getObjType(std::string_view item, DataWsError& error) {
    uint32_t number = 0;
    const PathNumber::Result read = PathNumber::read(item, number);
    if (read != PathNumber::Result::NotNumber) {
        if (read == PathNumber::Result::Ok && number < kObjectTypeLimit)
            return static_cast<BACNET_OBJECT_TYPE>(number);
        const std::string text = joined("object-type as number ", item, " is out of range");
        fail(error, DataWsError::WS_ERR_RANGE, text);
        throw Poco::RangeException(text);
    }
    BACNET_OBJECT_TYPE type;
    if (objectTypeIndex(item, type)) return type;
    const std::string text = joined("object-type as name \"", item, "\" does not exist or not supported");
    fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND, text);
    throw Poco::InvalidArgumentException(text);
}

unsigned int UriParser::getObjInstance(std::string_view item, bool isDevice, DataWsError& error) {
    // Numbers come first: every word starts with a dot.
    if (isDevice && !item.empty() && item[0] == '.' &&
        (item == PathItemNames::PI_DOT_DEVICE || item == PathItemNames::PI_DOT_SELF ||
         item == PathItemNames::PI_DOT_THIS)) {
        const unsigned local = _localDevInstance;
        if (local < kInstanceLimit) return local;
        throw Poco::RangeException("Static Local device-instance has not been set in BACnet::WS::UriParser");
    }
    const char* what = isDevice ? "dev-inst \"" : "object-inst \"";
    uint32_t number = 0;
    const PathNumber::Result read = PathNumber::read(item, number);
    if (read == PathNumber::Result::Ok && number < kInstanceLimit) return number;
    if (read != PathNumber::Result::NotNumber) {
        const std::string text =
            joined(what, item, "\" exceed the max possible value of 22 bits, 003FFFFFh (4194303)");
        fail(error, DataWsError::WS_ERR_RANGE, text);
        throw Poco::RangeException(text);
    }
    const std::string text = joined(what, item, "\" is not a valid number");
    fail(error, DataWsError::WS_ERR_PARAM_SYNTAX, text);
    throw Poco::InvalidArgumentException(text);
}

BACNET_PROPERTY_ID UriParser::getPropIdentifier(std::string_view item, DataWsError& error) {
    BACNET_PROPERTY_ID property;
    // No property name starts with a digit: numbers skip the name lookup (a miss would query
    // the catalogue on every request).
    if (!startsWithDigit(item) && propertyIndex(item, property)) return property;
    uint32_t number = 0;
    const PathNumber::Result read = PathNumber::read(item, number);
    if (read == PathNumber::Result::Ok && number < kPropertyLimit)
        return static_cast<BACNET_PROPERTY_ID>(number);
    if (read != PathNumber::Result::NotNumber) {
        const std::string text = joined("property-id \"", item, "\" is out of range");
        fail(error, DataWsError::WS_ERR_RANGE, text);
        throw Poco::RangeException(text);
    }
    const std::string text = joined("property-id \"", item, "\" is invalid property name");
    fail(error, DataWsError::WS_ERR_PARAM_SYNTAX, text);
    throw Poco::InvalidArgumentException(text);
}

std::string UriParser::getScopeName(unsigned short network) {
    return network == 0 ? std::string(PathItemNames::PI_DOT_LOCAL) : std::to_string(network);
}

std::string UriParser::getScopeDisplayName(unsigned short network) {
    return network == 0 ? std::string("Local Network (nr. 0)") : "Network nr. " + std::to_string(network);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
