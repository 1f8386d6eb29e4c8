#include "TQ_BACnet/DataType/BACnetAddress.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "tq_stack/codec.h"

#include <Poco/Bugcheck.h>

#include <cstring>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

uint8_t clampLength(std::size_t length) {
    return length > BACnetAddress::MAX_LENGTH ? BACnetAddress::MAX_LENGTH : static_cast<uint8_t>(length);
}

/// Network number and octet-string content of the encoding, without any allocation.
struct Encoded {
    const uint8_t* bytes;
    uint8_t length;
};

Encoded octetsOf(const BACnetAddress& address) {
    if (address.net == BACNET_BROADCAST_NETWORK) return {address.mac, 0};
    if (address.net == 0) return {address.mac, address.mac_len};
    return {address.adr, address.len};
}

}  // namespace

BACnetAddress::BACnetAddress() : BACnet_Device_Address() {}

BACnetAddress::BACnetAddress(const BACnet_Device_Address& address) : BACnet_Device_Address(address) {
    // A record from elsewhere may carry lengths the arrays cannot hold.
    mac_len = clampLength(mac_len);
    len = clampLength(len);
}

BACnetAddress::BACnetAddress(const TQ::Utility::OctetBuffer& macBytes, uint16_t network,
                             const TQ::Utility::OctetBuffer* address)
    : BACnet_Device_Address() {
    net = network;
    setMAC(macBytes.data(), clampLength(macBytes.size()));
    if (network != 0 && address != nullptr) setAddr(address->data(), clampLength(address->size()));
}

BACnetAddress::BACnetAddress(const DataPropertyInObject0&, const DataApplicationValue& v,
                             const DataApplicationValue** next)
    : BACnet_Device_Address() {
    poco_assert(v.tag == BACNET_APPLICATION_TAG_UNSIGNED_INT);
    const auto* octets = static_cast<const DataApplicationValue*>(v.next);
    poco_assert(octets != nullptr && octets->tag == BACNET_APPLICATION_TAG_OCTET_STRING);
    poco_assert(v.type.Unsigned_Int <= 0xFFFFu);
    net = static_cast<uint16_t>(v.type.Unsigned_Int);
    setMAC(octets->type.Octet_String.value, clampLength(octets->type.Octet_String.length));
    if (next) *next = static_cast<const DataApplicationValue*>(octets->next);
}

void BACnetAddress::setMAC(const uint8_t* bytes, uint8_t length) {
    mac_len = clampLength(length);
    if (mac_len > 0) std::memcpy(mac, bytes, mac_len);
}

void BACnetAddress::setMAC(const std::string& bytes) {
    setMAC(reinterpret_cast<const uint8_t*>(bytes.data()), clampLength(bytes.size()));
}

void BACnetAddress::setAddr(const uint8_t* bytes, uint8_t length) {
    len = clampLength(length);
    if (len > 0) std::memcpy(adr, bytes, len);
}

int BACnetAddress::encode(uint8_t* apdu) const {
    const Encoded octets = octetsOf(*this);
    int length = encode_application_unsigned(apdu, net);
    // The tag and the at most 7 content bytes are written directly: the codec's octet-string
    // record would put 1.5 KB on the stack for 7 bytes.
    length +=
        encode_tag(apdu ? apdu + length : nullptr, BACNET_APPLICATION_TAG_OCTET_STRING, false, octets.length);
    if (apdu && octets.length > 0) std::memcpy(apdu + length, octets.bytes, octets.length);
    return length + octets.length;
}

int BACnetAddress::encode(TQ::Utility::OctetBuffer& buffer) const {
    const std::size_t offset = buffer.size();
    buffer.resize(offset + static_cast<std::size_t>(encode(nullptr)));
    encode(buffer.data() + offset);
    return static_cast<int>(buffer.size());
}

int BACnetAddress::decode(const uint8_t* apdu, unsigned length) {
    BACNET_TAG tag;
    int header = bacnet_tag_decode(apdu, length, &tag);
    if (header < 0) return header;
    if (!tag.application || tag.number != BACNET_APPLICATION_TAG_UNSIGNED_INT) return -2;
    BACNET_UNSIGNED_INTEGER network = 0;
    const int networkLength = decode_application_unsigned(apdu, length, &network);
    if (networkLength < 0) return networkLength;
    if (network > 0xFFFFu) return BACNET_STATUS_ERROR;

    const uint8_t* octets = apdu + networkLength;
    const unsigned remaining = length - static_cast<unsigned>(networkLength);
    header = bacnet_tag_decode(octets, remaining, &tag);
    if (header < 0) return header;
    if (!tag.application || tag.number != BACNET_APPLICATION_TAG_OCTET_STRING) return -2;
    // The tag decoder has checked that the content fits, so it can be read in place.
    const uint8_t* content = octets + header;
    const uint32_t contentLength = tag.len_value_type;

    net = static_cast<uint16_t>(network);
    if (contentLength > 0) {
        if (net == 0) {
            setMAC(content, clampLength(contentLength));
        } else {
            setAddr(content, clampLength(contentLength));
        }
    }
    return networkLength + header + static_cast<int>(contentLength);
}

void BACnetAddress::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    const Encoded octets = octetsOf(*this);
    out.emplace_back();
    out.back().setUInt(net);
    out.emplace_back();
    out.back().setOctetString(OctetString(octets.bytes, octets.length));
}

void BACnetAddress::getString(const uint8_t* bytes, uint8_t length, std::string& out) {
    out.clear();
    const uint8_t dotted = length < 4 ? length : 4;
    for (uint8_t i = 0; i < dotted; ++i) {
        if (i > 0) out += '.';
        out += std::to_string(bytes[i]);
    }
    uint32_t port = 0;
    for (uint8_t i = 4; i < length; ++i) port = (port << 8) | bytes[i];
    if (port != 0) {
        out += ':';
        out += std::to_string(port);
    }
}

void BACnetAddress::getString(std::string& out, bool) const {
    std::string part;
    getString(mac, mac_len, part);
    out = std::to_string(net);
    out += ':';
    out += part;
    if (net != 0) {
        getString(adr, len, part);
        out += " Router: ";
        out += part;
    }
}

bool BACnetAddress::operator==(const BACnetAddress& other) const {
    return net == other.net && mac_len == other.mac_len && len == other.len &&
           std::memcmp(mac, other.mac, mac_len) == 0 && std::memcmp(adr, other.adr, len) == 0;
}

std::ostream& operator<<(std::ostream& stream, const BACnetAddress& address) {
    std::string text;
    address.getString(text, false);
    return stream << text;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
