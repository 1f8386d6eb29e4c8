#pragma once

#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "tq_stack/rpm.h"

#include <vector>

namespace TQ {
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// One object of a ReadPropertyMultiple request and the properties to read from it. It is
/// exchanged with the codec as a BACnet_Read_Access_Data record, not encoded on its own.
class ReadAccessSpecification : public BACnetComplex {
public:
    ReadAccessSpecification() = default;
    explicit ReadAccessSpecification(const ObjectIdentifier& object) : _object(object) {}
    /// Takes nothing from the primitives and leaves the cursor where it is.
    ReadAccessSpecification(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                            const DataApplicationValue** next);
    ReadAccessSpecification(const ReadAccessSpecification&) = default;
    ReadAccessSpecification& operator=(const ReadAccessSpecification&) = default;
    ~ReadAccessSpecification() override = default;

    const ObjectIdentifier& getObjectIdentifier() const { return _object; }
    void setObjectIdentifier(const ObjectIdentifier& object) { _object = object; }
    const std::vector<BACnetPropertyReference>& getPropertyReferences() const { return _properties; }
    std::vector<BACnetPropertyReference>& getPropertyReferences() { return _properties; }
    void addPropertyReference(const BACnetPropertyReference& reference) { _properties.push_back(reference); }

    /// Fills `out` for the codec: object, and a newly allocated list of property nodes in order
    /// (whatever list `out` held is not released). Release it with `freeRAS`.
    void get(BACnet_Read_Access_Data& out) const;
    /// Frees the property nodes of every record of the chain from `first`, and every record but
    /// `first` itself, which is left with no list and no next record.
    static void freeRAS(BACnet_Read_Access_Data& first);
    /// Takes the object and appends one reference per property node; existing entries remain.
    ReadAccessSpecification& operator=(const BACnet_Read_Access_Data& record);

    /// Not supported: -1.
    int encode(uint8_t*) const override { return -1; }
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// Not supported: -1.
    int decode(const uint8_t*, unsigned) override { return -1; }
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_READ_ACCESS_SPECIFICATION; }
    /// Writes nothing: the services render what these records carry.
    void markup(WS::MarkupFactory&, const std::string&, bool) const override {}

private:
    ObjectIdentifier _object;
    std::vector<BACnetPropertyReference> _properties;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
