// The item converters of the path parser and the names of addressing scopes.
#include "TQ_BACnet/WS/UriParser.h"

#include "TQ_BACnet/ProtocolText.h"
#include "TQ_BACnet/WS/PathItemNames.h"
#include "UriParserSupport.h"

#include <Poco/Exception.h>

#include <cstring>
#include <unordered_map>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

constexpr uint32_t kInstanceLimit = 0x400000;
constexpr uint32_t kObjectTypeLimit = 1024;
constexpr uint32_t kPropertyLimit = 0xFFFFFF;

bool startsWithDigit(const std::string& item) {
    return !item.empty() && item[0] >= '0' && item[0] <= '9';
}

// Names found in the catalogue, kept per thread so that a parse takes no lock: the catalogue's
// names only ever grow. Misses are not kept, and a full cache starts over.
template <class T>
bool lookUp(std::unordered_map<std::string, T>& cache, const std::string& name,
            bool (*catalogue)(const std::string&, T&), T& out) {
    const auto hit = cache.find(name);
    if (hit != cache.end()) {
        out = hit->second;
        return true;
    }
    if (!catalogue(name, out)) return false;
    if (cache.size() >= 512) cache.clear();
    cache.emplace(name, out);
    return true;
}

bool objectTypeIndex(const std::string& name, BACNET_OBJECT_TYPE& out) {
    thread_local std::unordered_map<std::string, BACNET_OBJECT_TYPE> cache;
    return lookUp(cache, name, &ProtocolText::objectTypeIndex, out);
}

bool propertyIndex(const std::string& name, BACNET_PROPERTY_ID& out) {
    thread_local std::unordered_map<std::string, BACNET_PROPERTY_ID> cache;
    return lookUp(cache, name, &ProtocolText::propertyIndex, out);
}

}  // namespace

unsigned int UriParser::_localDevInstance = 0xFFFFFFFFu;

bool UriParser::isPathBACnetRWRequest(const std::string& item) {
    return item == PathItemNames::PI_947_BACNET_SRV;
}

bool UriParser::isPathBACnetServiceRequest(const std::string& item) {
    return item == PathItemNames::PI_DOT_BACNET || item == PathItemNames::PI_DOT_BLT ||
           item == PathItemNames::PI_DOT_BLTD;
}

bool UriParser::isPathBACnetRequest(const std::string& item) {
    return isPathBACnetRWRequest(item) || isPathBACnetServiceRequest(item);
}

BACNET_OBJECT_TYPE UriParser::getObjType(std::string item, DataWsError& error) {
    uint32_t number = 0;
    const PathNumber::Result read = PathNumber::read(item, number);
    if (read != PathNumber::Result::NotNumber) {
        if (read == PathNumber::Result::Ok && number < kObjectTypeLimit)
            return static_cast<BACNET_OBJECT_TYPE>(number);
        const std::string text = "object-type as number " + item + " is out of range";
        fail(error, DataWsError::WS_ERR_RANGE, text);
        throw Poco::RangeException(text);
    }
    BACNET_OBJECT_TYPE type;
    if (objectTypeIndex(item, type)) return type;
    const std::string text = "object-type as name \"" + item + "\" does not exist or not supported";
    fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND, text);
    throw Poco::InvalidArgumentException(text);
}

unsigned int UriParser::getObjInstance(const std::string& item, bool isDevice, DataWsError& error) {
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
            what + item + "\" exceed the max possible value of 22 bits, 003FFFFFh (4194303)";
        fail(error, DataWsError::WS_ERR_RANGE, text);
        throw Poco::RangeException(text);
    }
    const std::string text = what + item + "\" is not a valid number";
    fail(error, DataWsError::WS_ERR_PARAM_SYNTAX, text);
    throw Poco::InvalidArgumentException(text);
}

BACNET_PROPERTY_ID UriParser::getPropIdentifier(const std::string& item, DataWsError& error) {
    BACNET_PROPERTY_ID property;
    // No property name starts with a digit: numbers skip the name lookup (a miss would query
    // the catalogue on every request).
    if (!startsWithDigit(item) && propertyIndex(item, property)) return property;
    uint32_t number = 0;
    const PathNumber::Result read = PathNumber::read(item, number);
    if (read == PathNumber::Result::Ok && number < kPropertyLimit)
        return static_cast<BACNET_PROPERTY_ID>(number);
    if (read != PathNumber::Result::NotNumber) {
        const std::string text = "property-id \"" + item + "\" is out of range";
        fail(error, DataWsError::WS_ERR_RANGE, text);
        throw Poco::RangeException(text);
    }
    const std::string text = "property-id \"" + item + "\" is invalid property name";
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
