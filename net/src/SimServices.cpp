#include "SimServices.h"

#include "TQ_BACnet/Net/TreeStore.h"

#include "tq_stack/codec.h"
#include "tq_stack/create_object.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm_server.h"
#include "tq_stack/rr.h"
#include "tq_stack/strings.h"
#include "tq_stack/wp.h"

#include <algorithm>
#include <memory>

namespace TQ {
namespace BACnet {
namespace Net {

namespace {

// Room for the items of one ReadRange answer: what is left of one APDU after its other fields.
constexpr unsigned kRangeItemBudget = MAX_APDU - 40;
constexpr unsigned kMaxInitialValues = 32;

Response reject(uint8_t reason) {
    Response r;
    r.kind = Response::Reject;
    r.reason = reason;
    return r;
}

Response error(const Failure& why, Response::Kind kind = Response::Error, uint32_t element = 0) {
    Response r;
    r.kind = kind;
    r.failure = why;
    r.element = element;
    return r;
}

Response simple() {
    Response r;
    r.kind = Response::Simple;
    return r;
}

Response complex(Encoded data) {
    Response r;
    r.kind = Response::Complex;
    r.data = std::move(data);
    return r;
}

template <typename Encode>
void append(Encoded& out, Encode encode) {
    const int n = encode(nullptr);
    if (n <= 0) return;
    const std::size_t at = out.size();
    out.resize(at + std::size_t(n));
    encode(out.data() + at);
}

Response readProperty(SimObjects& objects, const uint8_t* data, unsigned length) {
    BACNET_READ_PROPERTY_DATA rp{};
    if (rp_decode_service_request(data, length, &rp) < 0) return reject(REJECT_REASON_INVALID_TAG);
    Encoded value;
    Failure why;
    if (!objects.read(rp.object_type, rp.object_instance, rp.object_property, rp.array_index, value, why))
        return error(why);
    // Built here rather than by the ReadProperty-ACK encoder: the value may exceed one APDU.
    Encoded ack;
    append(ack, [&](uint8_t* p) { return encode_context_object_id(p, 0, rp.object_type, rp.object_instance); });
    append(ack, [&](uint8_t* p) { return encode_context_enumerated(p, 1, rp.object_property); });
    if (rp.array_index != BACNET_ARRAY_ALL)
        append(ack, [&](uint8_t* p) { return encode_context_unsigned(p, 2, rp.array_index); });
    append(ack, [](uint8_t* p) { return encode_opening_tag(p, 3); });
    ack.insert(ack.end(), value.begin(), value.end());
    append(ack, [](uint8_t* p) { return encode_closing_tag(p, 3); });
    return complex(std::move(ack));
}

bool collect(void* context, const BACNET_RPM_REFERENCE* reference) {
    static_cast<std::vector<BACNET_RPM_REFERENCE>*>(context)->push_back(*reference);
    return true;
}

void rpmResult(SimObjects& objects, const BACNET_RPM_REFERENCE& r, uint32_t property, Encoded& ack) {
    Encoded value;
    Failure why;
    const auto id = BACNET_PROPERTY_ID(property);
    if (objects.read(r.object_type, r.object_instance, property, r.array_index, value, why))
        append(ack, [&](uint8_t* p) {
            return rpm_ack_encode_property_value(p, id, r.array_index, value.data(), uint32_t(value.size()));
        });
    else
        append(ack, [&](uint8_t* p) {
            return rpm_ack_encode_property_error(p, id, r.array_index, why.errorClass, why.errorCode);
        });
}

Response readPropertyMultiple(SimObjects& objects, const uint8_t* data, unsigned length) {
    std::vector<BACNET_RPM_REFERENCE> refs;
    if (rpm_decode_service_request(data, length, collect, &refs) < 0) return reject(REJECT_REASON_INVALID_TAG);
    Encoded ack;
    for (std::size_t i = 0; i < refs.size(); ++i) {
        const BACNET_RPM_REFERENCE& r = refs[i];
        if (r.first_of_object) {
            if (i) append(ack, [](uint8_t* p) { return rpm_ack_encode_object_end(p); });
            append(ack, [&](uint8_t* p) { return rpm_ack_encode_object_begin(p, r.object_type, r.object_instance); });
        }
        const bool group = r.property == PROP_ALL || r.property == PROP_REQUIRED || r.property == PROP_OPTIONAL;
        const SimObject* o = objects.find(r.object_type, r.object_instance);
        if (group && o) {
            for (uint32_t property : objects.propertyIds(*o)) rpmResult(objects, r, property, ack);
        } else {
            rpmResult(objects, r, r.property, ack);
        }
    }
    append(ack, [](uint8_t* p) { return rpm_ack_encode_object_end(p); });
    return complex(std::move(ack));
}

Response writeProperty(SimObjects& objects, const uint8_t* data, unsigned length) {
    auto wp = std::make_unique<BACNET_WRITE_PROPERTY_DATA>();
    const int n = wp_decode_service_request(data, length, wp.get());
    if (n == BACNET_STATUS_REJECT) return reject(REJECT_REASON_PARAMETER_OUT_OF_RANGE);
    if (n < 0) return reject(REJECT_REASON_INVALID_TAG);
    Failure why;
    if (!objects.write(wp->object_type, wp->object_instance, wp->object_property, wp->array_index,
                       wp->application_data, unsigned(wp->application_data_len), wp->priority, why))
        return error(why);
    return simple();
}

// Positions (0-based, first and one past the last) the range selects among `count` items.
void selectRange(const BACNET_READ_RANGE_DATA& rr, const SimObject& log, std::size_t& from, std::size_t& to) {
    const std::size_t count = log.logBuffer.size();
    from = 0;
    to = count;
    if (rr.request_type == RR_READ_ALL) return;
    long reference = 0;
    if (rr.request_type == RR_BY_TIME) {
        const BACNET_DATE& d = rr.range.ref_time.date;
        const BACNET_TIME& t = rr.range.ref_time.time;
        const uint64_t key = uint64_t(d.year) << 32 | uint64_t(d.month) << 24 | uint64_t(d.day) << 16 |
                             uint64_t(t.hour) << 8 | t.min;
        // Items after the time for a positive count, before it for a negative one.
        const auto at = rr.count > 0 ? std::upper_bound(log.logTimes.begin(), log.logTimes.end(), key)
                                     : std::lower_bound(log.logTimes.begin(), log.logTimes.end(), key);
        reference = long(at - log.logTimes.begin()) + (rr.count > 0 ? 1 : 0);
    } else {
        // Positions and sequence numbers both count from 1 here.
        reference = long(rr.request_type == RR_BY_POSITION ? rr.range.ref_index : rr.range.ref_seq_num);
    }
    long first = rr.count >= 0 ? reference : reference + rr.count + 1;
    long last = rr.count >= 0 ? reference + rr.count - 1 : reference;
    first = std::max(first, 1L);
    last = std::min(last, long(count));
    if (first > last) {
        from = to = 0;
        return;
    }
    from = std::size_t(first - 1);
    to = std::size_t(last);
}

Response readRange(SimObjects& objects, const uint8_t* data, unsigned length) {
    BACNET_READ_RANGE_DATA rr{};
    if (rr_decode_service_request(data, length, &rr) < 0) return reject(REJECT_REASON_INVALID_TAG);
    SimObject* o = objects.find(rr.object_type, rr.object_instance);
    if (!o) return error({ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT});
    if (rr.object_type != OBJECT_TREND_LOG || rr.object_property != PROP_LOG_BUFFER)
        return error({ERROR_CLASS_SERVICES, ERROR_CODE_PROPERTY_IS_NOT_A_LIST});
    std::size_t from = 0, to = 0;
    selectRange(rr, *o, from, to);
    Encoded items;
    std::size_t taken = from;
    // Toward the reference first for a backward read, so the newest items make it in.
    if (rr.count < 0) {
        std::size_t start = to;
        unsigned bytes = 0;
        while (start > from && bytes + o->logBuffer[start - 1].size() <= kRangeItemBudget) bytes += unsigned(o->logBuffer[--start].size());
        for (std::size_t i = start; i < to; ++i) items.insert(items.end(), o->logBuffer[i].begin(), o->logBuffer[i].end());
        taken = to;
        rr.item_count = uint32_t(to - start);
        const bool more = start > from;
        from = start;
        bitstring_init(&rr.result_flags);
        bitstring_set_bit(&rr.result_flags, RESULT_FLAG_MORE_ITEMS, more);
    } else {
        while (taken < to && items.size() + o->logBuffer[taken].size() <= kRangeItemBudget) {
            items.insert(items.end(), o->logBuffer[taken].begin(), o->logBuffer[taken].end());
            ++taken;
        }
        rr.item_count = uint32_t(taken - from);
        bitstring_init(&rr.result_flags);
        bitstring_set_bit(&rr.result_flags, RESULT_FLAG_MORE_ITEMS, taken < to);
        to = taken;
    }
    bitstring_set_bit(&rr.result_flags, RESULT_FLAG_FIRST_ITEM, rr.item_count && from == 0);
    bitstring_set_bit(&rr.result_flags, RESULT_FLAG_LAST_ITEM, rr.item_count && to == o->logBuffer.size());
    rr.first_sequence = uint32_t(from + 1);
    rr.application_data = items.data();
    rr.application_data_len = int(items.size());
    Encoded ack;
    append(ack, [&](uint8_t* p) { return rr_ack_encode_service_request(p, &rr); });
    if (ack.empty()) return error({ERROR_CLASS_SERVICES, ERROR_CODE_OTHER});
    return complex(std::move(ack));
}

Response createObject(SimObjects& objects, TreeStore* store, const uint8_t* data, unsigned length) {
    BACNET_PROPERTY_VALUE_REF values[kMaxInitialValues];
    BACNET_CREATE_OBJECT_DATA request{};
    request.values = values;
    request.capacity = kMaxInitialValues;
    const int n = create_object_decode_service_request(data, length, &request);
    if (n == BACNET_STATUS_REJECT) return reject(REJECT_REASON_PARAMETER_OUT_OF_RANGE);
    if (n < 0) return reject(REJECT_REASON_INVALID_TAG);
    uint32_t instance = request.by_identifier ? request.object_instance : BACNET_MAX_INSTANCE + 1;
    Failure why;
    if (!objects.create(request.object_type, instance, why)) return error(why, Response::ErrorWithElement, 0);
    for (unsigned i = 0; i < request.count; ++i) {
        const BACNET_PROPERTY_VALUE_REF& v = values[i];
        if (!objects.write(request.object_type, instance, v.property, v.array_index, v.value, v.value_len, v.priority,
                           why)) {
            Failure ignored;
            objects.remove(request.object_type, instance, ignored);
            return error(why, Response::ErrorWithElement, i + 1);
        }
    }
    if (store && !store->create(request.object_type, instance, values, request.count, why)) {
        Failure ignored;
        objects.remove(request.object_type, instance, ignored);
        return error(why, Response::ErrorWithElement, 0);
    }
    Encoded ack;
    append(ack, [&](uint8_t* p) { return encode_application_object_id(p, request.object_type, instance); });
    return complex(std::move(ack));
}

Response deleteObject(SimObjects& objects, TreeStore* store, const uint8_t* data, unsigned length) {
    BACNET_OBJECT_TYPE type;
    uint32_t instance = 0;
    if (delete_object_decode_service_request(data, length, &type, &instance) < 0)
        return reject(REJECT_REASON_INVALID_TAG);
    Failure why;
    // The objects know which ones exist and which may go; the tree must agree before they change.
    const bool known = objects.find(type, instance) && type != OBJECT_DEVICE;
    if (known && store && !store->remove(type, instance, why)) return error(why);
    if (!objects.remove(type, instance, why)) return error(why);
    return simple();
}

}  // namespace

Response serve(SimObjects& objects, TreeStore* store, uint8_t service, const uint8_t* data, unsigned length) {
    switch (service) {
        case SERVICE_CONFIRMED_READ_PROPERTY: return readProperty(objects, data, length);
        case SERVICE_CONFIRMED_READ_PROP_MULTIPLE: return readPropertyMultiple(objects, data, length);
        case SERVICE_CONFIRMED_WRITE_PROPERTY: return writeProperty(objects, data, length);
        case SERVICE_CONFIRMED_READ_RANGE: return readRange(objects, data, length);
        case SERVICE_CONFIRMED_CREATE_OBJECT: return createObject(objects, store, data, length);
        case SERVICE_CONFIRMED_DELETE_OBJECT: return deleteObject(objects, store, data, length);
        default: return reject(REJECT_REASON_UNRECOGNIZED_SERVICE);
    }
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
