#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"

#include "ReferencePrimitives.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "tq_stack/codec.h"
#include "tq_stack/rp.h"
#include "tq_stack/rr.h"

#include <Poco/Bugcheck.h>

namespace TQ {
namespace BACnet {
namespace DataType {

using namespace ReferencePrimitives;

namespace {

constexpr uint8_t OBJECT_TAG = 0;
constexpr uint8_t PROPERTY_TAG = 1;
constexpr uint8_t INDEX_TAG = 2;
/// What a fresh request record carries until a reply says otherwise.
constexpr auto REQUEST_ERROR_CLASS = static_cast<BACNET_ERROR_CLASS>(8);
constexpr auto REQUEST_ERROR_CODE = static_cast<BACNET_ERROR_CODE>(0);

uint8_t* at(uint8_t* apdu, int offset) {
    return apdu ? apdu + offset : nullptr;
}

/// Read-property and read-range records share the addressing fields and the reply fields.
template <class Record>
void fillRequest(const ObjectIdentifier& object, BACNET_PROPERTY_ID property, uint32_t arrayIndex,
                 Record& out) {
    out.object_type = object.getObjectType();
    out.object_instance = object.getInstance();
    out.object_property = property;
    out.array_index = arrayIndex;
    out.application_data = nullptr;
    out.application_data_len = 0;
    out.error_class = REQUEST_ERROR_CLASS;
    out.error_code = REQUEST_ERROR_CODE;
}

}  // namespace

BACnetObjectPropertyReference::BACnetObjectPropertyReference() = default;

BACnetObjectPropertyReference::BACnetObjectPropertyReference(ObjectIdentifier object,
                                                             BACNET_PROPERTY_ID property, unsigned arrayIndex)
    : _objectIdentifier(object), _propertyIdentifier(property), _arrayIndex(arrayIndex) {}

BACnetObjectPropertyReference::BACnetObjectPropertyReference(
    const BACnetDeviceObjectPropertyReference& reference)
    : _objectIdentifier(reference.getObjectIdentifier()),
      _propertyIdentifier(reference.getPropertyIdentifier()),
      _arrayIndex(reference.getArrayIndex()) {}

BACnetObjectPropertyReference::BACnetObjectPropertyReference(const DataPropertyInObject0&,
                                                             const DataApplicationValue& v,
                                                             const DataApplicationValue** next) {
    const auto tag = v.tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_OBJECT_ID);
    _objectIdentifier = ObjectIdentifier(v.type.Object_Id);
    const DataApplicationValue* current = nextOf(&v);
    if (isMember(current, PROPERTY_TAG, BACNET_APPLICATION_TAG_ENUMERATED)) {
        _propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(current->type.Enumerated);
        current = nextOf(current);
        if (isContextElement(current, INDEX_TAG, BACNET_APPLICATION_TAG_UNSIGNED_INT)) {
            _arrayIndex = current->type.Unsigned_Int;
            current = nextOf(current);
        }
    }
    if (next) *next = current;
}

BACnetObjectPropertyReference::~BACnetObjectPropertyReference() = default;

void BACnetObjectPropertyReference::get(BACnet_Read_Property_Data& out) const {
    fillRequest(_objectIdentifier, _propertyIdentifier, _arrayIndex, out);
}

void BACnetObjectPropertyReference::get(BACnet_Read_Range_Data& out) const {
    fillRequest(_objectIdentifier, _propertyIdentifier, _arrayIndex, out);
}

BACnetObjectPropertyReference& BACnetObjectPropertyReference::operator=(const BACnet_Read_Property_Data& in) {
    _objectIdentifier = ObjectIdentifier(in.object_type, in.object_instance);
    _propertyIdentifier = in.object_property;
    _arrayIndex = in.array_index;
    return *this;
}

BACnetObjectPropertyReference& BACnetObjectPropertyReference::operator=(const BACnet_Read_Range_Data& in) {
    _objectIdentifier = ObjectIdentifier(in.object_type, in.object_instance);
    _propertyIdentifier = in.object_property;
    _arrayIndex = in.array_index;
    return *this;
}

void BACnetObjectPropertyReference::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    appendObjectId(out, OBJECT_TAG, _objectIdentifier);
    appendEnumerated(out, PROPERTY_TAG, _propertyIdentifier);
    if (hasArrayIndex()) appendUnsigned(out, INDEX_TAG, _arrayIndex);
}

int BACnetObjectPropertyReference::encode(uint8_t* apdu) const {
    int len = encode_context_object_id(apdu, OBJECT_TAG, _objectIdentifier.getObjectType(),
                                       _objectIdentifier.getInstance());
    len += encode_context_enumerated(at(apdu, len), PROPERTY_TAG, _propertyIdentifier);
    if (hasArrayIndex()) len += encode_context_unsigned(at(apdu, len), INDEX_TAG, _arrayIndex);
    return len;
}

int BACnetObjectPropertyReference::decode(const uint8_t* apdu, unsigned length) {
    if (apdu == nullptr) return -1;
    ObjectIdentifier object;
    int len = object.decodeContext(apdu, length, OBJECT_TAG);
    if (len <= 0) return -1;
    uint32_t property = 0;
    const int propertyLen = decode_context_enumerated(apdu + len, length - len, PROPERTY_TAG, &property);
    if (propertyLen <= 0) return -1;
    len += propertyLen;
    BACNET_UNSIGNED_INTEGER index = BACNET_ARRAY_ALL;
    const int indexLen = decode_context_unsigned(apdu + len, length - len, INDEX_TAG, &index);
    if (indexLen < 0) return -1;
    _objectIdentifier = object;
    _propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(property);
    _arrayIndex = indexLen > 0 ? index : BACNET_ARRAY_ALL;
    return len + indexLen;
}

std::string BACnetObjectPropertyReference::getPath(const ObjectIdentifier& object,
                                                   BACNET_PROPERTY_ID property, unsigned arrayIndex) {
    return object.getPath(true) + BACnetPropertyReference::getPath(property, arrayIndex);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
