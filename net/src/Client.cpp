#include "TQ_BACnet/Net/Client.h"

#include "TQ_BACnet/Net/Cov.h"

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
// Devices remembered from I-Ams; further devices are answered but not remembered.
constexpr std::size_t kMaxBindings = 16384;

bool sameAddress(const BACNET_ADDRESS& a, const BACNET_ADDRESS& b) {
    return a.mac_len == b.mac_len && std::memcmp(a.mac, b.mac, a.mac_len) == 0 && a.net == b.net &&
           (a.net == 0 || (a.len == b.len && std::memcmp(a.adr, b.adr, a.len) == 0));
}

int msUntil(Clock::time_point t) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(t - Clock::now()).count();
    return ms < 0 ? 0 : ms > 1000000 ? 1000000 : int(ms);
}

}  // namespace

struct Client::Transaction {
    enum State { Await, Segmented, Done };
    BACNET_ADDRESS peer{};
    uint8_t invokeId = 0;
    std::vector<uint8_t> request;
    unsigned retriesLeft = 0;
    Clock::time_point deadline;
    State state = Await;
    Result result;
    uint8_t lastSequence = 0;
    uint8_t initialSequence = 0;
    uint8_t window = 1;
    unsigned segments = 0;
};

Client::Client(Link& link, const ClientOptions& options) : _link(link), _options(options) {
    _options.maxSegments = std::max(2u, std::min(64u, _options.maxSegments));
    _options.windowSize = uint8_t(std::max(1, std::min(int(APDU_MAX_WINDOW_SIZE), int(_options.windowSize))));
}

Client::~Client() = default;

int Client::submit(const BACNET_ADDRESS& to, uint8_t service, const uint8_t* data, unsigned length) {
    if (length + APDU_CONFIRMED_HEADER_LEN > MAX_APDU || (length && !data)) return -1;
    for (unsigned tried = 0; tried < 256; ++tried) {
        const uint8_t id = _nextInvokeId++;
        if (_transactions[id]) continue;
        auto t = std::make_unique<Transaction>();
        t->peer = to;
        t->invokeId = id;
        BACNET_CONFIRMED_SERVICE_DATA header{};
        header.segmented_response_accepted = true;
        header.max_segs_code = apdu_max_segments_code(_options.maxSegments);
        header.max_apdu_code = apdu_max_apdu_code(MAX_APDU);
        header.invoke_id = id;
        header.service_choice = service;
        t->request.resize(APDU_CONFIRMED_HEADER_LEN + length);
        apdu_encode_confirmed_header(t->request.data(), &header);
        if (length) std::memcpy(t->request.data() + APDU_CONFIRMED_HEADER_LEN, data, length);
        t->retriesLeft = _options.retries;
        t->result.service = service;
        t->deadline = Clock::now() + std::chrono::milliseconds(_options.apduTimeoutMs);
        _link.send(to, t->request.data(), unsigned(t->request.size()), true);
        _transactions[id] = std::move(t);
        return id;
    }
    return -1;
}

bool Client::isDone(int handle) const {
    return handle >= 0 && handle < 256 && _transactions[handle] && _transactions[handle]->state == Transaction::Done;
}

Result Client::take(int handle) {
    if (!isDone(handle)) return Result();
    Result r = std::move(_transactions[handle]->result);
    _transactions[handle].reset();
    return r;
}

unsigned Client::outstanding() const {
    unsigned n = 0;
    for (const auto& t : _transactions)
        if (t && t->state != Transaction::Done) ++n;
    return n;
}

int Client::nextTimerMs() const {
    int next = 1000000;
    for (const auto& t : _transactions)
        if (t && t->state != Transaction::Done) next = std::min(next, msUntil(t->deadline));
    return next;
}

void Client::poll(int timeoutMs) {
    Received frame;
    if (_link.receive(frame, std::min(timeoutMs, nextTimerMs()))) dispatch(frame);
    checkTimers();
}

void Client::checkTimers() {
    const auto now = Clock::now();
    for (auto& slot : _transactions) {
        if (!slot || slot->state == Transaction::Done || now < slot->deadline) continue;
        Transaction& t = *slot;
        if (t.state == Transaction::Await && t.retriesLeft > 0) {
            --t.retriesLeft;
            t.deadline = now + std::chrono::milliseconds(_options.apduTimeoutMs);
            _link.send(t.peer, t.request.data(), unsigned(t.request.size()), true);
        } else {
            finish(t, Result::Timeout);
        }
    }
}

Client::Transaction* Client::find(uint8_t invokeId, const BACNET_ADDRESS& from) {
    Transaction* t = _transactions[invokeId].get();
    if (!t || t->state == Transaction::Done || !sameAddress(t->peer, from)) return nullptr;
    return t;
}

void Client::finish(Transaction& t, Result::Kind kind) {
    t.result.kind = kind;
    t.state = Transaction::Done;
}

void Client::sendSegmentAck(Transaction& t, bool nak, uint8_t sequence) {
    uint8_t apdu[APDU_SEGMENT_ACK_LEN];
    apdu_encode_segment_ack(apdu, nak, false, t.invokeId, sequence, t.window);
    _link.send(t.peer, apdu, sizeof apdu, false);
}

