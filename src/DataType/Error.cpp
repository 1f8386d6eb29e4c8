#include "TQ_BACnet/DataType/Error.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "tq_stack/codec.h"

namespace TQ {
namespace BACnet {
namespace DataType {

Error::Error(const DataPropertyInObject0&, const DataApplicationValue&, const DataApplicationValue**) {}

int Error::encode(uint8_t* apdu, BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode) {
    const int length = encode_application_enumerated(apdu, errorClass);
    return length + encode_application_enumerated(apdu ? apdu + length : nullptr, errorCode);
}

int Error::encode(TQ::Utility::OctetBuffer& buffer, BACNET_ERROR_CLASS errorClass,
                  BACNET_ERROR_CODE errorCode, unsigned offset) {
    const std::size_t end = static_cast<std::size_t>(offset) + MAX_ENCODED;
    if (buffer.capacity() >= end) return encode(buffer.data() + offset, errorClass, errorCode);
    // The buffer raises for foreign storage it cannot grow.
    buffer.resize(end);
    const int length = encode(buffer.data() + offset, errorClass, errorCode);
    buffer.resize(offset + static_cast<std::size_t>(length));
    return length;
}

void Error::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    out.emplace_back();
    out.back().setEnum(getErrorClass());
    out.emplace_back();
    out.back().setEnum(getErrorCode());
}

void Error::getString(std::string& out) const {
    out = DataError::getString(true);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
