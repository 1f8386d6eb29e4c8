#include "TQ_BACnet/DataType/BACnetRecipient.h"

#include "tq_stack/codec.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {
constexpr uint8_t TAG_DEVICE = 0;
constexpr uint8_t TAG_ADDRESS = 1;
}  // namespace

BACnetRecipient::BACnetRecipient(ObjectIdentifier device) : _choice(CHOICE_DEVICE), _device(device) {}

BACnetRecipient::BACnetRecipient(const BACnetAddress& address) : _choice(CHOICE_ADDRESS), _address(address) {}

BACnetRecipient::BACnetRecipient(const DataPropertyInObject0&, const DataApplicationValue&,
                                 const DataApplicationValue**) {
    throw Poco::NotImplementedException("BACnetRecipient::BACnetRecipient()");
}

void BACnetRecipient::setDevice(ObjectIdentifier device) {
    _choice = CHOICE_DEVICE;
    _device = device;
}

void BACnetRecipient::setAddress(const BACnetAddress& address) {
    _choice = CHOICE_ADDRESS;
    _address = address;
}

int BACnetRecipient::encode(uint8_t* apdu) const {
    switch (_choice) {
        case CHOICE_DEVICE:
            return encode_context_object_id(apdu, TAG_DEVICE, _device.getObjectType(), _device.getInstance());
        case CHOICE_ADDRESS:
            return _address.encodeContext(apdu, TAG_ADDRESS);
        default:
            return 0;
    }
}

int BACnetRecipient::decode(const uint8_t* apdu, unsigned length) {
    if (decode_is_context_tag(apdu, length, TAG_DEVICE)) {
        ObjectIdentifier device;
        const int consumed = device.decodeContext(apdu, length, TAG_DEVICE);
        if (consumed > 0) setDevice(device);
        return consumed;
    }
    if (decode_is_opening_tag_number(apdu, length, TAG_ADDRESS)) {
        // Decoded into a copy: a failure must leave the recipient as it was.
        BACnetAddress address(_address);
        const int consumed = address.decodeContext(apdu, length, TAG_ADDRESS);
        if (consumed > 0) setAddress(address);
        return consumed;
    }
    return 0;
}

void BACnetRecipient::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    if (_choice == CHOICE_DEVICE) {
        out.emplace_back();
        out.back().setObjectIdentifier(_device);
        out.back().context_specific = true;
        out.back().context_tag = TAG_DEVICE;
    } else if (_choice == CHOICE_ADDRESS) {
        out.push_back(getOpenTag(TAG_ADDRESS));
        _address.getBACnetPrimitives(out);
        out.push_back(getCloseTag(TAG_ADDRESS));
    }
}

bool BACnetRecipient::operator==(const BACnetRecipient& other) const {
    if (_choice != other._choice) return false;
    if (_choice == CHOICE_DEVICE) return _device == other._device;
    if (_choice == CHOICE_ADDRESS) return _address == other._address;
    return true;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
