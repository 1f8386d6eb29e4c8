#include "TQ_BACnet/Entity/BnDeviceObject.h"

#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"
#include "TQ_BACnet/Entity/Names.h"
#include "TreeSupport.h"

#include <Poco/Exception.h>

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

BnDeviceObject::BnDeviceObject(const BnDeviceObject& other) : Bn(false) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    *this = other;
}

BnDeviceObject& BnDeviceObject::operator=(const BnDeviceObject& other) {
    if (this == &other) return *this;
    copyBaseStuff(other);
    Detail::copyParent(_pBnDevice, _ownsBnDevice, other._pBnDevice, other._ownsBnDevice);
    dropProperties();
    _pProperties =
        Detail::copyChildren(other._pProperties, this, &BnDeviceObjectProperty::attachBnDeviceObject);
    return *this;
}

BnDeviceObject::~BnDeviceObject() {
    dropProperties();
    Detail::releaseParent(_pBnDevice, _ownsBnDevice);
}

const std::string& BnDeviceObject::getTableName() const {
    return Names::BN_DEVICE_OBJECT;
}

const std::vector<const std::string*>& BnDeviceObject::getColNames() const {
    return _colNames;
}

void BnDeviceObject::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
    if (!_pProperties) return;
    for (auto& entry : *_pProperties)
        entry.second.setVar(BnDeviceObjectProperty::_COL_ID_BN_DEVICE_OBJECT, pk, true);
}

int BnDeviceObject::retrieve(int idDevice, const DataType::ObjectIdentifier& id,
                             TQ::Utility::Data::EntityServer& server) {
    server.setWhere(Names::ID_BN_DEVICE + "=? AND " + Names::ID_BN_OBJECT_TYPE + "=? AND " +
                    Names::INSTANCE_NR + "=?");
    server.clearBinds();
    server.addBind(idDevice);
    server.addBind(static_cast<int>(id.getValue() >> 22));
    server.addBind(static_cast<int>(id.getValue() & 0x3FFFFFu));
    return server.retrieve(*this);
}

DataType::ObjectIdentifier BnDeviceObject::getObjectIdentifier() const {
    return DataType::ObjectIdentifier(DataType::ObjectIdentifier::createObjectIdentifier(
        static_cast<BACNET_OBJECT_TYPE>(getIdBnObjectType()), getInstanceNr()));
}

void BnDeviceObject::setObjectIdentifier(const DataType::ObjectIdentifier& id) {
    setPackedObjectIdentifier(id.getValue());
}

void BnDeviceObject::setBnDevice(BnDevice* device) {
    Detail::setParent(_pBnDevice, _ownsBnDevice, device);
    if (device) setVar(_COL_ID_BN_DEVICE, device->getPK(), true);
}

void BnDeviceObject::attachBnDevice(BnDevice* device) {
    Detail::setParent(_pBnDevice, _ownsBnDevice, device);
}

BnDevice* BnDeviceObject::retrieveBnDevice() {
    return Detail::retrieveParent(*this, _COL_ID_BN_DEVICE, _pBnDevice, _ownsBnDevice);
}

BnDevice* BnDeviceObject::getBnDevice() {
    return _pBnDevice ? _pBnDevice : retrieveBnDevice();
}

std::map<int, BnDeviceObjectProperty>* BnDeviceObject::retrieveBnDeviceObjectProperties(
    std::string* where, const std::vector<Poco::Dynamic::Var>* binds) {
    // The properties are read joined with their catalogue rows: the key column is qualified.
    static const std::string alias = "a";
    Detail::retrieveChildren(*this, _pProperties, where, binds, &alias);
    if (_pProperties)
        for (auto& entry : *_pProperties) entry.second.attachBnDeviceObject(this);
    return _pProperties;
}

std::map<int, BnDeviceObjectProperty>* BnDeviceObject::getBnDeviceObjectProperties() {
    return _pProperties ? _pProperties : retrieveBnDeviceObjectProperties();
}

BnDeviceObjectProperty* BnDeviceObject::findBnDeviceObjectProperty(BACNET_PROPERTY_ID property) {
    std::map<int, BnDeviceObjectProperty>* properties = getBnDeviceObjectProperties();
    if (!properties) return nullptr;
    auto found = properties->find(static_cast<int>(property));
    return found == properties->end() ? nullptr : &found->second;
}

void BnDeviceObject::addBnDeviceObjectProperty(BnDeviceObjectProperty& property) {
    if (!_pProperties) _pProperties = new std::map<int, BnDeviceObjectProperty>();
    property.setNew(true);
    property.setBnDeviceObject(this);
    BnDeviceObjectProperty& placed = (*_pProperties)[property()];
    placed = property;
    placed.attachBnDeviceObject(this);
}

void BnDeviceObject::addBnDeviceObjectProperty(DataType::BACnetPropertyValue& value, int idDvPort,
                                               const Poco::Nullable<int>& pollRateSec) {
    BnDeviceObjectProperty property(true);
    property.setIdDvPort(idDvPort);
    property.setPollRateSec(pollRateSec);
    property.setBnDeviceObject(this);
    property.setPropertyIdentifier(value.getPropertyIdentifier());
    if (property.getVar(BnDeviceObjectProperty::_COL_ID_BN_PROPERTY_TYPE).isEmpty())
        throw Poco::NotFoundException(
            "BnDeviceObject::addBnDeviceObjectProperty(): the catalogue has no property " +
            std::to_string(value.getPropertyIdentifier()) + " for object type " +
            std::to_string(getIdBnObjectType()));
    property.setValue(value.getValue());
    addBnDeviceObjectProperty(property);
}

int BnDeviceObject::updateAll(TQ::Utility::Data::EntityServer& server,
                              std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements) {
    return Detail::updateTree(*this, _pProperties, server, autoIncrements);
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

void BnDeviceObject::dropProperties() {
    delete _pProperties;
    _pProperties = nullptr;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
