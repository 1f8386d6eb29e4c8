#include "TQ_BACnet/WS/ObjectJSON.h"

#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Utility/ConvertIt.h"
#include "tq_stack/bactext.h"
#include "tq_stack/config.h"

#include <Poco/Exception.h>
#include <Poco/NumberParser.h>
#include <Poco/String.h>
#include <Poco/StringTokenizer.h>

#include <algorithm>
#include <vector>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

std::string prefix(BACnetDataType requested) {
    std::string p = "BACnet::WS::ObjectJSON::getValueString(<";
    p += bactext_application_tag_name(requested);
    p += ">)";
    return p;
}

}  // namespace

ObjectJSON::ObjectJSON(int options) : Poco::JSON::Object(options) {}

ObjectJSON::ObjectJSON(const DataPropertyInObject0& descriptor, bool flag)
    : _descriptor(descriptor), _flag(flag) {}

ObjectJSON::ObjectJSON(const Poco::JSON::Object& object, const DataPropertyInObject0& descriptor, bool flag)
    : Poco::JSON::Object(object), _descriptor(descriptor), _flag(flag) {}

ObjectJSON::ObjectJSON(const DataType::ANY& any, int options) : Poco::JSON::Object(options) {
    _descriptor = any.getDescriptor();
    setValue(any);
}

void ObjectJSON::getValueString(BACnetDataType requested, bool strict, bool nullAllowed, bool emptyAllowed,
                                std::string& out) const {
    if (size() == 0) throw Poco::NullValueException(prefix(requested) + " the JSON object is empty");
    if (size() > 1)
        throw Poco::BadCastException(prefix(requested) + " the JSON object holds more than one value");
    const std::string value = begin()->second.extract<std::string>();
    if (strict && requested != _descriptor.datatype &&
        !(requested < BACNET_DT_MAX_APPLICATION_TAG && _descriptor.tag != BACNET_APPLICATION_TAG_NULL &&
          static_cast<unsigned>(requested) == static_cast<unsigned>(_descriptor.tag))) {
        throw Poco::BadCastException(prefix(requested) + " strict casting from \"" +
                                     bactext_application_tag_name(_descriptor.datatype) + "\" (" +
                                     std::to_string(_descriptor.datatype) + ") not permitted");
    }
    if (!emptyAllowed && value.empty())
        throw Poco::BadCastException(prefix(requested) + " value converted to string is empty");
    if (!nullAllowed && Poco::icompare(value, "null") == 0)
        throw Poco::BadCastException(prefix(requested) + " value is null");
    if (strict && requested == BACNET_DT_BOOLEAN) {
        const std::string lower = Poco::toLower(value);
        if (lower != "1" && lower != "true" && lower != "0" && lower != "false")
            throw Poco::BadCastException(prefix(requested) + " value is not strict boolean");
    }
    out = value;
}

std::string ObjectJSON::text(BACnetDataType requested, bool strict) const {
    std::string value;
    getValueString(requested, strict, false, false, value);
    return value;
}

bool ObjectJSON::getBoolean(bool strict) const {
    return Poco::NumberParser::parseBool(text(BACNET_DT_BOOLEAN, strict));
}

unsigned int ObjectJSON::getUnsignedInt(bool strict) const {
    return Poco::NumberParser::parseUnsigned(text(BACNET_DT_UNSIGNED_INT, strict));
}

int ObjectJSON::getSignedInt(bool strict) const {
    return Poco::NumberParser::parse(text(BACNET_DT_SIGNED_INT, strict));
}

float ObjectJSON::getReal(bool strict) const {
    if (strict && (_descriptor.datatype != BACNET_DT_REAL || _descriptor.emptyAllowed))
        throw Poco::InvalidAccessException("Requesting strict real that is not a nullable real");
    return static_cast<float>(Poco::NumberParser::parseFloat(text(BACNET_DT_REAL, strict), '.', ','));
}

double ObjectJSON::getDouble(bool strict) const {
    return Poco::NumberParser::parseFloat(text(BACNET_DT_DOUBLE, strict));
}

