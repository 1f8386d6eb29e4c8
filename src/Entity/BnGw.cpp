#include "TQ_BACnet/Entity/BnGw.h"

#include "TQ/Peripherals/Entity/DvBus.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/Names.h"
#include "TreeSupport.h"

#include <algorithm>
#include <iostream>
#include <iterator>

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

BnGw::BnGw(const BnGw& other) : Bn(false) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    *this = other;
}

BnGw& BnGw::operator=(const BnGw& other) {
    if (this == &other) return *this;
    copyBaseStuff(other);
    delete _pDvBus;
    _pDvBus = nullptr;
    Detail::copyParent(_pBnDevice, _ownsBnDevice, other._pBnDevice, other._ownsBnDevice);
    dropDevices();
    _pDevices = Detail::copyChildren(other._pDevices, this, &BnDevice::attachBnGw);
    return *this;
}

BnGw::~BnGw() {
    dropDevices();
    Detail::releaseParent(_pBnDevice, _ownsBnDevice);
    delete _pDvBus;
}

const std::string& BnGw::getTableName() const {
    return Names::BN_GW;
}

const std::vector<const std::string*>& BnGw::getColNames() const {
    return _colNames;
}

void BnGw::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
    if (!_pDevices) return;
    for (auto& entry : *_pDevices) entry.second.setVar(BnDevice::_COL_ID_BN_GATEWAY, pk, true);
}

void BnGw::setBnDevice(BnDevice* device) {
    Detail::setParent(_pBnDevice, _ownsBnDevice, device);
    if (device) setVar(_COL_ID_BN_DEVICE, device->getPK(), true);
}

BnDevice* BnGw::retrieveBnDevice() {
    return Detail::retrieveParent(*this, _COL_ID_BN_DEVICE, _pBnDevice, _ownsBnDevice);
}

BnDevice* BnGw::getBnDevice() {
    return _pBnDevice ? _pBnDevice : retrieveBnDevice();
}

TQ::Peripherals::Entity::DvBus* BnGw::retrieveDvBus() {
    bool owned = true;
    return Detail::retrieveParent(*this, _COL_ID_DV_BUS, _pDvBus, owned);
}

TQ::Peripherals::Entity::DvBus* BnGw::getDvBus() {
    return _pDvBus ? _pDvBus : retrieveDvBus();
}

bool BnGw::isApduGateway() {
    TQ::Peripherals::Entity::DvBus* bus = getDvBus();
    if (!bus) return false;
    return bus->getVar(TQ::Peripherals::Entity::DvBus::_COL_ID_DV_BUS_TYPE).convert<int>() == APDU_BUS_TYPE;
}

std::map<int, BnDevice>* BnGw::retrieveDevices(std::string* where,
                                               const std::vector<Poco::Dynamic::Var>* binds) {
    Detail::retrieveChildren(*this, _pDevices, where, binds, nullptr);
    if (_pDevices)
        for (auto& entry : *_pDevices) entry.second.attachBnGw(this);
    return _pDevices;
}

std::map<int, BnDevice>* BnGw::getDevices() {
    return _pDevices ? _pDevices : retrieveDevices();
}

BnDevice* BnGw::findDevice(int id) {
    std::map<int, BnDevice>* devices = getDevices();
    if (!devices) return nullptr;
    auto found = devices->find(id);
    return found == devices->end() ? nullptr : &found->second;
}

void BnGw::addDevice(BnDevice& device) {
    if (!_pDevices) _pDevices = new std::map<int, BnDevice>();
    device.setNew(true);
    device.setBnGw(this);
    int key = device.getPK();
    if (key < 0) key = std::min(-1, _pDevices->empty() ? -1 : _pDevices->begin()->first - 1);
    (*_pDevices)[key] = device;
    (*_pDevices)[key].attachBnGw(this);
}

int BnGw::updateAll(TQ::Utility::Data::EntityServer& server,
                    std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements) {
    int rows = Detail::updateTree(*this, _pDevices, server, autoIncrements);
    if (!_pDevices) return rows;
    // Devices that waited under a negative place now have their stored keys.
    for (auto it = _pDevices->begin(); it != _pDevices->end() && it->first < 0;) {
        auto next = std::next(it);
        if (it->second.getPK() >= 0) {
            auto node = _pDevices->extract(it);
            node.key() = node.mapped().getPK();
            _pDevices->insert(std::move(node));
        }
        it = next;
    }
    return rows;
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

void BnGw::dropDevices() {
    delete _pDevices;
    _pDevices = nullptr;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