void Client::abort(Transaction& t, uint8_t reason) {
    uint8_t apdu[3];
    apdu_encode_abort(apdu, t.invokeId, reason, false);
    _link.send(t.peer, apdu, sizeof apdu, false);
    t.result.reason = reason;
    t.result.byServer = false;
    t.result.data.clear();
    t.result.data.shrink_to_fit();
    finish(t, Result::Abort);
}

void Client::dispatch(const Received& frame) {
    const uint8_t* apdu = frame.apdu;
    const unsigned length = frame.apduLength;
    const uint8_t type = apdu[0] & kTypeMask;
    uint8_t id = 0, service = 0, reason = 0;
    if (type == PDU_TYPE_UNCONFIRMED_SERVICE_REQUEST) {
        if (apdu_decode_unconfirmed_header(apdu, length, &service) < 0) return;
        if (service == SERVICE_UNCONFIRMED_I_AM)
            handleIAm(frame, apdu + APDU_UNCONFIRMED_HEADER_LEN, length - APDU_UNCONFIRMED_HEADER_LEN);
        else if (service == SERVICE_UNCONFIRMED_COV_NOTIFICATION && _covHandler)
            handleCov(frame, apdu + APDU_UNCONFIRMED_HEADER_LEN, length - APDU_UNCONFIRMED_HEADER_LEN, -1);
        return;
    }
    if (type == PDU_TYPE_CONFIRMED_SERVICE_REQUEST) {
        // A client serves nothing but the notifications it subscribed to.
        BACNET_CONFIRMED_SERVICE_DATA header;
        const int h = apdu_decode_confirmed_header(apdu, length, &header);
        if (h < 0) return _link.drops().note(Drop::BadApdu, frame.source.mac);
        if (header.service_choice == SERVICE_CONFIRMED_COV_NOTIFICATION && !header.segmented_message && _covHandler)
            return handleCov(frame, apdu + h, length - unsigned(h), header.invoke_id);
        uint8_t reject[3];
        apdu_encode_reject(reject, header.invoke_id, REJECT_REASON_UNRECOGNIZED_SERVICE);
        _link.send(frame.source, reject, sizeof reject, false);
        return;
    }
    if (length < 3 || type > PDU_TYPE_ABORT) return _link.drops().note(Drop::BadApdu, frame.source.mac);
    Transaction* t = find(apdu[1], frame.source);
    if (!t) return _link.drops().note(Drop::UnmatchedInvokeId, frame.source.mac);
    Result& r = t->result;
    switch (type) {
        case PDU_TYPE_SIMPLE_ACK:
            if (t->state != Transaction::Await) break;
            return finish(*t, Result::SimpleAck);
        case PDU_TYPE_COMPLEX_ACK: {
            BACNET_COMPLEX_ACK_DATA header;
            const int h = apdu_decode_complex_ack(apdu, length, &header);
            if (h < 0) break;
            if (header.segmented_message) return handleSegment(*t, frame, apdu, length);
            if (t->state != Transaction::Await) break;
            r.data.assign(apdu + h, apdu + length);
            return finish(*t, Result::ComplexAck);
        }
        case PDU_TYPE_ERROR: {
            BACNET_ERROR_CLASS cls;
            BACNET_ERROR_CODE code;
            uint32_t element = 0;
            if (apdu_decode_error(apdu, length, &id, &service, &cls, &code) < 0 &&
                apdu_decode_error_with_element(apdu, length, &id, &service, &cls, &code, &element) < 0)
                break;
            r.errorClass = cls;
            r.errorCode = code;
            r.firstFailedElement = element;
            return finish(*t, Result::Error);
        }
        case PDU_TYPE_REJECT:
            if (apdu_decode_reject(apdu, length, &id, &reason) < 0) break;
            r.reason = reason;
            return finish(*t, Result::Reject);
        case PDU_TYPE_ABORT: {
            bool server = false;
            if (apdu_decode_abort(apdu, length, &id, &reason, &server) < 0) break;
            r.reason = reason;
            r.byServer = server;
            r.data.clear();
            return finish(*t, Result::Abort);
        }
        default:
            break;
    }
    _link.drops().note(Drop::BadApdu, frame.source.mac);
}

