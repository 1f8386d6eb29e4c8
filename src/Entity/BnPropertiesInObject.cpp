#include "TQ_BACnet/Entity/BnPropertiesInObject.h"

#include "EntitySupport.h"
#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/Entity/Names.h"

#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;
using TQ::Utility::Data::pDB;

namespace {

// The property list names the other properties; it is never offered as one of them.
constexpr int kPropertyList = 371;

const std::string& propertyListingSql() {
    static const std::string sql =
        "SELECT a." + Names::ID_BN_PROPERTY_TYPE + " FROM " + Names::BN_PROPERTIES_IN_OBJECT +
        " a, bn_property_type b" + " WHERE b." + Names::ID_BN_PROPERTY_TYPE + "=a." +
        Names::ID_BN_PROPERTY_TYPE + " AND a." + Names::ID_BN_OBJECT_TYPE + "=?" + " AND a." +
        Names::OPTIONAL + ">?" + " AND a." + Names::OPTIONAL + "<?" + " AND a." + Names::ID_BN_PROPERTY_TYPE +
        "<> " + std::to_string(kPropertyList) + " ORDER BY b.sort";
    return sql;
}

bool isNumericTag(int tag) {
    return tag == BACNET_APPLICATION_TAG_UNSIGNED_INT || tag == BACNET_APPLICATION_TAG_SIGNED_INT ||
           tag == BACNET_APPLICATION_TAG_REAL || tag == BACNET_APPLICATION_TAG_DOUBLE;
}

}  // namespace

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnPropertiesInObject::_colNames{
    &Names::ID_BN_PROPERTIES_IN_OBJECT,
    &Names::ID_BN_OBJECT_TYPE,
    &Names::ID_BN_PROPERTY_TYPE,
    &Names::OPTIONAL,
    &Names::EMPTY_ALLOWED,
    &Names::DEFAULT_VALUE,
    &Names::ID_BN_DATATYPE,
    &Names::TAG,
    &Names::TAG_STRUCTURE,
    &Names::LIST_REQUEST_TYPES,
    &Names::DESCRIPTION,
    &Names::MANAGED_INTERNALLY};

BnPropertiesInObject::BnPropertiesInObject(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

BnPropertiesInObject::BnPropertiesInObject(const BnPropertiesInObject& other) : Bn(false) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    *this = other;
}

BnPropertiesInObject& BnPropertiesInObject::operator=(const BnPropertiesInObject& other) {
    if (this == &other) return *this;
    copyBaseStuff(other);
    copyBnDeviceObjectProperties(other);
    return *this;
}

BnPropertiesInObject::~BnPropertiesInObject() {
    dropBnDeviceObjectProperties();
}

const std::string& BnPropertiesInObject::getTableName() const {
    return Names::BN_PROPERTIES_IN_OBJECT;
}

const std::vector<const std::string*>& BnPropertiesInObject::getColNames() const {
    return _colNames;
}

void BnPropertiesInObject::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
    if (!_pBnDeviceObjectProperties) return;
    for (auto& entry : *_pBnDeviceObjectProperties)
        entry.second.setVar(BnDeviceObjectProperty::_COL_ID_BN_PROPERTIES_IN_OBJECT, pk, true);
}

int BnPropertiesInObject::retrieve(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property) {
    EntityServer server(pDB, nullptr, nullptr);
    dropBnDeviceObjectProperties();
    server.setWhere(Names::ID_BN_OBJECT_TYPE + "=?" + " AND " + Names::ID_BN_PROPERTY_TYPE + "=?");
    server.addBind(static_cast<unsigned>(objectType));
    server.addBind(static_cast<unsigned>(property));
    return server.retrieve(*this);
}

int BnPropertiesInObject::retrieve(BACNET_OBJECT_TYPE objectType, Optional above, Optional below,
                                   std::vector<int>& propertyIds) {
    using Poco::Data::Keywords::into;
    using Poco::Data::Keywords::use;
    propertyIds.clear();
    if (!pDB) throw Poco::NullPointerException("BnPropertiesInObject::retrieve(): no database session");
    int type = static_cast<int>(objectType);
    int lower = above;
    int upper = below;
    TQ::Utility::Data::SmoDbSession::Use session(*pDB);
    Poco::Data::Statement statement(pDB->getSession());
    statement << propertyListingSql(), use(type), use(lower), use(upper), into(propertyIds);
    statement.execute();
    propertyIds.push_back(-1);
    propertyIds.shrink_to_fit();
    return static_cast<int>(propertyIds.size()) - 1;
}

