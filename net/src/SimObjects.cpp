#include "TQ_BACnet/Net/SimObjects.h"

#include "tq_stack/codec.h"
#include "tq_stack/strings.h"

#include <algorithm>
#include <functional>
#include <string>

namespace TQ {
namespace BACnet {
namespace Net {

namespace {

constexpr std::size_t kMaxObjects = 100000;
constexpr uint8_t kDefaultPriority = 16;
constexpr uint8_t kNullValue = 0x00;  // application-tagged NULL

uint64_t keyOf(uint32_t type, uint32_t instance) { return uint64_t(type) << 32 | instance; }

Encoded encoded(const std::function<int(uint8_t*)>& encode) {
    Encoded e(size_t(encode(nullptr)));
    encode(e.data());
    return e;
}
Encoded realValue(float v) { return encoded([v](uint8_t* p) { return encode_application_real(p, v); }); }
Encoded unsignedValue(uint32_t v) { return encoded([v](uint8_t* p) { return encode_application_unsigned(p, v); }); }
Encoded enumValue(uint32_t v) { return encoded([v](uint8_t* p) { return encode_application_enumerated(p, v); }); }
Encoded boolValue(bool v) { return encoded([v](uint8_t* p) { return encode_application_boolean(p, v); }); }
Encoded objectIdValue(uint32_t t, uint32_t i) {
    return encoded([t, i](uint8_t* p) { return encode_application_object_id(p, t, i); });
}
Encoded textValue(const std::string& text) {
    BACNET_CHARACTER_STRING s;
    characterstring_init_ansi(&s, text.c_str());
    return encoded([&s](uint8_t* p) { return encode_application_character_string(p, &s); });
}
// Bits set by number; `count` bits in all.
Encoded bitsValue(uint8_t count, std::initializer_list<uint8_t> set) {
    BACNET_BIT_STRING b;
    bitstring_init(&b);
    for (uint8_t i = 0; i < count; ++i) bitstring_set_bit(&b, i, false);
    for (uint8_t bit : set) bitstring_set_bit(&b, bit, true);
    return encoded([&b](uint8_t* p) { return encode_application_bitstring(p, &b); });
}
Encoded dateValue(uint16_t y, uint8_t m, uint8_t d) {
    const BACNET_DATE date{y, m, d, 255};
    return encoded([&date](uint8_t* p) { return encode_application_date(p, &date); });
}
Encoded timeValue(uint8_t h, uint8_t m) {
    const BACNET_TIME time{h, m, 0, 0};
    return encoded([&time](uint8_t* p) { return encode_application_time(p, &time); });
}
Encoded concat(std::initializer_list<Encoded> pieces) {
    Encoded all;
    for (const Encoded& e : pieces) all.insert(all.end(), e.begin(), e.end());
    return all;
}
Encoded tag(bool open, uint8_t number) {
    return encoded([open, number](uint8_t* p) { return open ? encode_opening_tag(p, number) : encode_closing_tag(p, number); });
}

SimProperty single(Encoded value, bool writable = false) { return SimProperty{false, writable, {std::move(value)}}; }

// The application tag of an encoded value, and whether the bytes are exactly one primitive.
bool onePrimitive(const uint8_t* value, unsigned length, uint8_t& tagNumber) {
    BACNET_TAG t;
    const int h = bacnet_tag_decode(value, length, &t);
    if (h <= 0 || !t.application) return false;
    tagNumber = t.number;
    const uint32_t content = t.number == BACNET_APPLICATION_TAG_BOOLEAN ? 0 : t.len_value_type;
    return uint32_t(h) + content == length;
}

}  // namespace

SimObjects::SimObjects(uint32_t deviceInstance, const std::string& name) : _device(deviceInstance) {
    SimObject& d = add(OBJECT_DEVICE, deviceInstance, name);
    auto& p = d.properties;
    p[PROP_SYSTEM_STATUS] = single(enumValue(0));
    p[PROP_VENDOR_NAME] = single(textValue("TQ"));
    p[PROP_VENDOR_IDENTIFIER] = single(unsignedValue(947));
    p[PROP_MODEL_NAME] = single(textValue("tq-sim-device"));
    p[PROP_FIRMWARE_REVISION] = single(textValue("1.0"));
    p[PROP_APPLICATION_SOFTWARE_VERSION] = single(textValue("1.0"));
    p[PROP_PROTOCOL_VERSION] = single(unsignedValue(1));
    p[PROP_PROTOCOL_REVISION] = single(unsignedValue(22));
    // Bits of BACnetServicesSupported: SubscribeCOV, CreateObject, DeleteObject, ReadProperty,
    // ReadPropertyMultiple, WriteProperty, I-Am, Who-Is, ReadRange.
    p[PROP_PROTOCOL_SERVICES_SUPPORTED] = single(bitsValue(49, {5, 10, 11, 12, 14, 15, 26, 34, 35}));
    p[PROP_PROTOCOL_OBJECT_TYPES_SUPPORTED] = single(bitsValue(63, {0, 1, 2, 3, 4, 5, 8, 17, 19, 20}));
    p[PROP_MAX_APDU_LENGTH_ACCEPTED] = single(unsignedValue(MAX_APDU));
    p[PROP_SEGMENTATION_SUPPORTED] = single(enumValue(SEGMENTATION_BOTH));
    p[PROP_APDU_TIMEOUT] = single(unsignedValue(3000));
    p[PROP_NUMBER_OF_APDU_RETRIES] = single(unsignedValue(3));
    p[PROP_DEVICE_ADDRESS_BINDING] = SimProperty{false, false, {Encoded()}};
    p[PROP_DESCRIPTION] = single(textValue("simulated BACnet/IP device"), true);
}

SimObject& SimObjects::add(BACNET_OBJECT_TYPE type, uint32_t instance, const std::string& name) {
    const uint64_t key = keyOf(type, instance);
    SimObject& o = _objects[key];
    o.type = type;
    o.instance = instance;
    o.properties[PROP_OBJECT_IDENTIFIER] = single(objectIdValue(type, instance));
    o.properties[PROP_OBJECT_NAME] = single(textValue(name), true);
    o.properties[PROP_OBJECT_TYPE] = single(enumValue(type));
    _order.push_back(key);
    touch();
    return o;
}

void SimObjects::touch() {
    ++_databaseRevision;
    if (SimObject* d = find(OBJECT_DEVICE, _device))
        d->properties[PROP_DATABASE_REVISION] = single(unsignedValue(_databaseRevision));
}

void SimObjects::addPoint(BACNET_OBJECT_TYPE type, uint32_t instance, const std::string& name, bool commandable) {
    SimObject& o = add(type, instance, name);
    Encoded value;
    switch (type) {
        case OBJECT_BINARY_INPUT:
        case OBJECT_BINARY_OUTPUT:
        case OBJECT_BINARY_VALUE: value = enumValue(0); break;
        case OBJECT_MULTI_STATE_INPUT:
        case OBJECT_MULTI_STATE_OUTPUT:
        case OBJECT_MULTI_STATE_VALUE:
            value = unsignedValue(1);
            o.properties[PROP_NUMBER_OF_STATES] = single(unsignedValue(3));
            break;
        default:
            value = realValue(20.5f + float(instance % 10));
            o.properties[PROP_UNITS] = single(enumValue(62));  // degrees Celsius
    }
    const bool input = type == OBJECT_ANALOG_INPUT || type == OBJECT_BINARY_INPUT || type == OBJECT_MULTI_STATE_INPUT;
    o.properties[PROP_STATUS_FLAGS] = single(bitsValue(4, {}));
    o.properties[PROP_EVENT_STATE] = single(enumValue(0));
    o.properties[PROP_OUT_OF_SERVICE] = single(boolValue(false), true);
    o.properties[PROP_DESCRIPTION] = single(textValue(name), true);
    o.commandable = commandable;
    if (commandable) {
        o.properties[PROP_RELINQUISH_DEFAULT] = single(value, true);
        o.properties[PROP_PRIORITY_ARRAY] = SimProperty{true, false, {}};
        o.properties[PROP_PRESENT_VALUE] = SimProperty{false, true, {}};
    } else {
        o.properties[PROP_PRESENT_VALUE] = single(value, !input);
    }
}

void SimObjects::addTrendLog(uint32_t instance, unsigned records) {
    SimObject& o = add(OBJECT_TREND_LOG, instance, "trend log " + std::to_string(instance));
    // One record every 15 minutes from 2024-01-01 00:00 on: timestamp [0], log datum [1] real [2].
    for (unsigned i = 0; i < records; ++i) {
        const unsigned minutes = i * 15;
        const uint8_t day = uint8_t(1 + minutes / 1440), hour = uint8_t(minutes / 60 % 24), minute = uint8_t(minutes % 60);
        o.logBuffer.push_back(concat({tag(true, 0), dateValue(2024, 1, day), timeValue(hour, minute), tag(false, 0),
                                      tag(true, 1), encoded([i](uint8_t* p) { return encode_context_real(p, 2, 20.0f + float(i % 7)); }),
                                      tag(false, 1)}));
        o.logTimes.push_back(uint64_t(2024) << 32 | uint64_t(1) << 24 | uint64_t(day) << 16 | uint64_t(hour) << 8 | minute);
    }
    auto& p = o.properties;
    p[PROP_ENABLE] = single(boolValue(true), true);
    p[PROP_LOG_INTERVAL] = single(unsignedValue(90000));
    p[PROP_BUFFER_SIZE] = single(unsignedValue(records));
    p[PROP_RECORD_COUNT] = single(unsignedValue(records));
    p[PROP_TOTAL_RECORD_COUNT] = single(unsignedValue(records));
    p[PROP_STATUS_FLAGS] = single(bitsValue(4, {}));
    p[PROP_EVENT_STATE] = single(enumValue(0));
    p[PROP_LOG_BUFFER] = SimProperty{true, false, {}};
}

void SimObjects::addSchedule(uint32_t instance) {
    SimObject& o = add(OBJECT_SCHEDULE, instance, "schedule " + std::to_string(instance));
    auto& p = o.properties;
    p[PROP_PRESENT_VALUE] = single(realValue(21.0f));
    p[PROP_SCHEDULE_DEFAULT] = single(realValue(16.0f), true);
    p[PROP_EFFECTIVE_PERIOD] = single(concat({dateValue(2024, 1, 1), dateValue(2155, 255, 255)}));
    p[PROP_PRIORITY_FOR_WRITING] = single(unsignedValue(16));
    p[PROP_STATUS_FLAGS] = single(bitsValue(4, {}));
    p[PROP_OUT_OF_SERVICE] = single(boolValue(false), true);
    // Weekdays 07:00 21 degrees, 18:00 back to the default; weekends the default all day.
    SimProperty weekly{true, false, {}};
    for (int day = 0; day < 7; ++day)
        weekly.elements.push_back(day < 5 ? concat({tag(true, 0), timeValue(7, 0), realValue(21.0f), timeValue(18, 0),
                                                    encoded([](uint8_t* q) { return encode_application_null(q); }), tag(false, 0)})
                                          : concat({tag(true, 0), tag(false, 0)}));
    p[PROP_WEEKLY_SCHEDULE] = weekly;
}

void SimObjects::addDemoSet(unsigned logRecords, unsigned extraAnalogValues) {
    addPoint(OBJECT_ANALOG_INPUT, 1, "outside air temperature", false);
    addPoint(OBJECT_ANALOG_OUTPUT, 1, "supply valve", true);
    addPoint(OBJECT_ANALOG_VALUE, 1, "room setpoint", false);
    addPoint(OBJECT_BINARY_INPUT, 1, "filter alarm", false);
    addPoint(OBJECT_BINARY_VALUE, 1, "fan command", true);
    addPoint(OBJECT_MULTI_STATE_VALUE, 1, "operating mode", false);
    addTrendLog(1, logRecords);
    addSchedule(1);
    for (unsigned i = 0; i < extraAnalogValues; ++i)
        addPoint(OBJECT_ANALOG_VALUE, 100 + i, "value " + std::to_string(100 + i), false);
}

SimObject* SimObjects::find(uint32_t type, uint32_t instance) {
    // The highest device instance addresses whichever device answers.
    constexpr uint32_t kWildcardDevice = 4194303;
    if (type == OBJECT_DEVICE && instance == kWildcardDevice) instance = _device;
    auto found = _objects.find(keyOf(type, instance));
    return found == _objects.end() ? nullptr : &found->second;
}

std::vector<uint32_t> SimObjects::propertyIds(const SimObject& object) const {
    std::vector<uint32_t> ids;
    for (const auto& p : object.properties)
        if (p.first != PROP_LOG_BUFFER) ids.push_back(p.first);
    if (object.type == OBJECT_DEVICE) ids.push_back(PROP_OBJECT_LIST);
    return ids;
}

bool SimObjects::read(uint32_t type, uint32_t instance, uint32_t property, uint32_t index, Encoded& out, Failure& why) {
    SimObject* o = find(type, instance);
    if (!o) return why = {ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT}, false;
    SimProperty computed;
    const SimProperty* p = &computed;
    if (type == OBJECT_DEVICE && property == PROP_OBJECT_LIST) {
        computed.array = true;
        for (uint64_t key : _order) computed.elements.push_back(objectIdValue(uint32_t(key >> 32), uint32_t(key)));
    } else if (o->commandable && property == PROP_PRIORITY_ARRAY) {
        computed.array = true;
        for (const Encoded& slot : o->priority) computed.elements.push_back(slot.empty() ? Encoded{kNullValue} : slot);
    } else if (o->commandable && property == PROP_PRESENT_VALUE) {
        auto active = std::find_if(o->priority.begin(), o->priority.end(), [](const Encoded& e) { return !e.empty(); });
        computed.elements.push_back(active != o->priority.end() ? *active
                                                                 : o->properties[PROP_RELINQUISH_DEFAULT].elements[0]);
    } else if (property == PROP_LOG_BUFFER && type == OBJECT_TREND_LOG) {
        return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_READ_ACCESS_DENIED}, false;
    } else {
        auto found = o->properties.find(property);
        if (found == o->properties.end()) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY}, false;
        p = &found->second;
    }
    out.clear();
    if (index == BACNET_ARRAY_ALL) {
        for (const Encoded& e : p->elements) out.insert(out.end(), e.begin(), e.end());
        return true;
    }
    if (!p->array) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_PROPERTY_IS_NOT_AN_ARRAY}, false;
    if (index == 0) return out = unsignedValue(uint32_t(p->elements.size())), true;
    if (index > p->elements.size()) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_ARRAY_INDEX}, false;
    out = p->elements[index - 1];
    return true;
}

