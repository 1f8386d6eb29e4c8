#include "TQ_BACnet/DataType/ANY.h"

#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "tq_stack/codec.h"
#include "tq_stack/config.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/rpm.h"

#include <cstring>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

// The extent of the tagged values at the start of `apdu`: every opening tag closed, every
// content inside the bytes. Stops before a closing tag that belongs to an enclosing construct.
int balancedLength(const uint8_t* apdu, unsigned length) {
    unsigned position = 0;
    unsigned depth = 0;
    uint8_t open[BACNET_MAX_NESTING_DEPTH];  // the tag number each open construct must close with
    while (position < length) {
        BACNET_TAG tag;
        const int header = bacnet_tag_decode(apdu + position, length - position, &tag);
        if (header <= 0) return -1;
        if (tag.closing && depth == 0) break;
        position += static_cast<unsigned>(header);
        if (tag.opening) {
            if (depth == BACNET_MAX_NESTING_DEPTH) return -1;
            open[depth++] = tag.number;
        } else if (tag.closing) {
            if (open[--depth] != tag.number) return -1;
        } else if (!(tag.application && tag.number == BACNET_APPLICATION_TAG_BOOLEAN)) {
            position += tag.len_value_type;  // checked against the length by the tag decoder
        }
    }
    return depth == 0 ? static_cast<int>(position) : -1;
}

}  // namespace

ANY::ANY(const DataPropertyInObject0& descriptor, const PropertyRef& ref, const uint8_t* bytes,
         unsigned length)
    : _value(bytes, length), _descriptor(descriptor), _ref(ref) {}

ANY::ANY(const DataPropertyInObject0& descriptor, const PropertyRef& ref,
         const TQ::Utility::OctetBuffer& bytes)
    : _value(bytes), _descriptor(descriptor), _ref(ref) {}

ANY::ANY(const DataPropertyInObject0& descriptor, const uint8_t* bytes, unsigned length)
    : ANY(descriptor, PropertyRef(), bytes, length) {}

ANY::ANY(const DataPropertyInObject0& descriptor, const TQ::Utility::OctetBuffer& bytes)
    : ANY(descriptor, PropertyRef(), bytes) {}

ANY::ANY(const DataPropertyInObject0&, const DataApplicationValue&, const DataApplicationValue**) {}

void ANY::setTypeAndValue(const DataPropertyInObject0& descriptor, const uint8_t* bytes, unsigned length) {
    _descriptor = descriptor;
    _value.assign(bytes, length);
}

const uint8_t* ANY::getValue(unsigned* length) const {
    if (length != nullptr) *length = static_cast<unsigned>(_value.size());
    return _value.empty() ? nullptr : _value.data();
}

int ANY::encode(uint8_t* apdu) const {
    if (_value.empty() || _value.size() > MAX_DECODE_LENGTH) return -1;
    if (apdu != nullptr) std::memcpy(apdu, _value.data(), _value.size());
    return static_cast<int>(_value.size());
}

int ANY::decode(const uint8_t*) {
    return -1;
}

int ANY::decode(const uint8_t* apdu, unsigned length) {
    if (apdu == nullptr) return -1;
    const int extent = balancedLength(apdu, length);
    if (extent <= 0) return -1;
    _value.assign(apdu, static_cast<size_t>(extent));
    return extent;
}

void ANY::getBACnetPrimitives(std::vector<DataApplicationValue>&) const {}

void ANY::getString(std::string& out) const {
    _value.getHexString(out, false);
}

int ANY::getValueLength() const {
    BACnet_Datatype_By_Context_Tag* guide = new BACnet_Datatype_By_Context_Tag;
    init_bacnet_datatype_by_context_tag(guide, static_cast<int>(_descriptor.datatype));
    BACNET_READ_ACCESS_DATA data;
    std::memset(&data, 0, sizeof data);
    // The guide reads the catalogue, which may throw: nothing decoded so far may leak then.
    const auto release = [&] {
        free_BACNET_READ_ACCESS_DATA_Internals(&data);
        Entity::BnDataTypeConstruct::deleteBdbct(&guide);
    };
    int result;
    try {
        result = bacapp_fully_decode_value(_value.data(), static_cast<uint32_t>(_value.size()), OBJECT_DEVICE,
                                           0, _ref.property, static_cast<uint32_t>(_ref.arrayIndex), guide,
                                           &Entity::BnDataTypeConstruct::get_datatype_by_context, &data);
    } catch (...) {
        release();
        throw;
    }
    const bool noValue =
        result >= 0 && (data.listOfProperties == nullptr || data.listOfProperties->value == nullptr);
    release();
    return noValue ? -202 : result;
}

bool ANY::operator==(const ANY& other) const {
    return _descriptor == other._descriptor && _value == other._value;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
