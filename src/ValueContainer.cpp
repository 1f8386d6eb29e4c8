#include "TQ_BACnet/ValueContainer.h"

#include "TQ/Utility/LogHelper.h"
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
#include <cstring>
#include <iostream>

namespace TQ {
namespace BACnet {

namespace {

using Values = std::vector<DataApplicationValue>;
using Raw = TQ::Utility::OctetBuffer;

// A sane bound on the values one APDU can carry; guards the reservation below.
constexpr size_t MAX_VALUES_PER_APDU = MAX_APDU;

void printFailure(const char* what) {
    std::cout << TQ::Utility::LogHelper::timeStamp() << ' ' << what << std::endl;
}

int encodeOne(const DataApplicationValue& value, uint8_t* out) {
    return value.encode(out);
}

// The bytes of an undecoded constructed value; refuses what a scratch APDU cannot take.
int encodeOne(const Raw& raw, uint8_t* out) {
    if (raw.size() > static_cast<size_t>(ValueContainer::MAX_ENCODED)) return -1;
    if (!raw.empty()) std::memcpy(out, raw.data(), raw.size());
    return static_cast<int>(raw.size());
}

template <class T>
int encodeVector(const std::vector<T>& values, uint8_t* apdu) {
    uint8_t scratch[ValueContainer::MAX_ENCODED];
    int total = 0;
    for (const T& value : values) {
        const int length = encodeOne(value, scratch);
        if (length < 1) return length;
        if (total + length > ValueContainer::MAX_ENCODED) {
            printFailure("ValueContainer::encodeT() failure");
            return 0;
        }
        std::memcpy(apdu + total, scratch, static_cast<size_t>(length));
        total += length;
    }
    return total;
}

template <class T>
int encodeVector2(const std::vector<T>& values, Raw& buffer) {
    uint8_t scratch[ValueContainer::MAX_ENCODED];
    buffer.clear();
    buffer.reserve(ValueContainer::MAX_ENCODED);
    for (const T& value : values) {
        const int length = encodeOne(value, scratch);
        if (length < 1) {
            printFailure("ValueContainer::encode2T() failure");
            buffer.clear();
            return length;
        }
        buffer.append(scratch, static_cast<size_t>(length));
    }
    return static_cast<int>(buffer.size());
}

// Walks the tags of constructed values without interpreting them: opening and closing tags
// must balance and every tag's content must lie inside the given bytes.
bool wellFormed(const uint8_t* apdu, int length) {
    int position = 0;
    unsigned depth = 0;
    while (position < length) {
        BACNET_TAG tag;
        const int header = bacnet_tag_decode(apdu + position, static_cast<uint32_t>(length - position), &tag);
        if (header <= 0) return false;
        position += header;
        if (tag.opening) {
            if (++depth > BACNET_MAX_NESTING_DEPTH) return false;
        } else if (tag.closing) {
            if (depth == 0) return false;
            --depth;
        } else if (!(tag.application && tag.number == BACNET_APPLICATION_TAG_BOOLEAN)) {
            if (tag.len_value_type > static_cast<uint32_t>(length - position)) return false;
            position += static_cast<int>(tag.len_value_type);
        }
    }
    return depth == 0;
}

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
    DataPropertyInObject0 descriptor;
    if (!DataPropertyInObject0::getValueTypeAndStructure(objectType, property, descriptor, false)) return -1;
    static_cast<DataPropertyInObject0&>(_descriptor) = descriptor;
    return decode(apdu, length, maxValues, arrayIndex, error);
}

int ValueContainer::decode(const uint8_t* apdu, int length, unsigned maxValues,
                           const DataPropertyInObject& descriptor, int arrayIndex, DataErrorRef& error) {
    _descriptor = descriptor;
    return decode(apdu, length, maxValues, arrayIndex, error);
}

int ValueContainer::decode(const uint8_t* apdu, int length, unsigned maxValues, int arrayIndex,
                           DataErrorRef& error) {
    if (_descriptor.structure == BACNET_DTS_ARRAY && arrayIndex != -1 && maxValues < 2) {
        _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
        if (arrayIndex == 0) {  // the array's length
            _descriptor.datatype = BACNET_DT_UNSIGNED_INT;
            _descriptor.tag = BACNET_APPLICATION_TAG_UNSIGNED_INT;
        }
    }
    if (length < 0 || (apdu == nullptr && length > 0)) {
        error.setError(ERROR_CLASS_PROPERTY, ERROR_CODE_VALUE_OUT_OF_RANGE);
        return -1;
    }
    if (_descriptor.tag == BACNET_APPLICATION_TAG_NULL && _descriptor.datatype != BACNET_DT_NULL) {
        return decodeConstructed(apdu, length, error);
    }
    return decodePrimitives(apdu, length, maxValues, error);
}

int ValueContainer::decodePrimitives(const uint8_t* apdu, int length, unsigned maxValues,
                                     DataErrorRef& error) {
    const auto expected = _descriptor.tag;
    const bool emptyAllowed = _descriptor.emptyAllowed;
    const bool plain = plainTag(expected);
    // Decodes one value in place and checks it against the descriptor; false with the error set.
    const auto fail = [&] {
        _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
        reuse<DataApplicationValue>().init();
        return -1;
    };

    if (length == 0) {
        // An empty array or list: no value, not an error.
        reuse<Values>().clear();
        if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) _descriptor.structure = BACNET_DTS_ARRAY;
        return 0;
    }
    // The first value goes straight into the held single value when there is one (a property
    // read again), else onto the stack; only when more values follow is it copied, into the vector.
    // Asked only for single-valued properties: a failed type match costs a string compare.
    DataApplicationValue* heldSingle = _descriptor.structure == BACNET_DTS_SINGLE_VALUE
                                           ? Poco::AnyCast<DataApplicationValue>(&_value)
                                           : nullptr;
    DataApplicationValue local;
    DataApplicationValue& decoded = heldSingle ? *heldSingle : local;
    int consumed = 0;
    if (!decodeChecked(apdu, length, 0, decoded, consumed, expected, plain, emptyAllowed, error))
        return fail();
    int position = consumed;
    if (position >= length || maxValues == 1) {
        _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
        if (!heldSingle) reuse<DataApplicationValue>() = local;
        return position;
    }
    // Replacing the held single value by a vector destroys it: keep the first value aside.
    if (heldSingle) local = *heldSingle;
    const DataApplicationValue& first = local;

