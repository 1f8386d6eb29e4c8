#include "Catalogue.h"

#include "TQ_BACnet/ProtocolText.h"
#include "TQ_BACnet/WS/PropertyDocument.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/File.h>
#include <Poco/Path.h>

#include <cstdlib>

namespace TQ {
namespace Apps {

using BACnet::Entity::BnDataTypeEnum;

namespace {

constexpr long kMaxInstance = 4194303;  // 22 bits
constexpr long kMaxObjectType = 1023;   // 10 bits

bool isNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

std::string Catalogue::defaultLocation() {
    if (const char* file = std::getenv("TQ_BACNET_DB"); file != nullptr && *file != '\0') return file;
    std::string base;
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data != '\0') {
        base = data;
    } else if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
        base = std::string(home) + "/.local/share";
    } else {
        base = ".";
    }
    return base + "/tq-bacnet/tq_bacnet.db";
}

Catalogue::Catalogue(const Args& args) : _location(args.get("db", defaultLocation())) {
    Poco::Path parent = Poco::Path(_location).parent();
    if (!parent.toString().empty()) Poco::File(parent).createDirectories();
    _session = Utility::Data::openEmbeddedDatabase(_location, &_created);
    Utility::Data::pDB = _session.get();
}

Catalogue::~Catalogue() {
    if (Utility::Data::pDB == _session.get()) Utility::Data::pDB = nullptr;
}

BACNET_OBJECT_TYPE parseObjectType(const std::string& text) {
    if (isNumber(text)) {
        return static_cast<BACNET_OBJECT_TYPE>(parseNumber(text, 0, kMaxObjectType, "object type"));
    }
    Poco::Nullable<BACNET_OBJECT_TYPE> type = BACnet::ProtocolText::objectTypeId(text);
    if (type.isNull()) throw InputError("unknown object type \"" + text + "\"");
    return type.value();
}

BACNET_PROPERTY_ID parseProperty(const std::string& text) {
    if (isNumber(text)) {
        return static_cast<BACNET_PROPERTY_ID>(parseNumber(text, 0, 4194303, "property identifier"));
    }
    Poco::Nullable<BACNET_PROPERTY_ID> property = BACnet::ProtocolText::propertyId(text);
    if (property.isNull()) throw InputError("unknown property \"" + text + "\"");
    return property.value();
}

ObjectId parseObjectId(const std::string& text) {
    const size_t comma = text.find_first_of(",:");
    if (comma == std::string::npos) {
        throw InputError("an object is TYPE,INSTANCE (for example analog-input,3), not \"" + text + "\"");
    }
    ObjectId id{parseObjectType(text.substr(0, comma)), 0};
    const std::string instance = text.substr(comma + 1);
    if (!isNumber(instance)) throw InputError("object instance \"" + instance + "\" is not a number");
    id.instance = static_cast<uint32_t>(parseNumber(instance, 0, kMaxInstance, "object instance"));
    return id;
}

BACnet::DataPropertyInObject0 describe(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property) {
    BACnet::DataPropertyInObject0 descriptor;
    if (!BACnet::DataPropertyInObject0::getValueTypeAndStructure(objectType, property, descriptor, false)) {
        throw InputError(objectTypeName(objectType) + " has no property " + propertyName(property));
    }
    return descriptor;
}

BACnet::DataPropertyInObject0 elementOf(const BACnet::DataPropertyInObject0& property) {
    BACnet::DataPropertyInObject0 element;
    if (!BACnet::WS::PropertyDocument::elementOf(property, element)) {
        throw InputError("the property is no array: it has no elements to index");
    }
    return element;
}

std::string objectTypeName(BACNET_OBJECT_TYPE type) {
    std::string name = BnDataTypeEnum::getEnumNameById(BnDataTypeEnum::kObjectTypes, type);
    return name.empty() ? std::to_string(type) : name;
}

std::string propertyName(BACNET_PROPERTY_ID property) {
    std::string name = BnDataTypeEnum::getEnumNameById(BnDataTypeEnum::kPropertyIdentifiers, property);
    return name.empty() ? std::to_string(property) : name;
}

}  // namespace Apps
}  // namespace TQ
