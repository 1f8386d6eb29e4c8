// ANY's JSON side: built from a BACnet/WS JSON body, read as a primitive through ObjectJSON.
#include "TQ_BACnet/DataType/ANY.h"

#include "TQ_BACnet/WS/EncoderJSON.h"
#include "TQ_BACnet/WS/ObjectJSON.h"
#include "tq_stack/config.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

void requireStrict(const DataPropertyInObject0& d, bool strict, BACNET_APPLICATION_TAG tag,
                   const char* what) {
    if (strict && (d.structure != BACNET_DTS_SINGLE_VALUE || d.tag != tag))
        throw Poco::BadCastException(std::string("ANY strict conversion value is not ") + what);
}

}  // namespace

ANY::ANY(const DataPropertyInObject0& descriptor, const std::string& json)
    : ANY(descriptor, PropertyRef(), json) {}

ANY::ANY(const DataPropertyInObject0& descriptor, const PropertyRef& ref, const std::string& json)
    : _descriptor(descriptor), _ref(ref) {
    TQ::Utility::OctetBuffer bytes(MAX_APDU);
    const int length = WS::EncoderJSON().encode(descriptor, json, bytes, 0);
    if (length > 0) _value.assign(bytes.data(), static_cast<std::size_t>(length));
}

unsigned int ANY::getUnsignedInt(bool strict) const {
    requireStrict(_descriptor, strict, BACNET_APPLICATION_TAG_UNSIGNED_INT, "unisigned-integer");
    return WS::ObjectJSON(*this, 0).getUnsignedInt(strict);
}

float ANY::getReal(bool strict) const {
    requireStrict(_descriptor, strict, BACNET_APPLICATION_TAG_REAL, "real");
    return WS::ObjectJSON(*this, 0).getReal(strict);
}

double ANY::getDouble(bool strict) const {
    requireStrict(_descriptor, strict, BACNET_APPLICATION_TAG_DOUBLE, "double");
    return WS::ObjectJSON(*this, 0).getDouble(strict);
}

int ANY::getSignedInt(bool strict) const {
    requireStrict(_descriptor, strict, BACNET_APPLICATION_TAG_SIGNED_INT, "signed-integer");
    return WS::ObjectJSON(*this, 0).getSignedInt(strict);
}

unsigned int ANY::getEnumerated(bool strict) const {
    requireStrict(_descriptor, strict, BACNET_APPLICATION_TAG_ENUMERATED, "enumerate");
    return WS::ObjectJSON(*this, 0).getEnumerated(strict);
}

bool ANY::getBoolean(bool strict) const {
    requireStrict(_descriptor, strict, BACNET_APPLICATION_TAG_BOOLEAN, "boolean");
    return WS::ObjectJSON(*this, 0).getBoolean(strict);
}

void ANY::getBitString(TQ::Utility::BitBuffer& out, bool strict) const {
    requireStrict(_descriptor, strict, BACNET_APPLICATION_TAG_BIT_STRING, "bit-string");
    out = WS::ObjectJSON(*this, 0).getBitString(strict);
}

std::string ANY::getText(const std::string& separator) const {
    std::string text;
    for (std::size_t position = 0; position < _value.size();) {
        DataApplicationValue value;
        const int used =
            value.decode(_value.data() + position, static_cast<unsigned>(_value.size() - position));
        if (used <= 0 || value.context_specific) return _value.getHexString(false);
        if (position > 0) text += separator;
        bool ok = true;
        text += value.getText(true, _descriptor.datatype, &ok, nullptr, false);
        position += static_cast<std::size_t>(used);
    }
    return text;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
