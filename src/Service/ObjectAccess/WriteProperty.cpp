#include "TQ_BACnet/Service/ObjectAccess/WriteProperty.h"

#include "../ServiceSupport.h"
#include "tq_stack/wp.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

int WriteProperty::encode(const DataWriteProperty& data, uint8_t invokeId, TQ::Utility::OctetBuffer& buffer,
                          unsigned offset) {
    return Detail::encodeAt(buffer, offset, 1,
                            [&](uint8_t* apdu) { return wp_encode_apdu(apdu, invokeId, &data.getData()); });
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
