#include "TQ_BACnet/Entity/BnDataType.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;

namespace {

const std::string kProprietaryWord = "Proprietary";

std::string userVisibleName(const std::string& name, int vendorId, const std::string& prefix) {
    if (vendorId != BnDataType::kMakerVendorId) return prefix + name;
    if (name.compare(0, kProprietaryWord.size(), kProprietaryWord) == 0)
        return prefix + name.substr(kProprietaryWord.size());
    return name;
}

}  // namespace

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDataType::_colNames{&Names::ID_BN_DATATYPE,
                                                                                  &Names::NAME};
TQ_ENTITY_STATIC_INIT Poco::HashMap<int, std::string> BnDataType::_types(64);
TQ_ENTITY_STATIC_INIT Poco::HashMap<std::string, int> BnDataType::_typesReverse(64);
TQ_ENTITY_STATIC_INIT Poco::FastMutex BnDataType::_mutexTypes;

BnDataType::Record::Record(const BnDataType& row) : id(row.getIdBnDataType()), name(row.getName()) {}

BnDataType::BnDataType(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& BnDataType::getTableName() const {
    return Names::BN_DATATYPE;
}

const std::vector<const std::string*>& BnDataType::getColNames() const {
    return _colNames;
}

void BnDataType::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnDataType::getIdBnDataType() const {
    return getVar(_COL_ID_BN_DATATYPE).convert<int>();
}

std::string BnDataType::getName() const {
    return getVar(_COL_NAME).convert<std::string>();
}

std::string BnDataType::find(BACnetDataType type, EntityServer* server) {
    return Detail::findCached<std::string>(
        _mutexTypes, server, [type] { return Detail::cachedIn(_types, static_cast<int>(type)); },
        [type](EntityServer& s) { return retrieve(type, s); });
}

std::string BnDataType::retrieve(BACnetDataType type, EntityServer& server) {
    server.setWhere(Names::ID_BN_DATATYPE + "=?");
    server.clearBinds();
    server.addBind(static_cast<unsigned int>(type));
    BnDataType row(false);
    if (server.retrieve(row) < 1) return std::string();
    std::string name = row.getName();
    _types[static_cast<int>(type)] = name;
    _typesReverse[name] = static_cast<int>(type);
    return name;
}

BACnetDataType BnDataType::findReverse(const std::string& name, EntityServer* server) {
    return Detail::findCached<BACnetDataType>(
        _mutexTypes, server, [&name] { return Detail::cachedIn(_typesReverse, name); },
        [&name](EntityServer& s) { return retrieveReverse(name, s); });
}

BACnetDataType BnDataType::retrieveReverse(const std::string& name, EntityServer& server) {
    server.setWhere(Names::NAME + "=?");
    server.clearBinds();
    server.addBind(name);
    BnDataType row(false);
    if (server.retrieve(row) < 1) return BACNET_DT_NOT_FOUND;
    int number = row.getIdBnDataType();
    _types[number] = name;
    _typesReverse[name] = number;
    return static_cast<BACnetDataType>(number);
}

int BnDataType::retrieveRange(unsigned int low, unsigned int high, int vendorId, std::vector<Record>& out,
                              EntityServer* server) {
    std::vector<BnDataType> rows;
    int count = Detail::withServer(server, [&](EntityServer& s) {
        s.setWhere(Names::ID_BN_DATATYPE + ">=? AND " + Names::ID_BN_DATATYPE + "<?");
        s.clearBinds();
        s.addBind(low);
        s.addBind(high);
        s.setOrderBy(Names::NAME);
        return s.retrieve(rows);
    });
    if (vendorId < 0 || count < 1) return count;
    const std::string prefix = std::to_string(vendorId) + "-";
    out.reserve(out.size() + rows.size());
    for (const BnDataType& row : rows) {
        Record record(row);
        record.name = userVisibleName(record.name, vendorId, prefix);
        out.push_back(std::move(record));
    }
    return count;
}

int BnDataType::retrieveAllUserVisible(std::vector<Record>& out, EntityServer* server) {
    int standard = retrieveRange(0, kProprietaryBegin, 0, out, server);
    if (standard < 0) return standard;
    int proprietary = retrieveRange(kProprietaryBegin, kProprietaryEnd, kMakerVendorId, out, server);
    if (proprietary < 0) return proprietary;
    return standard + proprietary;
}

void BnDataType::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
