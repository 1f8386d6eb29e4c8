#pragma once

#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"

#include <cstdint>

namespace TQ {
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// The receiver of a notification: a device by its identifier, or a network address.
class BACnetRecipient : public BACnetComplex {
public:
    enum Choice : int32_t { CHOICE_DEVICE = 0, CHOICE_ADDRESS = 1, CHOICE_NONE = 2 };

    BACnetRecipient() = default;
    explicit BACnetRecipient(ObjectIdentifier device);
    explicit BACnetRecipient(const BACnetAddress& address);
    /// Not supported: Poco::NotImplementedException.
    BACnetRecipient(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                    const DataApplicationValue** next);
    BACnetRecipient(const BACnetRecipient&) = default;
    BACnetRecipient& operator=(const BACnetRecipient&) = default;
    ~BACnetRecipient() override = default;

    int32_t getChoice() const { return _choice; }
    const ObjectIdentifier& getDevice() const { return _device; }
    const BACnetAddress& getAddress() const { return _address; }
    void setDevice(ObjectIdentifier device);
    void setAddress(const BACnetAddress& address);

    /// [0] device identifier, or the address enclosed in [1]; nothing (0) without a choice.
    int encode(uint8_t* apdu) const override;
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// The bytes consumed; 0 when the bytes hold neither choice (the value is then unchanged),
    /// negative when the chosen member does not decode.
    int decode(const uint8_t* apdu, unsigned length) override;
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_RECIPIENT; }
    /// A Choice holding "device" or, for any other choice, "address".
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;

    bool operator==(const BACnetRecipient& other) const;
    bool operator!=(const BACnetRecipient& other) const { return !(*this == other); }

private:
    int32_t _choice = CHOICE_NONE;
    ObjectIdentifier _device;
    BACnetAddress _address;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
