#include "TQ_BACnet/ValueContainer.h"

#include "TQ/Utility/LboLogSystem.h"
#include "TQ/Utility/Message2.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/Time.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"

#include <Poco/Bugcheck.h>

#include <algorithm>

namespace TQ {
namespace BACnet {

namespace {

using Values = std::vector<DataApplicationValue>;

// Room reserved up front from the first value's size; more values grow the vector as usual, so
// a short first value cannot make a small controller reserve megabytes.
constexpr size_t MAX_VALUES_RESERVED = 64;

// The codec takes any byte for a date or time field; the text form (what is stored and shown)
// has limits. A peer's out-of-range field is refused here rather than thrown later from getText.
bool fieldOk(unsigned value, unsigned max) {
    return value <= max || value == 255;
}

bool printable(const DataApplicationValue& value) {
    if (value.tag == BACNET_APPLICATION_TAG_DATE) {
        return fieldOk(value.type.Date.month, 14) && fieldOk(value.type.Date.day, 34);
    }
    if (value.tag == BACNET_APPLICATION_TAG_TIME) {
        const BACnet_Time& t = value.type.Time;
        return fieldOk(t.hour, 23) && fieldOk(t.min, 59) && fieldOk(t.sec, 59) && fieldOk(t.hundredths, 99);
    }
    return true;
}

// The checks of a decoded value beyond "it has the expected tag"; false with the error set.
bool checkDecoded(DataApplicationValue& value, int consumed, BACNET_APPLICATION_TAG expected,
                  bool emptyAllowed, DataErrorRef& error) {
    value.setNull(value.tag == BACNET_APPLICATION_TAG_NULL);
    if (consumed < 0 || !printable(value)) {
        error.setError(ERROR_CLASS_PROPERTY, ERROR_CODE_VALUE_OUT_OF_RANGE);
        return false;
    }
    if (value.tag == expected && expected != BACNET_APPLICATION_TAG_CHARACTER_STRING) return true;
    return value.validateValueType(value.isNull() ? BACNET_APPLICATION_TAG_NULL : expected, error,
                                   emptyAllowed);
}

// Tags whose decoded values need no check beyond their tag: this is the path of nearly every
// value of every property read, so it stays a few instructions around the codec's inline decoder.
bool plainTag(BACNET_APPLICATION_TAG tag) {
    return tag != BACNET_APPLICATION_TAG_NULL && tag != BACNET_APPLICATION_TAG_CHARACTER_STRING &&
           tag != BACNET_APPLICATION_TAG_DATE && tag != BACNET_APPLICATION_TAG_TIME;
}

// One value of a property, decoded and checked against the descriptor; false with the error set.
// `plain` is plainTag(expected), worked out once per property.
__attribute__((always_inline)) inline bool decodeChecked(const uint8_t* apdu, int length, int position,
                                                         DataApplicationValue& value, int& consumed,
                                                         BACNET_APPLICATION_TAG expected, bool plain,
                                                         bool emptyAllowed, DataErrorRef& error) {
    consumed =
        bacapp_decode_application_data(apdu + position, static_cast<uint32_t>(length - position), &value);
    if (plain && consumed >= 0 && value.tag == expected) {
        value.setNull(false);
        return true;
    }
    return checkDecoded(value, consumed, expected, emptyAllowed, error);
}

}  // namespace

ValueContainer::ValueContainer() : _value(DataApplicationValue()) {}

void ValueContainer::init() {
    _descriptor.init();
    reuse<DataApplicationValue>().init();
}

int ValueContainer::decode(const uint8_t* apdu, int length, unsigned maxValues, BACNET_OBJECT_TYPE objectType,
                           BACNET_PROPERTY_ID property, int arrayIndex, DataErrorRef& error) {
    DataPropertyInObject0 found;
    try {
        if (!DataPropertyInObject0::getValueTypeAndStructure(objectType, property, found, false)) return -1;
    } catch (const Poco::Exception& failure) {
        // The catalogue could not be asked (no session, a broken database): the device cannot
        // tell what the value is, so it fails like any other read, and the container stays as it was.
        TQ::Utility::LboLogSystem::log(TQ::Utility::Message2("src/ValueContainer", failure.displayText(),
                                                              Poco::Message::PRIO_ERROR));
        error.setError(ERROR_CLASS_DEVICE, ERROR_CODE_OPERATIONAL_PROBLEM);
        return -1;
    }
    _descriptor = found;
    return decode(apdu, length, maxValues, arrayIndex, error);
}

int ValueContainer::decode(const uint8_t* apdu, int length, unsigned maxValues,
                           const DataPropertyInObject& descriptor, int arrayIndex, DataErrorRef& error) {
    _descriptor = descriptor;
    return decode(apdu, length, maxValues, arrayIndex, error);
}

int ValueContainer::decode(const uint8_t* apdu, int length, unsigned maxValues, int arrayIndex,
                           DataErrorRef& error) {
    if (length < 0 || (apdu == nullptr && length > 0)) {
        error.setError(ERROR_CLASS_PROPERTY, ERROR_CODE_VALUE_OUT_OF_RANGE);
        return failDecode();
    }
    if (_descriptor.structure == BACNET_DTS_ARRAY && arrayIndex != -1 && maxValues < 2) {
        _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
        if (arrayIndex == 0) {  // the array's length
            _descriptor.datatype = BACNET_DT_UNSIGNED_INT;
            _descriptor.tag = BACNET_APPLICATION_TAG_UNSIGNED_INT;
        }
    }
    if (_descriptor.tag == BACNET_APPLICATION_TAG_NULL && _descriptor.datatype != BACNET_DT_NULL) {
        return decodeConstructed(apdu, length, maxValues, error);
    }
    return decodePrimitives(apdu, length, maxValues, error);
}

int ValueContainer::decodePrimitives(const uint8_t* apdu, int length, unsigned maxValues,
                                     DataErrorRef& error) {
    const auto expected = _descriptor.tag;
    const bool emptyAllowed = _descriptor.emptyAllowed;
    const bool plain = plainTag(expected);
    const auto fail = [this] { return failDecode(); };

    if (length == 0) {
        // An empty array or list: no value, not an error.
        reuse<Values>().clear();
        if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) _descriptor.structure = BACNET_DTS_ARRAY;
        return 0;
    }
    int consumed = 0;
    Values* vector = nullptr;
    if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) {
        // The first value goes straight into the held single value when there is one (a property
        // read again), else onto the stack; only when more values follow is it copied, into the
        // vector. A failed type match costs a string compare, so arrays do not ask.
        DataApplicationValue* heldSingle = Poco::AnyCast<DataApplicationValue>(&_value);
        DataApplicationValue local;
        DataApplicationValue& decoded = heldSingle ? *heldSingle : local;
        if (!decodeChecked(apdu, length, 0, decoded, consumed, expected, plain, emptyAllowed, error))
            return fail();
        if (consumed >= length || maxValues == 1) {
            if (!heldSingle) reuse<DataApplicationValue>() = local;
            return consumed;
        }
        // Replacing the held single value by a vector destroys it: keep the first value aside.
        if (heldSingle) local = *heldSingle;
        vector = &reuse<Values>();
        if (vector->empty()) vector->emplace_back();
        (*vector)[0] = local;
    } else {
        // The held vector's elements are decoded over in place (the codec rewrites every field it
        // uses), so a container read again and again neither destroys nor constructs values.
        vector = &reuse<Values>();
        if (vector->empty()) vector->emplace_back();
        if (!decodeChecked(apdu, length, 0, (*vector)[0], consumed, expected, plain, emptyAllowed, error))
            return fail();
    }
    Values& values = *vector;
    // Values of one property are mostly alike, so the first one's size predicts the count.
    const size_t expectedCount =
        std::min<size_t>(static_cast<size_t>(length / consumed) + 1, MAX_VALUES_RESERVED);
    if (values.capacity() < expectedCount) values.reserve(expectedCount);
    int position = consumed;
    size_t count = 1;
    while (position < length && (maxValues == 0 || count < maxValues)) {
        if (count == values.size()) values.emplace_back();
        if (!decodeChecked(apdu, length, position, values[count], consumed, expected, plain, emptyAllowed,
                           error)) {
            return fail();
        }
        position += consumed;
        ++count;
    }
    if (count == 1) {
        // One value of an array or list property: held as a single value.
        const DataApplicationValue only = values[0];
        _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
        reuse<DataApplicationValue>() = only;
        return position;
    }
    values.resize(count);
    if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) _descriptor.structure = BACNET_DTS_ARRAY;
    return position;
}

