#include "TQ_BACnet/Gateway/Gateway.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/ReadAccessSpecification.h"
#include "TQ_BACnet/Entity/BnWsError.h"
#include "TQ_BACnet/WS/UriParser.h"
#include "TQ_BACnet/WS/DataWsError.h"

#include <Poco/Exception.h>

#include <algorithm>
#include <iostream>

namespace TQ {
namespace BACnet {
namespace Gateway {

using DataType::BACnetObjectPropertyReference;
using DataType::BACnetPropertyReference;
using DataType::ObjectIdentifier;
using Net::DeviceOperations;
using Net::Outcome;
using Net::Result;
using namespace Service::ObjectAccess;

namespace {

// Objects asked for in one ReadPropertyMultiple at discovery: small enough for one APDU each way
// on any device that takes 480 octets.
constexpr unsigned kMaxBackOffMs = 60000;
constexpr WS::DataWsError::WS_ERROR_CODE kLastWsError = 52;

Outcome failed(const std::string& why) { return Outcome::failed(why); }

}  // namespace

Gateway::Gateway(const Config& config) : _config(config), _store(config), _port(config) {
    WS::UriParser::setLocalDevInstance(config.localDevice);
    // The error rows are read now, while no other thread uses the session.
    for (WS::DataWsError::WS_ERROR_CODE code = 0; code <= kLastWsError; ++code) {
        try {
            Entity::BnWsError::find(code);
        } catch (const Poco::Exception&) {
            // a catalogue without this code answers it as "other"
        }
    }
}

Gateway::~Gateway() {
    {
        std::lock_guard<std::mutex> lock(_pollMutex);
        _stopPolling = true;
    }
    _pollWake.notify_all();
    if (_poller.joinable()) _poller.join();
}

Result Gateway::run(uint32_t device, Net::Request request) {
    std::future<Result> answer = _port.submit(device, std::move(request));
    // The port always answers (its client times out), unless it is being torn down.
    const auto limit = std::chrono::milliseconds(_config.apduTimeoutMs * (_config.retries + 1) * 4 + 5000);
    if (answer.wait_for(limit) != std::future_status::ready) {
        Result r;
        r.kind = Result::Timeout;
        return r;
    }
    Result r = answer.get();
    noteAnswer(device, r);
    return r;
}

void Gateway::noteAnswer(uint32_t device, const Result& result) {
    std::lock_guard<std::mutex> lock(_healthMutex);
    Health& h = _health[device];
    if (result.kind != Result::Timeout) {
        h.failures = 0;
        return;
    }
    ++h.failures;
    const unsigned backOff = std::min(kMaxBackOffMs, _config.apduTimeoutMs << std::min(h.failures, 6u));
    h.retryAt = Store::Clock::now() + std::chrono::milliseconds(backOff);
}

bool Gateway::isResting(uint32_t device) const {
    std::lock_guard<std::mutex> lock(_healthMutex);
    const auto it = _health.find(device);
    return it != _health.end() && it->second.failures > 0 && Store::Clock::now() < it->second.retryAt;
}

Outcome Gateway::readProperty(uint32_t device, const BACnetObjectPropertyReference& what, ValueContainer& value,
                              bool allowStored, bool* fromStore) {
    if (fromStore) *fromStore = false;
    const int row = what.hasArrayIndex() ? -1
                                         : _store.propertyRow(device, what.getObjectIdentifier(),
                                                              what.getPropertyIdentifier());
    if (allowStored && row >= 0) {
        std::string text;
        DataPropertyInObject0 descriptor;
        if (_store.freshValue(row, _config.maxAgeMs, text) &&
            DataPropertyInObject0::getValueTypeAndStructure(what.getObjectIdentifier().getObjectType(),
                                                            what.getPropertyIdentifier(), descriptor, false) &&
            value.setText(descriptor.datatype, descriptor.tag, text, true)) {
            if (fromStore) *fromStore = true;
            return Outcome::done();
        }
    }
    const Net::Request request = DeviceOperations::readPropertyRequest(what);
    if (!request.ok()) return failed(request.why);
    const Outcome o = DeviceOperations::readPropertyAnswer(run(device, request), what, value);
    if (o.ok() && row >= 0) _store.update(row, value);
    return o;
}

Outcome Gateway::readPropertyMultiple(uint32_t device, const ReadPropertyMultiple& request,
                                      ReadPropertyMultipleAck& ack) {
    const Net::Request r = DeviceOperations::readPropertyMultipleRequest(request);
    if (!r.ok()) return failed(r.why);
    return DeviceOperations::readPropertyMultipleAnswer(run(device, r), request, ack);
}

Outcome Gateway::writeProperty(uint32_t device, const BACnetObjectPropertyReference& what,
                               const TQ::Utility::OctetBuffer& value, uint8_t priority) {
    const Net::Request r = DeviceOperations::writePropertyRequest(what, value, priority);
    if (!r.ok()) return failed(r.why);
    const Outcome o = DeviceOperations::writePropertyAnswer(run(device, r));
    if (o.ok()) {
        // The stored value no longer tells what the device holds.
        const int row = _store.propertyRow(device, what.getObjectIdentifier(), what.getPropertyIdentifier());
        ValueContainer fresh;
        if (row >= 0 && readProperty(device, BACnetObjectPropertyReference(what.getObjectIdentifier(),
                                                                          what.getPropertyIdentifier(),
                                                                          BACNET_ARRAY_ALL),
                                     fresh, false)
                            .ok())
            _store.update(row, fresh);
    }
    return o;
}

Outcome Gateway::readRange(uint32_t device, const ReadRange& request, ReadRangeAck& ack) {
    const Net::Request r = DeviceOperations::readRangeRequest(request);
    if (!r.ok()) return failed(r.why);
    return DeviceOperations::readRangeAnswer(run(device, r), request, ack);
}

bool Gateway::readObjects(uint32_t device, std::vector<Store::FoundObject>& objects) {
    return DeviceOperations::readObjects(
               device, {PROP_OBJECT_NAME, PROP_PRESENT_VALUE},
               [this, device](const BACnetObjectPropertyReference& what, ValueContainer& value) {
                   return readProperty(device, what, value, false);
               },
               [this, device](const ReadPropertyMultiple& request, ReadPropertyMultipleAck& ack) {
                   return readPropertyMultiple(device, request, ack);
               },
               objects)
        .ok();
}

std::vector<uint32_t> Gateway::discover() {
    std::vector<uint32_t> found;
    for (const Net::IAm& iam : _port.discover(_config.discoverMs).get()) {
        found.push_back(iam.deviceInstance);
        std::vector<Store::FoundObject> objects;
        try {
            if (readObjects(iam.deviceInstance, objects)) _store.storeDevice(iam.deviceInstance, objects);
        } catch (const Poco::Exception& e) {
            std::cerr << "device " << iam.deviceInstance << ": objects not read: " << e.displayText() << std::endl;
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