bool SimObjects::write(uint32_t type, uint32_t instance, uint32_t property, uint32_t index, const uint8_t* value,
                       unsigned length, uint8_t priority, Failure& why) {
    SimObject* o = find(type, instance);
    if (!o) return why = {ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT}, false;
    auto found = o->properties.find(property);
    if (found == o->properties.end()) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY}, false;
    SimProperty& p = found->second;
    if (!p.writable) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_WRITE_ACCESS_DENIED}, false;
    if (index != BACNET_ARRAY_ALL) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_PROPERTY_IS_NOT_AN_ARRAY}, false;
    uint8_t tagNumber = 0;
    if (!onePrimitive(value, length, tagNumber)) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE}, false;
    const bool command = o->commandable && property == PROP_PRESENT_VALUE;
    const Encoded& current = command ? o->properties[PROP_RELINQUISH_DEFAULT].elements[0] : p.elements[0];
    Encoded slot(value, value + length);
    if (command && tagNumber == BACNET_APPLICATION_TAG_NULL) {
        slot.clear();  // relinquish
    } else if (uint8_t(current[0] >> 4) != tagNumber) {
        return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE}, false;
    }
    if (property == PROP_PRESENT_VALUE && o->properties.count(PROP_NUMBER_OF_STATES)) {
        uint32_t state = 0, states = 0;
        decode_application_unsigned(value, length, &state);
        decode_application_unsigned(o->properties[PROP_NUMBER_OF_STATES].elements[0].data(),
                                    uint32_t(o->properties[PROP_NUMBER_OF_STATES].elements[0].size()), &states);
        if (state < 1 || state > states) return why = {ERROR_CLASS_PROPERTY, ERROR_CODE_VALUE_OUT_OF_RANGE}, false;
    }
    if (command)
        o->priority[(priority ? priority : kDefaultPriority) - 1] = std::move(slot);
    else
        p.elements[0] = std::move(slot);
    return true;
}

