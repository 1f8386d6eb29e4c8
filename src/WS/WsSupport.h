// Small helpers shared by the web-service sources; not installed.
#pragma once

#include "TQ_BACnet/BACnetDataType.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

namespace TQ {
namespace BACnet {
namespace WS {
namespace WsSupport {

/// The catalogue's priority array: always one value, and an array index is always accepted.
constexpr BACnetDataType kPriorityArray = static_cast<BACnetDataType>(1064);

/// The JSON object a parsed value holds (the parser keeps them behind shared pointers), or null.
inline const Poco::JSON::Object* objectOf(const Poco::Dynamic::Var& value) {
    if (value.type() == typeid(Poco::JSON::Object::Ptr))
        return value.extract<Poco::JSON::Object::Ptr>().get();
    if (value.type() == typeid(Poco::JSON::Object)) return &value.extract<Poco::JSON::Object>();
    return nullptr;
}

inline const Poco::JSON::Array* arrayOf(const Poco::Dynamic::Var& value) {
    if (value.type() == typeid(Poco::JSON::Array::Ptr)) return value.extract<Poco::JSON::Array::Ptr>().get();
    if (value.type() == typeid(Poco::JSON::Array)) return &value.extract<Poco::JSON::Array>();
    return nullptr;
}

}  // namespace WsSupport
}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
