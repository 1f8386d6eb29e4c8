#include "TQ_BACnet/DataType/ReadAccessResult.h"

#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/Error.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

/// The node's decoded values, typed by the property's descriptor where the catalogue has one.
void storeValues(ValueContainer& container, const BACNET_PROPERTY_REFERENCE& node,
                 BACNET_OBJECT_TYPE objectType) {
    ValueContainer::DataPropertyInObject descriptor;
    const bool described = DataPropertyInObject0::getValueTypeAndStructure(
        objectType, node.propertyIdentifier, descriptor, false);
    if (node.value == nullptr) {
        // An empty list or array: nothing to decode, which the container reads as no values.
        BACNET_ERROR_CLASS ignoredClass;
        BACNET_ERROR_CODE ignoredCode;
        DataErrorRef ignored(ignoredClass, ignoredCode);
        if (!described) descriptor.structure = BACNET_DTS_LIST;
        container.decode(nullptr, 0, 0, descriptor, -1, ignored);
        return;
    }
    std::vector<DataApplicationValue> values;
    for (const BACNET_APPLICATION_DATA_VALUE* v = node.value; v != nullptr; v = v->next)
        values.emplace_back(*v);
    container.setApplicationValueLinks(values);
    values.back().next = nullptr;
    if (!described) {
        container.setApplicationValue(values.front(), nullptr);
        return;
    }
    try {
        container.setApplicationValue(values.front(), &descriptor);
    } catch (const Poco::Exception&) {
        // What the server sent does not fit the catalogue's type; kept as the primitives it is
        // rather than losing the rest of the acknowledgement.
        container = ValueContainer();
        container.setApplicationValue(values.front(), nullptr);
    }
}

}  // namespace

ReadAccessResult::ReadAccessResult(const DataPropertyInObject0&, const DataApplicationValue&,
                                   const DataApplicationValue**) {}

ReadAccessResult& ReadAccessResult::operator=(const BACnet_Read_Access_Data& record) {
    _object = ObjectIdentifier(record.object_type, record.object_instance);
    for (const BACNET_PROPERTY_REFERENCE* node = record.listOfProperties; node != nullptr;
         node = node->next) {
        ValueContainer container;
        if (node->has_error) {
            // The server's error in place of the value.
            container.setValue(Error(node->error_class, node->error_code));
        } else {
            storeValues(container, *node, record.object_type);
        }
        _values.emplace_back(BACnetPropertyReference(node->propertyIdentifier, node->propertyArrayIndex, 0),
                             container, BACnetPropertyValue::NO_PRIORITY);
    }
    return *this;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
