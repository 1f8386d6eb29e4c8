#pragma once

#include "TQ_Catalogue/Types.h"

#include <cstdint>

namespace TQ {
namespace BACnet {

/// The gateway's number of a data type, the key of bn_datatype. Values 0 to 15 are the
/// application tags; everything above BACNET_DT_MAX_APPLICATION_TAG is a catalogue type. The
/// numbers named here are the ones the library itself relies on; the catalogue's generated
/// numbers give them.
enum BACnetDataType : uint32_t {
    BACNET_DT_NULL = 0,
    BACNET_DT_BOOLEAN = 1,
    BACNET_DT_UNSIGNED_INT = 2,
    BACNET_DT_SIGNED_INT = 3,
    BACNET_DT_REAL = 4,
    BACNET_DT_DOUBLE = 5,
    BACNET_DT_OCTET_STRING = 6,
    BACNET_DT_CHARACTER_STRING = 7,
    BACNET_DT_BIT_STRING = 8,
    BACNET_DT_ENUMERATED = 9,
    BACNET_DT_DATE = 10,
    BACNET_DT_TIME = 11,
    BACNET_DT_OBJECT_ID = 12,
    BACNET_DT_RESERVE1 = 13,
    BACNET_DT_RESERVE2 = 14,
    BACNET_DT_RESERVE3 = 15,
    BACNET_DT_MAX_APPLICATION_TAG = 16,

    BACNET_DT_ANY = Catalogue::DataType::ABSTRACT_SYNTAX__Type,  ///< ABSTRACT-SYNTAX.&Type: the type is only
                                                                 ///< known at run time

    // Catalogue types whose primitive form is Unsigned, Signed, Date or Time.
    BACNET_DT_UNSIGNED_1006 = Catalogue::DataType::BACnetAccessThreatLevel,
    BACNET_DT_UNSIGNED_1085 = Catalogue::DataType::Unsigned8,
    BACNET_DT_UNSIGNED_1086 = Catalogue::DataType::Unsigned16,
    BACNET_DT_UNSIGNED_1087 = Catalogue::DataType::Unsigned32,
    BACNET_DT_UNSIGNED_1088 = Catalogue::DataType::Unsigned64,
    BACNET_DT_UNSIGNED_1176 = Catalogue::DataType::BACnetArrayIndex,
    BACNET_DT_SIGNED_1113 = Catalogue::DataType::Integer16,
    BACNET_DT_SIGNED_1178 = Catalogue::DataType::Integer32,
    BACNET_DT_DATE_1179 = Catalogue::DataType::DatePattern,
    BACNET_DT_TIME_1180 = Catalogue::DataType::TimePattern,

    BACNET_DT_ADDRESS_BINDING = Catalogue::DataType::BACnetAddressBinding,
    BACNET_DT_DATE_TIME = Catalogue::DataType::BACnetDateTime,
    BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE = Catalogue::DataType::BACnetDeviceObjectPropertyReference,
    BACNET_DT_DEVICE_OBJECT_REFERENCE = Catalogue::DataType::BACnetDeviceObjectReference,
    BACNET_DT_LOG_MULTIPLE_RECORD = Catalogue::DataType::BACnetLogMultipleRecord,
    BACNET_DT_LOG_RECORD = Catalogue::DataType::BACnetLogRecord,
    BACNET_DT_OBJECT_PROPERTY_REFERENCE = Catalogue::DataType::BACnetObjectPropertyReference,
    BACNET_DT_RECIPIENT = Catalogue::DataType::BACnetRecipient,
    BACNET_DT_READ_ACCESS_RESULT = Catalogue::DataType::ReadAccessResult,
    BACNET_DT_READ_ACCESS_SPECIFICATION = Catalogue::DataType::ReadAccessSpecification,
    BACNET_DT_OBJECT_TYPE = Catalogue::DataType::BACnetObjectType,
    BACNET_DT_ADDRESS = Catalogue::DataType::BACnetAddress,
    BACNET_DT_PROPERTY_REFERENCE = Catalogue::DataType::BACnetPropertyReference,
    BACNET_DT_PROPERTY_VALUE = Catalogue::DataType::BACnetPropertyValue,
    BACNET_DT_ERROR = Catalogue::DataType::Error,
    BACNET_DT_ABORT_REASON = Catalogue::DataType::BACnetAbortReason,
    BACNET_DT_REJECT_REASON = Catalogue::DataType::BACnetRejectReason,

    BACNET_DT_NOT_FOUND = 1999,  ///< result of a failed lookup by name
    BACNET_DT_UNKNOWN = 2000,    ///< a property or member for which no data type is known

    BACNET_DT_PROPRIETARY_MIN = 3000,  ///< 3000..3999: proprietary types of vendor 947
    BACNET_DT_TREND_LOG_LAST_UPLOADED = Catalogue::DataType::ProprietaryBACnetTrendLogLastUploaded,
    BACNET_DT_PROPRIETARY_MAX = 3999,

    BACNET_DT_PROPERTY_DESCRIPTOR =
        Catalogue::DataType::DataPropertyInObject  ///< DataPropertyInObject0 itself as a constructed type
};

/// How the values of a property are arranged. Everything but a single value is held as a vector;
/// an array additionally answers array index 0 with its length.
enum BACnetDataTypeStructure : uint32_t {
    BACNET_DTS_SINGLE_VALUE = 0,
    BACNET_DTS_ARRAY = 1,
    BACNET_DTS_LIST = 2
};

}  // namespace BACnet
}  // namespace TQ
