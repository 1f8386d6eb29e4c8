#include "TQ_BACnet/Service/ObjectAccess/CreateObject.h"

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDeviceObject.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"

#include <algorithm>

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

using TQ::Utility::Data::pDB;

namespace {

DataType::BACnetPropertyValue initialValue(BACNET_PROPERTY_ID property, const ValueContainer& value) {
    return DataType::BACnetPropertyValue(DataType::BACnetPropertyReference(property, BACNET_ARRAY_ALL, 0),
                                         value, DataType::BACnetPropertyValue::NO_PRIORITY);
}

/// Whether a value may be stored as `property`: no value at all, or primitives of the
/// property's application tag, or a constructed value of its data type, in its structure.
bool fits(const ValueContainer& value, const DataPropertyInObject0& property) {
    if (value.getDataType() == BACNET_DT_NULL && value.getTag() == BACNET_APPLICATION_TAG_NULL) return true;
    if (value.getStructure() != property.structure) return false;
    return value.isPrimitive() ? value.getTag() == property.tag : value.getDataType() == property.datatype;
}

int fail(DataError* error, BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode) {
    if (error) error->setError(errorClass, errorCode);
    return -1;
}

}  // namespace

CreateObject::iterator CreateObject::findInitialValue(BACNET_PROPERTY_ID property) {
    return std::find_if(
        _initialValues.begin(), _initialValues.end(),
        [property](const DataType::BACnetPropertyValue& v) { return v.getPropertyIdentifier() == property; });
}

void CreateObject::addInitialValue(const DataType::BACnetPropertyValue& value) {
    _initialValues.push_back(value);
}

void CreateObject::addInitialValue(BACNET_PROPERTY_ID property, const ValueContainer& value) {
    _initialValues.push_back(initialValue(property, value));
}

void CreateObject::addInitialValue(BACNET_PROPERTY_ID property, const DataType::Error& error) {
    // The container takes the Error as its production under the Error data type.
    uint8_t production[DataType::Error::MAX_ENCODED];
    const int length = DataType::Error::encode(production, error.getErrorClass(), error.getErrorCode());
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_ERROR, BACNET_APPLICATION_TAG_NULL,
                                                          BACNET_DTS_SINGLE_VALUE, false, 4);
    BACNET_ERROR_CLASS ignoredClass;
    BACNET_ERROR_CODE ignoredCode;
    DataErrorRef ignored(ignoredClass, ignoredCode);
    ValueContainer value;
    value.decode(production, length, 0, descriptor, -1, ignored);
    _initialValues.push_back(initialValue(property, value));
}

void CreateObject::addInitialValue(BACNET_PROPERTY_ID property) {
    _initialValues.push_back(initialValue(property, ValueContainer()));
}

int CreateObject::checkInitialValues(DataError* error) const {
    for (const DataType::BACnetPropertyValue& value : _initialValues) {
        DataPropertyInObject0 property;
        if (!DataPropertyInObject0::getValueTypeAndStructure(_object.getObjectType(),
                                                             value.getPropertyIdentifier(), property, false))
            return fail(error, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
        if (!fits(value.getValue(), property))
            return fail(error, ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE);
    }
    return 0;
}

int CreateObject::dbUpdate(int deviceKey, int enabled, int presentValueArg,
                           const Poco::Nullable<int>& presentValueOption, DataError* error) {
    if (checkInitialValues(error) < 0) return -1;
    TQ::Utility::Data::EntityServer server(pDB, nullptr, nullptr);
    Entity::BnDeviceObject object(false);
    if (object.retrieve(deviceKey, _object, server) < 1) {
        object.setNew(true);
        object.setIdBnDevice(deviceKey);
        object.setCovEnabled(false);
        object.setObjectIdentifier(_object);
    } else if (!_updateExisting) {
        return fail(error, ERROR_CLASS_OBJECT, ERROR_CODE_OBJECT_IDENTIFIER_ALREADY_EXISTS);
    }
    object.setEnabled(enabled != 0);

    for (DataType::BACnetPropertyValue& value : _initialValues) {
        const BACNET_PROPERTY_ID property = value.getPropertyIdentifier();
        if (Entity::BnDeviceObjectProperty* stored = object.findBnDeviceObjectProperty(property))
            stored->setValue(value.getValue());
        else if (property == PROP_PRESENT_VALUE)
            object.addBnDeviceObjectProperty(value, presentValueArg, presentValueOption);
        else
            object.addBnDeviceObjectProperty(value, -1, Poco::Nullable<int>());
    }

    pDB->begin();
    try {
        const int rows = object.updateAll(server, nullptr);
        pDB->commit();
        return rows;
    } catch (...) {
        pDB->rollback();
        throw;
    }
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
