#include "TQ_BACnet/WS/PropertyDocument.h"

#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MarkupOptions.h"
#include "TQ/Utility/OctetBuffer.h"

#include <vector>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

std::string propertyName(BACNET_PROPERTY_ID property) {
    const std::string path = DataType::BACnetPropertyReference::getPath(property, BACNET_ARRAY_ALL);
    return path.empty() ? path : path.substr(1);
}

}  // namespace

bool PropertyDocument::write(MarkupFactory& factory, const ValueContainer& value, const std::string& name) {
    const bool whole = PropertyDocument::value(factory, value, name, true);
    factory.closeAllOpenMarkups();
    return whole;
}

bool PropertyDocument::value(MarkupFactory& factory, const ValueContainer& value, const std::string& name,
                             bool root) {
    const BACnetDataType type = value.getDataType();
    if (type == BACNET_DT_NULL) {
        factory.markup(MarkupFactory::BT_NULL, name, "", true, false, BACNET_DT_NULL, root);
        return true;
    }
    if (!value.isPrimitive()) {
        // Constructed values render from their catalogue definition, whatever class holds them.
        TQ::Utility::OctetBuffer bytes;
        if (value.encode2(bytes) < 0) return false;
        return DataType::ANY(value.getDescriptor(), bytes).markup(factory, name, false, root, -1) == 1;
    }
    std::vector<DataApplicationValue> values;
    value.getValues(values);
    if (value.getStructure() == BACNET_DTS_SINGLE_VALUE && values.size() == 1) {
        values.front().markup(factory, name, false, type, root, -1, true);
        return true;
    }
    const auto collection = value.getStructure() == BACNET_DTS_LIST ? MarkupFactory::BT_LIST : MarkupFactory::BT_ARRAY;
    factory.markup(collection, name, "", false, false, type, root);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i].markup(factory, std::to_string(i + 1), false, type, false, -1, true);
    }
    factory.closeOpenMarkup();
    return true;
}

void PropertyDocument::failed(MarkupFactory& factory, const std::string& name, const std::string& text,
                              const MarkupOptions& options) {
    const std::string shown = options.errorString.empty() ? options.errorPrefix + text : options.errorString;
    factory.markup(MarkupFactory::BT_STRING, name, shown, true, false, BACNET_DT_NULL, false);
}

void PropertyDocument::object(MarkupFactory& factory, const DataType::ReadAccessResult& result,
                              const MarkupOptions& options, bool root) {
    factory.markup(MarkupFactory::BT_OBJECT, result.getObjectIdentifier().getPath(false), "", false, false,
                   BACNET_DT_NULL, root);
    for (const auto& property : result.getPropertyValues()) {
        const std::string name = propertyName(property.getPropertyIdentifier());
        const ValueContainer& held = property.getValue();
        if (held.getDataType() == BACNET_DT_ERROR) {
            std::string text = "BACnet Error";
            try {
                DataType::Error error;
                held.getValue(error);
                text = error.getString(false);
            } catch (const Poco::Exception&) {
                // held in another form: the generic text says enough
            }
            failed(factory, name, text, options);
        } else {
            value(factory, held, name, false);
        }
    }
    factory.closeOpenMarkup();
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
