#include "TQ_BACnet/DataType/ReadAccessSpecification.h"

#include <Poco/Exception.h>

#include <cstdlib>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

// The codec releases what it allocated with free(), so the nodes handed to it are malloc'ed.
void freeProperties(BACNET_PROPERTY_REFERENCE* node) {
    while (node != nullptr) {
        BACNET_PROPERTY_REFERENCE* next = node->next;
        std::free(node);
        node = next;
    }
}

}  // namespace

ReadAccessSpecification::ReadAccessSpecification(const DataPropertyInObject0&, const DataApplicationValue&,
                                                 const DataApplicationValue**) {}

void ReadAccessSpecification::get(BACnet_Read_Access_Data& out) const {
    out.object_type = _object.getObjectType();
    out.object_instance = _object.getInstance();
    out.listOfProperties = nullptr;
    out.next = nullptr;
    BACNET_PROPERTY_REFERENCE** tail = &out.listOfProperties;
    for (const BACnetPropertyReference& reference : _properties) {
        auto* node =
            static_cast<BACNET_PROPERTY_REFERENCE*>(std::calloc(1, sizeof(BACNET_PROPERTY_REFERENCE)));
        if (node == nullptr) {
            freeProperties(out.listOfProperties);
            out.listOfProperties = nullptr;
            throw Poco::OutOfMemoryException("ReadAccessSpecification::get");
        }
        node->propertyIdentifier = reference.getPropertyIdentifier();
        node->propertyArrayIndex = reference.getArrayIndex();
        *tail = node;
        tail = &node->next;
    }
}

void ReadAccessSpecification::freeRAS(BACnet_Read_Access_Data& first) {
    freeProperties(first.listOfProperties);
    first.listOfProperties = nullptr;
    BACnet_Read_Access_Data* record = first.next;
    first.next = nullptr;
    while (record != nullptr) {
        BACnet_Read_Access_Data* next = record->next;
        freeProperties(record->listOfProperties);
        std::free(record);
        record = next;
    }
}

ReadAccessSpecification& ReadAccessSpecification::operator=(const BACnet_Read_Access_Data& record) {
    _object = ObjectIdentifier(record.object_type, record.object_instance);
    for (const BACNET_PROPERTY_REFERENCE* node = record.listOfProperties; node != nullptr;
         node = node->next) {
        _properties.emplace_back(node->propertyIdentifier, node->propertyArrayIndex, 0);
    }
    return *this;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
