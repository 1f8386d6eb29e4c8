#include "TQ_BACnet/WS/PropertyDocument.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MarkupOptions.h"

#include <Poco/Exception.h>

#include <vector>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

void primitives(MarkupFactory& factory, const ValueContainer& value, const std::string& name, bool root) {
    const BACnetDataType type = value.getDataType();
    // The held values where they are; a container holding something else lends a copy.
    std::vector<DataApplicationValue> copies;
    std::size_t count = 0;
    const DataApplicationValue* values = value.primitives(count);
    if (values == nullptr) {
        value.getValues(copies);
        values = copies.data();
        count = copies.size();
    }
    if (value.getStructure() == BACNET_DTS_SINGLE_VALUE && count == 1) {
        values->markup(factory, name, false, type, root, -1, true);
        return;
    }
    const auto collection = value.getStructure() == BACNET_DTS_LIST ? MarkupFactory::BT_LIST : MarkupFactory::BT_ARRAY;
    factory.markupOpen(collection, name, false, root);
    factory.markupElements(values, count, type, true);
    factory.closeOpenMarkup();
}

}  // namespace

std::string PropertyDocument::propertyName(BACNET_PROPERTY_ID property) {
    const std::string path = DataType::BACnetPropertyReference::getPath(property, BACNET_ARRAY_ALL);
    return path.empty() ? path : path.substr(1);
}

bool PropertyDocument::elementOf(const DataPropertyInObject0& property, DataPropertyInObject0& element) {
    constexpr unsigned kSequenceOf = 24;
    constexpr unsigned kLastPrimitiveKind = 12;
    element = property;
    element.structure = BACNET_DTS_SINGLE_VALUE;
    const Entity::BnDataTypeConstruct* definition = Entity::BnDataTypeConstruct::find(property.datatype);
    const bool sequenceOf = definition != nullptr && !definition->getIdBnMarkup().isNull() &&
                            definition->getIdBnMarkup().value() == kSequenceOf &&
                            definition->getInternalBDTCs().size() == 1 &&
                            definition->getInternalBDTCs().front().pDTC != nullptr;
    if (!sequenceOf) return property.structure != BACNET_DTS_SINGLE_VALUE;
    const Entity::BnDataTypeConstruct& member = *definition->getInternalBDTCs().front().pDTC;
    element.datatype = static_cast<BACnetDataType>(member.getIdBnDataType());
    // Constructed elements (a choice of priority values) carry no application tag of their own.
    const bool primitive = !member.getIdBnMarkup().isNull() && member.getIdBnMarkup().value() <= kLastPrimitiveKind;
    element.tag = primitive ? DataPropertyInObject0::getPrimitiveType(element.datatype) : BACNET_APPLICATION_TAG_NULL;
    return true;
}

bool PropertyDocument::value(MarkupFactory& factory, BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property,
                             uint32_t arrayIndex, const ValueContainer& value, const std::string& name, bool root) {
    if (value.getDataType() == BACNET_DT_NULL) {
        factory.markup(MarkupFactory::BT_NULL, name, "", true, false, BACNET_DT_NULL, root);
        return true;
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
        return true;
    }
    if (!known) descriptor = value.getDescriptor();
    if (arrayIndex != BACNET_ARRAY_ALL) {
        DataPropertyInObject0 element;
        descriptor = elementOf(descriptor, element) ? element : descriptor;
        descriptor.structure = BACNET_DTS_SINGLE_VALUE;
    }
    TQ::Utility::OctetBuffer bytes;
    if (value.encode2(bytes) < 0) return false;
    if (bytes.empty()) {
        // An empty list or array: nothing for the catalogue walk to read.
        const auto collection =
            descriptor.structure == BACNET_DTS_LIST ? MarkupFactory::BT_LIST : MarkupFactory::BT_ARRAY;
        factory.markup(collection, name, "", true, false, descriptor.datatype, root);
        return true;
    }
    DataType::ANY::PropertyRef ref;
    ref.property = property;
    ref.arrayIndex = arrayIndex == BACNET_ARRAY_ALL ? -1 : int(arrayIndex);
    return DataType::ANY(descriptor, ref, bytes).markup(factory, name, false, root, -1) == 1;
}

bool PropertyDocument::write(MarkupFactory& factory, BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property,
                             uint32_t arrayIndex, const ValueContainer& held) {
    const bool whole = value(factory, objectType, property, arrayIndex, held, propertyName(property), true);
    factory.closeAllOpenMarkups();
    return whole;
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
            value(factory, result.getObjectIdentifier().getObjectType(), property.getPropertyIdentifier(),
                  property.getArrayIndex(), held, name, false);
        }
    }
    factory.closeOpenMarkup();
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
