// Which class a value container holds a constructed value in: the one table of it.
#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetRecipient.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"

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

}  // namespace ContainerClasses
}  // namespace BACnet
}  // namespace TQ
