#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "tq_stack/config.h"
#include "tq_stack/enums.h"

#include <cstdint>
#include <string>
#include <vector>

struct BACnet_Read_Property_Data;
struct BACnet_Read_Range_Data;

namespace TQ {
namespace BACnet {

class DataApplicationValue;
class DataPropertyInObject0;

namespace DataType {

class BACnetDeviceObjectPropertyReference;

/// BACnetObjectPropertyReference: [0] object, [1] property, [2] array index (absent when all
/// ones). The addressing of ReadProperty and ReadRange.
class BACnetObjectPropertyReference : public BACnetComplex {
public:
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;

    /// The property identifier of a reference that names no property yet.
    static constexpr BACNET_PROPERTY_ID NO_PROPERTY = static_cast<BACNET_PROPERTY_ID>(0xFFFFFE);

    /// Object identifier 0, no property, no array index.
    BACnetObjectPropertyReference();
    BACnetObjectPropertyReference(ObjectIdentifier object, BACNET_PROPERTY_ID property, unsigned arrayIndex);
    /// The device is dropped.
    explicit BACnetObjectPropertyReference(const BACnetDeviceObjectPropertyReference& reference);
    /// From decoded primitives: the object identifier (asserted), then an enumerated property and
    /// a context [2] unsigned array index. `*next` receives the first primitive not consumed
    /// (null at the end of the chain).
    BACnetObjectPropertyReference(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                                  const DataApplicationValue** next);

    BACnetObjectPropertyReference(const BACnetObjectPropertyReference&) = default;
    BACnetObjectPropertyReference& operator=(const BACnetObjectPropertyReference&) = default;
    ~BACnetObjectPropertyReference() override;

    /// Object, property and index into a request record, which is otherwise readied for a
    /// request: no value bytes, error class 8 and code 0.
    void get(BACnet_Read_Property_Data& out) const;
    void get(BACnet_Read_Range_Data& out) const;
    BACnetObjectPropertyReference& operator=(const BACnet_Read_Property_Data& in);
    BACnetObjectPropertyReference& operator=(const BACnet_Read_Range_Data& in);

    int encode(uint8_t* apdu) const override;
    int decode(const uint8_t* apdu, unsigned length) override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_OBJECT_PROPERTY_REFERENCE; }
    /// Walks the catalogue's definition of the type over the value's primitives.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;
    /// The members as context-tagged primitives in encoding order, appended to `out`; the
    /// primitive constructor reads them back.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;

    ObjectIdentifier getObjectIdentifier() const { return _objectIdentifier; }
    BACNET_PROPERTY_ID getPropertyIdentifier() const { return _propertyIdentifier; }
    uint32_t getArrayIndex() const { return _arrayIndex; }
    bool hasArrayIndex() const { return _arrayIndex != BACNET_ARRAY_ALL; }
    void setObjectIdentifier(ObjectIdentifier object) { _objectIdentifier = object; }
    void setPropertyIdentifier(BACNET_PROPERTY_ID property) { _propertyIdentifier = property; }
    void setArrayIndex(uint32_t index) { _arrayIndex = index; }

    bool operator==(const BACnetObjectPropertyReference& other) const {
        return _objectIdentifier == other._objectIdentifier &&
               _propertyIdentifier == other._propertyIdentifier && _arrayIndex == other._arrayIndex;
    }
    bool operator!=(const BACnetObjectPropertyReference& other) const { return !(*this == other); }

    /// The BACnet/WS path: the object's path, then the property's ("/analog-input,3/present-value").
    static std::string getPath(const ObjectIdentifier& object, BACNET_PROPERTY_ID property,
                               unsigned arrayIndex);

private:
    ObjectIdentifier _objectIdentifier;
    BACNET_PROPERTY_ID _propertyIdentifier = NO_PROPERTY;
    uint32_t _arrayIndex = BACNET_ARRAY_ALL;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
