#include "TQ_BACnet/Net/Cov.h"

#include "tq_stack/cov.h"
#include "tq_stack/rp.h"

namespace TQ {
namespace BACnet {
namespace Net {

namespace {

// Values one notification may carry; a device sends two (present value and status flags).
constexpr unsigned kMaxValues = 32;

Request encoded(const BACNET_SUBSCRIBE_COV_DATA& d) {
    Request r;
    r.service = SERVICE_CONFIRMED_SUBSCRIBE_COV;
    const int n = cov_subscribe_encode_service_request(nullptr, &d);
    if (n <= 0) {
        r.why = "the object identifier is out of range";
        return r;
    }
    r.data.resize(std::size_t(n));
    cov_subscribe_encode_service_request(r.data.data(), &d);
    return r;
}

BACNET_SUBSCRIBE_COV_DATA subscription(uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance) {
    BACNET_SUBSCRIBE_COV_DATA d{};
    d.subscriber_process_identifier = processId;
    d.monitored_object_type = type;
    d.monitored_object_instance = instance;
    return d;
}

}  // namespace

const CovValue* CovNotification::find(BACNET_PROPERTY_ID property) const {
    for (const CovValue& v : values)
        if (v.property == property && v.index == BACNET_ARRAY_ALL) return &v;
    return nullptr;
}

Request Cov::subscribeRequest(uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance, bool confirmed,
                              uint32_t lifetimeS) {
    BACNET_SUBSCRIBE_COV_DATA d = subscription(processId, type, instance);
    d.issue_confirmed_notifications = confirmed;
    d.lifetime_present = true;
    d.lifetime = lifetimeS;
    return encoded(d);
}

Request Cov::cancelRequest(uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance) {
    BACNET_SUBSCRIBE_COV_DATA d = subscription(processId, type, instance);
    d.cancellation_request = true;
    return encoded(d);
}

bool Cov::decode(const uint8_t* data, unsigned length, CovNotification& out) {
    BACNET_PROPERTY_VALUE_REF values[kMaxValues];
    BACNET_COV_DATA d{};
    d.values = values;
    d.capacity = kMaxValues;
    if (cov_notify_decode_service_request(data, length, &d) < 0) return false;
    out.processId = d.subscriber_process_identifier;
    out.device = d.initiating_device_instance;
    out.objectType = d.monitored_object_type;
    out.objectInstance = d.monitored_object_instance;
    out.timeRemaining = d.time_remaining;
    out.values.resize(d.count);
    for (unsigned i = 0; i < d.count; ++i) {
        CovValue& v = out.values[i];
        v.property = values[i].property;
        v.index = values[i].array_index;
        v.value.assign(values[i].value, values[i].value + values[i].value_len);
        v.priority = values[i].priority;
    }
    return true;
}

Outcome Cov::value(const CovNotification& n, const CovValue& v, ValueContainer& out) {
    // Dressed as the ReadProperty-ACK of that property, the value takes the path every read takes.
    BACNET_READ_PROPERTY_DATA rp{};
    rp.object_type = n.objectType;
    rp.object_instance = n.objectInstance;
    rp.object_property = v.property;
    rp.array_index = v.index;
    rp.application_data = v.value.data();
    rp.application_data_len = int(v.value.size());
    Result ack;
    ack.kind = Result::ComplexAck;
    ack.service = SERVICE_CONFIRMED_READ_PROPERTY;
    const int length = rp_ack_encode_service_request(nullptr, &rp);
    if (length < 0) return Outcome::failed("the notified value is too long");
    ack.data.resize(std::size_t(length));
    rp_ack_encode_service_request(ack.data.data(), &rp);
    return DeviceOperations::readPropertyAnswer(
        ack, DataType::BACnetObjectPropertyReference(DataType::ObjectIdentifier(n.objectType, n.objectInstance),
                                                     v.property, v.index),
        out);
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
