#include "TQ_BACnet/Net/DeviceOperations.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/ReadAccessSpecification.h"
#include "TQ_BACnet/DataWriteProperty.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadProperty.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyAck.h"
#include "TQ_BACnet/Service/ObjectAccess/WriteProperty.h"
#include "TQ_BACnet/Service/RemoteDM/TimeSync.h"
#include "tq_stack/wp.h"

#include <algorithm>
#include <memory>

namespace TQ {
namespace BACnet {
namespace Net {

using TQ::Utility::OctetBuffer;
using namespace Service::ObjectAccess;

namespace {

// The services encode whole APDUs; the client wants the service data after the header of a
// confirmed request (type, segmentation, invoke id, service choice).
constexpr unsigned kRequestHeader = 4;

std::vector<uint8_t> serviceData(const OctetBuffer& apdu, int length) {
    if (length <= int(kRequestHeader)) return {};
    return std::vector<uint8_t>(apdu.data() + kRequestHeader, apdu.data() + length);
}

// The acknowledgement classes check a whole Complex-ACK against their request: give the
// joined service data its header back.
std::vector<uint8_t> complexAck(const Result& r) {
    std::vector<uint8_t> apdu;
    apdu.reserve(3 + r.data.size());
    apdu.push_back(0x30);
    apdu.push_back(0);
    apdu.push_back(r.service);
    apdu.insert(apdu.end(), r.data.begin(), r.data.end());
    return apdu;
}

Outcome undecodable(const DataError& why) {
    Outcome o = Outcome::failed("the answer does not decode: " + why.getString(true));
    o.error = why;
    return o;
}

template <class Ack, class Request>
Outcome decodeAck(const Result& r, const Request& request, Ack& ack) {
    if (r.kind != Result::ComplexAck) return Outcome::of(r);
    const std::vector<uint8_t> apdu = complexAck(r);
    DataError error;
    if (ack.decode(request, apdu.data(), unsigned(apdu.size()), nullptr, &error) < 0) return undecodable(error);
    return Outcome::done();
}

}  // namespace

Outcome Outcome::of(const Result& r) {
    Outcome o;
    switch (r.kind) {
        case Result::SimpleAck:
        case Result::ComplexAck:
            o.kind = Done;
            break;
        case Result::Error:
            o.kind = Error;
            o.error.setError(r.errorClass, r.errorCode);
            break;
        case Result::Reject:
            o.kind = Reject;
            o.error.setError(DataError::REJECT_CLASS, BACNET_ERROR_CODE(r.reason));
            break;
        case Result::Abort:
            o.kind = Abort;
            o.error.setError(DataError::ABORT_CLASS, BACNET_ERROR_CODE(r.reason));
            if (!r.byServer) o.text = "aborted by this side";
            break;
        case Result::Timeout:
            o.kind = Timeout;
            o.text = "no answer within the APDU timeout and its retries";
            break;
        case Result::Failed:
            o.kind = Failed;
            o.text = "the request could not be sent (device unknown or no invoke id free)";
            break;
    }
    return o;
}

std::string Outcome::describe() const {
    switch (kind) {
        case Done:
            return "done";
        case Error:
        case Reject:
        case Abort:
            return error.getString(true) + (text.empty() ? "" : " (" + text + ")");
        case Timeout:
            return "timeout: " + text;
        case Failed:
            break;
    }
    return "failed: " + text;
}

Result DeviceOperations::confirmed(const Target& target, const Request& request) {
    return target.byAddress ? _client.request(target.address, request.service, request.data)
                            : _client.requestDevice(target.instance, request.service, request.data);
}

namespace {

Request made(uint8_t service, const OctetBuffer& apdu, int length, const char* why) {
    Request r;
    r.service = service;
    r.data = serviceData(apdu, length);
    if (r.data.empty()) r.why = why;
    return r;
}

}  // namespace

Request DeviceOperations::readPropertyRequest(const DataType::BACnetObjectPropertyReference& what) {
    OctetBuffer apdu;
    return made(SERVICE_CONFIRMED_READ_PROPERTY, apdu, ReadProperty(what).encode(0, apdu, 0),
                "the request does not encode");
}

Outcome DeviceOperations::readPropertyAnswer(const Result& result, const DataType::BACnetObjectPropertyReference& what,
                                             ValueContainer& value) {
    ReadPropertyAck ack;
    Outcome o = decodeAck(result, ReadProperty(what), ack);
    if (o.ok()) value = std::move(ack.getValue());
    return o;
}

Request DeviceOperations::readPropertyMultipleRequest(const ReadPropertyMultiple& request) {
    OctetBuffer apdu;
    return made(SERVICE_CONFIRMED_READ_PROP_MULTIPLE, apdu, request.encode(0, apdu, 0),
                "the request does not encode (nothing asked, or over one APDU)");
}

Outcome DeviceOperations::readPropertyMultipleAnswer(const Result& result, const ReadPropertyMultiple& request,
                                                     ReadPropertyMultipleAck& ack) {
    return decodeAck(result, request, ack);
}

Request DeviceOperations::writePropertyRequest(const DataType::BACnetObjectPropertyReference& what,
                                               const OctetBuffer& value, uint8_t priority) {
    Request r;
    r.service = SERVICE_CONFIRMED_WRITE_PROPERTY;
    if (value.empty()) {
        r.why = "no value to write";
        return r;
    }
    // The record holds a whole APDU of value bytes: too large for a small controller's stack.
    auto record = std::make_unique<BACNET_WRITE_PROPERTY_DATA>();
    DataWriteProperty write(*record, false);
    if (!write.set(what.getObjectIdentifier().getObjectType(), what.getObjectIdentifier().getInstance(),
                   what.getPropertyIdentifier(), what.getArrayIndex(), value, priority)) {
        r.why = "the value is longer than one APDU allows";
        return r;
    }
    OctetBuffer apdu;
    return made(SERVICE_CONFIRMED_WRITE_PROPERTY, apdu, WriteProperty::encode(write, 0, apdu, 0),
                "the request does not encode (priority above 16?)");
}

Outcome DeviceOperations::writePropertyAnswer(const Result& result) {
    if (result.kind == Result::ComplexAck) return Outcome::failed("the device answered a write with data");
    return Outcome::of(result);
}

Request DeviceOperations::readRangeRequest(const ReadRange& request) {
    OctetBuffer apdu;
    return made(SERVICE_CONFIRMED_READ_RANGE, apdu, request.encode(0, apdu, 0), "the request does not encode");
}

Outcome DeviceOperations::readRangeAnswer(const Result& result, const ReadRange& request, ReadRangeAck& ack) {
    return decodeAck(result, request, ack);
}

Outcome DeviceOperations::readProperty(const Target& target, const DataType::BACnetObjectPropertyReference& what,
                                       ValueContainer& value) {
    const Request request = readPropertyRequest(what);
    if (!request.ok()) return Outcome::failed(request.why);
    return readPropertyAnswer(confirmed(target, request), what, value);
}

Outcome DeviceOperations::readPropertyMultiple(const Target& target, const ReadPropertyMultiple& request,
                                               ReadPropertyMultipleAck& ack) {
    const Request r = readPropertyMultipleRequest(request);
    if (!r.ok()) return Outcome::failed(r.why);
    return readPropertyMultipleAnswer(confirmed(target, r), request, ack);
}

Outcome DeviceOperations::writeProperty(const Target& target, const DataType::BACnetObjectPropertyReference& what,
                                        const OctetBuffer& value, uint8_t priority) {
    const Request r = writePropertyRequest(what, value, priority);
    if (!r.ok()) return Outcome::failed(r.why);
    return writePropertyAnswer(confirmed(target, r));
}

Outcome DeviceOperations::writeProperty(const Target& target, const DataType::BACnetObjectPropertyReference& what,
                                        const ValueContainer& value, uint8_t priority) {
    OctetBuffer bytes;
    if (value.encode2(bytes) <= 0) return Outcome::failed("the value does not encode");
    return writeProperty(target, what, bytes, priority);
}

Outcome DeviceOperations::readRange(const Target& target, const ReadRange& request, ReadRangeAck& ack) {
    const Request r = readRangeRequest(request);
    if (!r.ok()) return Outcome::failed(r.why);
    return readRangeAnswer(confirmed(target, r), request, ack);
}

std::vector<IAm> DeviceOperations::whoIs(unsigned durationMs, int32_t low, int32_t high) {
    return _client.whoIs(durationMs, low, high);
}

Outcome DeviceOperations::timeSync(const Target* target, Poco::Timestamp moment, bool utc) {
    BACNET_ADDRESS to = Link::localBroadcast();
    if (target && target->byAddress) {
        to = target->address;
    } else if (target && !_client.addressOf(target->instance, to)) {
        // Bind the device first, as a confirmed request would.
        _client.whoIs(_bindMs, int32_t(target->instance), int32_t(target->instance));
        if (!_client.addressOf(target->instance, to)) return Outcome::failed("the device did not answer Who-Is");
    }
    OctetBuffer apdu;
    const int length = Service::RemoteDM::TimeSync(moment, utc).encode(apdu);
    if (length <= 0) return Outcome::failed("the request does not encode");
    if (!_client.link().send(to, apdu.data(), unsigned(length), false)) return Outcome::failed("not sent");
    return Outcome::done();
}

namespace {

/// Objects asked for in one ReadPropertyMultiple: small enough for any device's smallest APDU.
constexpr std::size_t kObjectsPerRequest = 8;

using DataType::BACnetObjectPropertyReference;
using DataType::ObjectIdentifier;

}  // namespace

Outcome DeviceOperations::readObjects(uint32_t device, const std::vector<BACNET_PROPERTY_ID>& properties,
                                      const ReadOne& readOne, const ReadMany& readMany,
                                      std::vector<FoundObject>& objects) {
    const ObjectIdentifier self(OBJECT_DEVICE, device);
    std::vector<ObjectIdentifier> ids;
    ValueContainer list;
    Outcome o = readOne(BACnetObjectPropertyReference(self, PROP_OBJECT_LIST, BACNET_ARRAY_ALL), list);
    if (o.ok()) {
        std::vector<DataApplicationValue> values;
        list.getValues(values);
        for (const auto& v : values)
            if (v.getTag() == BACNET_APPLICATION_TAG_OBJECT_ID) ids.emplace_back(v, nullptr);
    } else {
        // A device that cannot send the whole list (no segmentation): its length, then each element.
        ValueContainer count;
        o = readOne(BACnetObjectPropertyReference(self, PROP_OBJECT_LIST, 0), count);
        if (!o.ok()) return o;
        for (unsigned i = 1; i <= count.getUInt(); ++i) {
            ValueContainer one;
            if (readOne(BACnetObjectPropertyReference(self, PROP_OBJECT_LIST, i), one).ok())
                ids.push_back(one.getObjectIdentifier());
        }
    }
    for (std::size_t first = 0; first < ids.size(); first += kObjectsPerRequest) {
        ReadPropertyMultiple rpm;
        const std::size_t end = std::min(ids.size(), first + kObjectsPerRequest);
        for (std::size_t i = first; i < end; ++i) {
            DataType::ReadAccessSpecification wanted(ids[i]);
            for (BACNET_PROPERTY_ID property : properties)
                wanted.addPropertyReference(DataType::BACnetPropertyReference(property, BACNET_ARRAY_ALL, 0));
            rpm.addRAS(wanted);
        }
        ReadPropertyMultipleAck ack;
        const bool answered = !properties.empty() && readMany(rpm, ack).ok();
        for (std::size_t i = first; i < end; ++i) {
            FoundObject found;
            found.id = ids[i];
            if (answered) {
                const DataType::ReadAccessResult& result = *(ack.beginRAR() + std::ptrdiff_t(i - first));
                for (const auto& value : result.getPropertyValues())
                    if (value.getValue().getDataType() != BACNET_DT_ERROR)
                        found.values.emplace_back(value.getPropertyIdentifier(), value.getValue());
            }
            objects.push_back(std::move(found));
        }
    }
    return Outcome::done();
}

Outcome DeviceOperations::readObjects(const Target& target, uint32_t device,
                                      const std::vector<BACNET_PROPERTY_ID>& properties,
                                      std::vector<FoundObject>& objects) {
    return readObjects(
        device, properties,
        [this, &target](const BACnetObjectPropertyReference& what, ValueContainer& value) {
            return readProperty(target, what, value);
        },
        [this, &target](const ReadPropertyMultiple& request, ReadPropertyMultipleAck& ack) {
            return readPropertyMultiple(target, request, ack);
        },
        objects);
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