bool SimObjects::create(uint32_t type, uint32_t& instance, Failure& why) {
    if (type != OBJECT_ANALOG_VALUE && type != OBJECT_BINARY_VALUE && type != OBJECT_MULTI_STATE_VALUE)
        return why = {ERROR_CLASS_OBJECT, ERROR_CODE_DYNAMIC_CREATION_NOT_SUPPORTED}, false;
    if (_objects.size() >= kMaxObjects) return why = {ERROR_CLASS_RESOURCES, ERROR_CODE_NO_SPACE_FOR_OBJECT}, false;
    if (instance > BACNET_MAX_INSTANCE) {
        instance = 1;
        while (find(type, instance)) ++instance;
    } else if (find(type, instance)) {
        return why = {ERROR_CLASS_OBJECT, ERROR_CODE_OBJECT_IDENTIFIER_ALREADY_EXISTS}, false;
    }
    addPoint(BACNET_OBJECT_TYPE(type), instance, "object " + std::to_string(instance), false);
    return true;
}

bool SimObjects::remove(uint32_t type, uint32_t instance, Failure& why) {
    if (type == OBJECT_DEVICE) return why = {ERROR_CLASS_OBJECT, ERROR_CODE_OBJECT_DELETION_NOT_PERMITTED}, false;
    if (!_objects.erase(keyOf(type, instance))) return why = {ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT}, false;
    _order.erase(std::find(_order.begin(), _order.end(), keyOf(type, instance)));
    touch();
    return true;
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
