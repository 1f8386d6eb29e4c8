// Encoding a ValueContainer back to APDU bytes, for every class it may hold.
#include "TQ_BACnet/ValueContainer.h"

#include "TQ/Utility/LogHelper.h"
#include "TQ/Utility/OctetBuffer.h"
#include "ValueContainerClasses.h"

#include <cstring>
#include <iostream>

namespace TQ {
namespace BACnet {

namespace {

using Buffer = TQ::Utility::OctetBuffer;

void printFailure(const char* what) {
    std::cout << TQ::Utility::LogHelper::timeStamp() << ' ' << what << std::endl;
}

template <class T>
int encodeVector(const std::vector<T>& values, uint8_t* apdu) {
    uint8_t scratch[ValueContainer::MAX_ENCODED];
    int total = 0;
    for (const T& value : values) {
        const int length = value.encode(scratch);
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
int encodeVector2(const std::vector<T>& values, Buffer& buffer) {
    uint8_t scratch[ValueContainer::MAX_ENCODED];
    buffer.clear();
    buffer.reserve(ValueContainer::MAX_ENCODED);
    for (const T& value : values) {
        const int length = value.encode(scratch);
        if (length < 1) {
            printFailure("ValueContainer::encode2T() failure");
            buffer.clear();
            return length;
        }
        buffer.append(scratch, static_cast<size_t>(length));
    }
    return static_cast<int>(buffer.size());
}

template <class T>
int encodeSingle2(const T& value, Buffer& buffer) {
    uint8_t scratch[ValueContainer::MAX_ENCODED];
    const int length = value.encode(scratch);
    if (length < 1) {
        buffer.clear();
        return length;
    }
    buffer.assign(scratch, static_cast<size_t>(length));
    return length;
}

}  // namespace

template <class T>
int ValueContainer::encodeT(uint8_t* apdu) const {
    if (getStructure() == BACNET_DTS_SINGLE_VALUE) return held<T>().encode(apdu);
    return encodeVector(held<std::vector<T>>(), apdu);
}

template <class T>
int ValueContainer::encode2T(TQ::Utility::OctetBuffer& buffer) const {
    if (getStructure() == BACNET_DTS_SINGLE_VALUE) return encodeSingle2(held<T>(), buffer);
    return encodeVector2(held<std::vector<T>>(), buffer);
}

int ValueContainer::encode(uint8_t* apdu) const {
    if (apdu == nullptr) return 0;
    if (isPrimitive()) return encodeT<DataApplicationValue>(apdu);
    return ContainerClasses::withHeldClass(_value,
                                           [&](auto c) { return encodeT<typename decltype(c)::type>(apdu); });
}

int ValueContainer::encode2(TQ::Utility::OctetBuffer& buffer) const {
    if (isPrimitive()) return encode2T<DataApplicationValue>(buffer);
    return ContainerClasses::withHeldClass(
        _value, [&](auto c) { return encode2T<typename decltype(c)::type>(buffer); });
}

int ValueContainer::encodeContext(uint8_t*, uint8_t) const {
    throw Poco::NotImplementedException("ValueContainer::encodeContext()");
}

}  // namespace BACnet
}  // namespace TQ
