#pragma once

#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"

#include <Poco/Timestamp.h>

namespace TQ {
namespace BACnet {
namespace DataType {
namespace Proprietary {
namespace Vendor947 {

/// Which trend log was uploaded last and when: the device-object reference of the log followed
/// by the application-tagged local date and time of the upload. The moment is kept to the
/// hundredth of a second, the resolution of its encoding, so a value decodes back equal.
class BACnetTrendLogLastUploaded : public BACnetDeviceObjectReference {
public:
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;

    /// No device, no object, uploaded now.
    BACnetTrendLogLastUploaded();
    BACnetTrendLogLastUploaded(ObjectIdentifier device, ObjectIdentifier object,
                               const Poco::Timestamp& uploaded);
    /// From decoded primitives: the device-object reference's walk, then a date and an optional
    /// time of the upload (midnight without it). `*next` receives the first primitive not
    /// consumed, as for the other constructed values (not the reference's own convention).
    BACnetTrendLogLastUploaded(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                               const DataApplicationValue** next);

    BACnetTrendLogLastUploaded(const BACnetTrendLogLastUploaded&) = default;
    BACnetTrendLogLastUploaded& operator=(const BACnetTrendLogLastUploaded&) = default;
    ~BACnetTrendLogLastUploaded() override;

    int encode(uint8_t* apdu) const override;
    /// The reference then the date-time; -1 when either is missing or broken, or the date-time
    /// names no moment (unspecified fields). The value is unchanged on failure.
    int decode(const uint8_t* apdu, unsigned length) override;
    /// The whole record between opening and closing tag `tag`.
    int decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_TREND_LOG_LAST_UPLOADED; }
    /// Walks the catalogue's definition of the type over the value's primitives.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;
    /// The reference's primitives, then the upload moment as application-tagged date and time.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;

    const Poco::Timestamp& getTimestamp() const { return _uploaded; }
    /// Stored rounded down to the hundredth of a second.
    void setTimestamp(const Poco::Timestamp& uploaded);

    bool operator==(const BACnetTrendLogLastUploaded& other) const;
    bool operator!=(const BACnetTrendLogLastUploaded& other) const { return !(*this == other); }

private:
    Poco::Timestamp _uploaded;
};

}  // namespace Vendor947
}  // namespace Proprietary
}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
