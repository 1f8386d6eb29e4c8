#pragma once

#include "TQ_BACnet/DataError.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace Client {
class DataPropertyKey;
}
namespace WS {

/// The outcome of a failed BACnet/WS request: the BACnet error class and code for failures that
/// came from the BACnet side, and a web-service error code with the text of this occurrence for
/// failures of the web-service layer. The first web-service code set is the one reported: later
/// handlers check `hasWsError` before setting theirs.
class DataWsError : public DataError {
public:
    /// A key of bn_ws_error; -1 while no web-service error is set.
    using WS_ERROR_CODE = int32_t;

    /// The codes the library sets itself (the names are those of bn_ws_error).
    static constexpr WS_ERROR_CODE WS_ERR_NONE = -1;
    static constexpr WS_ERROR_CODE WS_ERR_OTHER = 0;
    static constexpr WS_ERROR_CODE WS_ERR_PARAM_SYNTAX = 3;
    static constexpr WS_ERROR_CODE WS_ERR_SERVICE_NOT_SUPPORTED = 8;
    static constexpr WS_ERROR_CODE WS_ERR_VALUE_FORMAT = 12;
    static constexpr WS_ERROR_CODE WS_ERR_VALUE_OUT_OF_RANGE = 13;
    static constexpr WS_ERROR_CODE WS_ERR_UNSUPPORTED_DATATYPE = 24;
    static constexpr WS_ERROR_CODE WS_ERR_NOT_REPRESENTABLE = 27;
    static constexpr WS_ERROR_CODE WS_ERR_BAD_PAYLOAD = 29;
    static constexpr WS_ERROR_CODE WS_ERR_NOT_A_FILE = 39;
    static constexpr WS_ERROR_CODE WS_ERR_PATH_SYNTAX = 49;
    static constexpr WS_ERROR_CODE WS_ERR_PATH_NOT_FOUND = 50;
    static constexpr WS_ERROR_CODE WS_ERR_RANGE = 52;

    DataWsError() = default;
    DataWsError(WS_ERROR_CODE code, const DataError& error) : DataError(error), _wsErrorCode(code) {}
    explicit DataWsError(const DataError& error) : DataError(error) {}
    DataWsError(const DataWsError&) = default;
    DataWsError& operator=(const DataWsError&) = default;
    virtual ~DataWsError() = default;

    WS_ERROR_CODE getWsErrorCode() const { return _wsErrorCode; }
    const std::string& getWsErrorText() const { return _wsErrorText; }
    bool hasWsError() const { return _wsErrorCode != WS_ERR_NONE; }

    /// Code and text; the BACnet part is left as it is.
    void setWsError(WS_ERROR_CODE code, const std::string& text) {
        _wsErrorCode = code;
        _wsErrorText = text;
    }
    /// Code, text and the BACnet class and code of `other`.
    void setWsError(const DataWsError& other) {
        setError(static_cast<const DataError&>(other));
        setWsError(other._wsErrorCode, other._wsErrorText);
    }
    /// `leading` + " property (using RP service) by path:", a line break and the property's
    /// quoted BACnet/WS path; then a line break and `trailing` when that is not empty.
    void setWsPropertyError(WS_ERROR_CODE code, const std::string& leading,
                            const TQ::BACnet::Client::DataPropertyKey& key, const std::string& trailing);

private:
    WS_ERROR_CODE _wsErrorCode = WS_ERR_NONE;
    std::string _wsErrorText;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
