// Constructed values in a ValueContainer: decoding them into their classes, their text and the
// time stamps of logs.
#include "TQ_BACnet/ValueContainer.h"

#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/BACnetLogMultipleRecord.h"
#include "ValueContainerClasses.h"

namespace TQ {
namespace BACnet {

namespace {

// An ANY must know what it holds before it decodes; every other class knows itself.
template <class T>
void prepare(T&, const DataPropertyInObject0&) {}

void prepare(DataType::ANY& any, const DataPropertyInObject0& descriptor) {
    any.setTypeAndValue(descriptor, nullptr, 0);
}

}  // namespace

int ValueContainer::decodeConstructed(const uint8_t* apdu, int length, unsigned maxValues,
                                      DataErrorRef& error) {
    return ContainerClasses::withClass(getDataType(), [&](auto c) {
        return decodeObjects<typename decltype(c)::type>(apdu, length, maxValues, error);
    });
}

template <class T>
int ValueContainer::decodeObjects(const uint8_t* apdu, int length, unsigned maxValues, DataErrorRef& error) {
    const DataPropertyInObject0 described = _descriptor;
    std::vector<T> objects;
    int position = 0;
    while (position < length && (maxValues == 0 || objects.size() < maxValues)) {
        T object;
        prepare(object, described);
        const int consumed = object.decode(apdu + position, static_cast<unsigned>(length - position));
        if (consumed <= 0) {
            // Zero bytes for a value would never end the walk: as malformed as a failure.
            error.setError(ERROR_CLASS_SERVICES, ERROR_CODE_OTHER);
            failDecode();
            return consumed < 0 ? consumed : -1;
        }
        position += consumed;
        objects.push_back(object);
    }
    storeObjects(objects);
    return position;
}

template <class T>
void ValueContainer::lastTimeStampOf(Poco::Timestamp& last) const {
    if (const T* one = Poco::AnyCast<T>(&_value)) {
        last = one->getTimestamp();
    } else if (const auto* many = Poco::AnyCast<std::vector<T>>(&_value)) {
        if (!many->empty()) last = many->back().getTimestamp();
    }
}

Poco::Timestamp ValueContainer::getLastTimeStamp() const {
    Poco::Timestamp last(0);
    if (getDataType() == BACNET_DT_LOG_RECORD) {
        lastTimeStampOf<DataType::BACnetLogRecord>(last);
    } else if (getDataType() == BACNET_DT_LOG_MULTIPLE_RECORD) {
        lastTimeStampOf<DataType::BACnetLogMultipleRecord>(last);
    }
    return last;
}

bool ValueContainer::setConstructedString(const std::string& text) {
    _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
    if (getDataType() == BACNET_DT_DATE_TIME) {
        DataType::BACnetDateTime dateTime;
        if (dateTime.setString(text)) {
            _value = dateTime;
            return true;
        }
    } else if (getDataType() == BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE) {
        DataType::BACnetDeviceObjectPropertyReference reference;
        if (reference.DataType::BACnetComplex::setString(text)) {
            _value = reference;
            return true;
        }
    }
    // A descriptor naming a class with no object of it would fail every later read.
    init();
    return false;
}

bool ValueContainer::getConstructedString(std::string& out) const {
    // Of the constructed types only a date-time is written through its text.
    if (getDataType() != BACNET_DT_DATE_TIME) return false;
    held<DataType::BACnetDateTime>().getString(out);
    return !out.empty();
}

}  // namespace BACnet
}  // namespace TQ
