#include "TQ_BACnet/Net/SimDevice.h"

#include "SimCov.h"
#include "SimServices.h"
#include "tq_stack/apdu.h"
#include "tq_stack/create_object.h"
#include "tq_stack/iam.h"
#include "tq_stack/segment.h"
#include "tq_stack/whois.h"

#include <algorithm>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace Net {

namespace {

constexpr uint8_t kTypeMask = 0xF0;
constexpr uint16_t kVendorId = 947;
// Segmented answers in progress at once; a client asking for more gets an Abort.
constexpr std::size_t kMaxOutgoing = 64;
// Sequence numbers are one octet: a longer answer would need wrapping windows.
constexpr unsigned kMaxSegmentsSent = 256;

uint64_t keyOf(const BACNET_ADDRESS& a, uint8_t invokeId) {
    uint64_t k = 0;
    for (uint8_t i = 0; i < a.mac_len && i < 6; ++i) k = k << 8 | a.mac[i];
    k ^= uint64_t(a.net) << 48;
    for (uint8_t i = 0; i < a.len && i < MAX_MAC_LEN; ++i) k = (k * 131) ^ a.adr[i];
    return k << 8 | invokeId;
}

}  // namespace

struct SimDevice::Outgoing {
    BACNET_ADDRESS peer{};
    uint8_t invokeId = 0;
    uint8_t service = 0;
    Encoded data;
    unsigned segmentSize = 0;
    unsigned count = 0;
    unsigned next = 0;  ///< first segment not yet acknowledged
    uint8_t window = 1;
    unsigned retriesLeft = 0;
    Clock::time_point deadline;
};

SimDevice::SimDevice(Link& link, SimObjects& objects, const SimDeviceOptions& options)
    : _link(link), _objects(objects), _options(options), _cov(std::make_unique<SimCov>(objects, options)) {
    _options.windowSize = uint8_t(std::max(1, std::min(int(APDU_MAX_WINDOW_SIZE), int(_options.windowSize))));
    _send = [this](const BACNET_ADDRESS& to, const uint8_t* apdu, unsigned length) {
        _link.send(to, apdu, length, false);
    };
}

SimDevice::~SimDevice() = default;

unsigned SimDevice::covSubscriptions() const { return _cov->subscriptions(); }
unsigned SimDevice::covAcknowledged() const { return _cov->acknowledged(); }

void SimDevice::run(const std::atomic<bool>& stop) {
    while (!stop.load()) poll(50);
}

void SimDevice::poll(int timeoutMs) {
    Received frame;
    if (_link.receive(frame, timeoutMs)) handle(frame);
    checkTimers();
}

void SimDevice::announce() {
    uint8_t apdu[32];
    const int n = iam_encode_apdu(apdu, _objects.deviceInstance(), MAX_APDU, SEGMENTATION_BOTH, kVendorId);
    _send(Link::localBroadcast(), apdu, unsigned(n));
}

void SimDevice::handle(const Received& frame) {
    if (_options.mute || frame.apduLength == 0) return;
    switch (frame.apdu[0] & kTypeMask) {
        case PDU_TYPE_CONFIRMED_SERVICE_REQUEST: return confirmed(frame);
        case PDU_TYPE_UNCONFIRMED_SERVICE_REQUEST: {
            uint8_t service = 0;
            if (apdu_decode_unconfirmed_header(frame.apdu, frame.apduLength, &service) > 0 &&
                service == SERVICE_UNCONFIRMED_WHO_IS)
                whoIs(frame, frame.apdu + APDU_UNCONFIRMED_HEADER_LEN, frame.apduLength - APDU_UNCONFIRMED_HEADER_LEN);
            return;
        }
        case PDU_TYPE_SEGMENT_ACK: return segmentAck(frame);
        case PDU_TYPE_ABORT:
            if (frame.apduLength >= 3) _outgoing.erase(keyOf(frame.source, frame.apdu[1]));
            return;
        default:
            // Answers to its confirmed notifications; a device that asked nothing expects no others.
            _cov->answered(frame);
            return;
    }
}

void SimDevice::whoIs(const Received&, const uint8_t* data, unsigned length) {
    int32_t low = -1, high = -1;
    if (whois_decode_service_request(data, length, &low, &high) < 0) return;
    const int32_t self = int32_t(_objects.deviceInstance());
    if (low < 0 || (self >= low && self <= high)) announce();
}

void SimDevice::confirmed(const Received& frame) {
    BACNET_CONFIRMED_SERVICE_DATA header;
    const int h = apdu_decode_confirmed_header(frame.apdu, frame.apduLength, &header);
    if (h < 0) return _link.drops().note(Drop::BadApdu, frame.source.mac);
    ++_requests;
    if (_requests <= _options.dropFirstRequests) return;
    // A retry of a request whose segmented answer is under way changes nothing.
    if (_outgoing.count(keyOf(frame.source, header.invoke_id))) return;
    uint8_t apdu[8];
    if (header.segmented_message) {
        const int n = apdu_encode_abort(apdu, header.invoke_id, ABORT_REASON_SEGMENTATION_NOT_SUPPORTED, true);
        return _send(frame.source, apdu, unsigned(n));
    }
    const uint8_t* data = frame.apdu + h;
    const unsigned length = frame.apduLength - unsigned(h);
    const Response r = header.service_choice == SERVICE_CONFIRMED_SUBSCRIBE_COV
                           ? _cov->subscribe(frame.source, data, length)
                           : serve(_objects, _store, header.service_choice, data, length);
    const uint8_t id = header.invoke_id, service = header.service_choice;
    uint8_t small[32];
    int n = 0;
    switch (r.kind) {
        case Response::Simple: n = apdu_encode_simple_ack(small, id, service); break;
        case Response::Error:
            n = apdu_encode_error(small, id, service, r.failure.errorClass, r.failure.errorCode);
            break;
        case Response::ErrorWithElement:
            n = apdu_encode_error_with_element(small, id, service, r.failure.errorClass, r.failure.errorCode, r.element);
            break;
        case Response::Reject: n = apdu_encode_reject(small, id, r.reason); break;
        case Response::Abort: n = apdu_encode_abort(small, id, r.reason, true); break;
        case Response::Complex: {
            // A reserved max-APDU code is read as the smallest size.
            const unsigned octets = apdu_max_apdu_octets(header.max_apdu_code);
            respond(frame, id, service, octets ? std::min(octets, unsigned(MAX_APDU)) : 50,
                    header.segmented_response_accepted, apdu_max_segments(header.max_segs_code), r.data);
            return;
        }
    }
    _send(frame.source, small, unsigned(n));
    // A write's change (or a new subscription) is notified right after its acknowledgement.
    _cov->check(_send);
}

