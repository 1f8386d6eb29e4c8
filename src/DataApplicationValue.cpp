#include "TQ_BACnet/DataApplicationValue.h"

#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/Time.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"
#include "tq_stack/strings.h"

#include <Poco/Bugcheck.h>
#include <Poco/Exception.h>
#include <Poco/NumericString.h>

#include <algorithm>
#include <cstring>

namespace TQ {
namespace BACnet {

namespace {

// Copies only what the tag says is in use: the union holds ~1.5 KB of string storage, and a
// value is copied every time a vector of values grows.
void copyUsedValue(BACnet_Application_Data_Value& dst, const BACnet_Application_Data_Value& src) {
    switch (src.tag) {
        case BACNET_APPLICATION_TAG_NULL:
            break;
        case BACNET_APPLICATION_TAG_OCTET_STRING: {
            const size_t length = std::min<size_t>(src.type.Octet_String.length, MAX_OCTET_STRING_BYTES);
            dst.type.Octet_String.length = length;
            std::memcpy(dst.type.Octet_String.value, src.type.Octet_String.value, length);
            break;
        }
        case BACNET_APPLICATION_TAG_CHARACTER_STRING: {
            const size_t length =
                std::min<size_t>(src.type.Character_String.length, MAX_CHARACTER_STRING_BYTES);
            dst.type.Character_String.encoding = src.type.Character_String.encoding;
            dst.type.Character_String.length = length;
            std::memcpy(dst.type.Character_String.value, src.type.Character_String.value, length);
            dst.type.Character_String.value[length] = '\0';
            break;
        }
        case BACNET_APPLICATION_TAG_BIT_STRING:
            dst.type.Bit_String = src.type.Bit_String;
            break;
        default:
            // Every other member fits the first 8 bytes (double, object id).
            std::memcpy(&dst.type, &src.type, sizeof(double));
            break;
    }
}

}  // namespace

DataApplicationValue::DataApplicationValue(const BACnet_Application_Data_Value& value)
    : DataApplicationValue() {
    copyFrom(value);
    next = value.next;
    _isNull = tag == BACNET_APPLICATION_TAG_NULL;
}

DataApplicationValue::DataApplicationValue(BACNET_APPLICATION_TAG newTag, bool withDefault)
    : DataApplicationValue() {
    if (!withDefault) {
        tag = static_cast<uint8_t>(newTag);
        // A null of a string type must still copy safely.
        type.Octet_String.length = 0;
        type.Character_String.length = 0;
        type.Bit_String.bits_used = 0;
        return;
    }
    switch (newTag) {
        case BACNET_APPLICATION_TAG_NULL:
            break;
        case BACNET_APPLICATION_TAG_BOOLEAN:
            setBool(false);
            break;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            setUInt(0);
            break;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            setInt(0);
            break;
        case BACNET_APPLICATION_TAG_REAL:
            setReal(0.0f);
            break;
        case BACNET_APPLICATION_TAG_DOUBLE:
            setDouble(0.0);
            break;
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            setOctetString(DataType::OctetString(std::string("00")));
            break;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            setCharString(std::string());
            break;
        case BACNET_APPLICATION_TAG_BIT_STRING:
            setBitString(DataType::BitString());
            break;
        case BACNET_APPLICATION_TAG_ENUMERATED:
            setEnum(0);
            break;
        case BACNET_APPLICATION_TAG_DATE:
            setDate(DataType::Date());
            break;
        case BACNET_APPLICATION_TAG_TIME:
            setTime(DataType::Time());
            break;
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            setObjectIdentifier(DataType::ObjectIdentifier());
            break;
        default:
            throw Poco::InvalidArgumentException();
    }
}

DataApplicationValue::DataApplicationValue(const DataApplicationValue& other) : DataApplicationValue() {
    _isNull = other._isNull;
    _reserved = other._reserved;
    copyFrom(other);
    next = other.next;
}

// Nothing to steal: the storage is inline, so a move is a copy of the used bytes.
DataApplicationValue::DataApplicationValue(DataApplicationValue&& other) noexcept
    : DataApplicationValue(static_cast<const DataApplicationValue&>(other)) {}

DataApplicationValue& DataApplicationValue::operator=(const DataApplicationValue& other) {
    if (this != &other) {
        _isNull = other._isNull;
        copyFrom(other);
    }
    return *this;
}

DataApplicationValue& DataApplicationValue::operator=(DataApplicationValue&& other) noexcept {
    return *this = static_cast<const DataApplicationValue&>(other);
}

void DataApplicationValue::copyFrom(const BACnet_Application_Data_Value& other) {
    context_specific = other.context_specific;
    context_tag = other.context_tag;
    tag = other.tag;
    copyUsedValue(*this, other);
}

void DataApplicationValue::init() {
    _isNull = true;
    tag = BACNET_APPLICATION_TAG_NULL;
    context_specific = false;
    next = nullptr;
    _reserved = 65535;
}

int DataApplicationValue::decode(const uint8_t* apdu, unsigned len) {
    const int result = bacapp_decode_application_data(apdu, len, this);
    _isNull = tag == BACNET_APPLICATION_TAG_NULL;
    return result;
}

int DataApplicationValue::encode(uint8_t* apdu) const {
    if (apdu == nullptr) return 0;
    if (_isNull) return encode_application_null(apdu);
    switch (tag) {
        case BACNET_APPLICATION_TAG_NULL:
            return encode_application_null(apdu);
        case BACNET_APPLICATION_TAG_BOOLEAN:
            return encode_application_boolean(apdu, type.Boolean);
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            return encode_application_unsigned(apdu, type.Unsigned_Int);
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            return encode_application_signed(apdu, type.Signed_Int);
        case BACNET_APPLICATION_TAG_REAL:
            return encode_application_real(apdu, type.Real);
        case BACNET_APPLICATION_TAG_DOUBLE:
            return encode_application_double(apdu, type.Double);
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            return encode_application_octet_string(apdu, &type.Octet_String);
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            return encode_application_character_string(apdu, &type.Character_String);
        case BACNET_APPLICATION_TAG_BIT_STRING:
            return encode_application_bitstring(apdu, &type.Bit_String);
        case BACNET_APPLICATION_TAG_ENUMERATED:
            return encode_application_enumerated(apdu, type.Enumerated);
        case BACNET_APPLICATION_TAG_DATE:
            return encode_application_date(apdu, &type.Date);
        case BACNET_APPLICATION_TAG_TIME:
            return encode_application_time(apdu, &type.Time);
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            return encode_application_object_id(apdu, type.Object_Id.type, type.Object_Id.instance);
        default:
            return -1;
    }
}

void DataApplicationValue::setBool(bool value) {
    setApplicationTag(BACNET_APPLICATION_TAG_BOOLEAN);
    type.Boolean = value;
}

void DataApplicationValue::setUInt(unsigned value) {
    setApplicationTag(BACNET_APPLICATION_TAG_UNSIGNED_INT);
    type.Unsigned_Int = value;
}

void DataApplicationValue::setInt(int value) {
    setApplicationTag(BACNET_APPLICATION_TAG_SIGNED_INT);
    type.Signed_Int = value;
}

void DataApplicationValue::setReal(float value) {
    setApplicationTag(BACNET_APPLICATION_TAG_REAL);
    type.Real = value;
}

void DataApplicationValue::setDouble(double value) {
    setApplicationTag(BACNET_APPLICATION_TAG_DOUBLE);
    type.Double = value;
}

void DataApplicationValue::setEnum(unsigned value) {
    setApplicationTag(BACNET_APPLICATION_TAG_ENUMERATED);
    type.Enumerated = value;
}

void DataApplicationValue::setOctetString(const DataType::OctetString& value) {
    setApplicationTag(BACNET_APPLICATION_TAG_OCTET_STRING);
    if (!octetstring_init(&type.Octet_String, value.empty() ? nullptr : value.data(), value.size())) {
        type.Octet_String.length = 0;
    }
}

bool DataApplicationValue::setCharString(const std::string& value) {
    setApplicationTag(BACNET_APPLICATION_TAG_CHARACTER_STRING);
    return characterstring_init_ansi(&type.Character_String, value.c_str());
}

void DataApplicationValue::setBitString(const DataType::BitString& value) {
    setApplicationTag(BACNET_APPLICATION_TAG_BIT_STRING);
    const unsigned bits = value.getBitsUsed();
    const size_t bytesNeeded = (bits + 7u) / 8u;
    const size_t bytes = std::min<size_t>({bytesNeeded, MAX_BITSTRING_BYTES, value.size()});
    if (bytesNeeded > MAX_BITSTRING_BYTES) {
        type.Bit_String.bits_used = MAX_BITSTRING_BYTES * 8;
    } else {
        type.Bit_String.bits_used = static_cast<uint8_t>(bits);
    }
    if (bytes > 0) std::memcpy(type.Bit_String.value, value.data(), bytes);
}

void DataApplicationValue::setDate(const DataType::Date& value) {
    setApplicationTag(BACNET_APPLICATION_TAG_DATE);
    type.Date = value;
}

void DataApplicationValue::setTime(const DataType::Time& value) {
    setApplicationTag(BACNET_APPLICATION_TAG_TIME);
    type.Time = value;
}

void DataApplicationValue::setObjectIdentifier(DataType::ObjectIdentifier value) {
    setApplicationTag(BACNET_APPLICATION_TAG_OBJECT_ID);
    type.Object_Id = static_cast<BACnet_Object_Id>(value);
}

void DataApplicationValue::getOctetString(DataType::OctetString& out) const {
    poco_assert(tag == BACNET_APPLICATION_TAG_OCTET_STRING || tag == BACNET_APPLICATION_TAG_NULL);
    if (tag == BACNET_APPLICATION_TAG_NULL) {
        out.clear();
        return;
    }
    out.assign(type.Octet_String.value, type.Octet_String.length);
}

void DataApplicationValue::getCharString(std::string& out) const {
    poco_assert(tag == BACNET_APPLICATION_TAG_CHARACTER_STRING || tag == BACNET_APPLICATION_TAG_NULL);
    if (tag == BACNET_APPLICATION_TAG_NULL) {
        out.clear();
        return;
    }
    out.assign(type.Character_String.value, type.Character_String.length);
}

void DataApplicationValue::getBitString(DataType::BitString& out) const {
    poco_assert(tag == BACNET_APPLICATION_TAG_BIT_STRING || tag == BACNET_APPLICATION_TAG_NULL);
    if (tag == BACNET_APPLICATION_TAG_NULL) {
        out.setBitsUsed(0);
        return;
    }
    out.assign(type.Bit_String.value, bitstring_bytes_used(&type.Bit_String));
    out.setBitsUsed(type.Bit_String.bits_used);
}

double DataApplicationValue::toDouble() const {
    if (_isNull) throw Poco::BadCastException("DataPortValue::toDouble()");
    switch (tag) {
        case BACNET_APPLICATION_TAG_BOOLEAN:
            return type.Boolean ? 1.0 : 0.0;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            return type.Unsigned_Int;
        case BACNET_APPLICATION_TAG_ENUMERATED:
            return type.Enumerated;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            return type.Signed_Int;
        case BACNET_APPLICATION_TAG_REAL:
            return type.Real;
        case BACNET_APPLICATION_TAG_DOUBLE:
            return type.Double;
        case BACNET_APPLICATION_TAG_CHARACTER_STRING: {
            double result = 0.0;
            const std::string text(type.Character_String.value, type.Character_String.length);
            if (Poco::strToDouble(text, result, '.', ',')) return result;
            break;
        }
        default:
            break;
    }
    throw Poco::BadCastException("DataPortValue::toDouble()");
}

double DataApplicationValue::getDouble(bool convert) const {
    if (convert) return toDouble();
    poco_assert(tag == BACNET_APPLICATION_TAG_DOUBLE);
    return type.Double;
}

float DataApplicationValue::getReal(bool convert) const {
    if (convert) return static_cast<float>(toDouble());
    poco_assert(tag == BACNET_APPLICATION_TAG_REAL);
    return type.Real;
}

bool DataApplicationValue::isNumeric() const {
    return tag == BACNET_APPLICATION_TAG_UNSIGNED_INT || tag == BACNET_APPLICATION_TAG_SIGNED_INT ||
           tag == BACNET_APPLICATION_TAG_REAL || tag == BACNET_APPLICATION_TAG_DOUBLE;
}

std::string DataApplicationValue::getContextTagAsString() const {
    return context_specific ? std::to_string(context_tag) : std::string();
}

bool DataApplicationValue::operator==(const DataApplicationValue& other) const {
    if (_isNull || other._isNull) return _isNull && other._isNull;
    if (tag != other.tag) return false;
    switch (tag) {
        case BACNET_APPLICATION_TAG_BOOLEAN:
            return type.Boolean == other.type.Boolean;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            return type.Unsigned_Int == other.type.Unsigned_Int;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            return type.Signed_Int == other.type.Signed_Int;
        case BACNET_APPLICATION_TAG_ENUMERATED:
            return type.Enumerated == other.type.Enumerated;
        case BACNET_APPLICATION_TAG_REAL:
            return type.Real == other.type.Real;
        case BACNET_APPLICATION_TAG_DOUBLE:
            return type.Double == other.type.Double;
        case BACNET_APPLICATION_TAG_OCTET_STRING:
            return octetstring_value_same(&type.Octet_String, &other.type.Octet_String);
        case BACNET_APPLICATION_TAG_CHARACTER_STRING:
            return characterstring_same(&type.Character_String, &other.type.Character_String);
        case BACNET_APPLICATION_TAG_BIT_STRING:
            return bitstring_same(&type.Bit_String, &other.type.Bit_String);
        case BACNET_APPLICATION_TAG_DATE:
            return datetime_compare_date(&type.Date, &other.type.Date) == 0;
        case BACNET_APPLICATION_TAG_TIME:
            return datetime_compare_time(&type.Time, &other.type.Time) == 0;
        case BACNET_APPLICATION_TAG_OBJECT_ID:
            return type.Object_Id.type == other.type.Object_Id.type &&
                   type.Object_Id.instance == other.type.Object_Id.instance;
        default:
            return false;
    }
}

}  // namespace BACnet
}  // namespace TQ