DataType::OctetString ObjectJSON::getOctetString(bool strict) const {
    return DataType::OctetString(text(BACNET_DT_OCTET_STRING, strict));
}

std::string ObjectJSON::getCharacterString(bool strict) const {
    return text(BACNET_DT_CHARACTER_STRING, strict);
}

DataType::BitString ObjectJSON::getBitString(bool strict) const {
    const std::string value = text(BACNET_DT_BIT_STRING, strict);
    DataType::BitString out;
    // The writer's form without names, the numbers of the bits set ("1;3"), comes first: a
    // text of digits would otherwise read as hexadecimal.
    if (value.find_first_not_of("0123456789; ") != std::string::npos) {
        BACnet_Bit_String bits;
        if (!Utility::ConvertIt::getBACnetBitString(value, bits))
            throw Poco::BadCastException("BACnet::WS::ObjectJSON::getBitString() \"" + value +
                                         "\" is no bit string");
        Utility::ConvertIt::setBitBuffer(bits, out);
        return out;
    }
    std::vector<unsigned> set;
    for (const std::string& number : Poco::StringTokenizer(
             value, ";", Poco::StringTokenizer::TOK_TRIM | Poco::StringTokenizer::TOK_IGNORE_EMPTY)) {
        unsigned bit = 0;
        if (!Poco::NumberParser::tryParseUnsigned(number, bit) || bit >= MAX_BITSTRING_BYTES * 8)
            throw Poco::BadCastException("BACnet::WS::ObjectJSON::getBitString() \"" + value +
                                         "\" is no bit string");
        set.push_back(bit);
    }
    // The text does not tell how many bits there are; the catalogue does for named bits.
    int used = 0;
    if (_descriptor.datatype >= BACNET_DT_MAX_APPLICATION_TAG) {
        if (const Entity::BnDataTypeConstruct* def = Entity::BnDataTypeConstruct::find(_descriptor.datatype))
            used = std::max(0, Entity::BnDataTypeEnum::getBitCount(
                                   static_cast<unsigned>(def->getIdBnDataTypeConstruct())));
    }
    for (unsigned bit : set) used = std::max(used, static_cast<int>(bit) + 1);
    out.setBitsUsed(static_cast<unsigned>(used));
    for (unsigned bit : set) out.setBit(bit, true);
    return out;
}

unsigned int ObjectJSON::getEnumerated(bool strict) const {
    return Poco::NumberParser::parseUnsigned(text(BACNET_DT_ENUMERATED, strict));
}

DataType::Date ObjectJSON::getDate(bool strict) const {
    DataType::Date date;
    date = text(BACNET_DT_DATE, strict);
    return date;
}

DataType::Time ObjectJSON::getTime(bool strict) const {
    DataType::Time time;
    time = text(BACNET_DT_TIME, strict);
    return time;
}

DataType::ObjectIdentifier ObjectJSON::getObjectIdentifier(bool strict) const {
    return DataType::ObjectIdentifier(text(BACNET_DT_OBJECT_ID, strict));
}

bool ObjectJSON::getArrayItem(unsigned int index, Poco::Dynamic::Var& out) const {
    if (index == 0 || index > size()) return false;
    const std::string name = std::to_string(index);
    if (!has(name)) return false;
    out = get(name);
    return true;
}

bool ObjectJSON::getArrayItem(unsigned int index, DataApplicationValue& out, bool recogniseNull) const {
    Poco::Dynamic::Var item;
    return getArrayItem(index, item) && out.tryFromVar(_descriptor.tag, item, recogniseNull);
}

bool ObjectJSON::isBitStringBitSet(const std::string& bitName) const {
    if (size() != 1) return false;
    const Poco::Dynamic::Var& value = begin()->second;
    if (value.isEmpty()) return false;
    const std::string names = value.convert<std::string>();
    std::size_t start = 0;
    while (start <= names.size()) {
        const std::size_t end = std::min(names.find(';', start), names.size());
        if (names.compare(start, end - start, bitName) == 0 && end - start == bitName.size()) return true;
        start = end + 1;
    }
    return false;
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
