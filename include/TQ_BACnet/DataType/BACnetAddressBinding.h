#pragma once

#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"

#include <string>

namespace TQ {
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// A device and the address it is reached at: one entry of a Device object's
/// device-address-binding list. It is built from decoded primitives and printed, never
/// exchanged on its own, so it has no encoding of its own.
class BACnetAddressBinding : public BACnetComplex {
public:
    BACnetAddressBinding() = default;
    BACnetAddressBinding(const ObjectIdentifier& device, const BACnetAddress& address);
    /// `v` is the device identifier, the primitives after it the address (see BACnetAddress).
    /// `next`, when given, receives the primitive after the address.
    BACnetAddressBinding(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                         const DataApplicationValue** next);
    BACnetAddressBinding(const BACnetAddressBinding&) = default;
    BACnetAddressBinding& operator=(const BACnetAddressBinding&) = default;
    ~BACnetAddressBinding() override = default;

    const ObjectIdentifier& getDevice() const { return _device; }
    const BACnetAddress& getAddress() const { return _address; }
    void setDevice(const ObjectIdentifier& device) { _device = device; }
    void setAddress(const BACnetAddress& address) { _address = address; }

    /// Not supported: Poco::NotImplementedException.
    int encode(uint8_t* apdu) const override;
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// Not supported: Poco::NotImplementedException.
    int decode(const uint8_t* apdu, unsigned length) override;

    /// The device identifier followed by the address's primitives.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;
    /// The text of `getString2`: there is no encoding to show in hexadecimal.
    void getString(std::string& out) const override;
    /// "device-path, address", e.g. "device,12, 0:192.168.1.10:47808". The flag does not
    /// change the text.
    void getString2(std::string& out, bool) const;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_ADDRESS_BINDING; }
    /// Walks the catalogue's definition of the type over the value's primitives.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;

    bool operator==(const BACnetAddressBinding& other) const {
        return _device == other._device && _address == other._address;
    }
    bool operator!=(const BACnetAddressBinding& other) const { return !(*this == other); }

private:
    ObjectIdentifier _device;
    BACnetAddress _address;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
