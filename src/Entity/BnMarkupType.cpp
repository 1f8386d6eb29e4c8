#include "TQ_BACnet/Entity/BnMarkupType.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

#include <Poco/Exception.h>

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnMarkupType::_colNames{&Names::ID_BN_MARKUP_TYPE,
                                                                                    &Names::NAME};
TQ_ENTITY_STATIC_INIT Poco::HashMap<int, std::string> BnMarkupType::_types(64);
TQ_ENTITY_STATIC_INIT Poco::HashMap<std::string, int> BnMarkupType::_typesReverse(64);
TQ_ENTITY_STATIC_INIT Poco::FastMutex BnMarkupType::_mutexTypes;

BnMarkupType::BnMarkupType(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& BnMarkupType::getTableName() const {
    return Names::BN_MARKUP_TYPE;
}

const std::vector<const std::string*>& BnMarkupType::getColNames() const {
    return _colNames;
}

void BnMarkupType::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnMarkupType::getIdBnMarkupType() const {
    return getVar(_COL_ID_BN_MARKUP_TYPE).convert<int>();
}

std::string BnMarkupType::getName() const {
    return getVar(_COL_NAME).convert<std::string>();
}

std::string BnMarkupType::find(int id, EntityServer* server) {
    Poco::Nullable<std::string> name = Detail::findCached<Poco::Nullable<std::string>>(
        _mutexTypes, server, [id] { return Detail::cachedIn(_types, id); },
        [id](EntityServer& s) { return retrieve(static_cast<unsigned int>(id), s); });
    if (name.isNull())
        throw Poco::NullValueException("BnMarkupType::find(): no markup type " + std::to_string(id) +
                                       " in database");
    return name.value();
}

Poco::Nullable<std::string> BnMarkupType::retrieve(unsigned int id, EntityServer& server) {
    server.setWhere(Names::ID_BN_MARKUP_TYPE + "=?");
    server.clearBinds();
    server.addBind(id);
    BnMarkupType row(false);
    if (server.retrieve(row) < 1) return Poco::Nullable<std::string>();
    std::string name = row.getName();
    _types[static_cast<int>(id)] = name;
    _typesReverse[name] = static_cast<int>(id);
    return Poco::Nullable<std::string>(name);
}

Poco::Nullable<int> BnMarkupType::findReverse(const std::string& name, EntityServer* server) {
    return Detail::findCached<Poco::Nullable<int>>(
        _mutexTypes, server, [&name] { return Detail::cachedIn(_typesReverse, name); },
        [&name](EntityServer& s) { return retrieveReverse(name, s); });
}

Poco::Nullable<int> BnMarkupType::retrieveReverse(const std::string& name, EntityServer& server) {
    server.setWhere(Names::NAME + "=?");
    server.clearBinds();
    server.addBind(name);
    BnMarkupType row(false);
    if (server.retrieve(row) < 1) return Poco::Nullable<int>();
    int id = row.getIdBnMarkupType();
    _types[id] = name;
    _typesReverse[name] = id;
    return Poco::Nullable<int>(id);
}

void BnMarkupType::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
