#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"

#include "ReferencePrimitives.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "tq_stack/references.h"

#include <Poco/NumberFormatter.h>

namespace TQ {
namespace BACnet {
namespace DataType {

using namespace ReferencePrimitives;

namespace {

/// High words of a key without a device: all ones from the host, 0 from `getKey`, so that a
/// key read back through `setKey` names what it was made from. A device of instance 0 is keyed
/// by its packed identifier (0x02000000), never as a bare instance.
constexpr uint32_t NO_KEY_DEVICE = 0xFFFFFFFFu;
constexpr uint32_t NO_DEVICE_KEY = 0;

/// The codec marks an absent device with all ones; this class uses type 0 instance 0 so that
/// two references without a device compare and key alike however they were made.
void normaliseNoDevice(BACNET_OBJECT_ID& device) {
    if (device.type != OBJECT_DEVICE) clearDevice(device);
}

}  // namespace

BACnetDeviceObjectReference::BACnetDeviceObjectReference() {
    clearDevice(deviceIdentifier);
    objectIdentifier.type = MAX_BACNET_OBJECT_TYPE;
    objectIdentifier.instance = BACNET_MAX_INSTANCE;
}

BACnetDeviceObjectReference::BACnetDeviceObjectReference(unsigned deviceInstance,
                                                         BACNET_OBJECT_TYPE objectType, unsigned instance)
    : BACnetDeviceObjectReference(deviceInstance, ObjectIdentifier(objectType, instance)) {}

BACnetDeviceObjectReference::BACnetDeviceObjectReference(unsigned deviceInstance, ObjectIdentifier object) {
    deviceIdentifier.type = OBJECT_DEVICE;
    deviceIdentifier.instance = deviceInstance & BACNET_MAX_INSTANCE;
    setObjectId(objectIdentifier, object);
}

BACnetDeviceObjectReference::BACnetDeviceObjectReference(ObjectIdentifier device, ObjectIdentifier object) {
    setObjectId(deviceIdentifier, device);
    setObjectId(objectIdentifier, object);
}

BACnetDeviceObjectReference::BACnetDeviceObjectReference(BACnetDataType, const DataApplicationValue& v,
                                                         const DataApplicationValue** next)
    : BACnetDeviceObjectReference() {
    takePrimitives(v, next);
}

BACnetDeviceObjectReference::BACnetDeviceObjectReference(const DataPropertyInObject0&,
                                                         const DataApplicationValue& v,
                                                         const DataApplicationValue** next)
    : BACnetDeviceObjectReference() {
    takePrimitives(v, next);
}

BACnetDeviceObjectReference::BACnetDeviceObjectReference(unsigned long long key)
    : BACnetDeviceObjectReference() {
    setKey(key);
}

BACnetDeviceObjectReference::~BACnetDeviceObjectReference() = default;

void BACnetDeviceObjectReference::takePrimitives(const DataApplicationValue& v,
                                                 const DataApplicationValue** next) {
    const DataApplicationValue* current = &v;
    if (v.context_specific && v.context_tag == 0) {
        if (v.tag != BACNET_APPLICATION_TAG_OBJECT_ID || v.next == nullptr) {
            if (v.tag == BACNET_APPLICATION_TAG_OBJECT_ID) deviceIdentifier = v.type.Object_Id;
            if (next) *next = &v;
            return;
        }
        deviceIdentifier = v.type.Object_Id;
        current = static_cast<const DataApplicationValue*>(v.next);
    }
    if (isMember(current, 1, BACNET_APPLICATION_TAG_OBJECT_ID)) objectIdentifier = current->type.Object_Id;
    if (next) *next = current;
}

int BACnetDeviceObjectReference::encode(uint8_t* apdu) const {
    return bacapp_encode_device_obj_ref(apdu, this);
}

int BACnetDeviceObjectReference::decode(const uint8_t* apdu, unsigned length) {
    const int len = bacapp_decode_device_obj_ref(apdu, length, this);
    if (len > 0) normaliseNoDevice(deviceIdentifier);
    return len > 0 ? len : -1;
}

int BACnetDeviceObjectReference::decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) {
    const int len = bacapp_decode_context_device_obj_ref(apdu, length, tag, this);
    if (len > 0) normaliseNoDevice(deviceIdentifier);
    return len > 0 ? len : -1;
}

void BACnetDeviceObjectReference::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    if (hasDevice()) appendObjectId(out, 0, getDeviceIdentifier());
    appendObjectId(out, 1, getObjectIdentifier());
}

ObjectIdentifier BACnetDeviceObjectReference::getDeviceIdentifier() const {
    return toObjectIdentifier(deviceIdentifier);
}

ObjectIdentifier BACnetDeviceObjectReference::getObjectIdentifier() const {
    return toObjectIdentifier(objectIdentifier);
}

void BACnetDeviceObjectReference::setDeviceIdentifier(ObjectIdentifier device) {
    setObjectId(deviceIdentifier, device);
}

void BACnetDeviceObjectReference::setObjectIdentifier(ObjectIdentifier object) {
    setObjectId(objectIdentifier, object);
}

unsigned long long BACnetDeviceObjectReference::getKey() const {
    const unsigned long long device = hasDevice() ? getDeviceIdentifier().getValue() : NO_DEVICE_KEY;
    return (device << 32) | getObjectIdentifier().getValue();
}

void BACnetDeviceObjectReference::setKey(unsigned long long key) {
    setObjectId(objectIdentifier, ObjectIdentifier(static_cast<uint32_t>(key)));
    const auto high = static_cast<uint32_t>(key >> 32);
    if (high == NO_KEY_DEVICE || high == NO_DEVICE_KEY) {
        clearDevice(deviceIdentifier);
    } else {
        // A packed device identifier and a bare instance both keep their instance in the low bits.
        deviceIdentifier.type = OBJECT_DEVICE;
        deviceIdentifier.instance = high & BACNET_MAX_INSTANCE;
    }
}

bool BACnetDeviceObjectReference::operator==(const BACnetDeviceObjectReference& other) const {
    return getDeviceIdentifier() == other.getDeviceIdentifier() &&
           getObjectIdentifier() == other.getObjectIdentifier();
}

std::string BACnetDeviceObjectReference::getPath(unsigned deviceInstance, const ObjectIdentifier& object) {
    std::string path("/");
    Poco::NumberFormatter::append(path, deviceInstance);
    path += object.getPath(true);
    return path;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
