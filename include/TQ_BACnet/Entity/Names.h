#pragma once

#include <string>

// Every table and column name the entity classes put into SQL, one constant each. The
// constants are built before any other static object of the library (see src/Entity), so
// column lists and caches made at load time may refer to them.
#define TQ_BACNET_ENTITY_NAMES(X)                                               \
    X(BN_GW, "bn_gw")                                                           \
    X(BN_DEVICE, "bn_device")                                                   \
    X(BN_DEVICE_OBJECT, "bn_device_object")                                     \
    X(BN_DEVICE_OBJECT_PROPERTY, "bn_device_object_property")                   \
    X(BN_DEVICE_OBJECT_PROPERTY_VALUE, "bn_device_object_property_value")       \
    X(BN_PROPERTIES_IN_OBJECT, "bn_properties_in_object")                       \
    X(BN_DATATYPE, "bn_datatype")                                               \
    X(BN_DATATYPE_CONSTRUCT, "bn_datatype_construct")                           \
    X(BN_DATATYPE_ENUM, "bn_datatype_enum")                                     \
    X(BN_WS_ERROR, "bn_ws_error")                                               \
    X(BN_WS_METADATA_QUERY_OPTIONS, "bn_ws_metadata_query_options")             \
    X(BN_MARKUP_TYPE, "bn_markup_type")                                         \
    X(ID_BN_GW, "id_bn_gw")                                                     \
    X(ID_BN_DEVICE, "id_bn_device")                                             \
    X(NAME, "name")                                                             \
    X(DNET, "dnet")                                                             \
    X(ID_DV_BUS, "id_dv_bus")                                                   \
    X(ENABLED, "enabled")                                                       \
    X(LOAD_AUTOCONFIGURED, "load_autoconfigured")                               \
    X(CREATED, "created")                                                       \
    X(ID_DV_CONTROLLER, "id_dv_controller")                                     \
    X(MAX_COMMIT_TIMEOUT_SEC, "max_commit_timeout_sec")                         \
    X(TEMPLATE, "template")                                                     \
    X(ID_BN_DEVICE_OBJECT, "id_bn_device_object")                               \
    X(ID_BN_OBJECT_TYPE, "id_bn_object_type")                                   \
    X(INSTANCE_NR, "instance_nr")                                               \
    X(COV_ENABLED, "cov_enabled")                                               \
    X(ID_BN_DEVICE_OBJECT_PROPERTY, "id_bn_device_object_property")             \
    X(ID_BN_PROPERTY_TYPE, "id_bn_property_type")                               \
    X(ID_BN_PROPERTIES_IN_OBJECT, "id_bn_properties_in_object")                 \
    X(ID_DV_PORT, "id_dv_port")                                                 \
    X(VALUE, "value")                                                           \
    X(POLL_RATE_SEC, "poll_rate_sec")                                           \
    X(ID_BN_DEVICE_OBJECT_PROPERTY_VALUE, "id_bn_device_object_property_value") \
    X(SORT, "sort")                                                             \
    X(OPTIONAL, "optional")                                                     \
    X(EMPTY_ALLOWED, "empty_allowed")                                           \
    X(DEFAULT_VALUE, "default_value")                                           \
    X(ID_BN_DATATYPE, "id_bn_datatype")                                         \
    X(TAG, "tag")                                                               \
    X(TAG_STRUCTURE, "tag_structure")                                           \
    X(LIST_REQUEST_TYPES, "list_request_types")                                 \
    X(DESCRIPTION, "description")                                               \
    X(MANAGED_INTERNALLY, "managed_internally")                                 \
    X(ID_BN_DATATYPE_CONSTRUCT, "id_bn_datatype_construct")                     \
    X(ID_PARENT, "id_parent")                                                   \
    X(ID_BN_DATATYPE_INTERNAL, "id_bn_datatype_internal")                       \
    X(CONTEXT_NR, "context_nr")                                                 \
    X(ID_BN_MARKUP, "id_bn_markup")                                             \
    X(ID_BN_DATATYPE_ENUM, "id_bn_datatype_enum")                               \
    X(ID_BN_WS_ERROR, "id_bn_ws_error")                                         \
    X(HTTP_STATUS, "http_status")                                               \
    X(ERROR_TEXT, "error_text")                                                 \
    X(ID_BN_MARKUP_TYPE, "id_bn_markup_type")                                   \
    X(ID, "id")                                                                 \
    X(CATAGORY_ENUM_VALUE, "catagory_enum_value")                               \
    X(METADATA_ENUM_VALUE, "metadata_enum_value")

namespace TQ {
namespace BACnet {
namespace Entity {
namespace Names {

#define TQ_BACNET_ENTITY_DECLARE_NAME(id, text) extern const std::string id;
TQ_BACNET_ENTITY_NAMES(TQ_BACNET_ENTITY_DECLARE_NAME)
#undef TQ_BACNET_ENTITY_DECLARE_NAME

}  // namespace Names
}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
