#pragma once

#include <string>

namespace TQ {
namespace BACnet {
class ValueContainer;
namespace WS {

class MarkupFactory;

/// A property value as the whole body of a response: the value is the document's root. A single
/// primitive is one root markup; anything else (arrays, lists, constructed values of any type)
/// renders from its encoding through the catalogue walk, arrays and lists element by element.
class PropertyDocument {
public:
    /// Writes `value` under `name` and closes every markup it opened. False when the value could
    /// be shown only in part (the factory's lastErrorCode and lastErrorText say why).
    static bool write(MarkupFactory& factory, const ValueContainer& value, const std::string& name);

    PropertyDocument() = delete;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
