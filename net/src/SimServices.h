// The confirmed services of the simulated device, each turning a request's service data into
// an answer over the object database.
#pragma once

#include "TQ_BACnet/Net/SimObjects.h"

namespace TQ {
namespace BACnet {
namespace Net {

struct Response {
    enum Kind { Simple, Complex, Error, ErrorWithElement, Reject, Abort };
    Kind kind = Reject;
    Encoded data;  ///< Complex: the service data after the header
    Failure failure{ERROR_CLASS_SERVICES, ERROR_CODE_OTHER};
    uint32_t element = 0;
    uint8_t reason = REJECT_REASON_UNRECOGNIZED_SERVICE;
};

class TreeStore;

/// `store` (may be null) takes object creation and deletion before the objects do.
Response serve(SimObjects& objects, TreeStore* store, uint8_t service, const uint8_t* data, unsigned length);

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
