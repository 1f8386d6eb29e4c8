#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/BnPropertiesInObject.h"
#include "TQ_BACnet/Entity/Names.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDeviceObjectProperty::_colNames{
    &Names::ID_BN_DEVICE_OBJECT_PROPERTY,
    &Names::ID_BN_PROPERTY_TYPE,
    &Names::ID_BN_DEVICE_OBJECT,
    &Names::ID_BN_PROPERTIES_IN_OBJECT,
    &Names::ID_DV_PORT,
    &Names::VALUE,
    &Names::POLL_RATE_SEC};

BnDeviceObjectProperty::BnDeviceObjectProperty(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    setUpdateable(_COL_ID_BN_PROPERTY_TYPE, false);
}

BnDeviceObjectProperty::BnDeviceObjectProperty(const BnDeviceObjectProperty& other) : Bn(false) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    *this = other;
}

BnDeviceObjectProperty& BnDeviceObjectProperty::operator=(const BnDeviceObjectProperty& other) {
    if (this == &other) return *this;
    copyBaseStuff(other);
    releaseBnPropertiesInObject();
    if (!other._ownsBnPropertiesInObject) attachBnPropertiesInObject(other._pBnPropertiesInObject);
    return *this;
}

BnDeviceObjectProperty::~BnDeviceObjectProperty() {
    releaseBnPropertiesInObject();
}

const std::string& BnDeviceObjectProperty::getTableName() const {
    return Names::BN_DEVICE_OBJECT_PROPERTY;
}

const std::vector<const std::string*>& BnDeviceObjectProperty::getColNames() const {
    return _colNames;
}

void BnDeviceObjectProperty::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnDeviceObjectProperty::operator()() const {
    return getIdBnPropertyType();
}

bool BnDeviceObjectProperty::operator<(const TQ::Utility::Data::Entity& other) const {
    const BnDeviceObjectProperty* property = dynamic_cast<const BnDeviceObjectProperty*>(&other);
    if (!property) return Entity::operator<(other);
    return getIdBnPropertyType() < property->getIdBnPropertyType();
}

std::string BnDeviceObjectProperty::sqlFrom() const {
    return Names::BN_DEVICE_OBJECT_PROPERTY + " a," + Names::BN_PROPERTIES_IN_OBJECT + " b";
}

std::string BnDeviceObjectProperty::sqlJoin() const {
    return "a." + Names::ID_BN_PROPERTIES_IN_OBJECT + "=b." + Names::ID_BN_PROPERTIES_IN_OBJECT;
}

std::string BnDeviceObjectProperty::sqlOrderBy() const {
    return "2";
}

int BnDeviceObjectProperty::getIdBnDeviceObjectProperty() const {
    return getVar(_COL_ID_BN_DEVICE_OBJECT_PROPERTY).convert<int>();
}

int BnDeviceObjectProperty::getIdBnPropertyType() const {
    return getVar(_COL_ID_BN_PROPERTY_TYPE).convert<int>();
}

int BnDeviceObjectProperty::getIdBnDeviceObject() const {
    return getVar(_COL_ID_BN_DEVICE_OBJECT).convert<int>();
}

void BnDeviceObjectProperty::setIdBnDeviceObject(int idBnDeviceObject) {
    setVar(_COL_ID_BN_DEVICE_OBJECT, idBnDeviceObject, true);
}

Poco::Nullable<int> BnDeviceObjectProperty::getIdBnPropertiesInObject() const {
    return getNullableVar<int>(_COL_ID_BN_PROPERTIES_IN_OBJECT);
}

Poco::Nullable<int> BnDeviceObjectProperty::getIdDvPort() const {
    return getNullableVar<int>(_COL_ID_DV_PORT);
}

void BnDeviceObjectProperty::setIdDvPort(int idDvPort) {
    setVar(_COL_ID_DV_PORT, idDvPort, true);
}

Poco::Nullable<std::string> BnDeviceObjectProperty::getValueText() const {
    return getNullableVar<std::string>(_COL_VALUE);
}

void BnDeviceObjectProperty::setValueText(const std::string& text) {
    setVar(_COL_VALUE, text, true);
}

Poco::Nullable<int> BnDeviceObjectProperty::getPollRateSec() const {
    return getNullableVar<int>(_COL_POLL_RATE_SEC);
}

void BnDeviceObjectProperty::setPollRateSec(const Poco::Nullable<int>& seconds) {
    setVar(_COL_POLL_RATE_SEC, seconds.isNull() ? Poco::Dynamic::Var() : Poco::Dynamic::Var(seconds.value()),
           true);
}

void BnDeviceObjectProperty::setBnPropertiesInObject(BnPropertiesInObject* row) {
    releaseBnPropertiesInObject();
    _pBnPropertiesInObject = row;
    _ownsBnPropertiesInObject = row == nullptr;
    if (row) setVar(_COL_ID_BN_PROPERTIES_IN_OBJECT, row->getPK(), true);
}

BnPropertiesInObject* BnDeviceObjectProperty::retrieveBnPropertiesInObject() {
    if (!_ownsBnPropertiesInObject) return _pBnPropertiesInObject;
    Poco::Nullable<int> key = getIdBnPropertiesInObject();
    if (key.isNull() || key.value() < 0) return _pBnPropertiesInObject;
    std::string where = getParentWhere(_COL_ID_BN_PROPERTIES_IN_OBJECT, nullptr);
    EntityServer server(TQ::Utility::Data::pDB, nullptr, &where);
    server.addBind(key.value());
    if (!_pBnPropertiesInObject) _pBnPropertiesInObject = new BnPropertiesInObject(false);
    if (server.retrieve(*_pBnPropertiesInObject) < 1) {
        delete _pBnPropertiesInObject;
        _pBnPropertiesInObject = nullptr;
    }
    return _pBnPropertiesInObject;
}

BnPropertiesInObject* BnDeviceObjectProperty::getBnPropertiesInObject() {
    return _pBnPropertiesInObject ? _pBnPropertiesInObject : retrieveBnPropertiesInObject();
}

void BnDeviceObjectProperty::printIt() const {
    Detail::printColumns(*this, std::cout,
                         {_COL_ID_BN_DEVICE_OBJECT_PROPERTY, _COL_ID_BN_PROPERTY_TYPE,
                          _COL_ID_BN_DEVICE_OBJECT, _COL_ID_BN_PROPERTIES_IN_OBJECT, _COL_VALUE},
                         ":", ",");
    std::cout << std::endl;
}

void BnDeviceObjectProperty::attachBnPropertiesInObject(BnPropertiesInObject* row) {
    releaseBnPropertiesInObject();
    _pBnPropertiesInObject = row;
    _ownsBnPropertiesInObject = row == nullptr;
}

void BnDeviceObjectProperty::releaseBnPropertiesInObject() {
    if (_ownsBnPropertiesInObject) delete _pBnPropertiesInObject;
    _pBnPropertiesInObject = nullptr;
    _ownsBnPropertiesInObject = true;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
