#include "TQ_BACnet/Entity/BnGw.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnGw::_colNames{
    &Names::ID_BN_GW, &Names::ID_BN_DEVICE,       &Names::NAME, &Names::DNET, &Names::ID_DV_BUS,
    &Names::ENABLED,  &Names::LOAD_AUTOCONFIGURED};

BnGw::BnGw(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    if (isNew) setVar(_COL_ENABLED, false, true);
}

const std::string& BnGw::getTableName() const {
    return Names::BN_GW;
}

const std::vector<const std::string*>& BnGw::getColNames() const {
    return _colNames;
}

void BnGw::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnGw::getIdBnGw() const {
    return getVar(_COL_ID_BN_GW).convert<int>();
}

Poco::Nullable<int> BnGw::getIdBnDevice() const {
    return getNullableVar<int>(_COL_ID_BN_DEVICE);
}

void BnGw::setIdBnDevice(int idBnDevice) {
    setVar(_COL_ID_BN_DEVICE, idBnDevice, true);
}

Poco::Nullable<std::string> BnGw::getName() const {
    return getNullableVar<std::string>(_COL_NAME);
}

void BnGw::setName(const std::string& name) {
    setVar(_COL_NAME, name, true);
}

const Poco::Dynamic::Var& BnGw::getDnet() const {
    return getVar(_COL_DNET);
}

void BnGw::setDnet(const Poco::Dynamic::Var& dnet) {
    setVar(_COL_DNET, dnet, true);
}

Poco::Nullable<int> BnGw::getIdDvBus() const {
    return getNullableVar<int>(_COL_ID_DV_BUS);
}

void BnGw::setIdDvBus(int idDvBus) {
    setVar(_COL_ID_DV_BUS, idDvBus, true);
}

bool BnGw::isEnabled() const {
    return getVar(_COL_ENABLED).convert<bool>();
}

void BnGw::setEnabled(bool enabled) {
    setVar(_COL_ENABLED, enabled, true);
}

const Poco::Dynamic::Var& BnGw::getLoadAutoconfigured() const {
    return getVar(_COL_LOAD_AUTOCONFIGURED);
}

void BnGw::setLoadAutoconfigured(const Poco::Dynamic::Var& value) {
    setVar(_COL_LOAD_AUTOCONFIGURED, value, true);
}

void BnGw::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
