#include "TQ_BACnet/DataError.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataType/Error.h"
#include "tq_stack/bactext.h"
#include "tq_stack/codec.h"

#include <cstring>

namespace TQ {
namespace BACnet {

namespace {

void appendNumber(std::string& out, unsigned number) {
    out += " (";
    out += std::to_string(number);
    out += ')';
}

}  // namespace

std::string DataError::getString(bool withNumbers) const {
    if (_errorClass > REJECT_CLASS || _errorCode == NO_ERROR_CODE) return std::string();
    std::string out = "BACnet ";
    if (_errorClass == ABORT_CLASS) {
        out += "Abort: ";
        out += bactext_abort_reason_name_default(_errorCode, "");
    } else if (_errorClass == REJECT_CLASS) {
        out += "Reject: ";
        out += bactext_reject_reason_name_default(_errorCode, "");
    } else {
        out += "Error: ";
        out += bactext_error_class_name_default(_errorClass, "");
        if (withNumbers) appendNumber(out, _errorClass);
        out += " : ";
        out += bactext_error_code_name_default(_errorCode, "");
    }
    if (withNumbers) appendNumber(out, _errorCode);
    return out;
}

int DataError::encode(TQ::Utility::OctetBuffer& buffer, unsigned offset) const {
    uint8_t bytes[DataType::Error::MAX_ENCODED];
    const int length = DataType::Error::encode(bytes, _errorClass, _errorCode);
    buffer.resize(offset + static_cast<size_t>(length));
    std::memcpy(buffer.data() + offset, bytes, static_cast<size_t>(length));
    return length;
}

}  // namespace BACnet
}  // namespace TQ
