#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"

#include "ReferencePrimitives.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "tq_stack/references.h"

#include <Poco/Bugcheck.h>
#include <Poco/NumberFormatter.h>

#include <cstdio>

namespace TQ {
namespace BACnet {
namespace DataType {

using namespace ReferencePrimitives;

namespace {

constexpr uint16_t UNSET_OBJECT_TYPE = BACNET_MAX_OBJECT;
constexpr BACNET_PROPERTY_ID UNSET_PROPERTY = static_cast<BACNET_PROPERTY_ID>(0xFFFFFE);

}  // namespace

BACnetDeviceObjectPropertyReference::BACnetDeviceObjectPropertyReference() {
    reset();
    init();
}

BACnetDeviceObjectPropertyReference::BACnetDeviceObjectPropertyReference(const ObjectIdentifier& object,
                                                                         BACNET_PROPERTY_ID property,
                                                                         unsigned index,
                                                                         const ObjectIdentifier& device) {
    setObjectId(objectIdentifier, object);
    propertyIdentifier = property;
    arrayIndex = index;
    setObjectId(deviceIdentifier, device);
}

BACnetDeviceObjectPropertyReference::BACnetDeviceObjectPropertyReference(unsigned deviceInstance,
                                                                         unsigned objectType,
                                                                         unsigned objectInstance,
                                                                         unsigned property, unsigned index) {
    objectIdentifier.type = static_cast<uint16_t>(objectType);
    objectIdentifier.instance = objectInstance & BACNET_MAX_INSTANCE;
    propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(property);
    arrayIndex = index;
    deviceIdentifier.type = OBJECT_DEVICE;
    deviceIdentifier.instance = deviceInstance & BACNET_MAX_INSTANCE;
}

BACnetDeviceObjectPropertyReference::BACnetDeviceObjectPropertyReference(const DataPropertyInObject0&,
                                                                         const DataApplicationValue& v,
                                                                         const DataApplicationValue** next) {
    reset();
    init();
    const auto tag = v.tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_OBJECT_ID);
    objectIdentifier = v.type.Object_Id;

    // Every member after the object identifier is context tagged; an application-tagged
    // primitive already belongs to whatever follows this reference.
    const DataApplicationValue* current = nextOf(&v);
    if (isContextElement(current, 1, BACNET_APPLICATION_TAG_ENUMERATED)) {
        propertyIdentifier = static_cast<BACNET_PROPERTY_ID>(current->type.Enumerated);
        current = nextOf(current);
        if (isContextElement(current, 2, BACNET_APPLICATION_TAG_UNSIGNED_INT)) {
            arrayIndex = current->type.Unsigned_Int;
            current = nextOf(current);
        }
    }
    if (isContextElement(current, 3, BACNET_APPLICATION_TAG_OBJECT_ID)) {
        deviceIdentifier = current->type.Object_Id;
        current = nextOf(current);
    }
    if (next) *next = current;
}

BACnetDeviceObjectPropertyReference::~BACnetDeviceObjectPropertyReference() = default;

void BACnetDeviceObjectPropertyReference::reset() {
    objectIdentifier.type = UNSET_OBJECT_TYPE;
    objectIdentifier.instance = 0;
    propertyIdentifier = UNSET_PROPERTY;
    arrayIndex = BACNET_ARRAY_ALL;
    deviceIdentifier.type = UNSET_OBJECT_TYPE;
    deviceIdentifier.instance = 0;
}

void BACnetDeviceObjectPropertyReference::init() {
    arrayIndex = BACNET_ARRAY_ALL;
    deviceIdentifier.type = BACNET_NO_DEV_TYPE;
    deviceIdentifier.instance = BACNET_NO_DEV_ID;
}

int BACnetDeviceObjectPropertyReference::encode(uint8_t* apdu) const {
    return bacapp_encode_device_obj_property_ref(apdu, this);
}

int BACnetDeviceObjectPropertyReference::decode(const uint8_t* apdu, unsigned length) {
    const int len = bacapp_decode_device_obj_property_ref(apdu, length, this);
    return len > 0 ? len : -1;
}

int BACnetDeviceObjectPropertyReference::decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) {
    const int len = bacapp_decode_context_device_obj_property_ref(apdu, length, tag, this);
    return len > 0 ? len : -1;
}

void BACnetDeviceObjectPropertyReference::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    appendObjectId(out, 0, getObjectIdentifier());
    appendEnumerated(out, 1, propertyIdentifier);
    if (hasArrayIndex()) appendUnsigned(out, 2, arrayIndex);
    if (hasDevice()) appendObjectId(out, 3, getDeviceIdentifier());
}

ObjectIdentifier BACnetDeviceObjectPropertyReference::getObjectIdentifier() const {
    return toObjectIdentifier(objectIdentifier);
}

ObjectIdentifier BACnetDeviceObjectPropertyReference::getDeviceIdentifier() const {
    return toObjectIdentifier(deviceIdentifier);
}

void BACnetDeviceObjectPropertyReference::setObjectIdentifier(ObjectIdentifier object) {
    setObjectId(objectIdentifier, object);
}

void BACnetDeviceObjectPropertyReference::setDeviceIdentifier(ObjectIdentifier device) {
    setObjectId(deviceIdentifier, device);
}

void BACnetDeviceObjectPropertyReference::getHexIdentifier(const ObjectIdentifier& defaultDevice,
                                                           std::string& out) const {
    const uint32_t device = hasDevice() ? getDeviceIdentifier().getValue() : defaultDevice.getValue();
    char text[33];
    std::snprintf(text, sizeof text, "%08X%08X%08X%08X", static_cast<unsigned>(device),
                  static_cast<unsigned>(getObjectIdentifier().getValue()),
                  static_cast<unsigned>(propertyIdentifier), static_cast<unsigned>(arrayIndex));
    out.assign(text, 32);
}

bool BACnetDeviceObjectPropertyReference::operator==(const BACnetDeviceObjectPropertyReference& other) const {
    // "No device" has several spellings (all ones from the codec, type 1023 from reset);
    // they all mean the same thing.
    const bool sameDevice = hasDevice() == other.hasDevice() &&
                            (!hasDevice() || deviceIdentifier.instance == other.deviceIdentifier.instance);
    return sameDevice && getObjectIdentifier() == other.getObjectIdentifier() &&
           propertyIdentifier == other.propertyIdentifier && arrayIndex == other.arrayIndex;
}

std::string BACnetDeviceObjectPropertyReference::getPath(unsigned deviceInstance,
                                                         const ObjectIdentifier& object,
                                                         BACNET_PROPERTY_ID property, unsigned index) {
    std::string path("/");
    Poco::NumberFormatter::append(path, deviceInstance);
    path += BACnetObjectPropertyReference::getPath(object, property, index);
    return path;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
