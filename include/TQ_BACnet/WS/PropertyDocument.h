#pragma once

#include <string>

namespace TQ {
namespace BACnet {
class ValueContainer;
namespace DataType {
class ReadAccessResult;
}
namespace WS {

class MarkupFactory;
class MarkupOptions;

/// Read results as response bodies. A single primitive is one markup; an array or list of
/// primitives a collection of elements named 1, 2, ...; a constructed value of any type renders
/// from its encoding through the catalogue walk.
class PropertyDocument {
public:
    /// `value` as the whole document under `name`, every markup it opened closed. False when it
    /// could be shown only in part (the factory's lastErrorCode and lastErrorText say why).
    static bool write(MarkupFactory& factory, const ValueContainer& value, const std::string& name);
    /// `value` under `name`, as the root or inside an open markup. False as `write`.
    static bool value(MarkupFactory& factory, const ValueContainer& value, const std::string& name, bool root);
    /// One object of a ReadPropertyMultiple result: its properties' values, and for a property
    /// the device refused, the error text behind the options' error prefix (or their error string).
    static void object(MarkupFactory& factory, const DataType::ReadAccessResult& result,
                       const MarkupOptions& options, bool root);
    /// What a property's place shows when it could not be read.
    static void failed(MarkupFactory& factory, const std::string& name, const std::string& text,
                       const MarkupOptions& options);

    PropertyDocument() = delete;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
