// Text, variant and tag conversions of DataApplicationValue.
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/Utility/FloatText.h"

#include "TQ/Utility/ConvertIt.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/Time.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Utility/ConvertIt.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "tq_stack/bactext.h"
#include "tq_stack/strings.h"
#include "tq_stack/validate.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Object.h>
#include <Poco/String.h>

#include <cmath>
#include <limits>

namespace TQ {
namespace BACnet {

namespace {

using HostConvert = TQ::Utility::ConvertIt;
using BACnetConvert = TQ::BACnet::Utility::ConvertIt;

bool isNullText(const std::string& text) {
    return text.empty() || Poco::icompare(text, "null") == 0;
}

[[noreturn]] void failSetText(unsigned tag, const std::string& text, const Poco::Exception* cause = nullptr) {
    const std::string message = "DataApplicationValue::setText(" + std::to_string(tag) + ",\"" + text +
                                "\") tagToSet=\"" + bactext_application_tag_name(tag) + "\"";
    if (cause) throw Poco::BadCastException(message, *cause);
    throw Poco::BadCastException(message);
}

[[noreturn]] void failApplyTag() {
    throw Poco::BadCastException("DataApplicationValue::ApplyTag()");
}

// Truncation toward zero that saturates instead of invoking undefined behaviour: NaN and
// negative values give 0, values beyond the range give the limit.
uint32_t toUnsigned(double value) {
    if (!(value > 0.0)) return 0;
    if (value >= 4294967295.0) return std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(value);
}

int32_t toSigned(double value) {
    if (std::isnan(value)) return 0;
    if (value >= 2147483647.0) return std::numeric_limits<int32_t>::max();
    if (value <= -2147483648.0) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

// The numeric sources a conversion between tags reads, held in all the forms a target may need.
struct Numeric {
    double asDouble;
    uint32_t bits;  // the same 32 bits for integer sources
    bool isFloating;
};

bool readNumeric(const BACnet_Application_Data_Value& v, Numeric& out) {
    switch (v.tag) {
        case BACNET_APPLICATION_TAG_BOOLEAN:
            out = {v.type.Boolean ? 1.0 : 0.0, v.type.Boolean ? 1u : 0u, false};
            return true;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            out = {double(v.type.Unsigned_Int), v.type.Unsigned_Int, false};
            return true;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            out = {double(v.type.Signed_Int), static_cast<uint32_t>(v.type.Signed_Int), false};
            return true;
        case BACNET_APPLICATION_TAG_REAL:
            out = {double(v.type.Real), 0, true};
            return true;
        case BACNET_APPLICATION_TAG_DOUBLE:
            out = {v.type.Double, 0, true};
            return true;
        default:
            return false;
    }
}

}  // namespace

void DataApplicationValue::setText(BACNET_APPLICATION_TAG newTag, const std::string& text, bool emptyIsNull) {
    const bool nullText =
        newTag == BACNET_APPLICATION_TAG_CHARACTER_STRING ? (text.empty() && emptyIsNull) : isNullText(text);
    if (nullText) {
        _isNull = true;
        tag = BACNET_APPLICATION_TAG_NULL;
        return;
    }
    setApplicationTag(newTag);
    bool ok = true;
    switch (newTag) {
        case BACNET_APPLICATION_TAG_NULL:
            _isNull = true;
            break;
        case BACNET_APPLICATION_TAG_BOOLEAN:
            type.Boolean = HostConvert::getBool(text, &ok);
            break;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            type.Unsigned_Int = HostConvert::getUInt(text, &ok);
            break;
        case BACNET_APPLICATION_TAG_ENUMERATED:
            type.Enumerated = HostConvert::getUInt(text, &ok);
            break;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            type.Signed_Int = HostConvert::getInt(text, &ok);
            break;
        case BACNET_APPLICATION_TAG_REAL:
            type.Real = static_cast<float>(HostConvert::getReal(text, &ok));
            break;
        case BACNET_APPLICATION_TAG_DOUBLE:
            type.Double = HostConvert::getReal(text, &ok);
            break;
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            ok = BACnetConvert::getBACnetOctetString(text, type.Octet_String);
            break;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            ok = BACnetConvert::getBACnetCharacterString(text, type.Character_String);
            break;
        case BACNET_APPLICATION_TAG_BIT_STRING:
            ok = BACnetConvert::getBACnetBitString(text, type.Bit_String);
            break;
        case BACNET_APPLICATION_TAG_DATE:
        case BACNET_APPLICATION_TAG_TIME:
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            try {
                if (newTag == BACNET_APPLICATION_TAG_DATE) {
                    DataType::Date date;
                    date = text;
                    type.Date = date;
                } else if (newTag == BACNET_APPLICATION_TAG_TIME) {
                    DataType::Time time;
                    time = text;
                    type.Time = time;
                } else {
                    type.Object_Id = static_cast<BACnet_Object_Id>(DataType::ObjectIdentifier(text));
                }
            } catch (const Poco::Exception& e) {
                failSetText(newTag, text, &e);
            }
            break;
        default:
            ok = false;
            break;
    }
    if (!ok) failSetText(newTag, text);
}

std::string DataApplicationValue::getText(bool useNames, BACnetDataType dataType, bool* ok,
                                          WS::MarkupFactory* factory, bool bitsAsBooleans) const {
    if (ok) *ok = true;
    if (_isNull || tag == BACNET_APPLICATION_TAG_NULL) return "NULL";
    std::string out;
    switch (tag) {
        case BACNET_APPLICATION_TAG_BOOLEAN:
            return HostConvert::setBool(type.Boolean);
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            return HostConvert::setUInt(type.Unsigned_Int);
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            return HostConvert::setInt(type.Signed_Int);
        case BACNET_APPLICATION_TAG_REAL: {
            // Shortest text that reads back as the same float (0.1f is "0.1", not the digits of
            // the double it widens to); no locale, no stream.
            char text[Utility::kFloatTextMax];
            return std::string(text, Utility::floatText(type.Real, text));
        }
        case BACNET_APPLICATION_TAG_DOUBLE:
            return HostConvert::setReal(type.Double, -1, false);
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            BACnetConvert::setStdString(type.Octet_String, out);
            return out;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            BACnetConvert::setStdString(type.Character_String, out);
            if (factory) factory->stringEncode(out);
            return out;
        case BACNET_APPLICATION_TAG_BIT_STRING: {
            const unsigned bits = type.Bit_String.bits_used;
            for (unsigned bit = 0; bit < bits; ++bit) {
                const bool set = bitstring_bit(&type.Bit_String, static_cast<uint8_t>(bit));
                if (bitsAsBooleans) {
                    if (bit) out += ',';
                    out += set ? "true" : "false";
                } else if (set) {
                    if (!out.empty()) out += ';';
                    out += useNames ? Entity::BnDataTypeEnum::getEnumNameByType(dataType, bit)
                                    : std::to_string(bit);
                }
            }
            return out;
        }
        case BACNET_APPLICATION_TAG_ENUMERATED:
            return useNames ? Entity::BnDataTypeEnum::getEnumNameByType(dataType, type.Enumerated)
                            : std::to_string(type.Enumerated);
        case BACNET_APPLICATION_TAG_DATE:
            DataType::Date::getString(type.Date, out);
            return out;
        case BACNET_APPLICATION_TAG_TIME:
            DataType::Time::getString(type.Time, out);
            return out;
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            out = useNames
                      ? Entity::BnDataTypeEnum::getEnumNameByType(BACNET_DT_OBJECT_TYPE, type.Object_Id.type)
                      : std::to_string(type.Object_Id.type);
            out += ',';
            out += std::to_string(type.Object_Id.instance);
            return out;
        default:
            if (ok) *ok = false;
            return out;
    }
}

void DataApplicationValue::applyTag(BACNET_APPLICATION_TAG newTag) {
    if (newTag == tag) return;
    if (_isNull) {
        tag = static_cast<uint8_t>(newTag);
        return;
    }
    if (newTag == BACNET_APPLICATION_TAG_NULL) {
        _isNull = true;  // a null of the type it had
        return;
    }
    const bool textTarget = newTag == BACNET_APPLICATION_TAG_OCTET_STRING ||
                            newTag == BACNET_APPLICATION_TAG_BIT_STRING ||
                            newTag == BACNET_APPLICATION_TAG_CHARACTER_STRING;
    const bool numericTarget =
        newTag >= BACNET_APPLICATION_TAG_BOOLEAN && newTag <= BACNET_APPLICATION_TAG_DOUBLE;
    if (textTarget || (numericTarget && tag == BACNET_APPLICATION_TAG_CHARACTER_STRING)) {
        // The character-string read fails its assertion for every other source.
        std::string text;
        getCharString(text);
        setText(newTag, text, true);
        return;
    }
    Numeric source;
    if (!readNumeric(*this, source)) failApplyTag();
    switch (newTag) {
        case BACNET_APPLICATION_TAG_BOOLEAN:
            setBool(source.asDouble != 0.0);
            break;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
        case BACNET_APPLICATION_TAG_ENUMERATED: {
            const uint32_t value = source.isFloating ? toUnsigned(source.asDouble) : source.bits;
            if (newTag == BACNET_APPLICATION_TAG_UNSIGNED_INT)
                setUInt(value);
            else
                setEnum(value);
            break;
        }
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            setInt(source.isFloating ? toSigned(source.asDouble) : static_cast<int32_t>(source.bits));
            break;
        case BACNET_APPLICATION_TAG_REAL:
            setReal(static_cast<float>(source.asDouble));
            break;
        case BACNET_APPLICATION_TAG_DOUBLE:
            setDouble(source.asDouble);
            break;
        default:
            failApplyTag();
    }
}

void DataApplicationValue::toVar(Poco::Dynamic::Var& out) const {
    if (!_isNull) {
        switch (tag) {
            case BACNET_APPLICATION_TAG_BOOLEAN:
                out = type.Boolean;
                return;
            case BACNET_APPLICATION_TAG_UNSIGNED_INT:
                out = static_cast<unsigned int>(type.Unsigned_Int);
                return;
            case BACNET_APPLICATION_TAG_ENUMERATED:
                out = static_cast<unsigned int>(type.Enumerated);
                return;
            case BACNET_APPLICATION_TAG_SIGNED_INT:
                out = static_cast<int>(type.Signed_Int);
                return;
            case BACNET_APPLICATION_TAG_REAL:
                out = type.Real;
                return;
            case BACNET_APPLICATION_TAG_DOUBLE:
                out = type.Double;
                return;
            case BACNET_APPLICATION_TAG_CHARACTER_STRING:
                out = std::string(type.Character_String.value, type.Character_String.length);
                return;
            default:
                break;
        }
    }
    throw Poco::BadCastException("DataPortValue::toVar()");
}

void DataApplicationValue::fromVar(BACNET_APPLICATION_TAG newTag, const Poco::Dynamic::Var& in,
                                   bool recogniseNull) {
    const auto object = in.extract<Poco::JSON::Object::Ptr>();
    if (object.isNull() || object->size() == 0)
        throw Poco::InvalidArgumentException("DataApplicationValue::fromVar()");
    // The member with the smallest key, whatever order the object keeps its members in.
    auto first = object->begin();
    for (auto it = object->begin(); it != object->end(); ++it) {
        if (it->first < first->first) first = it;
    }
    const Poco::Dynamic::Var& source = first->second;
    const auto makeNull = [&] {
        tag = static_cast<uint8_t>(newTag);
        _isNull = true;
    };
    if (recogniseNull) {
        if (source.isEmpty()) return makeNull();
        const std::string text = source.toString();
        if (Poco::icompare(text, "NULL") == 0) return makeNull();
        if (text.empty() && newTag != BACNET_APPLICATION_TAG_OCTET_STRING &&
            newTag != BACNET_APPLICATION_TAG_BIT_STRING) {
            return makeNull();
        }
    }
    switch (newTag) {
        case BACNET_APPLICATION_TAG_NULL:
            if (source.isEmpty() || Poco::icompare(source.toString(), "NULL") == 0) return makeNull();
            throw Poco::BadCastException("DataApplicationValue::fromVar()");
        case BACNET_APPLICATION_TAG_BOOLEAN:
            setBool(source.convert<bool>());
            break;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            setUInt(source.convert<unsigned int>());
            break;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            setInt(source.convert<int>());
            break;
        case BACNET_APPLICATION_TAG_REAL:
            setReal(source.convert<float>());
            break;
        case BACNET_APPLICATION_TAG_DOUBLE:
            setDouble(source.convert<double>());
            break;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            setCharString(source.convert<std::string>());
            break;
        case BACNET_APPLICATION_TAG_ENUMERATED:
            setEnum(source.convert<unsigned int>());
            break;
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            setOctetString(DataType::OctetString(source.toString()));
            break;
        case BACNET_APPLICATION_TAG_BIT_STRING: {
            DataType::BitString bits;
            if (!bits.setString(source.toString()))
                throw Poco::BadCastException("DataApplicationValue::fromVar()");
            setBitString(bits);
            break;
        }
        case BACNET_APPLICATION_TAG_DATE: {
            DataType::Date date;
            date = source.toString();
            setDate(date);
            break;
        }
        case BACNET_APPLICATION_TAG_TIME: {
            DataType::Time time;
            time = source.toString();
            setTime(time);
            break;
        }
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            setObjectIdentifier(DataType::ObjectIdentifier(source.toString()));
            break;
        default:
            throw Poco::InvalidArgumentException("DataApplicationValue::fromVar()");
    }
}

bool DataApplicationValue::tryFromVar(BACNET_APPLICATION_TAG newTag, const Poco::Dynamic::Var& in,
                                      bool recogniseNull) {
    try {
        fromVar(newTag, in, recogniseNull);
        return true;
    } catch (...) {
        return false;
    }
}

bool DataApplicationValue::validateValueType(BACNET_APPLICATION_TAG expected, DataErrorRef& error,
                                             bool flag) const {
    if (expected == BACNET_APPLICATION_TAG_CHARACTER_STRING) {
        return WPValidateString(this, 2147483647, flag, &error.errorClass(), &error.errorCode());
    }
    const uint8_t against =
        (tag == BACNET_APPLICATION_TAG_NULL && flag) ? BACNET_APPLICATION_TAG_NULL : expected;
    return WPValidateArgType(this, against, &error.errorClass(), &error.errorCode());
}

}  // namespace BACnet
}  // namespace TQ
