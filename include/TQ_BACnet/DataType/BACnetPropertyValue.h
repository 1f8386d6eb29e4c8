#pragma once

#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/ValueContainer.h"

namespace TQ {
namespace BACnet {
namespace DataType {

/// BACnetPropertyValue: a property reference (first tag 0), [2] its value and [3] an optional
/// write priority (-1 when absent).
class BACnetPropertyValue : public BACnetPropertyReference {
public:
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;

    static constexpr int NO_PRIORITY = -1;

    /// No property, an empty value, no priority.
    BACnetPropertyValue();
    /// Property and array index of `reference` (its first tag is not taken: always 0).
    BACnetPropertyValue(const BACnetPropertyReference& reference, const ValueContainer& value, int priority);
    /// From decoded primitives: the reference, then one primitive as the value, then an unsigned
    /// primitive as the priority. `*next` is always written: the first primitive not consumed.
    BACnetPropertyValue(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                        const DataApplicationValue** next);

    BACnetPropertyValue(const BACnetPropertyValue&) = default;
    BACnetPropertyValue& operator=(const BACnetPropertyValue&) = default;
    ~BACnetPropertyValue() override;

    /// The reference, [2] the value, [3] the priority when present. The value's length is only
    /// known by encoding it, so a null buffer gives 0.
    int encode(uint8_t* apdu) const override;
    /// The reference, then, when present, [2] a value of application-tagged primitives and [3]
    /// the priority. -1 for a value that holds context-tagged (constructed) data: its type is
    /// only known to a caller that knows the object type.
    int decode(const uint8_t* apdu, unsigned length) override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_PROPERTY_VALUE; }
    /// Not rendered on its own: Poco::NotImplementedException.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;

    const ValueContainer& getValue() const { return _value; }
    ValueContainer& getValue() { return _value; }
    void setValue(const ValueContainer& value) { _value = value; }
    int getPriority() const { return _priority; }
    void setPriority(int priority) { _priority = priority; }
    bool hasPriority() const { return _priority >= 0; }

private:
    ValueContainer _value;
    int _priority = NO_PRIORITY;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
