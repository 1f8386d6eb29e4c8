#include "SimCov.h"

#include "tq_stack/apdu.h"
#include "tq_stack/cov.h"

#include <algorithm>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace Net {

namespace {

// Subscriptions held at once, and confirmed notifications awaiting their acknowledgement.
constexpr std::size_t kMaxSubscriptions = 128;
constexpr std::size_t kMaxPending = 64;

bool sameAddress(const BACNET_ADDRESS& a, const BACNET_ADDRESS& b) {
    return a.mac_len == b.mac_len && std::memcmp(a.mac, b.mac, a.mac_len) == 0 && a.net == b.net &&
           (a.net == 0 || (a.len == b.len && std::memcmp(a.adr, b.adr, a.len) == 0));
}

Response answer(Response::Kind kind, Failure why = {ERROR_CLASS_SERVICES, ERROR_CODE_OTHER}) {
    Response r;
    r.kind = kind;
    r.failure = why;
    r.reason = REJECT_REASON_INVALID_TAG;
    return r;
}

}  // namespace

SimCov::SimCov(SimObjects& objects, const SimDeviceOptions& options) : _objects(objects), _options(options) {}

std::vector<SimCov::Subscription>::iterator SimCov::find(const BACNET_ADDRESS& from, uint32_t processId,
                                                         uint32_t type, uint32_t instance) {
    return std::find_if(_subscriptions.begin(), _subscriptions.end(), [&](const Subscription& s) {
        return s.processId == processId && uint32_t(s.type) == type && s.instance == instance &&
               sameAddress(s.subscriber, from);
    });
}

Response SimCov::subscribe(const BACNET_ADDRESS& from, const uint8_t* data, unsigned length) {
    BACNET_SUBSCRIBE_COV_DATA d{};
    if (cov_subscribe_decode_service_request(data, length, &d) < 0) return answer(Response::Reject);
    auto existing = find(from, d.subscriber_process_identifier, d.monitored_object_type, d.monitored_object_instance);
    if (d.cancellation_request) {
        // Cancelling what does not exist (any more) is no error: the subscriber's wish holds.
        if (existing != _subscriptions.end()) _subscriptions.erase(existing);
        _count = unsigned(_subscriptions.size());
        return answer(Response::Simple);
    }
    if (_options.refuseCov) return answer(Response::Error, {ERROR_CLASS_RESOURCES, ERROR_CODE_NO_SPACE_TO_ADD_LIST_ELEMENT});
    Encoded value;
    Failure why;
    if (!_objects.read(d.monitored_object_type, d.monitored_object_instance, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL,
                       value, why)) {
        // An object without a present value has nothing to report.
        if (why.errorCode != ERROR_CODE_UNKNOWN_OBJECT)
            why = {ERROR_CLASS_OBJECT, ERROR_CODE_OPTIONAL_FUNCTIONALITY_NOT_SUPPORTED};
        return answer(Response::Error, why);
    }
    if (existing == _subscriptions.end()) {
        if (_subscriptions.size() >= kMaxSubscriptions)
            return answer(Response::Error, {ERROR_CLASS_RESOURCES, ERROR_CODE_NO_SPACE_TO_ADD_LIST_ELEMENT});
        existing = _subscriptions.insert(_subscriptions.end(), Subscription());
    }
    Subscription& s = *existing;
    s.subscriber = from;
    s.processId = d.subscriber_process_identifier;
    s.type = d.monitored_object_type;
    s.instance = d.monitored_object_instance;
    s.confirmed = d.issue_confirmed_notifications;
    // A lifetime of zero, like none, does not end.
    s.expires = d.lifetime_present && d.lifetime > 0;
    s.expiresAt = Clock::now() + std::chrono::seconds(d.lifetime);
    s.due = true;
    _count = unsigned(_subscriptions.size());
    return answer(Response::Simple);
}

