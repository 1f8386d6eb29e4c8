#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"

#include "EntitySupport.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/Names.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;

namespace {

// A self-referencing type would otherwise print forever.
constexpr int kMaxPrintLevel = 16;

template <typename T>
void printNullable(std::ostream& out, const Poco::Nullable<T>& value) {
    if (value.isNull())
        out << "null";
    else
        out << +value.value();
}

// Definitions cached while the outermost load runs. If that load fails they are all dropped
// again: any of them may point at a definition whose members were never completed. Only the
// thread holding _mutexBdtc touches these.
int loadDepth = 0;
std::vector<int>* loadedInThisRun = nullptr;

}  // namespace

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDataTypeConstruct::_colNames{
    &Names::ID_BN_DATATYPE_CONSTRUCT,
    &Names::ID_PARENT,
    &Names::ID_BN_DATATYPE,
    &Names::ID_BN_DATATYPE_INTERNAL,
    &Names::CONTEXT_NR,
    &Names::ID_BN_MARKUP,
    &Names::NAME,
    &Names::OPTIONAL,
    &Names::SORT};
TQ_ENTITY_STATIC_INIT Poco::HashMap<int, const BnDataTypeConstruct*> BnDataTypeConstruct::_bdtc(64);
TQ_ENTITY_STATIC_INIT Poco::Mutex BnDataTypeConstruct::_mutexBdtc;

namespace {

// The cache owns its definitions; they go with the library, before the map itself.
struct CacheOwner {
    ~CacheOwner() { BnDataTypeConstruct::clearCash(); }
};
TQ_ENTITY_STATIC_INIT CacheOwner cacheOwner;

}  // namespace

BnDataTypeConstruct::DataTypeAndName::DataTypeAndName(const BnDataTypeConstruct* pDTC_,
                                                      const std::string& name_,
                                                      const Poco::Nullable<unsigned int>& idBnMarkup_,
                                                      const Poco::Nullable<unsigned char>& contextNr_,
                                                      unsigned int idBnDataTypeConstruct_,
                                                      unsigned int idParent_, bool optional_)
    : name(name_),
      idBnMarkup(idBnMarkup_),
      contextNr(contextNr_),
      idBnDataTypeConstruct(idBnDataTypeConstruct_),
      idParent(idParent_),
      optional(optional_),
      pDTC(pDTC_) {}

void BnDataTypeConstruct::DataTypeAndName::printIndents(int level) {
    for (int i = 0; i < level; ++i) std::cout << "    ";
}

void BnDataTypeConstruct::DataTypeAndName::printIt(int level) const {
    printIndents(level);
    std::cout << "name: \"" << name << "\",idBnMarkup: ";
    printNullable(std::cout, idBnMarkup);
    std::cout << ",contextNr: ";
    printNullable(std::cout, contextNr);
    std::cout << ",idBnDataTypeConstruct: " << idBnDataTypeConstruct << ",idParent: " << idParent
              << ",optional: " << (optional ? "true" : "false") << ",pDTC:" << std::endl;
    if (pDTC) pDTC->printIt(level + 1);
}

BnDataTypeConstruct::BnDataTypeConstruct(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

BnDataTypeConstruct::BnDataTypeConstruct(const std::vector<DataTypeAndName>& members)
    : Bn(false), _internalBDTCs(members) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    setPK(kSyntheticId, false);
    setVar(_COL_ID_PARENT, kSyntheticId, false);
    setVar(_COL_ID_BN_DATATYPE, kSyntheticId, false);
    setVar(_COL_OPTIONAL, false, false);
    setVar(_COL_SORT, 0, false);
}

const std::string& BnDataTypeConstruct::getTableName() const {
    return Names::BN_DATATYPE_CONSTRUCT;
}

const std::vector<const std::string*>& BnDataTypeConstruct::getColNames() const {
    return _colNames;
}

void BnDataTypeConstruct::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnDataTypeConstruct::getIdBnDataTypeConstruct() const {
    return getVar(_COL_ID_BN_DATATYPE_CONSTRUCT).convert<int>();
}

Poco::Nullable<int> BnDataTypeConstruct::getIdParent() const {
    return getNullableVar<int>(_COL_ID_PARENT);
}

int BnDataTypeConstruct::getIdBnDataType() const {
    return getVar(_COL_ID_BN_DATATYPE).convert<int>();
}

Poco::Nullable<unsigned int> BnDataTypeConstruct::getIdBnDataTypeInternal() const {
    return getNullableVar<unsigned int>(_COL_ID_BN_DATATYPE_INTERNAL);
}

Poco::Nullable<unsigned char> BnDataTypeConstruct::getContextNr() const {
    return getNullableVar<unsigned char>(_COL_CONTEXT_NR);
}

