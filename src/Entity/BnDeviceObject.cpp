#include "TQ_BACnet/Entity/BnDeviceObject.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDeviceObject::_colNames{
    &Names::ID_BN_DEVICE_OBJECT, &Names::ID_BN_DEVICE, &Names::ID_BN_OBJECT_TYPE,
    &Names::INSTANCE_NR,         &Names::COV_ENABLED,  &Names::ENABLED};

BnDeviceObject::BnDeviceObject(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& BnDeviceObject::getTableName() const {
    return Names::BN_DEVICE_OBJECT;
}

const std::vector<const std::string*>& BnDeviceObject::getColNames() const {
    return _colNames;
}

void BnDeviceObject::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnDeviceObject::operator()() const {
    return static_cast<int>(getPackedObjectIdentifier());
}

bool BnDeviceObject::operator<(const TQ::Utility::Data::Entity& other) const {
    const BnDeviceObject* object = dynamic_cast<const BnDeviceObject*>(&other);
    if (!object) return Entity::operator<(other);
    return getPackedObjectIdentifier() < object->getPackedObjectIdentifier();
}

std::string BnDeviceObject::sqlOrderBy() const {
    return Names::ID_BN_OBJECT_TYPE + "," + Names::INSTANCE_NR;
}

int BnDeviceObject::getIdBnDeviceObject() const {
    return getVar(_COL_ID_BN_DEVICE_OBJECT).convert<int>();
}

int BnDeviceObject::getIdBnDevice() const {
    return getVar(_COL_ID_BN_DEVICE).convert<int>();
}

void BnDeviceObject::setIdBnDevice(int idBnDevice) {
    setVar(_COL_ID_BN_DEVICE, idBnDevice, true);
}

uint32_t BnDeviceObject::getIdBnObjectType() const {
    return getVar(_COL_ID_BN_OBJECT_TYPE).convert<uint32_t>();
}

uint32_t BnDeviceObject::getInstanceNr() const {
    return getVar(_COL_INSTANCE_NR).convert<uint32_t>();
}

uint32_t BnDeviceObject::getPackedObjectIdentifier() const {
    return packObjectIdentifier(getIdBnObjectType(), getInstanceNr());
}

void BnDeviceObject::setPackedObjectIdentifier(uint32_t packed) {
    setVar(_COL_ID_BN_OBJECT_TYPE, static_cast<int>(packed >> 22), true);
    setVar(_COL_INSTANCE_NR, static_cast<int>(packed & 0x3FFFFFu), true);
}

Poco::Nullable<bool> BnDeviceObject::getCovEnabled() const {
    return getNullableVar<bool>(_COL_COV_ENABLED);
}

void BnDeviceObject::setCovEnabled(bool enabled) {
    setVar(_COL_COV_ENABLED, enabled, true);
}

Poco::Nullable<bool> BnDeviceObject::getEnabled() const {
    return getNullableVar<bool>(_COL_ENABLED);
}

void BnDeviceObject::setEnabled(bool enabled) {
    setVar(_COL_ENABLED, enabled, true);
}

void BnDeviceObject::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
