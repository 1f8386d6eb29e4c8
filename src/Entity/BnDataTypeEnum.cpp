#include "TQ_BACnet/Entity/BnDataTypeEnum.h"

#include "EntitySupport.h"
#include "TQ/Utility/BitBuffer.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/Names.h"

#include <cstdio>
#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// The parts of a ";"-separated list with surrounding blanks trimmed; empty parts are kept so
// that the caller can refuse them. A text of blanks only has no parts.
std::vector<std::string> splitNames(const std::string& names) {
    std::vector<std::string> parts;
    if (names.find_first_not_of(" \t") == std::string::npos) return parts;
    std::size_t begin = 0;
    while (true) {
        std::size_t end = names.find(';', begin);
        std::size_t last = end == std::string::npos ? names.size() : end;
        std::size_t first = begin;
        while (first < last && isBlank(names[first])) ++first;
        while (last > first && isBlank(names[last - 1])) --last;
        parts.emplace_back(names, first, last - first);
        if (end == std::string::npos) break;
        begin = end + 1;
    }
    return parts;
}

}  // namespace

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDataTypeEnum::_colNames{
    &Names::ID_BN_DATATYPE_ENUM, &Names::ID_BN_DATATYPE_CONSTRUCT, &Names::VALUE, &Names::NAME};
TQ_ENTITY_STATIC_INIT Poco::HashMap<unsigned int, std::string> BnDataTypeEnum::_enums(64);
TQ_ENTITY_STATIC_INIT Poco::HashMap<Poco::UInt64, std::string> BnDataTypeEnum::_enumsWide(16);
TQ_ENTITY_STATIC_INIT Poco::HashMap<std::string, unsigned int> BnDataTypeEnum::_enumsReverse(64);
TQ_ENTITY_STATIC_INIT Poco::HashMap<unsigned int, int> BnDataTypeEnum::_bitCnt(64);
TQ_ENTITY_STATIC_INIT Poco::FastMutex BnDataTypeEnum::_mutexEnums;