int ValueContainer::failDecode() {
    // A null single value, described so that no later read expects a class that is not held.
    _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
    if (_descriptor.tag == BACNET_APPLICATION_TAG_NULL) _descriptor.datatype = BACNET_DT_NULL;
    reuse<DataApplicationValue>().init();
    return -1;
}

bool ValueContainer::getBool() const {
    const auto tag = single().tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_BOOLEAN);
    return single().type.Boolean;
}

unsigned ValueContainer::getUInt() const {
    const auto tag = single().tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_UNSIGNED_INT);
    return single().type.Unsigned_Int;
}

unsigned ValueContainer::getEnum() const {
    const auto tag = single().tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT);
    // Both members share the union's first four bytes.
    return tag == BACNET_APPLICATION_TAG_ENUMERATED ? single().type.Enumerated : single().type.Unsigned_Int;
}

int ValueContainer::getInt() const {
    const auto tag = single().tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_SIGNED_INT);
    return single().type.Signed_Int;
}

double ValueContainer::getDouble() const {
    return single().getDouble(false);
}

float ValueContainer::getReal(bool convert) const {
    return single().getReal(convert);
}

void ValueContainer::getOctetString(DataType::OctetString& out) const {
    single().getOctetString(out);
}

void ValueContainer::getCharString(std::string& out) const {
    single().getCharString(out);
}

void ValueContainer::getBitString(DataType::BitString& out) const {
    single().getBitString(out);
}

void ValueContainer::getDate(DataType::Date& out) const {
    const auto tag = single().tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_DATE);
    out = single().type.Date;
}

void ValueContainer::getTime(DataType::Time& out) const {
    const auto tag = single().tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_TIME);
    out = single().type.Time;
}

DataType::ObjectIdentifier ValueContainer::getObjectIdentifier() const {
    const auto tag = single().tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_OBJECT_ID);
    return DataType::ObjectIdentifier(single().type.Object_Id);
}

}  // namespace BACnet
}  // namespace TQ
