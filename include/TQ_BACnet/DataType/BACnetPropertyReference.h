#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "tq_stack/config.h"
#include "tq_stack/enums.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {

class DataApplicationValue;
class DataPropertyInObject0;

namespace DataType {

/// BACnetPropertyReference: a property identifier and an optional array index (absent when all
/// ones). The members are context tagged from a first tag t: [t] property, [t+1] index; t is 0
/// for the standard production, other values serve productions that embed the pair later on.
class BACnetPropertyReference : public BACnetComplex {
public:
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;

    /// The property identifier of a reference that names no property yet.
    static constexpr BACNET_PROPERTY_ID NO_PROPERTY = static_cast<BACNET_PROPERTY_ID>(0xFFFFFE);

    BACnetPropertyReference(BACNET_PROPERTY_ID property, unsigned arrayIndex, unsigned firstTag);
    /// No property yet, no array index.
    explicit BACnetPropertyReference(unsigned firstTag = 0);
    /// From decoded primitives: `v` is the property (enumerated or unsigned, asserted), then a
    /// context [t+1] unsigned is the array index. `*next` receives the first primitive not
    /// consumed (null at the end of the chain).
    BACnetPropertyReference(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                            const DataApplicationValue** next, unsigned firstTag = 0);

    BACnetPropertyReference(const BACnetPropertyReference&) = default;
    BACnetPropertyReference& operator=(const BACnetPropertyReference&) = default;
    ~BACnetPropertyReference() override;

    /// -1 when the first tag leaves no room for the index's tag (above 253).
    int encode(uint8_t* apdu) const override;
    int decode(const uint8_t* apdu, unsigned length) override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_PROPERTY_REFERENCE; }
    /// Not rendered on its own: Poco::NotImplementedException.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;
    /// The members as context-tagged primitives in encoding order, appended to `out`; the
    /// primitive constructor reads them back.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;

    BACNET_PROPERTY_ID getPropertyIdentifier() const { return _propertyIdentifier; }
    uint32_t getArrayIndex() const { return _arrayIndex; }
    bool hasArrayIndex() const { return _arrayIndex != BACNET_ARRAY_ALL; }
    unsigned getFirstTag() const { return _firstTag; }
    void setPropertyIdentifier(BACNET_PROPERTY_ID property) { _propertyIdentifier = property; }
    void setArrayIndex(uint32_t index) { _arrayIndex = index; }
    void setFirstTag(unsigned firstTag) { _firstTag = firstTag; }

    /// Property and array index; the first tag is framing, not content.
    bool operator==(const BACnetPropertyReference& other) const {
        return _propertyIdentifier == other._propertyIdentifier && _arrayIndex == other._arrayIndex;
    }
    bool operator!=(const BACnetPropertyReference& other) const { return !(*this == other); }

    /// The BACnet/WS path: "/" property name, then "/" index when there is one
    /// ("/priority-array/8"). A property the catalogue cannot name appears as its number.
    static std::string getPath(BACNET_PROPERTY_ID property, unsigned arrayIndex);

private:
    BACNET_PROPERTY_ID _propertyIdentifier = NO_PROPERTY;
    uint32_t _arrayIndex = BACNET_ARRAY_ALL;
    unsigned _firstTag = 0;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
