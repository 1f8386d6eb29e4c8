#pragma once

#include "TQ_BACnet/DataErrorRef.h"
#include "tq_stack/wp.h"

#include <string>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {

namespace DataType {
class BACnetDeviceObjectPropertyReference;
}

/// A view of the caller's WriteProperty request record; its error part writes into the record's
/// own error class and code.
class DataWriteProperty : public DataErrorRef {
public:
    /// The largest value `set` accepts: one APDU less the byte the request needs around it.
    static constexpr size_t MAX_VALUE_LENGTH = 1475;

    DataWriteProperty(BACnet_Write_Property_Data& data, bool flag)
        : DataErrorRef(data.error_class, data.error_code), _flag(flag), _data(&data) {}

    bool getFlag() const { return _flag; }
    BACnet_Write_Property_Data& getData() const { return *_data; }

    /// Fills target (object, property and array index of `reference`; its device is not part
    /// of the request), priority and value bytes. A value longer than MAX_VALUE_LENGTH returns
    /// false with the target and priority set and the value bytes left as they were.
    bool set(const DataType::BACnetDeviceObjectPropertyReference& reference,
             const TQ::Utility::OctetBuffer& value, unsigned char priority);
    /// The same with the target given field by field. A value longer than MAX_VALUE_LENGTH returns false
    /// with the target and priority set and the value bytes left as they were.
    bool set(BACNET_OBJECT_TYPE objectType, uint32_t instance, BACNET_PROPERTY_ID property,
             uint32_t arrayIndex, const TQ::Utility::OctetBuffer& value, unsigned char priority);
    /// Copies the record (only the used value bytes) into `out`.
    void getC(BACnet_Write_Property_Data& out) const;
    /// The value bytes as hexadecimal text without separators.
    std::string& getApduAsHexString(std::string& out) const;

private:
    bool _flag;
    BACnet_Write_Property_Data* _data;
};

}  // namespace BACnet
}  // namespace TQ
