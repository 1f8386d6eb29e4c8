#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "tq_stack/values.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {

class DataApplicationValue;
class DataPropertyInObject0;

namespace DataType {

/// BACnetDeviceObjectReference: an object, optionally qualified by the device that holds it.
/// The device is present when its type is OBJECT_DEVICE (8); any other type means "this device".
/// Doubles as the host's 64-bit key of a device object (`getKey`/`setKey`).
class BACnetDeviceObjectReference : public BACNET_DEVICE_OBJECT_REFERENCE, public BACnetComplex {
public:
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;

    /// No device (type 0, instance 0) and no object (type 1024, instance 0x3FFFFF).
    BACnetDeviceObjectReference();
    /// The device instance is masked to 22 bits.
    BACnetDeviceObjectReference(unsigned deviceInstance, BACNET_OBJECT_TYPE objectType, unsigned instance);
    BACnetDeviceObjectReference(unsigned deviceInstance, ObjectIdentifier object);
    BACnetDeviceObjectReference(ObjectIdentifier device, ObjectIdentifier object);
    /// From decoded primitives: an optional context [0] device identifier, then the object
    /// identifier. Unlike the other references, `*next` receives the last primitive looked at
    /// (the object identifier's own), not the one after it.
    BACnetDeviceObjectReference(BACnetDataType dataType, const DataApplicationValue& v,
                                const DataApplicationValue** next);
    /// The value container's form of the above; the descriptor is not consulted.
    BACnetDeviceObjectReference(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                                const DataApplicationValue** next);
    explicit BACnetDeviceObjectReference(unsigned long long key);

    BACnetDeviceObjectReference(const BACnetDeviceObjectReference&) = default;
    BACnetDeviceObjectReference& operator=(const BACnetDeviceObjectReference&) = default;
    ~BACnetDeviceObjectReference() override;

    int encode(uint8_t* apdu) const override;
    int decode(const uint8_t* apdu, unsigned length) override;
    int decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_DEVICE_OBJECT_REFERENCE; }
    /// Walks the catalogue's definition of the type over the value's primitives.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;
    /// The members as context-tagged primitives in encoding order, appended to `out`; the
    /// primitive constructor reads them back.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;

    bool hasDevice() const { return deviceIdentifier.type == OBJECT_DEVICE; }
    /// The packed device identifier; the type's bits are kept as they are, so "no device"
    /// packs to type 0 instance 0 only when it was set that way.
    ObjectIdentifier getDeviceIdentifier() const;
    ObjectIdentifier getObjectIdentifier() const;
    void setDeviceIdentifier(ObjectIdentifier device);
    void setObjectIdentifier(ObjectIdentifier object);

    /// High 32 bits the packed device identifier (0 without a device), low 32 bits the packed
    /// object identifier.
    unsigned long long getKey() const;
    /// Accepts a key made by `getKey` and one whose high word is a bare device instance; a high
    /// word of all ones or 0 means no device (device 0 is keyed by its packed identifier).
    void setKey(unsigned long long key);

    /// Device and object compared as packed identifiers.
    bool operator==(const BACnetDeviceObjectReference& other) const;
    bool operator!=(const BACnetDeviceObjectReference& other) const { return !(*this == other); }

    /// The BACnet/WS path: "/" device instance, then the object's path ("/1234/analog-input,3").
    static std::string getPath(unsigned deviceInstance, const ObjectIdentifier& object);

protected:
    /// The walk over decoded primitives shared by the primitive constructors.
    void takePrimitives(const DataApplicationValue& v, const DataApplicationValue** next);
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
