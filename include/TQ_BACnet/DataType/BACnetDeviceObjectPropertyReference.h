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

/// BACnetDeviceObjectPropertyReference: a property (optionally one array element) of an object,
/// optionally in another device. The array index is absent when all ones (BACNET_ARRAY_ALL); the
/// device is present when its type is OBJECT_DEVICE (8).
class BACnetDeviceObjectPropertyReference : public BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE,
                                            public BACnetComplex {
public:
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;

    /// The values of `reset` for object and property, absent array index and device (`init`).
    BACnetDeviceObjectPropertyReference();
    BACnetDeviceObjectPropertyReference(const ObjectIdentifier& object, BACNET_PROPERTY_ID property,
                                        unsigned arrayIndex, const ObjectIdentifier& device);
    /// A device of type 8 whose instance is masked to 22 bits.
    BACnetDeviceObjectPropertyReference(unsigned deviceInstance, unsigned objectType, unsigned objectInstance,
                                        unsigned property, unsigned arrayIndex);
    /// From decoded primitives: object identifier (asserted), then optionally the enumerated
    /// property, a context [2] unsigned array index and a context [3] device identifier.
    /// `*next` receives the first primitive not consumed (null at the end of the chain).
    BACnetDeviceObjectPropertyReference(const DataPropertyInObject0& descriptor,
                                        const DataApplicationValue& v, const DataApplicationValue** next);

    BACnetDeviceObjectPropertyReference(const BACnetDeviceObjectPropertyReference&) = default;
    BACnetDeviceObjectPropertyReference& operator=(const BACnetDeviceObjectPropertyReference&) = default;
    ~BACnetDeviceObjectPropertyReference() override;

    /// Object type 1023 instance 0, property 0xFFFFFE, no array index, device type 1023 instance 0.
    void reset();
    /// Array index and device identifier all ones (absent); object and property untouched.
    void init();

    int encode(uint8_t* apdu) const override;
    int decode(const uint8_t* apdu, unsigned length) override;
    int decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE; }
    /// One String "device;object-type,instance;property" (1234;analog-input,3;present-value).
    void markupForAzure(WS::MarkupFactory& factory, const std::string& name) const;
    /// Walks the catalogue's definition of the type over the value's primitives.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;
    /// The members as context-tagged primitives in encoding order, appended to `out`; the
    /// primitive constructor reads them back.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;

    bool hasDevice() const { return deviceIdentifier.type == OBJECT_DEVICE; }
    bool hasArrayIndex() const { return arrayIndex != BACNET_ARRAY_ALL; }
    ObjectIdentifier getObjectIdentifier() const;
    ObjectIdentifier getDeviceIdentifier() const;
    BACNET_PROPERTY_ID getPropertyIdentifier() const { return propertyIdentifier; }
    uint32_t getArrayIndex() const { return arrayIndex; }
    void setObjectIdentifier(ObjectIdentifier object);
    void setDeviceIdentifier(ObjectIdentifier device);
    void setPropertyIdentifier(BACNET_PROPERTY_ID property) { propertyIdentifier = property; }
    void setArrayIndex(uint32_t index) { arrayIndex = index; }

    /// 32 upper-case hexadecimal digits: device (this one's when present, else `defaultDevice`),
    /// object, property and array index, 8 digits each. `out` is replaced.
    void getHexIdentifier(const ObjectIdentifier& defaultDevice, std::string& out) const;

    /// Every field compared, the device as a packed identifier.
    bool operator==(const BACnetDeviceObjectPropertyReference& other) const;
    bool operator!=(const BACnetDeviceObjectPropertyReference& other) const { return !(*this == other); }

    /// The BACnet/WS path: "/" device instance, then the object-property path
    /// ("/1234/analog-input,3/priority-array/8").
    static std::string getPath(unsigned deviceInstance, const ObjectIdentifier& object,
                               BACNET_PROPERTY_ID property, unsigned arrayIndex);
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