    // The held vector's elements are decoded over in place (the codec rewrites every field it
    // uses), so a container read again and again neither destroys nor constructs values.
    Values& values = reuse<Values>();
    // Values of one property are mostly alike, so the first one's size predicts the count.
    const size_t expectedCount =
        std::min<size_t>(static_cast<size_t>(length / consumed) + 1, MAX_VALUES_PER_APDU);
    if (values.capacity() < expectedCount) values.reserve(expectedCount);
    if (values.empty()) values.emplace_back();
    values[0] = first;
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
    values.resize(count);
    if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) _descriptor.structure = BACNET_DTS_ARRAY;
    return position;
}

int ValueContainer::decodeConstructed(const uint8_t* apdu, int length, DataErrorRef& error) {
    if (!wellFormed(apdu, length)) {
        error.setError(ERROR_CLASS_SERVICES, ERROR_CODE_OTHER);
        _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
        reuse<DataApplicationValue>().init();
        return -1;
    }
    if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) {
        reuse<Raw>().assign(apdu, static_cast<size_t>(length));
    } else {
        auto& values = reuse<std::vector<Raw>>();
        values.resize(1);
        values[0].assign(apdu, static_cast<size_t>(length));
    }
    return length;
}

int ValueContainer::encode(uint8_t* apdu) const {
    if (apdu == nullptr) return 0;
    if (isPrimitive()) {
        if (getStructure() == BACNET_DTS_SINGLE_VALUE) return single().encode(apdu);
        return encodeVector(held<Values>(), apdu);
    }
    if (getStructure() == BACNET_DTS_SINGLE_VALUE) return encodeOne(held<Raw>(), apdu);
    return encodeVector(held<std::vector<Raw>>(), apdu);
}

int ValueContainer::encode2(TQ::Utility::OctetBuffer& buffer) const {
    if (!isPrimitive()) {
        if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
            buffer = held<Raw>();
            return static_cast<int>(buffer.size());
        }
        return encodeVector2(held<std::vector<Raw>>(), buffer);
    }
    if (getStructure() != BACNET_DTS_SINGLE_VALUE) return encodeVector2(held<Values>(), buffer);
    uint8_t scratch[MAX_ENCODED];
    const int length = single().encode(scratch);
    if (length < 1) {
        buffer.clear();
        return length;
    }
    buffer.assign(scratch, static_cast<size_t>(length));
    return length;
}

int ValueContainer::encodeContext(uint8_t*, uint8_t) const {
    throw Poco::NotImplementedException("ValueContainer::encodeContext()");
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