void Client::handleSegment(Transaction& t, const Received&, const uint8_t* apdu, unsigned length) {
    BACNET_COMPLEX_ACK_DATA h;
    apdu_decode_complex_ack(apdu, length, &h);
    const uint8_t* data = apdu + APDU_SEGMENTED_COMPLEX_ACK_HEADER_LEN;
    const unsigned dataLength = length - APDU_SEGMENTED_COMPLEX_ACK_HEADER_LEN;
    const auto segmentTimeout = std::chrono::milliseconds(_options.apduTimeoutMs);
    if (t.state == Transaction::Await) {
        if (h.sequence_number != 0) return abort(t, ABORT_REASON_INVALID_APDU_IN_THIS_STATE);
        t.state = Transaction::Segmented;
        t.window = std::min(h.proposed_window_size, _options.windowSize);
        t.segments = 1;
        t.lastSequence = t.initialSequence = 0;
        t.result.data.assign(data, data + dataLength);
        t.deadline = Clock::now() + segmentTimeout;
        sendSegmentAck(t, false, 0);
        if (!h.more_follows) finish(t, Result::ComplexAck);
        return;
    }
    if (h.sequence_number != uint8_t(t.lastSequence + 1)) {
        _link.drops().note(Drop::SegmentOutOfOrder, t.peer.mac);
        sendSegmentAck(t, true, t.lastSequence);
        t.initialSequence = t.lastSequence;
        return;
    }
    if (++t.segments > _options.maxSegments) {
        _link.drops().note(Drop::Overflow, t.peer.mac);
        return abort(t, ABORT_REASON_BUFFER_OVERFLOW);
    }
    t.result.data.insert(t.result.data.end(), data, data + dataLength);
    t.lastSequence = h.sequence_number;
    t.deadline = Clock::now() + segmentTimeout;
    if (!h.more_follows) {
        sendSegmentAck(t, false, h.sequence_number);
        return finish(t, Result::ComplexAck);
    }
    if (h.sequence_number == uint8_t(t.initialSequence + t.window)) {
        sendSegmentAck(t, false, h.sequence_number);
        t.initialSequence = h.sequence_number;
    }
}

void Client::handleIAm(const Received& frame, const uint8_t* data, unsigned length) {
    IAm iam;
    unsigned maxApdu = 0;
    if (iam_decode_service_request(data, length, &iam.deviceInstance, &maxApdu, &iam.segmentation, &iam.vendorId) < 0)
        return _link.drops().note(Drop::BadApdu, frame.source.mac);
    iam.maxApdu = maxApdu;
    iam.address = frame.source;
    auto found = _bindings.find(iam.deviceInstance);
    if (found != _bindings.end())
        found->second = iam;
    else if (_bindings.size() < kMaxBindings)
        _bindings.emplace(iam.deviceInstance, iam);
    if (!_collecting) return;
    for (IAm& seen : *_collecting)
        if (seen.deviceInstance == iam.deviceInstance) return void(seen = iam);
    if (_collecting->size() < kMaxBindings) _collecting->push_back(iam);
}

void Client::handleCov(const Received& frame, const uint8_t* data, unsigned length, int invokeId) {
    CovNotification n;
    n.source = frame.source;
    n.confirmed = invokeId >= 0;
    const bool ok = Cov::decode(data, length, n);
    if (n.confirmed) {
        uint8_t answer[3];
        if (ok)
            apdu_encode_simple_ack(answer, uint8_t(invokeId), SERVICE_CONFIRMED_COV_NOTIFICATION);
        else
            apdu_encode_reject(answer, uint8_t(invokeId), REJECT_REASON_INVALID_TAG);
        _link.send(frame.source, answer, sizeof answer, false);
    }
    if (!ok) return _link.drops().note(Drop::BadApdu, frame.source.mac);
    _covHandler(n);
}

Result Client::subscribeCov(const BACNET_ADDRESS& to, uint32_t processId, BACNET_OBJECT_TYPE type,
                            uint32_t instance, bool confirmed, uint32_t lifetimeS) {
    const Request r = Cov::subscribeRequest(processId, type, instance, confirmed, lifetimeS);
    return r.ok() ? request(to, r.service, r.data) : Result();
}

Result Client::cancelCov(const BACNET_ADDRESS& to, uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance) {
    const Request r = Cov::cancelRequest(processId, type, instance);
    return r.ok() ? request(to, r.service, r.data) : Result();
}

Result Client::request(const BACNET_ADDRESS& to, uint8_t service, const uint8_t* data, unsigned length) {
    const int handle = submit(to, service, data, length);
    if (handle < 0) return Result();
    while (!isDone(handle)) poll(int(_options.apduTimeoutMs));
    return take(handle);
}

Result Client::requestDevice(uint32_t deviceInstance, uint8_t service, const std::vector<uint8_t>& data) {
    BACNET_ADDRESS to;
    if (!addressOf(deviceInstance, to)) {
        whoIs(_options.apduTimeoutMs, int32_t(deviceInstance), int32_t(deviceInstance));
        if (!addressOf(deviceInstance, to)) return Result();
    }
    return request(to, service, data);
}

std::vector<IAm> Client::whoIs(unsigned durationMs, int32_t low, int32_t high, const BACNET_ADDRESS& to) {
    std::vector<IAm> found;
    uint8_t apdu[16];
    const int n = whois_encode_apdu(apdu, low, high);
    if (n < 0 || !_link.send(to, apdu, unsigned(n), false)) return found;
    _collecting = &found;
    const auto end = Clock::now() + std::chrono::milliseconds(durationMs);
    // A device-specific Who-Is is done at the first answer.
    while (Clock::now() < end && !(low >= 0 && low == high && !found.empty())) poll(msUntil(end));
    _collecting = nullptr;
    return found;
}

bool Client::addressOf(uint32_t deviceInstance, BACNET_ADDRESS& out) const {
    auto found = _bindings.find(deviceInstance);
    if (found == _bindings.end()) return false;
    out = found->second.address;
    return true;
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
