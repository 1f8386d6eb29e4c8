#include "TQ_BACnet/DataType/BACnetAddressBinding.h"

#include "TQ_BACnet/DataApplicationValue.h"

#include <Poco/Bugcheck.h>
#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

BACnetAddressBinding::BACnetAddressBinding(const ObjectIdentifier& device, const BACnetAddress& address)
    : _device(device), _address(address) {}

BACnetAddressBinding::BACnetAddressBinding(const DataPropertyInObject0& descriptor,
                                           const DataApplicationValue& v, const DataApplicationValue** next) {
    const DataApplicationValue* cursor = nullptr;
    _device = ObjectIdentifier(v, &cursor);
    poco_assert(cursor != nullptr);
    _address = BACnetAddress(descriptor, *cursor, next);
}

int BACnetAddressBinding::encode(uint8_t*) const {
    throw Poco::NotImplementedException("BACnetAddressBinding::encode");
}

int BACnetAddressBinding::decode(const uint8_t*, unsigned) {
    throw Poco::NotImplementedException("BACnetAddressBinding::decode");
}

void BACnetAddressBinding::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    out.emplace_back();
    out.back().setObjectIdentifier(_device);
    _address.getBACnetPrimitives(out);
}

void BACnetAddressBinding::getString(std::string& out) const {
    getString2(out, false);
}

void BACnetAddressBinding::getString2(std::string& out, bool) const {
    std::string address;
    _address.getString(address, false);
    out = _device.getPath(false);
    out += ", ";
    out += address;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
