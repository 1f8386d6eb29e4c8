#include "TQ_BACnet/DataType/BACnetPropertyReference.h"

#include "ReferencePrimitives.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/ProtocolText.h"
#include "tq_stack/codec.h"

#include <Poco/Bugcheck.h>
#include <Poco/NumberFormatter.h>

namespace TQ {
namespace BACnet {
namespace DataType {

using namespace ReferencePrimitives;

namespace {

/// Tag numbers 0..254 are encodable; the index takes the one after the property's.
constexpr unsigned MAX_FIRST_TAG = 253;

uint8_t* at(uint8_t* apdu, int offset) {
    return apdu ? apdu + offset : nullptr;
}

}  // namespace

BACnetPropertyReference::BACnetPropertyReference(BACNET_PROPERTY_ID property, unsigned arrayIndex,
                                                 unsigned firstTag)
    : _propertyIdentifier(property), _arrayIndex(arrayIndex), _firstTag(firstTag) {}

BACnetPropertyReference::BACnetPropertyReference(unsigned firstTag) : _firstTag(firstTag) {}

BACnetPropertyReference::BACnetPropertyReference(const DataPropertyInObject0&, const DataApplicationValue& v,
                                                 const DataApplicationValue** next, unsigned firstTag)
    : _firstTag(firstTag) {
    const auto tag = v.tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT);
    _propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(
        tag == BACNET_APPLICATION_TAG_ENUMERATED ? v.type.Enumerated : v.type.Unsigned_Int);
    const DataApplicationValue* current = nextOf(&v);
    if (isContextElement(current, firstTag + 1, BACNET_APPLICATION_TAG_UNSIGNED_INT)) {
        _arrayIndex = current->type.Unsigned_Int;
        current = nextOf(current);
    }
    if (next) *next = current;
}

BACnetPropertyReference::~BACnetPropertyReference() = default;

int BACnetPropertyReference::encode(uint8_t* apdu) const {
    if (_firstTag > MAX_FIRST_TAG) return -1;
    const auto tag = static_cast<uint8_t>(_firstTag);
    int len = encode_context_enumerated(apdu, tag, _propertyIdentifier);
    if (hasArrayIndex())
        len += encode_context_unsigned(at(apdu, len), static_cast<uint8_t>(tag + 1), _arrayIndex);
    return len;
}

void BACnetPropertyReference::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    appendEnumerated(out, _firstTag, _propertyIdentifier);
    if (hasArrayIndex()) appendUnsigned(out, _firstTag + 1, _arrayIndex);
}

int BACnetPropertyReference::decode(const uint8_t* apdu, unsigned length) {
    if (apdu == nullptr || _firstTag > MAX_FIRST_TAG) return -1;
    const auto tag = static_cast<uint8_t>(_firstTag);
    uint32_t property = 0;
    const int len = decode_context_enumerated(apdu, length, tag, &property);
    if (len <= 0) return -1;
    BACNET_UNSIGNED_INTEGER index = BACNET_ARRAY_ALL;
    const int indexLen =
        decode_context_unsigned(apdu + len, length - len, static_cast<uint8_t>(tag + 1), &index);
    if (indexLen < 0) return -1;
    _propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(property);
    _arrayIndex = indexLen > 0 ? index : BACNET_ARRAY_ALL;
    return len + indexLen;
}

std::string BACnetPropertyReference::getPath(BACNET_PROPERTY_ID property, unsigned arrayIndex) {
    std::string path("/");
    const std::string name = Entity::BnDataTypeEnum::getEnumNameById(ProtocolText::PROPERTY_NAMES, property);
    if (name.empty()) {
        Poco::NumberFormatter::append(path, static_cast<unsigned>(property));
    } else {
        path += name;
    }
    if (arrayIndex != BACNET_ARRAY_ALL) {
        path += '/';
        Poco::NumberFormatter::append(path, arrayIndex);
    }
    return path;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
