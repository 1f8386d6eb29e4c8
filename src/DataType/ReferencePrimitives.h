#pragma once

// Helpers shared by the reference types: conversions between the codec's object-id record and
// the packed identifier, and the walk over chains of decoded primitives.

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "tq_stack/values.h"

#include <vector>

namespace TQ {
namespace BACnet {
namespace DataType {
namespace ReferencePrimitives {

inline void setObjectId(BACNET_OBJECT_ID& out, ObjectIdentifier id) {
    out.type = static_cast<uint16_t>(id.getObjectType());
    out.instance = id.getInstance();
}

/// Packs without masking the type, so the codec's all-ones "no device" packs to all ones.
inline ObjectIdentifier toObjectIdentifier(const BACNET_OBJECT_ID& id) {
    return ObjectIdentifier(
        ObjectIdentifier::createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(id.type), id.instance));
}

inline const DataApplicationValue* nextOf(const DataApplicationValue* value) {
    return static_cast<const DataApplicationValue*>(value->next);
}

inline bool isContextElement(const DataApplicationValue* value, unsigned contextTag,
                             BACNET_APPLICATION_TAG tag) {
    return value != nullptr && value->context_specific && value->context_tag == contextTag &&
           value->tag == tag;
}

/// A member under context tag `contextTag` of application type `tag`; an application-tagged
/// primitive of that type is taken too (values built by hand carry no context tags).
inline bool isMember(const DataApplicationValue* value, unsigned contextTag, BACNET_APPLICATION_TAG tag) {
    return value != nullptr && value->tag == tag && (!value->context_specific || value->context_tag == contextTag);
}

/// "No device" as the reference classes hold it: type 0, instance 0. The codec's own marker
/// (all ones) and any other type that is not a device read the same way (`hasDevice`).
inline void clearDevice(BACNET_OBJECT_ID& device) {
    device.type = 0;
    device.instance = 0;
}

/// Appends `value` as the member under context tag `contextTag`.
inline void appendContext(std::vector<DataApplicationValue>& out, unsigned contextTag,
                          DataApplicationValue value) {
    value.context_specific = true;
    value.context_tag = static_cast<uint8_t>(contextTag);
    out.push_back(value);
}

inline void appendObjectId(std::vector<DataApplicationValue>& out, unsigned contextTag, ObjectIdentifier id) {
    DataApplicationValue value;
    value.setObjectIdentifier(id);
    appendContext(out, contextTag, value);
}

inline void appendEnumerated(std::vector<DataApplicationValue>& out, unsigned contextTag, unsigned number) {
    DataApplicationValue value;
    value.setEnum(number);
    appendContext(out, contextTag, value);
}

inline void appendUnsigned(std::vector<DataApplicationValue>& out, unsigned contextTag, unsigned number) {
    DataApplicationValue value;
    value.setUInt(number);
    appendContext(out, contextTag, value);
}

}  // namespace ReferencePrimitives
}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
