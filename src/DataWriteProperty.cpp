#include "TQ_BACnet/DataWriteProperty.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"

#include <algorithm>
#include <cstring>

namespace TQ {
namespace BACnet {

namespace {
// What a prepared request carries until the peer answers.
constexpr auto PENDING_CLASS = static_cast<BACNET_ERROR_CLASS>(8);
constexpr auto PENDING_CODE = static_cast<BACNET_ERROR_CODE>(200);
}  // namespace

bool DataWriteProperty::set(BACNET_OBJECT_TYPE objectType, uint32_t instance, BACNET_PROPERTY_ID property,
                            uint32_t arrayIndex, const TQ::Utility::OctetBuffer& value,
                            unsigned char priority) {
    _data->object_type = static_cast<BACNET_OBJECT_TYPE>(objectType & 0x3FFu);
    _data->object_instance = instance & 0x3FFFFFu;
    _data->object_property = property;
    _data->array_index = arrayIndex;
    _data->priority = priority;
    if (value.size() > MAX_VALUE_LENGTH) return false;
    if (!value.empty()) std::memcpy(_data->application_data, value.data(), value.size());
    _data->application_data_len = static_cast<int>(value.size());
    _data->error_class = PENDING_CLASS;
    _data->error_code = PENDING_CODE;
    return true;
}

bool DataWriteProperty::set(const DataType::BACnetDeviceObjectPropertyReference& reference,
                            const TQ::Utility::OctetBuffer& value, unsigned char priority) {
    const DataType::ObjectIdentifier object = reference.getObjectIdentifier();
    return set(object.getObjectType(), object.getInstance(), reference.getPropertyIdentifier(),
               reference.getArrayIndex(), value, priority);
}

void DataWriteProperty::getC(BACnet_Write_Property_Data& out) const {
    out.object_type = _data->object_type;
    out.object_instance = _data->object_instance;
    out.object_property = _data->object_property;
    out.array_index = _data->array_index;
    out.application_data_len = _data->application_data_len;
    const size_t length = static_cast<size_t>(std::clamp(_data->application_data_len, 0, MAX_APDU));
    std::memcpy(out.application_data, _data->application_data, length);
    out.priority = _data->priority;
    out.error_class = _data->error_class;
    out.error_code = _data->error_code;
}

std::string& DataWriteProperty::getApduAsHexString(std::string& out) const {
    const size_t length = static_cast<size_t>(std::clamp(_data->application_data_len, 0, MAX_APDU));
    return TQ::Utility::OctetBuffer(_data->application_data, length).getHexString(out, false);
}

}  // namespace BACnet
}  // namespace TQ
