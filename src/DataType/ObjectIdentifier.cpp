#include "TQ_BACnet/DataType/ObjectIdentifier.h"

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/ProtocolText.h"
#include "tq_stack/codec.h"

#include <Poco/Bugcheck.h>
#include <Poco/Exception.h>
#include <Poco/NumberParser.h>
#include <Poco/StringTokenizer.h>

namespace TQ {
namespace BACnet {
namespace DataType {

ObjectIdentifier::ObjectIdentifier(const DataApplicationValue& v, const DataApplicationValue** next) {
    const auto tag = v.tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_OBJECT_ID);
    _value = createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(v.type.Object_Id.type),
                                    v.type.Object_Id.instance);
    if (next) *next = static_cast<const DataApplicationValue*>(v.next);
}

ObjectIdentifier::ObjectIdentifier(const std::string& text) {
    *this = text;
}

ObjectIdentifier::~ObjectIdentifier() = default;

ObjectIdentifier& ObjectIdentifier::operator=(const std::string& text) {
    Poco::StringTokenizer tokens(text, ",");
    if (tokens.count() < 2) {
        unsigned packed = 0;
        if (!Poco::NumberParser::tryParseUnsigned(text, packed, ',')) {
            throw Poco::InvalidArgumentException(
                "String \"" + text +
                "\" is not a valid unsigned integer, nor does it contain two comma separated tokens");
        }
        _value = packed;
        return *this;
    }
    unsigned type = 0;
    if (!Poco::NumberParser::tryParseUnsigned(tokens[0], type, ',')) {
        BACNET_OBJECT_TYPE named;
        if (!ProtocolText::objectTypeIndex(tokens[0], named)) {
            throw Poco::NotFoundException("String \"" + text +
                                          "\" does contain valid BACnet Object Type name");
        }
        type = named;
    }
    const unsigned instance = Poco::NumberParser::parseUnsigned(tokens[1], ',');
    _value = createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(type), instance);
    return *this;
}

ObjectIdentifier::operator BACnet_Object_Id() const {
    BACnet_Object_Id id;
    id.type = static_cast<uint16_t>(_value >> 22);
    id.instance = _value & 0x3FFFFFu;
    return id;
}

int ObjectIdentifier::decode(const uint8_t* apdu, uint32_t length) {
    uint16_t type = 0;
    uint32_t instance = 0;
    const int len = decode_object_id(apdu, length, &type, &instance);
    if (len >= 1) _value = createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(type), instance);
    return len;
}

int ObjectIdentifier::decodeContext(const uint8_t* apdu, uint32_t length, uint8_t tag) {
    uint16_t type = 0;
    uint32_t instance = 0;
    const int len = decode_context_object_id(apdu, length, tag, &type, &instance);
    if (len >= 1) _value = createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(type), instance);
    return len;
}

int ObjectIdentifier::encode(uint8_t* apdu) const {
    return encode_bacnet_object_id(apdu, getObjectType(), getInstance());
}

int ObjectIdentifier::encodeContext(uint8_t* apdu, uint8_t tag) const {
    return encode_context_object_id(apdu, tag, getObjectType(), getInstance());
}

std::string ObjectIdentifier::getPath(bool leadingSlash) const {
    std::string path;
    if (leadingSlash) path += '/';
    path += Entity::BnDataTypeEnum::getEnumNameById(OBJECT_TYPE_ENUM, getObjectType());
    path += ',';
    path += std::to_string(getInstance());
    return path;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
