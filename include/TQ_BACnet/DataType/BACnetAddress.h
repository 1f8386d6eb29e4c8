#pragma once

#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "tq_stack/values.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// A BACnet network address: network number, MAC on that network's local link and, for a
/// remote network, the address behind the router. It is the codec's address record, so the
/// data link can take it as it is.
class BACnetAddress : public BACnet_Device_Address, public BACnetComplex {
public:
    /// The largest MAC or remote address the record holds.
    static constexpr uint8_t MAX_LENGTH = MAX_MAC_LEN;

    /// Local network, empty MAC, empty remote address.
    BACnetAddress();
    BACnetAddress(const BACnet_Device_Address& address);
    /// `address` is taken only for a remote network (not 0); otherwise the remote address is empty.
    BACnetAddress(const TQ::Utility::OctetBuffer& mac, uint16_t network,
                  const TQ::Utility::OctetBuffer* address);
    /// From decoded primitives: `v` is the network number (Unsigned), the primitive after it the
    /// MAC (Octet String). `next`, when given, receives the primitive after the MAC.
    BACnetAddress(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                  const DataApplicationValue** next);
    BACnetAddress(const BACnetAddress&) = default;
    BACnetAddress& operator=(const BACnetAddress&) = default;
    ~BACnetAddress() override = default;

    uint16_t getNetwork() const { return net; }
    void setNetwork(uint16_t network) { net = network; }
    const uint8_t* getMAC() const { return mac; }
    uint8_t getMACLength() const { return mac_len; }
    const uint8_t* getAddr() const { return adr; }
    uint8_t getAddrLength() const { return len; }

    /// Copy at most MAX_LENGTH bytes: any longer length is cut to MAX_LENGTH.
    void setMAC(const uint8_t* bytes, uint8_t length);
    /// The bytes of `bytes` (not a text form) as the MAC.
    void setMAC(const std::string& bytes);
    void setAddr(const uint8_t* bytes, uint8_t length);

    /// Application-tagged Unsigned network number, then an Octet String: empty for the
    /// broadcast network, the MAC for the local network, the remote address otherwise.
    int encode(uint8_t* apdu) const override;
    /// Appends the encoding to `buffer`; the buffer's new size.
    int encode(TQ::Utility::OctetBuffer& buffer) const;

    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// The bytes consumed; -2 when the two tags are not Unsigned and Octet String, the codec's
    /// failure for malformed data, -1 for a network number above 65535. An empty Octet String
    /// leaves MAC and remote address as they were.
    int decode(const uint8_t* apdu, unsigned length) override;

    /// Unsigned network number and Octet String, as `encode` writes them.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_ADDRESS; }

    /// Address bytes as text: the first four in decimal joined by ".", the rest, read as one
    /// big-endian number, after ":" unless it is 0 (192.168.1.10:47808, or 5 for an MS/TP MAC).
    static void getString(const uint8_t* bytes, uint8_t length, std::string& out);
    /// "network:MAC", with " Router: " and the remote address for a remote network. The flag
    /// does not change the text.
    void getString(std::string& out, bool) const;
    using BACnetComplex::getString;
    /// A Sequence of network-number, mac-address and, for a remote network, router-address, the
    /// addresses as their texts. `arrayMarker` goes to each member.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;

    bool operator==(const BACnetAddress& other) const;
    bool operator!=(const BACnetAddress& other) const { return !(*this == other); }
};

std::ostream& operator<<(std::ostream& stream, const BACnetAddress& address);

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
