#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {

using WS::MarkupFactory;

void DataError::markup(WS::MarkupFactory& factory, const std::string& errorName, const std::string& abortName,
                       const std::string& rejectName, bool) const {
    if (isAbort() || isReject()) {
        std::string reason;
        factory.markupEnumOrBitStringValue(isAbort() ? BACNET_DT_ABORT_REASON : BACNET_DT_REJECT_REASON,
                                           static_cast<int>(_errorCode), reason);
        factory.markup(MarkupFactory::BT_ENUMERATED, isAbort() ? abortName : rejectName, reason, true, false,
                       BACNET_DT_NULL, false, "", 0, "", "", "", false, "", "", "", "", "", "", false, -1);
        return;
    }
    // The catalogue's Error production names the class and code.
    TQ::Utility::OctetBuffer bytes;
    encode(bytes, 0);
    const DataPropertyInObject0 descriptor(BACNET_DT_ERROR, BACNET_APPLICATION_TAG_NULL,
                                           BACNET_DTS_SINGLE_VALUE, false, 4);
    const DataType::ANY error(descriptor, bytes);
    error.markup(factory, errorName, false, false, -1);
}

}  // namespace BACnet
}  // namespace TQ
