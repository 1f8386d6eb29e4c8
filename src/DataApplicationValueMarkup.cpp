#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {

void DataApplicationValue::markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker,
                                  BACnetDataType dataType, bool root, int /*level*/,
                                  bool bitsAsBooleans) const {
    // Numbers take the writer's short form where it has one; the rest, and every markup with
    // metadata, the general way.
    if (!arrayMarker && !root && factory.markupPrimitive(*this, name)) return;
    bool ok = false;
    std::string text;
    try {
        // Unescaped: the writer escapes the value itself, so escaping here too would show "&amp;lt;".
        text = getText(factory.getUseNames(), dataType, &ok, nullptr, bitsAsBooleans);
    } catch (const Poco::Exception&) {
        ok = false;  // a value off the wire that has no text (a date out of range) still renders
    }
    if (!ok) text = "???";
    const auto baseType =
        static_cast<WS::MarkupFactory::BaseType>(isNull() ? 0u : static_cast<unsigned>(tag));
    // The general entry's other arguments are all empty for a primitive: the lean one will do.
    factory.markupValue(baseType, name, text, arrayMarker, root, getContextTagAsString());
}

}  // namespace BACnet
}  // namespace TQ