void SimDevice::respond(const Received& frame, uint8_t invokeId, uint8_t service, unsigned maxApdu, bool segmentedOk,
                        unsigned maxSegments, const Encoded& data) {
    if (data.size() + APDU_COMPLEX_ACK_HEADER_LEN <= maxApdu) {
        Encoded apdu(APDU_COMPLEX_ACK_HEADER_LEN + data.size());
        apdu_encode_complex_ack_header(apdu.data(), invokeId, service);
        std::copy(data.begin(), data.end(), apdu.begin() + APDU_COMPLEX_ACK_HEADER_LEN);
        return _send(frame.source, apdu.data(), unsigned(apdu.size()));
    }
    const unsigned segmentSize = maxApdu - APDU_SEGMENTED_COMPLEX_ACK_HEADER_LEN;
    const unsigned count = unsigned((data.size() + segmentSize - 1) / segmentSize);
    uint8_t reason = 0;
    if (!segmentedOk)
        reason = ABORT_REASON_SEGMENTATION_NOT_SUPPORTED;
    else if (count > kMaxSegmentsSent || (maxSegments && count > maxSegments))
        reason = ABORT_REASON_BUFFER_OVERFLOW;
    else if (_outgoing.size() >= kMaxOutgoing)
        reason = ABORT_REASON_OUT_OF_RESOURCES;
    if (reason) {
        uint8_t apdu[3];
        apdu_encode_abort(apdu, invokeId, reason, true);
        return _send(frame.source, apdu, sizeof apdu);
    }
    auto o = std::make_unique<Outgoing>();
    o->peer = frame.source;
    o->invokeId = invokeId;
    o->service = service;
    o->data = data;
    o->segmentSize = segmentSize;
    o->count = count;
    // The first segment goes alone; its Segment-ACK tells the window the client takes.
    sendSegments(*o, 0, 1);
    _outgoing[keyOf(frame.source, invokeId)] = std::move(o);
}

void SimDevice::sendSegments(Outgoing& o, unsigned first, unsigned count) {
    uint8_t apdu[MAX_APDU];
    for (unsigned i = first; i < first + count && i < o.count; ++i) {
        BACNET_COMPLEX_ACK_DATA h{};
        h.segmented_message = true;
        h.more_follows = i + 1 < o.count;
        h.invoke_id = o.invokeId;
        h.sequence_number = uint8_t(i);
        h.proposed_window_size = _options.windowSize;
        h.service_choice = o.service;
        const int n = apdu_encode_complex_ack(apdu, &h);
        const std::size_t offset = std::size_t(i) * o.segmentSize;
        const std::size_t size = std::min<std::size_t>(o.segmentSize, o.data.size() - offset);
        std::memcpy(apdu + n, o.data.data() + offset, size);
        _send(o.peer, apdu, unsigned(n + int(size)));
    }
    o.next = first;
    o.retriesLeft = _options.segmentRetries;
    o.deadline = Clock::now() + std::chrono::milliseconds(_options.segmentTimeoutMs);
}

void SimDevice::segmentAck(const Received& frame) {
    bool nak = false, server = false;
    uint8_t id = 0, sequence = 0, window = 0;
    if (apdu_decode_segment_ack(frame.apdu, frame.apduLength, &nak, &server, &id, &sequence, &window) < 0 || server)
        return _link.drops().note(Drop::BadApdu, frame.source.mac);
    auto found = _outgoing.find(keyOf(frame.source, id));
    if (found == _outgoing.end()) return _link.drops().note(Drop::UnmatchedInvokeId, frame.source.mac);
    Outgoing& o = *found->second;
    if (sequence >= o.count) return _link.drops().note(Drop::SegmentOutOfOrder, frame.source.mac);
    if (!nak && sequence + 1u == o.count) {
        _outgoing.erase(found);
        return;
    }
    o.window = window;
    sendSegments(o, sequence + 1u, window);
}

void SimDevice::checkTimers() {
    _cov->check(_send);
    const auto now = Clock::now();
    for (auto i = _outgoing.begin(); i != _outgoing.end();) {
        Outgoing& o = *i->second;
        if (now < o.deadline) {
            ++i;
        } else if (o.retriesLeft == 0) {
            i = _outgoing.erase(i);
        } else {
            const unsigned retries = o.retriesLeft - 1;
            sendSegments(o, o.next, o.next == 0 ? 1 : o.window);
            o.retriesLeft = retries;
            ++i;
        }
    }
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
