#include "TQ_BACnet/WS/DataWsError.h"

#include "TQ/BACnet/Client/DataPropertyKey.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"

namespace TQ {
namespace BACnet {
namespace WS {

void DataWsError::setWsPropertyError(WS_ERROR_CODE code, const std::string& leading,
                                     const TQ::BACnet::Client::DataPropertyKey& key,
                                     const std::string& trailing) {
    std::string text = leading;
    text += " property (using RP service) by path:\n\"";
    text += DataType::BACnetDeviceObjectPropertyReference::getPath(
        key.getDeviceInstance(), DataType::ObjectIdentifier(key.getObjectIdentifier()),
        static_cast<BACNET_PROPERTY_ID>(key.getPropertyIdentifier()), key.getArrayIndex());
    text += '"';
    if (!trailing.empty()) {
        text += '\n';
        text += trailing;
    }
    setWsError(code, text);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