void SimCov::check(const SimDevice::Sender& send) {
    const auto now = Clock::now();
    for (auto it = _subscriptions.begin(); it != _subscriptions.end();) {
        if (it->expires && now >= it->expiresAt) {
            it = _subscriptions.erase(it);
            continue;
        }
        Encoded value, flags;
        Failure why;
        // A deleted object ends its subscriptions.
        if (!_objects.read(it->type, it->instance, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, value, why)) {
            it = _subscriptions.erase(it);
            continue;
        }
        _objects.read(it->type, it->instance, PROP_STATUS_FLAGS, BACNET_ARRAY_ALL, flags, why);
        if (it->due || value != it->presentValue || flags != it->statusFlags) {
            it->presentValue = std::move(value);
            it->statusFlags = std::move(flags);
            notify(*it, send, now);
        }
        ++it;
    }
    _count = unsigned(_subscriptions.size());
    for (auto it = _pending.begin(); it != _pending.end();) {
        Pending& p = it->second;
        if (now < p.deadline) {
            ++it;
        } else if (p.retriesLeft == 0) {
            it = _pending.erase(it);
        } else {
            --p.retriesLeft;
            p.deadline = now + std::chrono::milliseconds(_options.segmentTimeoutMs);
            send(p.peer, p.apdu.data(), unsigned(p.apdu.size()));
            ++it;
        }
    }
}

void SimCov::notify(Subscription& s, const SimDevice::Sender& send, Clock::time_point now) {
    s.due = false;
    if (_options.silentCov) return;
    BACNET_PROPERTY_VALUE_REF values[2];
    BACNET_COV_DATA d{};
    d.subscriber_process_identifier = s.processId;
    d.initiating_device_instance = _objects.deviceInstance();
    d.monitored_object_type = s.type;
    d.monitored_object_instance = s.instance;
    if (s.expires)
        d.time_remaining = uint32_t(std::max<long long>(0, std::chrono::ceil<std::chrono::seconds>(s.expiresAt - now).count()));
    d.values = values;
    values[d.count++] = {PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, s.presentValue.data(), uint32_t(s.presentValue.size()),
                         BACNET_NO_PRIORITY};
    if (!s.statusFlags.empty())
        values[d.count++] = {PROP_STATUS_FLAGS, BACNET_ARRAY_ALL, s.statusFlags.data(),
                             uint32_t(s.statusFlags.size()), BACNET_NO_PRIORITY};
    uint8_t apdu[MAX_APDU];
    if (!s.confirmed) {
        const int n = ucov_notify_encode_apdu(apdu, &d);
        if (n > 0) send(s.subscriber, apdu, unsigned(n));
        return;
    }
    // The invoke id of a notification still unanswered is not taken again.
    uint8_t id = _nextInvokeId++;
    for (unsigned tried = 0; _pending.count(id) && tried < 256; ++tried) id = _nextInvokeId++;
    const int n = cov_notify_encode_apdu(apdu, id, &d);
    if (n <= 0) return;
    send(s.subscriber, apdu, unsigned(n));
    if (_pending.size() >= kMaxPending || _pending.count(id)) return;
    Pending& p = _pending[id];
    p.peer = s.subscriber;
    p.apdu.assign(apdu, apdu + n);
    p.retriesLeft = _options.segmentRetries;
    p.deadline = now + std::chrono::milliseconds(_options.segmentTimeoutMs);
}

bool SimCov::answered(const Received& frame) {
    if (frame.apduLength < 2) return false;
    const uint8_t type = frame.apdu[0] & 0xF0;
    if (type != PDU_TYPE_SIMPLE_ACK && type != PDU_TYPE_ERROR && type != PDU_TYPE_REJECT) return false;
    auto found = _pending.find(frame.apdu[1]);
    if (found == _pending.end() || !sameAddress(found->second.peer, frame.source)) return false;
    _pending.erase(found);
    if (type == PDU_TYPE_SIMPLE_ACK) ++_acknowledged;
    return true;
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
