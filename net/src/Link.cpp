#include "TQ_BACnet/Net/Link.h"

#include "tq_stack/bvlc.h"

#include <cstring>

namespace TQ {
namespace BACnet {
namespace Net {

namespace {

// Room in front of the NPDU for the longest BVLC header we write.
constexpr unsigned kHeadroom = BVLC_HEADER_LEN;
constexpr unsigned kMaxNpdu = MAX_APDU + NPDU_MAX_HEADER_LEN;

bool isBroadcast(const BACNET_ADDRESS& to) { return to.mac_len == 0; }

}  // namespace

Link::Link(BipSocket& socket, const std::string& name) : _socket(socket), _drops(name) {}

BACNET_ADDRESS Link::localBroadcast() {
    BACNET_ADDRESS a{};
    return a;
}

BACNET_ADDRESS Link::globalBroadcast() {
    BACNET_ADDRESS a{};
    a.net = BACNET_BROADCAST_NETWORK;
    return a;
}

BACNET_ADDRESS Link::ownAddress() const {
    BACNET_ADDRESS a{};
    a.mac_len = 6;
    std::memcpy(a.mac, _socket.address(), 6);
    return a;
}

bool Link::send(const BACNET_ADDRESS& to, const uint8_t* apdu, unsigned length, bool expectingReply) {
    if (length > MAX_APDU || (!isBroadcast(to) && to.mac_len != 6)) return false;
    BACNET_NPDU_DATA data{};
    data.data_expecting_reply = expectingReply;
    data.hop_count = NPDU_DEFAULT_HOP_COUNT;
    uint8_t* npdu = _tx + kHeadroom;
    const int header = npdu_encode(npdu, &to, nullptr, &data);
    if (header < 0 || unsigned(header) + length > kMaxNpdu) return false;
    std::memcpy(npdu + header, apdu, length);
    const unsigned npduLength = unsigned(header) + length;
    const bool foreign = _registration == Registration::Registered;
    uint8_t function = BVLC_ORIGINAL_UNICAST_NPDU;
    const uint8_t* dest = to.mac;
    if (isBroadcast(to)) {
        function = foreign ? BVLC_DISTRIBUTE_BROADCAST_TO_NETWORK : BVLC_ORIGINAL_BROADCAST_NPDU;
        dest = foreign ? _bbmd : _socket.broadcastAddress();
    }
    bvlc_encode_npdu_header(_tx, function, npduLength);
    transmit(dest, _tx, npduLength + kHeadroom);
    return !_transmitFailed;
}

void Link::transmit(const uint8_t to[6], const uint8_t* frame, unsigned length) {
    _transmitFailed = false;
    if (_transmit) return _transmit(to, frame, length);
    _transmitFailed = _socket.send(to, frame, length) != int(length);
}

void Link::sendResult(const uint8_t to[6], uint16_t code) {
    uint8_t frame[BVLC_RESULT_LEN];
    bvlc_encode_result(frame, code);
    transmit(to, frame, sizeof frame);
}

void Link::registerForeignDevice(const uint8_t bbmd[6], uint16_t timeToLive) {
    std::memcpy(_bbmd, bbmd, 6);
    _ttl = timeToLive ? timeToLive : 1;
    if (_registration != Registration::Registered) _registration = Registration::Pending;
    uint8_t frame[BVLC_REGISTER_FOREIGN_DEVICE_LEN];
    bvlc_encode_register_foreign_device(frame, _ttl);
    transmit(_bbmd, frame, sizeof frame);
    ++_registrationsSent;
    // Half the time-to-live leaves room for a lost registration and its repetition; the BBMD
    // adds its own grace period of 30 seconds besides.
    _reregisterAt = Clock::now() + std::chrono::milliseconds(_ttl * 500u);
}

void Link::reregisterWhenDue() {
    if (_registration != Registration::None && _registration != Registration::Refused &&
        Clock::now() >= _reregisterAt)
        registerForeignDevice(_bbmd, _ttl);
}

bool Link::receive(Received& out, int timeoutMs) {
    reregisterWhenDue();
    if (_registration == Registration::Registered || _registration == Registration::Pending) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(_reregisterAt - Clock::now()).count();
        if (left < timeoutMs) timeoutMs = left < 0 ? 0 : int(left);
    }
    uint8_t from[6];
    const int n = _socket.receive(_rx, sizeof _rx, from, timeoutMs);
    if (n <= 0) return false;
    return take(_rx, unsigned(n), from, out);
}

bool Link::accept(const uint8_t* datagram, unsigned length, const uint8_t from[6], Received& out) {
    return take(datagram, length, from, out);
}

bool Link::take(const uint8_t* datagram, unsigned length, const uint8_t from[6], Received& out) {
    BACNET_BVLC_MESSAGE m;
    if (bvlc_decode(datagram, length, &m) < 0) {
        _drops.note(Drop::BadBvlc, from);
        return false;
    }
    switch (m.function) {
        case BVLC_ORIGINAL_UNICAST_NPDU:
            return takeNpdu(m.payload, m.payload_len, from, false, out);
        case BVLC_ORIGINAL_BROADCAST_NPDU:
            return takeNpdu(m.payload, m.payload_len, from, true, out);
        case BVLC_FORWARDED_NPDU:
            return takeNpdu(m.payload, m.payload_len, m.source, true, out);
        case BVLC_RESULT:
            if (std::memcmp(from, _bbmd, 6) == 0 && _registration == Registration::Pending)
                _registration = m.result_code == BVLC_RESULT_SUCCESSFUL_COMPLETION ? Registration::Registered
                                                                                   : Registration::Refused;
            else if (std::memcmp(from, _bbmd, 6) == 0 && m.result_code == BVLC_RESULT_REGISTER_FOREIGN_DEVICE_NAK)
                _registration = Registration::Refused;
            return false;
        default:
            break;
    }
    if (const uint16_t nak = bvlc_nak_for_function(m.function)) {
        _drops.note(Drop::BbmdRequest, from);
        sendResult(from, nak);
    } else {
        _drops.note(Drop::UnknownFunction, from);
    }
    return false;
}

bool Link::takeNpdu(const uint8_t* npdu, unsigned length, const uint8_t source[6], bool broadcast, Received& out) {
    BACNET_ADDRESS dest{};
    const int header = npdu_decode(npdu, length, &dest, &out.source, &out.npdu);
    if (header < 0) {
        _drops.note(Drop::BadNpdu, source);
        return false;
    }
    if (out.npdu.network_layer_message) {
        _drops.note(Drop::NetworkMessage, source);
        return false;
    }
    // Not a router: only the global broadcast may carry a destination network.
    if (dest.net != 0 && dest.net != BACNET_BROADCAST_NETWORK) {
        _drops.note(Drop::NotForUs, source);
        return false;
    }
    if (unsigned(header) >= length) {
        _drops.note(Drop::BadApdu, source);
        return false;
    }
    out.source.mac_len = 6;
    std::memcpy(out.source.mac, source, 6);
    out.broadcast = broadcast || dest.net == BACNET_BROADCAST_NETWORK;
    out.apdu = npdu + header;
    out.apduLength = length - unsigned(header);
    return true;
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
