#pragma once

#include "tq_stack/enums.h"

#include <string>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace WS {
class MarkupFactory;
}

/// A BACnet error class and code by value. Reserved classes carry the other outcomes of a
/// confirmed request: ABORT_CLASS (the code is the abort reason), REJECT_CLASS (the code is the
/// reject reason) and NO_ERROR_CLASS.
class DataError {
public:
    static constexpr BACNET_ERROR_CLASS ABORT_CLASS = static_cast<BACNET_ERROR_CLASS>(65533);
    static constexpr BACNET_ERROR_CLASS REJECT_CLASS = static_cast<BACNET_ERROR_CLASS>(65534);
    static constexpr BACNET_ERROR_CLASS NO_ERROR_CLASS = static_cast<BACNET_ERROR_CLASS>(65535);
    /// A code that also reads as "no error".
    static constexpr BACNET_ERROR_CODE NO_ERROR_CODE = static_cast<BACNET_ERROR_CODE>(257);

    DataError() = default;
    DataError(BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode)
        : _errorClass(errorClass), _errorCode(errorCode) {}
    DataError(const DataError&) = default;
    DataError& operator=(const DataError&) = default;

    void setError(BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode) {
        _errorClass = errorClass;
        _errorCode = errorCode;
    }
    void setError(const DataError& other) { *this = other; }

    BACNET_ERROR_CLASS getErrorClass() const { return _errorClass; }
    BACNET_ERROR_CODE getErrorCode() const { return _errorCode; }
    bool isAbort() const { return _errorClass == ABORT_CLASS; }
    bool isReject() const { return _errorClass == REJECT_CLASS; }

    /// "BACnet Error: ...", "BACnet Abort: ...", "BACnet Reject: ..." or empty for no error.
    std::string getString(bool withNumbers) const;
    /// The BACnet Error production (class and code as application-tagged ENUMERATED) at byte
    /// `offset`; the buffer's size becomes offset plus the returned length.
    int encode(TQ::Utility::OctetBuffer& buffer, unsigned offset) const;
    /// Renders the outcome for a web client: an abort or reject as its named reason (under
    /// `abortName` or `rejectName`), an error as the catalogue's Error with named class and code
    /// (under `errorName`).
    void markup(WS::MarkupFactory& factory, const std::string& errorName, const std::string& abortName,
                const std::string& rejectName, bool unused) const;

    bool operator==(const DataError& other) const {
        return _errorClass == other._errorClass && _errorCode == other._errorCode;
    }

private:
    BACNET_ERROR_CLASS _errorClass = NO_ERROR_CLASS;
    BACNET_ERROR_CODE _errorCode = static_cast<BACNET_ERROR_CODE>(65535);
};

}  // namespace BACnet
}  // namespace TQ
