// The background thread that keeps the polling list fresh: a COV subscription per item where the
// device takes one (renewed before its lifetime ends), a ReadProperty per interval otherwise.
// Both store through the same update of the stored tree.
#include "TQ_BACnet/Gateway/Gateway.h"

#include "TQ_BACnet/WS/DataWsError.h"
#include "TQ_BACnet/WS/UriParser.h"

#include <Poco/Exception.h>

#include <algorithm>
#include <iostream>

namespace TQ {
namespace BACnet {
namespace Gateway {

using DataType::BACnetObjectPropertyReference;
using DataType::ObjectIdentifier;
using Net::Cov;
using Net::DeviceOperations;
using Net::Result;

namespace {

using Clock = Store::Clock;
constexpr std::chrono::milliseconds kVouchEvery{500};

bool ready(std::future<Result>& f) {
    return f.valid() && f.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

// Only these two are reported by a COV notification.
bool notified(BACNET_PROPERTY_ID property) {
    return property == PROP_PRESENT_VALUE || property == PROP_STATUS_FLAGS;
}

}  // namespace

struct Gateway::Watched {
    enum Mode { Polling, Subscribing, Subscribed };
    uint32_t device = 0;
    BACnetObjectPropertyReference what;
    std::chrono::milliseconds interval{0};
    Clock::time_point due{};
    std::future<Result> answer;  ///< the ReadProperty in flight
    bool cov = false;
    uint32_t processId = 0;  ///< tells the notifications of this item from others
    Mode mode = Polling;
    Clock::time_point subscribeAt{};
    std::future<Result> subscription;  ///< the SubscribeCOV in flight
    Clock::time_point vouchedAt{};
    bool heard = false;  ///< a notification came since the subscription was acknowledged
    Clock::time_point hearBy{};

