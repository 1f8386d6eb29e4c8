// How primitives get into a ValueContainer: the typed setters and setApplicationValue.
#include "TQ_BACnet/ValueContainer.h"

#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/Time.h"

#include <Poco/Bugcheck.h>

#include <iostream>

namespace TQ {
namespace BACnet {

namespace {

template <class Setter>
DataApplicationValue made(Setter setter) {
    DataApplicationValue value;
    setter(value);
    return value;
}

}  // namespace

ValueContainer::ValueContainer(const DataApplicationValue& value) {
    setApplicationValue(value, nullptr);
}

void ValueContainer::setBool(bool v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setBool(v); }), nullptr);
}
void ValueContainer::setUInt(unsigned v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setUInt(v); }), nullptr);
}
void ValueContainer::setInt(int v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setInt(v); }), nullptr);
}
void ValueContainer::setReal(float v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setReal(v); }), nullptr);
}
void ValueContainer::setDouble(double v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setDouble(v); }), nullptr);
}
void ValueContainer::setOctetString(const DataType::OctetString& v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setOctetString(v); }), nullptr);
}
void ValueContainer::setCharString(const std::string& v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setCharString(v); }), nullptr);
}
void ValueContainer::setBitString(const DataType::BitString& v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setBitString(v); }), nullptr);
}
void ValueContainer::setEnum(unsigned v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setEnum(v); }), nullptr);
}
void ValueContainer::setDate(const DataType::Date& v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setDate(v); }), nullptr);
}
void ValueContainer::setTime(const DataType::Time& v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setTime(v); }), nullptr);
}
void ValueContainer::setObjectIdentifier(DataType::ObjectIdentifier v) {
    setApplicationValue(made([&](DataApplicationValue& x) { x.setObjectIdentifier(v); }), nullptr);
}

void ValueContainer::setApplicationValueLinks(std::vector<DataApplicationValue>& values) const {
    for (size_t i = 0; i + 1 < values.size(); ++i) values[i].next = &values[i + 1];
}

void ValueContainer::storeChain(const DataApplicationValue& first) {
    if (first.next == nullptr) {
        DataApplicationValue& value = reuse<DataApplicationValue>();
        value = first;
        value.next = nullptr;
        return;
    }
    // The held copies are not linked: a copy of the container must never point into another
    // container's values. Callers that need a chain link their own copy (setApplicationValueLinks).
    std::vector<DataApplicationValue>& values = reuse<std::vector<DataApplicationValue>>();
    values.clear();
    for (const auto* v = &first; v != nullptr; v = static_cast<const DataApplicationValue*>(v->next)) {
        values.push_back(*v);
        values.back().next = nullptr;
    }
    if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) _descriptor.structure = BACNET_DTS_ARRAY;
}

void ValueContainer::setApplicationValue(const DataApplicationValue& value,
                                         const DataPropertyInObject* descriptor) {
    const auto valueTag = value.getTag();
    if (descriptor == nullptr) {
        _descriptor.init();
        _descriptor.datatype = static_cast<BACnetDataType>(valueTag);
        _descriptor.tag = valueTag;
        _descriptor.structure = value.next ? BACNET_DTS_ARRAY : BACNET_DTS_SINGLE_VALUE;
        storeChain(value);
        return;
    }
    if (value.next != nullptr) {
        if (descriptor->tag == BACNET_APPLICATION_TAG_NULL) {
            if (trySetConstructedValue(value, *descriptor)) return;
            std::cout << "UNSUPPORTED COMPLEX TYPE! Contact Vandra for eventual data-type support."
                      << std::endl;
            setApplicationValue(value, nullptr);
            return;
        }
        _descriptor = *descriptor;
        storeChain(value);
        return;
    }
    _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
    if (valueTag == BACNET_APPLICATION_TAG_NULL) {
        _descriptor.datatype = BACNET_DT_NULL;
        _descriptor.tag = BACNET_APPLICATION_TAG_NULL;
    } else if (descriptor->tag == valueTag) {
        _descriptor.datatype = descriptor->datatype;
        _descriptor.tag = valueTag;
    } else if (descriptor->tag != BACNET_APPLICATION_TAG_NULL) {
        poco_assert(value.getTag() == BACNET_APPLICATION_TAG_UNSIGNED_INT ||
                    value.getTag() == BACNET_APPLICATION_TAG_BOOLEAN);
        _descriptor.datatype = static_cast<BACnetDataType>(valueTag);
        _descriptor.tag = valueTag;
    } else if (descriptor->datatype == BACNET_DT_ANY && valueTag < MAX_BACNET_APPLICATION_TAG) {
        _descriptor.datatype = static_cast<BACnetDataType>(valueTag);
        _descriptor.tag = valueTag;
    } else {
        // A constructed property answers with a lone Unsigned only for its array length.
        struct TypeAndStruct {
            BACnetDataType type;
        } typeAndStruct{descriptor->datatype};
        const TypeAndStruct* pTypeAndStruct = &typeAndStruct;
        if (value.getTag() != BACNET_APPLICATION_TAG_UNSIGNED_INT) {
            std::cout << "INVALID TAG, CRASH WILL HAPPEN, pTypeAndStruct->type = " << pTypeAndStruct->type
                      << ", value.getTag() = " << value.getTag() << std::endl;
        }
        poco_assert(pTypeAndStruct->type > BACNET_DT_MAX_APPLICATION_TAG);
        poco_assert(value.getTag() == BACNET_APPLICATION_TAG_UNSIGNED_INT ||
                    (pTypeAndStruct->type == BACNET_DT_ANY && value.getTag() < MAX_BACNET_APPLICATION_TAG));
        _descriptor.datatype = BACNET_DT_UNSIGNED_INT;
        _descriptor.tag = BACNET_APPLICATION_TAG_UNSIGNED_INT;
    }
    storeChain(value);
}

}  // namespace BACnet
}  // namespace TQ
