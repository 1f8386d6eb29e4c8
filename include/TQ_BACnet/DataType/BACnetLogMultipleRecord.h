#pragma once

#include "TQ_BACnet/DataType/BACnetComplex.h"

#include <Poco/Timestamp.h>

#include <cstdint>

namespace TQ {
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// BACnetLogMultipleRecord (data type 1053): recognised so that a trend-log-multiple buffer
/// has a type to be held as, but its content is not supported. It can be default-constructed
/// and copied (containers need that); building, encoding and decoding one raise
/// Poco::NotImplementedException.
class BACnetLogMultipleRecord : public BACnetComplex {
public:
    /// Timestamp now.
    BACnetLogMultipleRecord() = default;
    /// Always Poco::NotImplementedException.
    BACnetLogMultipleRecord(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                            const DataApplicationValue** next);
    BACnetLogMultipleRecord(const BACnetLogMultipleRecord&) = default;
    BACnetLogMultipleRecord& operator=(const BACnetLogMultipleRecord&) = default;
    ~BACnetLogMultipleRecord() override;

    const Poco::Timestamp& getTimestamp() const { return _timestamp; }

    /// Always Poco::NotImplementedException.
    int encode(uint8_t* apdu) const override;
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// Always Poco::NotImplementedException.
    int decode(const uint8_t* apdu, unsigned length) override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_LOG_MULTIPLE_RECORD; }

private:
    Poco::Timestamp _timestamp;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
