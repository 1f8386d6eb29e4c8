#include "TQ_BACnet/Entity/BnDeviceObjectPropertyValue.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDeviceObjectPropertyValue::_colNames{
    &Names::ID_BN_DEVICE_OBJECT_PROPERTY_VALUE, &Names::ID_BN_DEVICE_OBJECT_PROPERTY, &Names::SORT,
    &Names::VALUE};

BnDeviceObjectPropertyValue::BnDeviceObjectPropertyValue(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& BnDeviceObjectPropertyValue::getTableName() const {
    return Names::BN_DEVICE_OBJECT_PROPERTY_VALUE;
}

const std::vector<const std::string*>& BnDeviceObjectPropertyValue::getColNames() const {
    return _colNames;
}

void BnDeviceObjectPropertyValue::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnDeviceObjectPropertyValue::getIdBnDeviceObjectPropertyValue() const {
    return getVar(_COL_ID_BN_DEVICE_OBJECT_PROPERTY_VALUE).convert<int>();
}

Poco::Nullable<int> BnDeviceObjectPropertyValue::getIdBnDeviceObjectProperty() const {
    return getNullableVar<int>(_COL_ID_BN_DEVICE_OBJECT_PROPERTY);
}

void BnDeviceObjectPropertyValue::setIdBnDeviceObjectProperty(int idBnDeviceObjectProperty) {
    setVar(_COL_ID_BN_DEVICE_OBJECT_PROPERTY, idBnDeviceObjectProperty, true);
}

const Poco::Dynamic::Var& BnDeviceObjectPropertyValue::getSort() const {
    return getVar(_COL_SORT);
}

void BnDeviceObjectPropertyValue::setSort(const Poco::Dynamic::Var& sort) {
    setVar(_COL_SORT, sort, true);
}

const Poco::Dynamic::Var& BnDeviceObjectPropertyValue::getValue() const {
    return getVar(_COL_VALUE);
}

void BnDeviceObjectPropertyValue::setValue(const Poco::Dynamic::Var& value) {
    setVar(_COL_VALUE, value, true);
}

void BnDeviceObjectPropertyValue::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