BnDataTypeEnum::BnDataTypeEnum(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& BnDataTypeEnum::getTableName() const {
    return Names::BN_DATATYPE_ENUM;
}

const std::vector<const std::string*>& BnDataTypeEnum::getColNames() const {
    return _colNames;
}

void BnDataTypeEnum::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnDataTypeEnum::getIdBnDataTypeEnum() const {
    return getVar(_COL_ID_BN_DATATYPE_ENUM).convert<int>();
}

unsigned int BnDataTypeEnum::getIdBnDataTypeConstruct() const {
    return getVar(_COL_ID_BN_DATATYPE_CONSTRUCT).convert<unsigned int>();
}

unsigned int BnDataTypeEnum::getValue() const {
    return getVar(_COL_VALUE).convert<unsigned int>();
}

std::string BnDataTypeEnum::getName() const {
    return getVar(_COL_NAME).convert<std::string>();
}

std::string BnDataTypeEnum::getHashKeyReverse(unsigned int idConstruct, const std::string& name) {
    char hex[12];
    int length = std::snprintf(hex, sizeof hex, "%04X", idConstruct);
    std::string key;
    key.reserve(static_cast<std::size_t>(length) + name.size());
    key.append(hex, static_cast<std::size_t>(length));
    key.append(name);
    return key;
}

void BnDataTypeEnum::remember(unsigned int idConstruct, unsigned int value, const std::string& name) {
    if (value > 0xFFFFu)
        _enumsWide[getWideKey(idConstruct, value)] = name;
    else
        _enums[getHashKey(idConstruct, value)] = name;
    _enumsReverse[getHashKeyReverse(idConstruct, name)] = value;
}

std::string BnDataTypeEnum::find(unsigned int idConstruct, unsigned int value, EntityServer* server) {
    idConstruct = alias(idConstruct);
    return Detail::findCached<std::string>(
        _mutexEnums, server,
        [&] {
            return value > 0xFFFFu ? Detail::cachedIn(_enumsWide, getWideKey(idConstruct, value))
                                   : Detail::cachedIn(_enums, getHashKey(idConstruct, value));
        },
        [&](EntityServer& s) { return retrieve(idConstruct, value, s); });
}

std::string BnDataTypeEnum::retrieve(unsigned int idConstruct, unsigned int value, EntityServer& server) {
    server.setWhere(Names::ID_BN_DATATYPE_CONSTRUCT + "=? AND " + Names::VALUE + "=?");
    server.clearBinds();
    server.addBind(idConstruct);
    server.addBind(value);
    BnDataTypeEnum row(false);
    if (server.retrieve(row) < 1) return std::string();
    std::string name = row.getName();
    remember(idConstruct, value, name);
    return name;
}

unsigned int BnDataTypeEnum::findReverse(unsigned int idConstruct, const std::string& name,
                                         EntityServer* server) {
    idConstruct = alias(idConstruct);
    return Detail::findCached<unsigned int>(
        _mutexEnums, server, [&] { return Detail::cachedIn(_enumsReverse, getHashKeyReverse(idConstruct, name)); },
        [&](EntityServer& s) { return retrieveReverse(idConstruct, name, s); });
}

unsigned int BnDataTypeEnum::retrieveReverse(unsigned int idConstruct, const std::string& name,
                                             EntityServer& server) {
    server.setWhere(Names::ID_BN_DATATYPE_CONSTRUCT + "=? AND " + Names::NAME + "=?");
    server.clearBinds();
    server.addBind(idConstruct);
    server.addBind(name);
    BnDataTypeEnum row(false);
    if (server.retrieve(row) < 1) return kNotFound;
    unsigned int value = row.getValue();
    remember(idConstruct, value, name);
    return value;
}

std::string BnDataTypeEnum::getEnumNameById(unsigned int idConstruct, unsigned int value,
                                            EntityServer* server, bool* found) {
    std::string name = find(idConstruct, value, server);
    if (found) *found = !name.empty();
    return name.empty() ? std::to_string(value) : name;
}

std::string BnDataTypeEnum::getEnumNameByType(BACnetDataType type, unsigned int value, EntityServer* server,
                                              bool* found) {
    // The construct lookup has released its own lock before the name lookup takes ours.
    const BnDataTypeConstruct* construct = BnDataTypeConstruct::find(type, server);
    if (!construct) {
        if (found) *found = false;
        return std::to_string(value);
    }
    return getEnumNameById(static_cast<unsigned int>(construct->getIdBnDataTypeConstruct()), value, server,
                           found);
}

unsigned int BnDataTypeEnum::getEnumValueById(unsigned int idConstruct, const std::string& name,
                                              EntityServer* server) {
    return findReverse(idConstruct, name, server);
}

unsigned int BnDataTypeEnum::getEnumValueByType(BACnetDataType type, const std::string& name,
                                                EntityServer* server) {
    const BnDataTypeConstruct* construct = BnDataTypeConstruct::find(type, server);
    if (!construct) return kNotFound;
    return findReverse(static_cast<unsigned int>(construct->getIdBnDataTypeConstruct()), name, server);
}

int BnDataTypeEnum::getBitCount(unsigned int idConstruct, EntityServer* server) {
    idConstruct = alias(idConstruct);
    return Detail::findCached<int>(
        _mutexEnums, server, [&] { return Detail::cachedIn(_bitCnt, idConstruct); },
        [&](EntityServer& s) { return retrieveBitCount(idConstruct, s); });
}

int BnDataTypeEnum::retrieveBitCount(unsigned int idConstruct, EntityServer& server) {
    server.setWhere(Names::ID_BN_DATATYPE_CONSTRUCT + "=? AND " + Names::VALUE + "=(SELECT MAX(" +
                    Names::VALUE + ") FROM " + Names::BN_DATATYPE_ENUM + " WHERE " +
                    Names::ID_BN_DATATYPE_CONSTRUCT + "=?)");
    server.clearBinds();
    server.addBind(idConstruct);
    server.addBind(idConstruct);
    BnDataTypeEnum row(false);
    if (server.retrieve(row) < 1) return -1;
    int count = static_cast<int>(row.getValue()) + 1;
    _bitCnt[idConstruct] = count;
    return count;
}

bool BnDataTypeEnum::getBitString(unsigned int idConstruct, const std::string& names,
                                  TQ::Utility::BitBuffer& bits, EntityServer* server) {
    int count = getBitCount(idConstruct, server);
    if (count < 1) return false;
    bits.setBitsUsed(static_cast<unsigned>(count));
    for (const std::string& part : splitNames(names)) {
        if (part.empty()) return false;
        unsigned int bit = findReverse(idConstruct, part, server);
        if (bit == kNotFound || bit >= static_cast<unsigned int>(count)) return false;
        bits.setBit(bit, true);
    }
    return true;
}

bool BnDataTypeEnum::getBitString(unsigned int idConstruct, const std::string& names, std::string& text,
                                  EntityServer* server) {
    TQ::Utility::BitBuffer bits(1);
    if (!getBitString(idConstruct, names, bits, server)) return false;
    text = bits.getString();
    return true;
}

int BnDataTypeEnum::retrieve(unsigned int idConstruct, ORDER_BY order, std::vector<BnDataTypeEnum>& out,
                             EntityServer* server) {
    return Detail::withServer(server, [&](EntityServer& s) {
        s.setWhere(Names::ID_BN_DATATYPE_CONSTRUCT + "=?");
        s.setOrderBy(*_colNames[order == ORDER_BY_VALUE ? _COL_VALUE : _COL_NAME]);
        s.clearBinds();
        s.addBind(idConstruct);
        return s.retrieve(out);
    });
}

void BnDataTypeEnum::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
