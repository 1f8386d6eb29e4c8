#include "TQ_BACnet/DataType/BACnetLogMultipleRecord.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

BACnetLogMultipleRecord::BACnetLogMultipleRecord(const DataPropertyInObject0& /*descriptor*/,
                                                 const DataApplicationValue& /*v*/,
                                                 const DataApplicationValue** /*next*/) {
    throw Poco::NotImplementedException("BACnetLogMultipleRecord is not supported");
}

BACnetLogMultipleRecord::~BACnetLogMultipleRecord() = default;

int BACnetLogMultipleRecord::encode(uint8_t* /*apdu*/) const {
    throw Poco::NotImplementedException("BACnetLogMultipleRecord::encode()");
}

int BACnetLogMultipleRecord::decode(const uint8_t* /*apdu*/, unsigned /*length*/) {
    throw Poco::NotImplementedException("BACnetLogMultipleRecord::decode()");
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
