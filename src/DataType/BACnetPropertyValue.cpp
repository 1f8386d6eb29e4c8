#include "TQ_BACnet/DataType/BACnetPropertyValue.h"

#include "ReferencePrimitives.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "tq_stack/codec.h"

#include <vector>

namespace TQ {
namespace BACnet {
namespace DataType {

using namespace ReferencePrimitives;

namespace {

constexpr uint8_t VALUE_TAG = 2;
constexpr uint8_t PRIORITY_TAG = 3;

}  // namespace

BACnetPropertyValue::BACnetPropertyValue() : BACnetPropertyReference(0u) {}

BACnetPropertyValue::BACnetPropertyValue(const BACnetPropertyReference& reference,
                                         const ValueContainer& value, int priority)
    : BACnetPropertyReference(reference.getPropertyIdentifier(), reference.getArrayIndex(), 0),
      _value(value),
      _priority(priority) {}

BACnetPropertyValue::BACnetPropertyValue(const DataPropertyInObject0& descriptor,
                                         const DataApplicationValue& v, const DataApplicationValue** next)
    : BACnetPropertyReference(0u) {
    const DataApplicationValue* current = nullptr;
    static_cast<BACnetPropertyReference&>(*this) = BACnetPropertyReference(descriptor, v, &current, 0);
    if (current != nullptr) {
        DataApplicationValue single(*current);
        single.next = nullptr;
        _value.setApplicationValue(single, nullptr);
        current = static_cast<const DataApplicationValue*>(current->next);
        if (isMember(current, PRIORITY_TAG, BACNET_APPLICATION_TAG_UNSIGNED_INT)) {
            _priority = static_cast<int>(current->type.Unsigned_Int);
            current = static_cast<const DataApplicationValue*>(current->next);
        }
    }
    if (next) *next = current;
}

BACnetPropertyValue::~BACnetPropertyValue() = default;

int BACnetPropertyValue::encode(uint8_t* apdu) const {
    if (apdu == nullptr) return 0;
    int len = BACnetPropertyReference::encode(apdu);
    if (len < 1) return -1;
    len += encode_opening_tag(apdu + len, VALUE_TAG);
    const int value = _value.encode(apdu + len);
    if (value < 0) return -1;
    len += value;
    len += encode_closing_tag(apdu + len, VALUE_TAG);
    if (hasPriority()) {
        len += encode_context_unsigned(apdu + len, PRIORITY_TAG,
                                       static_cast<BACNET_UNSIGNED_INTEGER>(_priority));
    }
    return len;
}

int BACnetPropertyValue::decode(const uint8_t* apdu, unsigned length) {
    BACnetPropertyReference reference(0u);
    int len = reference.decode(apdu, length);
    if (len < 0) return -1;
    const auto left = [&]() { return length - static_cast<unsigned>(len); };
    if (!decode_is_opening_tag_number(apdu + len, left(), VALUE_TAG)) {
        // A bare reference: what the decoder of the reference alone accepts.
        static_cast<BACnetPropertyReference&>(*this) = reference;
        _value.init();
        _priority = NO_PRIORITY;
        return len;
    }
    const int enclosed = bacnet_enclosed_data_length(apdu + len, left());
    if (enclosed < 0) return -1;
    const uint8_t* content = apdu + len + 1;  // opening tag [2] is one byte
    std::vector<DataApplicationValue> values;
    for (int pos = 0; pos < enclosed;) {
        values.emplace_back();
        const int n = values.back().decode(content + pos, static_cast<unsigned>(enclosed - pos));
        if (n <= 0) return -1;
        pos += n;
    }
    len += enclosed + 2;
    BACNET_UNSIGNED_INTEGER priority = 0;
    const int priorityLen = decode_context_unsigned(apdu + len, left(), PRIORITY_TAG, &priority);
    if (priorityLen < 0) return -1;
    len += priorityLen;

    static_cast<BACnetPropertyReference&>(*this) = reference;
    if (values.empty()) {
        _value.setEmpty();
    } else {
        _value.setApplicationValueLinks(values);
        _value.setApplicationValue(values.front(), nullptr);
    }
    _priority = priorityLen > 0 ? static_cast<int>(priority) : NO_PRIORITY;
    return len;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
