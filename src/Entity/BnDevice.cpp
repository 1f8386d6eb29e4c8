#include "TQ_BACnet/Entity/BnDevice.h"

#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/Entity/BnDeviceObject.h"
#include "TQ_BACnet/Entity/BnGw.h"
#include "TQ_BACnet/Entity/Names.h"
#include "TreeSupport.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDevice::_colNames{
    &Names::ID_BN_DEVICE,           &Names::ID_BN_GW, &Names::CREATED, &Names::ID_DV_CONTROLLER,
    &Names::MAX_COMMIT_TIMEOUT_SEC, &Names::ENABLED,  &Names::TEMPLATE};

BnDevice::BnDevice(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    init(isNew);
}

void BnDevice::init(bool isNew) {
    if (!isNew) return;
    setVar(_COL_ENABLED, false, true);
    setVar(_COL_ID_DV_CONTROLLER, 0, true);
    setVar(_COL_MAX_COMMIT_TIMEOUT_SEC, 30, true);
}

BnDevice::BnDevice(const BnDevice& other) : Bn(false) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    *this = other;
}

BnDevice& BnDevice::operator=(const BnDevice& other) {
    if (this == &other) return *this;
    copyBaseStuff(other);
    Detail::copyParent(_pBnGw, _ownsBnGw, other._pBnGw, other._ownsBnGw);
    dropObjects();
    _pObjects = Detail::copyChildren(other._pObjects, this, &BnDeviceObject::attachBnDevice);
    return *this;
}

BnDevice::~BnDevice() {
    dropObjects();
    Detail::releaseParent(_pBnGw, _ownsBnGw);
}

const std::string& BnDevice::getTableName() const {
    return Names::BN_DEVICE;
}

const std::vector<const std::string*>& BnDevice::getColNames() const {
    return _colNames;
}

void BnDevice::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
    if (!_pObjects) return;
    for (auto& entry : *_pObjects) entry.second.setVar(BnDeviceObject::_COL_ID_BN_DEVICE, pk, true);
}

void BnDevice::setBnGw(BnGw* gw) {
    Detail::setParent(_pBnGw, _ownsBnGw, gw);
    if (gw) setVar(_COL_ID_BN_GATEWAY, gw->getPK(), true);
}

void BnDevice::attachBnGw(BnGw* gw) {
    Detail::setParent(_pBnGw, _ownsBnGw, gw);
}

BnGw* BnDevice::retrieveBnGw() {
    return Detail::retrieveParent(*this, _COL_ID_BN_GATEWAY, _pBnGw, _ownsBnGw);
}

BnGw* BnDevice::getBnGw() {
    return _pBnGw ? _pBnGw : retrieveBnGw();
}

std::map<int, BnDeviceObject>* BnDevice::retrieveBnDeviceObjects(
    std::string* where, const std::vector<Poco::Dynamic::Var>* binds) {
    Detail::retrieveChildren(*this, _pObjects, where, binds, nullptr);
    if (_pObjects)
        for (auto& entry : *_pObjects) entry.second.attachBnDevice(this);
    return _pObjects;
}

std::map<int, BnDeviceObject>* BnDevice::getBnDeviceObjects() {
    return _pObjects ? _pObjects : retrieveBnDeviceObjects();
}

BnDeviceObject* BnDevice::findBnDeviceObject(const DataType::ObjectIdentifier& id) {
    std::map<int, BnDeviceObject>* objects = getBnDeviceObjects();
    if (!objects) return nullptr;
    auto found = objects->find(static_cast<int>(id.getValue()));
    return found == objects->end() ? nullptr : &found->second;
}

void BnDevice::addObject(BnDeviceObject& object) {
    if (!_pObjects) _pObjects = new std::map<int, BnDeviceObject>();
    object.setNew(true);
    object.setBnDevice(this);
    BnDeviceObject& placed = (*_pObjects)[object()];
    placed = object;
    placed.attachBnDevice(this);
}

int BnDevice::updateAll(TQ::Utility::Data::EntityServer& server,
                        std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements) {
    return Detail::updateTree(*this, _pObjects, server, autoIncrements);
}

int BnDevice::retrieve(int idDevice, TQ::Utility::Data::EntityServer& server) {
    server.setWhere(Names::ID_BN_DEVICE + "=?");
    server.clearBinds();
    server.addBind(idDevice);
    return server.retrieve(*this);
}

int BnDevice::getIdBnDevice() const {
    return getVar(_COL_ID_BN_DEVICE).convert<int>();
}

Poco::Nullable<int> BnDevice::getIdBnGw() const {
    return getNullableVar<int>(_COL_ID_BN_GATEWAY);
}

void BnDevice::setIdBnGw(int idBnGw) {
    setVar(_COL_ID_BN_GATEWAY, idBnGw, true);
}

const Poco::Dynamic::Var& BnDevice::getCreated() const {
    return getVar(_COL_ID_CREATED);
}

void BnDevice::setCreated(const Poco::Dynamic::Var& created) {
    setVar(_COL_ID_CREATED, created, true);
}

Poco::Nullable<int> BnDevice::getIdDvController() const {
    return getNullableVar<int>(_COL_ID_DV_CONTROLLER);
}

void BnDevice::setIdDvController(int idDvController) {
    setVar(_COL_ID_DV_CONTROLLER, idDvController, true);
}

Poco::Nullable<int> BnDevice::getMaxCommitTimeoutSec() const {
    return getNullableVar<int>(_COL_MAX_COMMIT_TIMEOUT_SEC);
}

void BnDevice::setMaxCommitTimeoutSec(int seconds) {
    setVar(_COL_MAX_COMMIT_TIMEOUT_SEC, seconds, true);
}

bool BnDevice::isEnabled() const {
    return getVar(_COL_ENABLED).convert<bool>();
}

void BnDevice::setEnabled(bool enabled) {
    setVar(_COL_ENABLED, enabled, true);
}

const Poco::Dynamic::Var& BnDevice::getTemplate() const {
    return getVar(_COL_TEMPLATE);
}

void BnDevice::setTemplate(const Poco::Dynamic::Var& value) {
    setVar(_COL_TEMPLATE, value, true);
}

void BnDevice::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

void BnDevice::dropObjects() {
    delete _pObjects;
    _pObjects = nullptr;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
