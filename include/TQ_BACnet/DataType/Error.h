#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "tq_stack/enums.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// The BACnet Error production as a value, so that a property the server failed to read can
/// stand in a value container where its value would be.
///
/// Error is only ever carried, never exchanged as a property value: the value slots for
/// encoding and decoding answer -1. The production itself is written by the static `encode`.
class Error : public BACnetComplex, public DataError {
public:
    /// Room the production needs at most: two application-tagged 32-bit enumerations.
    static constexpr unsigned MAX_ENCODED = 20;

    Error() = default;
    Error(BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode) : DataError(errorClass, errorCode) {}
    Error(const DataError& error) : DataError(error) {}
    /// Takes nothing from the primitives and leaves the cursor where it is.
    Error(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
          const DataApplicationValue** next);
    Error(const Error&) = default;
    Error& operator=(const Error&) = default;
    ~Error() override = default;

    /// Class then code, each an application-tagged Enumerated; the length.
    static int encode(uint8_t* apdu, BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode);
    /// The production at `offset`. A buffer with room for MAX_ENCODED bytes past `offset` is
    /// written in place and keeps its size; any other grows to end with the production. A
    /// buffer over foreign storage that is too small raises Poco::InvalidAccessException.
    static int encode(TQ::Utility::OctetBuffer& buffer, BACNET_ERROR_CLASS errorClass,
                      BACNET_ERROR_CODE errorCode, unsigned offset);

    int encode(uint8_t*) const override { return -1; }
    int encodeContext(uint8_t*, uint8_t) const override { return -1; }
    int decode(const uint8_t*) override { return -1; }
    int decode(const uint8_t*, unsigned) override { return -1; }
    int decodeContext(const uint8_t*, uint8_t) override { return -1; }
    int decodeContext(const uint8_t*, unsigned, uint8_t) override { return -1; }

    /// Class and code as application-tagged Enumerated primitives.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;
    /// The error's text ("BACnet Error: ..."): there is no encoding to show in hexadecimal.
    void getString(std::string& out) const override;
    using DataError::getString;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_ERROR; }
    /// An abort or reject reason as one Enumerated named after it; any other error as the Error
    /// production walked through the catalogue (class and code by name).
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;

    bool operator==(const Error& other) const { return DataError::operator==(other); }
    bool operator!=(const Error& other) const { return !(*this == other); }
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