    BACNET_OBJECT_TYPE objectType() const { return what.getObjectIdentifier().getObjectType(); }
    uint32_t objectInstance() const { return what.getObjectIdentifier().getInstance(); }
};

void Gateway::startPolling() {
    if (_config.polling.empty() || _poller.joinable()) return;
    _poller = std::thread([this] { poll(); });
}

void Gateway::poll() {
    std::vector<Watched> items;
    for (const PollItem& p : _config.polling) {
        WS::DataWsError error;
        try {
            Watched w;
            w.device = p.device;
            w.what = BACnetObjectPropertyReference(ObjectIdentifier(p.object),
                                                   WS::UriParser::getPropIdentifier(p.property, error),
                                                   BACNET_ARRAY_ALL);
            w.interval = std::chrono::milliseconds(p.intervalMs);
            w.due = Clock::now();
            w.cov = _config.cov.enabled && p.cov && notified(w.what.getPropertyIdentifier());
            w.processId = uint32_t(items.size() + 1);
            // The first value comes with the subscription; a refusal starts the polling at once.
            w.mode = w.cov ? Watched::Subscribing : Watched::Polling;
            items.push_back(std::move(w));
        } catch (const Poco::Exception& e) {
            std::cerr << "polling: " << p.object << " " << p.property << " left out: " << e.displayText()
                      << std::endl;
        }
    }
    std::unique_lock<std::mutex> lock(_pollMutex);
    while (!_stopPolling) {
        storeNotified(items);
        pollRound(items);
        _pollWake.wait_for(lock, std::chrono::milliseconds(10));
    }
    cancelSubscriptions(items);
}

void Gateway::pollRound(std::vector<Watched>& items) {
    const auto now = Clock::now();
    for (Watched& item : items) {
        if (item.cov) subscribeRound(item, now);
        if (item.mode == Watched::Subscribed && item.heard && now >= item.vouchedAt && !isResting(item.device)) {
            // While the subscription holds, the device reports every change: what is stored is
            // current and answers reads as a fresh value does.
            item.vouchedAt = now + std::max(std::chrono::milliseconds(10),
                                            std::min(kVouchEvery, std::chrono::milliseconds(_config.maxAgeMs / 2)));
            const int row = _store.propertyRow(item.device, item.what.getObjectIdentifier(),
                                               item.what.getPropertyIdentifier());
            if (row >= 0) _store.vouchFor(row);
        }
        if (ready(item.answer)) {
            const Result r = item.answer.get();
            noteAnswer(item.device, r);
            ValueContainer value;
            const int row = _store.propertyRow(item.device, item.what.getObjectIdentifier(),
                                               item.what.getPropertyIdentifier());
            if (DeviceOperations::readPropertyAnswer(r, item.what, value).ok() && row >= 0) _store.update(row, value);
            continue;
        }
        if (item.mode != Watched::Polling || item.answer.valid() || now < item.due || isResting(item.device))
            continue;
        item.due = now + item.interval;
        item.answer = _port.submit(item.device, DeviceOperations::readPropertyRequest(item.what));
    }
}

void Gateway::subscribeRound(Watched& item, Clock::time_point now) {
    const auto lifetime = std::chrono::seconds(_config.cov.lifetimeS);
    if (ready(item.subscription)) {
        const Result r = item.subscription.get();
        noteAnswer(item.device, r);
        if (r.kind == Result::SimpleAck) {
            // A device sends the values right after it takes a subscription; one that does not
            // (or whose notifications do not reach us) is polled.
            if (item.mode != Watched::Subscribed)
                item.hearBy = now + std::chrono::milliseconds(_config.apduTimeoutMs * (_config.retries + 1));
            item.mode = Watched::Subscribed;
            // Renewed when 80 % of the lifetime has passed: time for a lost request and its retries.
            item.subscribeAt = now + std::chrono::duration_cast<std::chrono::milliseconds>(lifetime) * 4 / 5;
            return;
        }
        // Refused, or silence: polled until the device is asked again one lifetime later.
        if (item.mode != Watched::Polling)
            std::cerr << "polling: device " << item.device << " " << item.what.getObjectIdentifier().getPath(false)
                      << ": no COV subscription (" << Net::Outcome::of(r).describe() << "), polled instead"
                      << std::endl;
        item.mode = Watched::Polling;
        item.due = std::min(item.due, now);
        item.subscribeAt = now + lifetime;
        return;
    }
    if (item.mode == Watched::Subscribed && !item.heard && now >= item.hearBy) {
        std::cerr << "polling: device " << item.device << " " << item.what.getObjectIdentifier().getPath(false)
                  << ": subscribed, but no notification came; polled instead" << std::endl;
        item.mode = Watched::Polling;
        item.due = now;
        item.subscribeAt = now + lifetime;
        return;
    }
    if (item.subscription.valid() || now < item.subscribeAt || isResting(item.device)) return;
    if (item.mode != Watched::Subscribed) item.heard = false;
    item.subscription = _port.submit(item.device, Cov::subscribeRequest(item.processId, item.objectType(),
                                                                         item.objectInstance(), _config.cov.confirmed,
                                                                         _config.cov.lifetimeS));
}

void Gateway::storeNotified(std::vector<Watched>& items) {
    for (const Net::CovNotification& n : _port.takeNotifications()) {
        for (Watched& item : items) {
            if (!item.cov || item.processId != n.processId || item.device != n.device ||
                item.objectType() != n.objectType || item.objectInstance() != n.objectInstance)
                continue;
            item.heard = true;
            const Net::CovValue* v = n.find(item.what.getPropertyIdentifier());
            const int row = _store.propertyRow(item.device, item.what.getObjectIdentifier(),
                                               item.what.getPropertyIdentifier());
            ValueContainer value;
            if (v && row >= 0 && Cov::value(n, *v, value).ok()) _store.update(row, value);
        }
    }
}

void Gateway::cancelSubscriptions(std::vector<Watched>& items) {
    // A subscription left behind would go on costing the device notifications until it expires.
    std::vector<std::future<Result>> cancels;
    for (Watched& item : items)
        if (item.mode == Watched::Subscribed || item.subscription.valid())
            cancels.push_back(
                _port.submit(item.device, Cov::cancelRequest(item.processId, item.objectType(), item.objectInstance())));
    const auto limit = Clock::now() + std::chrono::milliseconds(_config.apduTimeoutMs * (_config.retries + 1) + 500);
    for (auto& c : cancels)
        if (c.wait_until(limit) != std::future_status::ready) break;
}

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
