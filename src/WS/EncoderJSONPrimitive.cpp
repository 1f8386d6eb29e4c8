// Primitive members of the JSON encoder: reading the text, names of enumerations and bits,
// range checks, and the application or context tag.
#include "TQ_BACnet/WS/EncoderJSON.h"

#include "TQ/Utility/ConvertIt.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "WsSupport.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/config.h"

#include <Poco/Exception.h>
#include <Poco/String.h>

#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstdlib>

namespace TQ {
namespace BACnet {
namespace WS {

using Entity::BnDataTypeEnum;
using Poco::Dynamic::Var;

namespace {

using HostConvert = TQ::Utility::ConvertIt;

constexpr unsigned kMaxBits = MAX_BITSTRING_BYTES * 8;

bool isNullText(const std::string& text) {
    return text.empty() || Poco::icompare(text, "null") == 0;
}

// Digits with an optional sign, blanks around allowed: a number, whatever its size.
bool looksInteger(const std::string& text) {
    const std::string t = Poco::trim(text);
    std::size_t i = (!t.empty() && (t[0] == '+' || t[0] == '-')) ? 1 : 0;
    if (i == t.size()) return false;
    for (; i < t.size(); ++i)
        if (!std::isdigit(static_cast<unsigned char>(t[i]))) return false;
    return true;
}

bool looksFloating(const std::string& text) {
    const std::string t = Poco::trim(text);
    if (t.empty()) return false;
    char* end = nullptr;
    std::strtod(t.c_str(), &end);
    return end == t.c_str() + t.size();
}

// Whether a value that did not convert was a well-formed number or string of the kind that
// is merely too big for its type.
bool outOfRange(unsigned kind, const std::string& text, const Var& raw) {
    switch (kind) {
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
        case BACNET_APPLICATION_TAG_SIGNED_INT:
        case BACNET_APPLICATION_TAG_ENUMERATED:
            return raw.isNumeric() || looksInteger(text);
        case BACNET_APPLICATION_TAG_REAL:
        case BACNET_APPLICATION_TAG_DOUBLE:
            return raw.isNumeric() || looksFloating(text);
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            return text.size() / 2 > MAX_OCTET_STRING_BYTES;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            return text.size() > MAX_CHARACTER_STRING_BYTES;
        default:
            return false;
    }
}

// The primitive text of a JSON value: a string as it is, an object's "$value", a JSON null as
// empty, numbers and booleans in their usual text form.
std::string textOf(const EncoderJSON& encoder, const Var& json) {
    if (json.isEmpty()) return std::string();
    if (json.isString()) return json.extract<std::string>();
    if (WsSupport::objectOf(json)) {
        Var value;
        encoder.getSubObject(json, "$value", value, true);
        return textOf(encoder, value);
    }
    if (WsSupport::arrayOf(json))
        throw Poco::DataFormatException(
            "TQ::BACnet::WS::EncoderJSON::setPrimitive() a JSON array where one value "
            "is expected");
    return json.convert<std::string>();
}

unsigned typeKeyOf(const EncoderJSON::DataTypeAndName& member) {
    return member.pDTC ? static_cast<unsigned>(member.pDTC->getIdBnDataTypeConstruct())
                       : BnDataTypeEnum::kNotFound;
}

void resolveEnumerated(const EncoderJSON::DataTypeAndName& member, std::string& text) {
    bool isNumber = false;
    HostConvert::getUInt(text, &isNumber);
    if (isNumber || isNullText(text)) return;
    if (looksInteger(text))
        throw Poco::RangeException("Can not encode enumerate value '" + text + "'. It is out of range");
    unsigned value = BnDataTypeEnum::getEnumValueById(member.idBnDataTypeConstruct, text);
    const unsigned typeKey = typeKeyOf(member);
    if (value == BnDataTypeEnum::kNotFound && typeKey != BnDataTypeEnum::kNotFound)
        value = BnDataTypeEnum::getEnumValueById(typeKey, text);
    if (value == BnDataTypeEnum::kNotFound)
        throw Poco::NotFoundException(
            "Can not encode enumerate value '" + text +
            "'. Either invalid text, use of upper/lower case, or enumerate datatype does "
            "not exist in database");
    text = std::to_string(value);
}

// Bits by name or number, separated by ";", sized to the bit count of the member's (or else
// its type's) catalogue entry. False for the "true,false,..." form, which the value reads
// itself.
bool resolveBits(const EncoderJSON::DataTypeAndName& member, const std::string& text,
                 DataApplicationValue& value) {
    const std::string trimmed = Poco::trim(text);
    if (trimmed.find(',') != std::string::npos || trimmed == "true" || trimmed == "false") return false;
    const auto fail = [&text]() {
        return Poco::NotFoundException(
            "Can not encode bit-sting value '" + text +
            "'. Either invalid value or bitstring datatype does not exist in database");
    };
    unsigned keys[2] = {member.idBnDataTypeConstruct, typeKeyOf(member)};
    int count = BnDataTypeEnum::getBitCount(keys[0]);
    if (count < 1 && keys[1] != BnDataTypeEnum::kNotFound) {
        count = BnDataTypeEnum::getBitCount(keys[1]);
        std::swap(keys[0], keys[1]);
    }
    std::vector<unsigned> set;
    std::size_t start = 0;
    while (!trimmed.empty() && start <= trimmed.size()) {
        const std::size_t end = std::min(trimmed.find(';', start), trimmed.size());
        const std::string name = Poco::trim(trimmed.substr(start, end - start));
        start = end + 1;
        bool isNumber = false;
        unsigned bit = HostConvert::getUInt(name, &isNumber);
        if (!isNumber) {
            bit = count > 0 ? BnDataTypeEnum::findReverse(keys[0], name) : BnDataTypeEnum::kNotFound;
            if (bit == BnDataTypeEnum::kNotFound) throw fail();
        }
        if (bit >= kMaxBits || (count > 0 && bit >= static_cast<unsigned>(count)))
            throw Poco::RangeException("Can not encode bit-sting value '" + text + "'. Bit " + name +
                                       " is out of range");
        set.push_back(bit);
    }
    unsigned used = count > 0 ? static_cast<unsigned>(count) : 0;
    for (unsigned bit : set) used = std::max(used, bit + 1);
    DataType::BitString bits;
    bits.setBitsUsed(std::min(used, kMaxBits));
    for (unsigned bit : set) bits.setBit(bit, true);
    value.setBitString(bits);
    return true;
}

}  // namespace

void EncoderJSON::setPrimitive(const DataTypeAndName& member, const Var& json,
                               DataApplicationValue& value) const {
    unsigned kind;
    if (!member.idBnMarkup.isNull()) {
        kind = member.idBnMarkup.value();
    } else if (member.pDTC) {
        kind = static_cast<unsigned>(member.pDTC->getIdBnDataType());
        if (kind >= BACNET_DT_MAX_APPLICATION_TAG) {
            const Poco::Nullable<unsigned> top = member.pDTC->getIdBnMarkup();
            if (top.isNull())
                throw Poco::NullValueException("TQ::BACnet::WS::EncoderJSON::setPrimitive() datatype " +
                                               std::to_string(kind) + " has no markup kind");
            kind = top.value();
        }
    } else {
        kind = BACNET_DT_MAX_APPLICATION_TAG;
    }
    if (kind > BACNET_APPLICATION_TAG_OBJECT_ID)
        throw Poco::InvalidArgumentException(
            "TQ::BACnet::WS::EncoderJSON::setPrimitive() datatype is not primitive");

    std::string text = textOf(*this, json);
    const auto tag = static_cast<BACNET_APPLICATION_TAG>(kind);
    bool done = false;
    if (tag == BACNET_APPLICATION_TAG_ENUMERATED) resolveEnumerated(member, text);
    if (tag == BACNET_APPLICATION_TAG_BIT_STRING && Poco::icompare(text, "null") != 0)
        done = resolveBits(member, text, value);
    if (tag == BACNET_APPLICATION_TAG_REAL) {
        bool ok = false;
        const double real = HostConvert::getReal(text, &ok);
        if (ok && std::isfinite(real) && std::fabs(real) > FLT_MAX)
            throw Poco::RangeException("TQ::BACnet::WS::EncoderJSON::setPrimitive() " + text +
                                       " is beyond the range of a REAL");
    }
    if (!done) {
        try {
            value.setText(tag, text, true);
        } catch (const Poco::BadCastException& e) {
            if (outOfRange(kind, text, json)) throw Poco::RangeException(e.message());
            throw;
        }
    }
    value.context_specific = !member.contextNr.isNull();
    value.context_tag = member.contextNr.isNull() ? 255 : member.contextNr.value();
}

int EncoderJSON::encodePrimitiveInternal(const DataTypeAndName& member, const Var& json,
                                         unsigned char** out) const {
    DataApplicationValue value;
    setPrimitive(member, json, value);
    const int length = bacapp_encode_data(nullptr, &value);
    if (length < 0)
        throw Poco::InvalidArgumentException(
            "TQ::BACnet::WS::EncoderJSON::encodePrimitiveInternal() the value of \"" + member.name +
            "\" cannot be encoded");
    reserve(*out, static_cast<std::size_t>(length));
    bacapp_encode_data(*out, &value);
    *out += length;
    return length;
}

int EncoderJSON::encodeNullInternal(const DataTypeAndName& member, unsigned char** out) const {
    DataTypeAndName null = member;
    null.idBnMarkup = 0u;
    return encodePrimitiveInternal(null, Var(), out);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
