#include "TQ_BACnet/Gateway/Render.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MarkupOptions.h"

#include <Poco/Exception.h>

#include <vector>

namespace TQ {
namespace BACnet {
namespace Gateway {
namespace Render {

using WS::MarkupFactory;

std::string propertyName(BACNET_PROPERTY_ID property) {
    const std::string path = DataType::BACnetPropertyReference::getPath(property, BACNET_ARRAY_ALL);
    return path.empty() ? path : path.substr(1);
}

namespace {

void primitives(MarkupFactory& factory, const ValueContainer& value, const std::string& name, bool root) {
    const BACnetDataType type = value.getDataType();
    std::vector<DataApplicationValue> values;
    value.getValues(values);
    if (value.getStructure() == BACNET_DTS_SINGLE_VALUE && values.size() == 1) {
        values.front().markup(factory, name, false, type, root, -1, true);
        return;
    }
    const auto collection =
        value.getStructure() == BACNET_DTS_LIST ? MarkupFactory::BT_LIST : MarkupFactory::BT_ARRAY;
    factory.markup(collection, name, "", false, false, type, root);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i].markup(factory, std::to_string(i + 1), false, type, false, -1, true);
    factory.closeOpenMarkup();
}

}  // namespace

void value(MarkupFactory& factory, BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property, uint32_t arrayIndex,
           const ValueContainer& value, const std::string& name, bool root) {
    if (value.getDataType() == BACNET_DT_NULL) {
        factory.markup(MarkupFactory::BT_NULL, name, "", true, false, BACNET_DT_NULL, root);
        return;
    }
    // Whether the value is constructed is the catalogue's to say: a container that could not
    // build its classes keeps primitives, which would show the structure flattened.
    DataPropertyInObject0 descriptor;
    const bool known = DataPropertyInObject0::getValueTypeAndStructure(objectType, property, descriptor, false);
    const bool constructed = known ? descriptor.tag == BACNET_APPLICATION_TAG_NULL &&
                                         descriptor.datatype != BACNET_DT_NULL && arrayIndex != 0
                                   : !value.isPrimitive();
    if (!constructed) {
        primitives(factory, value, name, root);
        return;
    }
    if (!known) descriptor = value.getDescriptor();
    if (arrayIndex != BACNET_ARRAY_ALL) descriptor.structure = BACNET_DTS_SINGLE_VALUE;
    TQ::Utility::OctetBuffer bytes;
    value.encode2(bytes);
    if (bytes.empty()) {
        // An empty list or array: nothing for the catalogue walk to read.
        const auto collection =
            descriptor.structure == BACNET_DTS_LIST ? MarkupFactory::BT_LIST : MarkupFactory::BT_ARRAY;
        factory.markup(collection, name, "", true, false, descriptor.datatype, root);
        return;
    }
    DataType::ANY::PropertyRef ref;
    ref.property = property;
    ref.arrayIndex = arrayIndex == BACNET_ARRAY_ALL ? -1 : int(arrayIndex);
    DataType::ANY(descriptor, ref, bytes).markup(factory, name, false, root, -1);
}

void failed(MarkupFactory& factory, const std::string& name, const std::string& text,
            const WS::MarkupOptions& options) {
    const std::string shown = options.errorString.empty() ? options.errorPrefix + text : options.errorString;
    factory.markup(MarkupFactory::BT_STRING, name, shown, true, false, BACNET_DT_NULL, false);
}

void object(MarkupFactory& factory, const DataType::ReadAccessResult& result, const WS::MarkupOptions& options,
            bool root) {
    factory.markup(MarkupFactory::BT_OBJECT, result.getObjectIdentifier().getPath(false), "", false, false,
                   BACNET_DT_NULL, root);
    for (const auto& property : result.getPropertyValues()) {
        const std::string name = propertyName(property.getPropertyIdentifier());
        const ValueContainer& v = property.getValue();
        if (v.getDataType() == BACNET_DT_ERROR) {
            std::string text = "BACnet Error";
            try {
                DataType::Error error;
                v.getValue(error);
                text = error.getString(false);
            } catch (const Poco::Exception&) {
                // held in another form: the generic text says enough
            }
            failed(factory, name, text, options);
        } else {
            value(factory, result.getObjectIdentifier().getObjectType(), property.getPropertyIdentifier(),
                  property.getArrayIndex(), v, name, false);
        }
    }
    factory.closeOpenMarkup();
}

}  // namespace Render
}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
