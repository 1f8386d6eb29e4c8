#include "TQ/Peripherals/Entity/DvBus.h"

#include "TQ/Utility/Data/EntityServer.h"

namespace TQ {
namespace Peripherals {
namespace Entity {

namespace {

const std::string kIdDvBus("id_dv_bus");
const std::string kIdDvBusType("id_dv_bus_type");
const std::string kName("name");

}  // namespace

const std::string DvBus::TABLE_NAME("dv_bus");
const std::vector<const std::string*> DvBus::_colNames{&kIdDvBus, &kIdDvBusType, &kName};

DvBus::DvBus(bool isNew) : TQ::Utility::Data::Entity(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& DvBus::getTableName() const {
    return TABLE_NAME;
}

const std::vector<const std::string*>& DvBus::getColNames() const {
    return _colNames;
}

int DvBus::getIdDvBus() const {
    return getVar(_COL_ID_DV_BUS).convert<int>();
}

int DvBus::getIdDvBusType() const {
    return getVar(_COL_ID_DV_BUS_TYPE).convert<int>();
}

void DvBus::setIdDvBusType(int type) {
    setVar(_COL_ID_DV_BUS_TYPE, type, true);
}

std::string DvBus::getName() const {
    Poco::Nullable<std::string> name = getNullableVar<std::string>(_COL_NAME);
    return name.isNull() ? std::string() : name.value();
}

void DvBus::setName(const std::string& name) {
    setVar(_COL_NAME, name, true);
}

int DvBus::retrieve(int id, TQ::Utility::Data::SmoDbSession* session) {
    TQ::Utility::Data::EntityServer server(session);
    server.setWhere(kIdDvBus + "=?");
    server.addBind(id);
    return server.retrieve(*this);
}

}  // namespace Entity
}  // namespace Peripherals
}  // namespace TQ
