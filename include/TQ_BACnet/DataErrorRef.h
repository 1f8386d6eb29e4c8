#pragma once

#include "tq_stack/enums.h"

namespace TQ {
namespace BACnet {

/// Where a decoder reports a protocol error: references to the caller's own error class and
/// code variables. It never owns them; they must outlive it.
class DataErrorRef {
public:
    DataErrorRef(BACNET_ERROR_CLASS& errorClass, BACNET_ERROR_CODE& errorCode)
        : _errorClass(errorClass), _errorCode(errorCode) {}

    void setError(BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode) {
        _errorClass = errorClass;
        _errorCode = errorCode;
    }
    BACNET_ERROR_CLASS getErrorClass() const { return _errorClass; }
    BACNET_ERROR_CODE getErrorCode() const { return _errorCode; }
    BACNET_ERROR_CLASS& errorClass() { return _errorClass; }
    BACNET_ERROR_CODE& errorCode() { return _errorCode; }

private:
    BACNET_ERROR_CLASS& _errorClass;
    BACNET_ERROR_CODE& _errorCode;
};

}  // namespace BACnet
}  // namespace TQ
