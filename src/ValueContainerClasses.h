// Which classes a value container holds constructed values in: the class a data type decodes
// into, the class a chain of primitives builds, and the dispatch over what is actually held.
#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/BACnetAddressBinding.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/DataType/BACnetRecipient.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/ReadAccessSpecification.h"

#include <Poco/Any.h>

#include <typeinfo>
#include <vector>

namespace TQ {
namespace BACnet {
namespace ContainerClasses {

/// Stands for the class T in a generic callable.
template <class T>
struct Class {
    using type = T;
};

/// Calls `f` with Class<T> for the class that holds values of `datatype`; every constructed
/// type without a class of its own is held as its encoding (DataType::ANY).
template <class F>
decltype(auto) withClass(BACnetDataType datatype, F&& f) {
    switch (datatype) {
        case BACNET_DT_DATE_TIME:
            return f(Class<DataType::BACnetDateTime>());
        case BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE:
            return f(Class<DataType::BACnetDeviceObjectPropertyReference>());
        case BACNET_DT_DEVICE_OBJECT_REFERENCE:
            return f(Class<DataType::BACnetDeviceObjectReference>());
        case BACNET_DT_LOG_RECORD:
            return f(Class<DataType::BACnetLogRecord>());
        case BACNET_DT_OBJECT_PROPERTY_REFERENCE:
            return f(Class<DataType::BACnetObjectPropertyReference>());
        case BACNET_DT_RECIPIENT:
            return f(Class<DataType::BACnetRecipient>());
        case BACNET_DT_TREND_LOG_LAST_UPLOADED:
            return f(Class<DataType::Proprietary::Vendor947::BACnetTrendLogLastUploaded>());
        default:
            return f(Class<DataType::ANY>());
    }
}

/// Calls `f` with Class<T> for the class whose values a chain of decoded primitives of
/// `datatype` builds (each class's constructor from descriptor, primitive and cursor); false
/// without calling `f` for any other data type.
template <class F>
bool withPrimitiveClass(BACnetDataType datatype, F&& f) {
    using namespace DataType;
    switch (datatype) {
        case BACNET_DT_ADDRESS_BINDING: return f(Class<BACnetAddressBinding>());
        case BACNET_DT_DATE_TIME: return f(Class<BACnetDateTime>());
        case BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE: return f(Class<BACnetDeviceObjectPropertyReference>());
        case BACNET_DT_LOG_RECORD: return f(Class<BACnetLogRecord>());
        case BACNET_DT_OBJECT_PROPERTY_REFERENCE: return f(Class<BACnetObjectPropertyReference>());
        case BACNET_DT_RECIPIENT: return f(Class<BACnetRecipient>());
        case BACNET_DT_READ_ACCESS_RESULT: return f(Class<ReadAccessResult>());
        case BACNET_DT_READ_ACCESS_SPECIFICATION: return f(Class<ReadAccessSpecification>());
        case BACNET_DT_ADDRESS: return f(Class<BACnetAddress>());
        case BACNET_DT_PROPERTY_REFERENCE: return f(Class<BACnetPropertyReference>());
        case BACNET_DT_PROPERTY_VALUE: return f(Class<BACnetPropertyValue>());
        case BACNET_DT_ERROR: return f(Class<Error>());
        default: return false;
    }
}

template <class... T>
struct ClassList {};

/// Every class a container may hold a constructed value in; ANY last, the fallback.
using HeldClasses = ClassList<DataType::BACnetDateTime, DataType::BACnetDeviceObjectPropertyReference,
                              DataType::BACnetDeviceObjectReference, DataType::BACnetLogRecord,
                              DataType::BACnetObjectPropertyReference, DataType::BACnetRecipient,
                              DataType::Proprietary::Vendor947::BACnetTrendLogLastUploaded,
                              DataType::BACnetAddressBinding, DataType::ReadAccessResult,
                              DataType::ReadAccessSpecification, DataType::BACnetAddress,
                              DataType::BACnetPropertyReference, DataType::BACnetPropertyValue,
                              DataType::Error, DataType::ANY>;

template <class F, class T, class... Rest>
decltype(auto) dispatchHeld(const std::type_info& held, F& f, ClassList<T, Rest...>) {
    if constexpr (sizeof...(Rest) == 0) {
        return f(Class<T>());
    } else {
        if (held == typeid(T) || held == typeid(std::vector<T>)) return f(Class<T>());
        return dispatchHeld(held, f, ClassList<Rest...>());
    }
}

/// Calls `f` with Class<T> for the class of the constructed object(s) `value` holds, whichever
/// way they got there (decoded, built from primitives, merged); DataType::ANY when it holds none
/// of them, whose access then fails as any wrong cast does.
template <class F>
decltype(auto) withHeldClass(const Poco::Any& value, F&& f) {
    return dispatchHeld(value.type(), f, HeldClasses());
}

}  // namespace ContainerClasses
}  // namespace BACnet
}  // namespace TQ
