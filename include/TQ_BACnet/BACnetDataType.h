#pragma once

#include <cstdint>

namespace TQ {
namespace BACnet {

/// The gateway's number of a data type, the key of bn_datatype. Values 0 to 15 are the
/// application tags; everything above BACNET_DT_MAX_APPLICATION_TAG is a catalogue type. The
/// numbers named here are the ones the library itself relies on; they must match the catalogue.
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

    BACNET_DT_ANY = 1000,  ///< ABSTRACT-SYNTAX.&Type: the type is only known at run time

    // Catalogue types whose primitive form is Unsigned, Signed, Date or Time.
    BACNET_DT_UNSIGNED_1006 = 1006,
    BACNET_DT_UNSIGNED_1085 = 1085,
    BACNET_DT_UNSIGNED_1086 = 1086,
    BACNET_DT_UNSIGNED_1087 = 1087,
    BACNET_DT_UNSIGNED_1088 = 1088,
    BACNET_DT_UNSIGNED_1176 = 1176,
    BACNET_DT_SIGNED_1113 = 1113,
    BACNET_DT_SIGNED_1178 = 1178,
    BACNET_DT_DATE_1179 = 1179,
    BACNET_DT_TIME_1180 = 1180,

    BACNET_DT_ADDRESS_BINDING = 1011,
    BACNET_DT_DATE_TIME = 1026,
    BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE = 1028,
    BACNET_DT_DEVICE_OBJECT_REFERENCE = 1029,
    BACNET_DT_LOG_MULTIPLE_RECORD = 1053,
    BACNET_DT_LOG_RECORD = 1054,
    BACNET_DT_OBJECT_PROPERTY_REFERENCE = 1060,
    BACNET_DT_RECIPIENT = 1070,
    BACNET_DT_READ_ACCESS_RESULT = 1083,
    BACNET_DT_READ_ACCESS_SPECIFICATION = 1084,
    BACNET_DT_OBJECT_TYPE = 1100,
    BACNET_DT_ADDRESS = 1105,
    BACNET_DT_PROPERTY_REFERENCE = 1127,
    BACNET_DT_PROPERTY_VALUE = 1129,
    BACNET_DT_ERROR = 1136,
    BACNET_DT_ABORT_REASON = 1148,
    BACNET_DT_REJECT_REASON = 1149,

    BACNET_DT_NOT_FOUND = 1999,  ///< result of a failed lookup by name
    BACNET_DT_UNKNOWN = 2000,    ///< a property or member for which no data type is known

    BACNET_DT_PROPRIETARY_MIN = 3000,  ///< 3000..3999: proprietary types of vendor 947
    BACNET_DT_TREND_LOG_LAST_UPLOADED = 3513,
    BACNET_DT_PROPRIETARY_MAX = 3999,

    BACNET_DT_PROPERTY_DESCRIPTOR = 10000  ///< DataPropertyInObject0 itself as a constructed type
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