Poco::Nullable<bool> BnPropertiesInObject::isNumeric(BACNET_OBJECT_TYPE objectType,
                                                     BACNET_PROPERTY_ID property) {
    BnPropertiesInObject row(false);
    if (row.retrieve(objectType, property) < 1) return Poco::Nullable<bool>();
    int tag = row.getTag();
    int structure = row.getTagStructure();
    return Poco::Nullable<bool>(structure == BACNET_DTS_SINGLE_VALUE && isNumericTag(tag));
}

std::map<int, BnDeviceObjectProperty>* BnPropertiesInObject::getBnDeviceObjectProperties() {
    return _pBnDeviceObjectProperties ? _pBnDeviceObjectProperties : retrieveBnDeviceObjectProperties();
}

std::map<int, BnDeviceObjectProperty>* BnPropertiesInObject::retrieveBnDeviceObjectProperties(
    std::string* where, const std::vector<Poco::Dynamic::Var>* binds) {
    // The stored properties are read joined with this table, so the key column is qualified
    // with the stored table's alias.
    static const std::string alias = "a";
    std::vector<Poco::Dynamic::Var> allBinds;
    std::string childWhere = getChildsWhere(allBinds, where, binds, &alias);
    EntityServer server(pDB, nullptr, &childWhere);
    server.setBinds(allBinds);
    if (!_pBnDeviceObjectProperties)
        _pBnDeviceObjectProperties = new std::map<int, BnDeviceObjectProperty>();
    else
        _pBnDeviceObjectProperties->clear();
    int rows;
    try {
        rows = server.retrieve(*_pBnDeviceObjectProperties);
    } catch (...) {
        dropBnDeviceObjectProperties();
        throw;
    }
    if (rows < 1 || _pBnDeviceObjectProperties->empty()) {
        dropBnDeviceObjectProperties();
        return nullptr;
    }
    for (auto& entry : *_pBnDeviceObjectProperties) entry.second.attachBnPropertiesInObject(this);
    return _pBnDeviceObjectProperties;
}

BnDeviceObjectProperty* BnPropertiesInObject::findBnDeviceObjectProperty(int id) {
    std::map<int, BnDeviceObjectProperty>* properties = getBnDeviceObjectProperties();
    if (!properties) return nullptr;
    auto found = properties->find(id);
    return found == properties->end() ? nullptr : &found->second;
}

int BnPropertiesInObject::getIdBnPropertiesInObject() const {
    return getVar(_COL_ID_BN_PROPERTIES_IN_OBJECT).convert<int>();
}

int BnPropertiesInObject::getIdBnObjectType() const {
    return getVar(_COL_ID_BN_OBJECT_TYPE).convert<int>();
}

int BnPropertiesInObject::getIdBnPropertyType() const {
    return getVar(_COL_ID_BN_PROPERTY_TYPE).convert<int>();
}

int BnPropertiesInObject::getOptional() const {
    return getVar(_COL_OPTIONAL).convert<int>();
}

bool BnPropertiesInObject::isEmptyAllowed() const {
    return getVar(_COL_EMPTY_ALLOWED).convert<bool>();
}

const Poco::Dynamic::Var& BnPropertiesInObject::getDefaultValue() const {
    return getVar(_COL_DEFAULT_VALUE);
}

int BnPropertiesInObject::getIdBnDataType() const {
    return getVar(_COL_ID_BN_DATATYPE).convert<int>();
}

int BnPropertiesInObject::getTag() const {
    return getVar(_COL_TAG).convert<int>();
}

int BnPropertiesInObject::getTagStructure() const {
    return getVar(_COL_TAG_STRUCTURE).convert<int>();
}

const Poco::Dynamic::Var& BnPropertiesInObject::getListRequestTypes() const {
    return getVar(_COL_LIST_REQUEST_TYPES);
}

Poco::Nullable<std::string> BnPropertiesInObject::getDescription() const {
    return getNullableVar<std::string>(_COL_DESCRIPTION);
}

int BnPropertiesInObject::getManagedInternally() const {
    return getVar(_COL_MANAGED_INTERNALLY).convert<int>();
}

void BnPropertiesInObject::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

void BnPropertiesInObject::dropBnDeviceObjectProperties() {
    delete _pBnDeviceObjectProperties;
    _pBnDeviceObjectProperties = nullptr;
}

void BnPropertiesInObject::copyBnDeviceObjectProperties(const BnPropertiesInObject& other) {
    dropBnDeviceObjectProperties();
    if (!other._pBnDeviceObjectProperties) return;
    _pBnDeviceObjectProperties = new std::map<int, BnDeviceObjectProperty>(*other._pBnDeviceObjectProperties);
    for (auto& entry : *_pBnDeviceObjectProperties) entry.second.attachBnPropertiesInObject(this);
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