Poco::Nullable<unsigned int> BnDataTypeConstruct::getIdBnMarkup() const {
    return getNullableVar<unsigned int>(_COL_ID_BN_MARKUP);
}

Poco::Nullable<std::string> BnDataTypeConstruct::getName() const {
    return getNullableVar<std::string>(_COL_NAME);
}

bool BnDataTypeConstruct::isOptional() const {
    const Poco::Dynamic::Var& value = getVar(_COL_OPTIONAL);
    return !value.isEmpty() && value.convert<bool>();
}

unsigned int BnDataTypeConstruct::getSort() const {
    return getVar(_COL_SORT).convert<unsigned int>();
}

const BnDataTypeConstruct* BnDataTypeConstruct::find(BACnetDataType type, EntityServer* server) {
    return Detail::findCached<const BnDataTypeConstruct*>(
        _mutexBdtc, server, [type] { return Detail::cachedIn(_bdtc, static_cast<int>(type)); },
        [type](EntityServer& s) { return retrieve(type, s); });
}

const BnDataTypeConstruct* BnDataTypeConstruct::retrieve(BACnetDataType type, EntityServer& server) {
    Poco::Mutex::ScopedLock lock(_mutexBdtc);
    std::vector<int> loaded;
    if (loadDepth == 0) loadedInThisRun = &loaded;
    ++loadDepth;
    try {
        const BnDataTypeConstruct* definition = load(type, server);
        if (--loadDepth == 0) loadedInThisRun = nullptr;
        return definition;
    } catch (...) {
        if (--loadDepth == 0) {
            for (int key : loaded) {
                auto entry = _bdtc.find(key);
                if (entry == _bdtc.end()) continue;
                delete entry->second;
                _bdtc.erase(entry);
            }
            loadedInThisRun = nullptr;
        }
        throw;
    }
}

const BnDataTypeConstruct* BnDataTypeConstruct::load(BACnetDataType type, EntityServer& server) {
    auto cached = _bdtc.find(static_cast<int>(type));
    if (cached != _bdtc.end()) return cached->second;

    server.setWhere(Names::ID_BN_DATATYPE + "=?");
    server.setOrderBy(Names::SORT);
    server.clearBinds();
    server.addBind(static_cast<unsigned int>(type));
    std::vector<BnDataTypeConstruct> rows;
    if (server.retrieve(rows) < 1 || rows.empty()) return nullptr;

    // Member rows need both keys; check them all before anything is cached.
    for (std::size_t i = 1; i < rows.size(); ++i) {
        rows[i].getVar(_COL_ID_BN_DATATYPE_CONSTRUCT).convert<unsigned int>();
        rows[i].getVar(_COL_ID_PARENT).convert<unsigned int>();
    }

    // Cached before the members are read, so that a member of the type's own type finds it.
    BnDataTypeConstruct* top = new BnDataTypeConstruct(rows.front());
    _bdtc[static_cast<int>(type)] = top;
    loadedInThisRun->push_back(static_cast<int>(type));

    top->_internalBDTCs.reserve(rows.size() - 1);
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const BnDataTypeConstruct& row = rows[i];
        Poco::Nullable<unsigned int> internal = row.getIdBnDataTypeInternal();
        const BnDataTypeConstruct* memberType =
            internal.isNull() ? nullptr : find(static_cast<BACnetDataType>(internal.value()), &server);
        Poco::Nullable<std::string> name = row.getName();
        top->_internalBDTCs.emplace_back(
            memberType, name.isNull() ? std::string() : name.value(), row.getIdBnMarkup(), row.getContextNr(),
            row.getVar(_COL_ID_BN_DATATYPE_CONSTRUCT).convert<unsigned int>(),
            row.getVar(_COL_ID_PARENT).convert<unsigned int>(), row.isOptional());
    }
    return top;
}

void BnDataTypeConstruct::clearCash() {
    for (auto& entry : _bdtc) delete entry.second;
    _bdtc.clear();
}

BACnetDataType BnDataTypeConstruct::get_datatype(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property) {
    DataPropertyInObject0 descriptor;
    DataPropertyInObject0::getValueTypeAndStructure(objectType, property, descriptor, false);
    return descriptor.datatype;
}

void BnDataTypeConstruct::printIt(int level) const {
    DataTypeAndName::printIndents(level);
    Detail::printAllColumns(*this, std::cout, ": ", ",");
    std::cout << ",Size of _internalBDTCs: " << _internalBDTCs.size() << std::endl;
    if (level >= kMaxPrintLevel) return;
    for (const DataTypeAndName& member : _internalBDTCs) member.printIt(level + 1);
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
