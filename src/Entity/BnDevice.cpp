#include "TQ_BACnet/Entity/BnDevice.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

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

const std::string& BnDevice::getTableName() const {
    return Names::BN_DEVICE;
}

const std::vector<const std::string*>& BnDevice::getColNames() const {
    return _colNames;
}

void BnDevice::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
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

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
