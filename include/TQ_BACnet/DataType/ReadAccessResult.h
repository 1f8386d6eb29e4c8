#pragma once

#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "tq_stack/rpm.h"

#include <vector>

namespace TQ {
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// One object of a ReadPropertyMultiple acknowledgement and what each of its properties read:
/// a typed value, or the Error the server answered with in its place. It is taken from the
/// codec's decoded BACnet_Read_Access_Data record, not encoded on its own.
class ReadAccessResult : public BACnetComplex {
public:
    ReadAccessResult() = default;
    explicit ReadAccessResult(const ObjectIdentifier& object) : _object(object) {}
    /// Takes nothing from the primitives and leaves the cursor where it is.
    ReadAccessResult(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                     const DataApplicationValue** next);
    ReadAccessResult(const ReadAccessResult&) = default;
    ReadAccessResult& operator=(const ReadAccessResult&) = default;
    ~ReadAccessResult() override = default;

    const ObjectIdentifier& getObjectIdentifier() const { return _object; }
    void setObjectIdentifier(const ObjectIdentifier& object) { _object = object; }
    const std::vector<BACnetPropertyValue>& getPropertyValues() const { return _values; }
    std::vector<BACnetPropertyValue>& getPropertyValues() { return _values; }
    void addPropertyValue(const BACnetPropertyValue& value) { _values.push_back(value); }

    /// Not supported: the record is left as it is.
    void get(BACnet_Read_Access_Data&) const {}
    /// Takes the object and appends one property value per result node: the value typed by the
    /// catalogue's descriptor of the property, or the server's error as a value of data type
    /// Error. Existing entries remain.
    ReadAccessResult& operator=(const BACnet_Read_Access_Data& record);

    /// Not supported: -1.
    int encode(uint8_t*) const override { return -1; }
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// Not supported: -1.
    int decode(const uint8_t*, unsigned) override { return -1; }
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_READ_ACCESS_RESULT; }
    /// Writes nothing: the services render what these records carry.
    void markup(WS::MarkupFactory&, const std::string&, bool) const override {}

private:
    ObjectIdentifier _object;
    std::vector<BACnetPropertyValue> _values;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
