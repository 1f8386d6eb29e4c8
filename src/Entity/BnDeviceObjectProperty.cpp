#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"

#include "TQ_BACnet/Entity/BnDeviceObject.h"
#include "TQ_BACnet/Entity/BnDeviceObjectPropertyValue.h"
#include "TQ_BACnet/Entity/BnPropertiesInObject.h"
#include "TQ_BACnet/Entity/Names.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TreeSupport.h"

#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;
using TQ::Utility::Data::pDB;

static_assert(int{BnDeviceObjectProperty::OPTIONAL_REQUIRED_WRITABLE} ==
                      int{BnPropertiesInObject::OPTIONAL_REQUIRED_WRITABLE} &&
                  int{BnDeviceObjectProperty::OPTIONAL_OPTIONAL} ==
                      int{BnPropertiesInObject::OPTIONAL_OPTIONAL} &&
                  int{BnDeviceObjectProperty::OPTIONAL_ALL} == int{BnPropertiesInObject::OPTIONAL_ALL},
              "one set of property classes");

namespace {

// The property list names the other properties; it is never listed as one of them.
constexpr int kPropertyList = 371;

TQ::Utility::Data::SmoDbSession& globalSession(const char* what) {
    if (!pDB) throw Poco::NullPointerException(std::string(what) + ": no database session");
    return *pDB;
}

}  // namespace

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnDeviceObjectProperty::_colNames{
    &Names::ID_BN_DEVICE_OBJECT_PROPERTY,
    &Names::ID_BN_PROPERTY_TYPE,
    &Names::ID_BN_DEVICE_OBJECT,
    &Names::ID_BN_PROPERTIES_IN_OBJECT,
    &Names::ID_DV_PORT,
    &Names::VALUE,
    &Names::POLL_RATE_SEC};

BnDeviceObjectProperty::BnDeviceObjectProperty(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    setUpdateable(_COL_ID_BN_PROPERTY_TYPE, false);
}

BnDeviceObjectProperty::BnDeviceObjectProperty(const BnDeviceObjectProperty& other) : Bn(false) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
    *this = other;
}

BnDeviceObjectProperty& BnDeviceObjectProperty::operator=(const BnDeviceObjectProperty& other) {
    if (this == &other) return *this;
    copyBaseStuff(other);
    releaseBnPropertiesInObject();
    if (!other._ownsBnPropertiesInObject) attachBnPropertiesInObject(other._pBnPropertiesInObject);
    Detail::copyParent(_pBnDeviceObject, _ownsBnDeviceObject, other._pBnDeviceObject,
                       other._ownsBnDeviceObject);
    delete _pValue;
    _pValue = other._pValue ? new BnDeviceObjectPropertyValue(*other._pValue) : nullptr;
    return *this;
}

BnDeviceObjectProperty::~BnDeviceObjectProperty() {
    releaseBnPropertiesInObject();
    Detail::releaseParent(_pBnDeviceObject, _ownsBnDeviceObject);
    delete _pValue;
}

const std::string& BnDeviceObjectProperty::getTableName() const {
    return Names::BN_DEVICE_OBJECT_PROPERTY;
}

const std::vector<const std::string*>& BnDeviceObjectProperty::getColNames() const {
    return _colNames;
}

void BnDeviceObjectProperty::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
    if (_pValue) _pValue->setIdBnDeviceObjectProperty(pk);
}

int BnDeviceObjectProperty::operator()() const {
    return getIdBnPropertyType();
}

bool BnDeviceObjectProperty::operator<(const TQ::Utility::Data::Entity& other) const {
    const BnDeviceObjectProperty* property = dynamic_cast<const BnDeviceObjectProperty*>(&other);
    if (!property) return Entity::operator<(other);
    return getIdBnPropertyType() < property->getIdBnPropertyType();
}

std::string BnDeviceObjectProperty::sqlFrom() const {
    return Names::BN_DEVICE_OBJECT_PROPERTY + " a," + Names::BN_PROPERTIES_IN_OBJECT + " b";
}

std::string BnDeviceObjectProperty::sqlJoin() const {
    return "a." + Names::ID_BN_PROPERTIES_IN_OBJECT + "=b." + Names::ID_BN_PROPERTIES_IN_OBJECT;
}

std::string BnDeviceObjectProperty::sqlOrderBy() const {
    return "2";
}

int BnDeviceObjectProperty::getIdBnDeviceObjectProperty() const {
    return getVar(_COL_ID_BN_DEVICE_OBJECT_PROPERTY).convert<int>();
}

int BnDeviceObjectProperty::getIdBnPropertyType() const {
    return getVar(_COL_ID_BN_PROPERTY_TYPE).convert<int>();
}

int BnDeviceObjectProperty::getIdBnDeviceObject() const {
    return getVar(_COL_ID_BN_DEVICE_OBJECT).convert<int>();
}

void BnDeviceObjectProperty::setIdBnDeviceObject(int idBnDeviceObject) {
    setVar(_COL_ID_BN_DEVICE_OBJECT, idBnDeviceObject, true);
}

Poco::Nullable<int> BnDeviceObjectProperty::getIdBnPropertiesInObject() const {
    return getNullableVar<int>(_COL_ID_BN_PROPERTIES_IN_OBJECT);
}

Poco::Nullable<int> BnDeviceObjectProperty::getIdDvPort() const {
    return getNullableVar<int>(_COL_ID_DV_PORT);
}

void BnDeviceObjectProperty::setIdDvPort(int idDvPort) {
    setVar(_COL_ID_DV_PORT, idDvPort, true);
}

Poco::Nullable<std::string> BnDeviceObjectProperty::getValueText() const {
    return getNullableVar<std::string>(_COL_VALUE);
}

void BnDeviceObjectProperty::setValueText(const std::string& text) {
    setVar(_COL_VALUE, text, true);
}

Poco::Nullable<int> BnDeviceObjectProperty::getPollRateSec() const {
    return getNullableVar<int>(_COL_POLL_RATE_SEC);
}

void BnDeviceObjectProperty::setPollRateSec(const Poco::Nullable<int>& seconds) {
    setVar(_COL_POLL_RATE_SEC, seconds.isNull() ? Poco::Dynamic::Var() : Poco::Dynamic::Var(seconds.value()),
           true);
}

void BnDeviceObjectProperty::setBnPropertiesInObject(BnPropertiesInObject* row) {
    releaseBnPropertiesInObject();
    _pBnPropertiesInObject = row;
    _ownsBnPropertiesInObject = row == nullptr;
    if (row) setVar(_COL_ID_BN_PROPERTIES_IN_OBJECT, row->getPK(), true);
}

BnPropertiesInObject* BnDeviceObjectProperty::retrieveBnPropertiesInObject() {
    if (!_ownsBnPropertiesInObject) return _pBnPropertiesInObject;
    Poco::Nullable<int> key = getIdBnPropertiesInObject();
    if (key.isNull() || key.value() < 0) return _pBnPropertiesInObject;
    std::string where = getParentWhere(_COL_ID_BN_PROPERTIES_IN_OBJECT, nullptr);
    EntityServer server(TQ::Utility::Data::pDB, nullptr, &where);
    server.addBind(key.value());
    if (!_pBnPropertiesInObject) _pBnPropertiesInObject = new BnPropertiesInObject(false);
    if (server.retrieve(*_pBnPropertiesInObject) < 1) {
        delete _pBnPropertiesInObject;
        _pBnPropertiesInObject = nullptr;
    }
    return _pBnPropertiesInObject;
}

BnPropertiesInObject* BnDeviceObjectProperty::getBnPropertiesInObject() {
    return _pBnPropertiesInObject ? _pBnPropertiesInObject : retrieveBnPropertiesInObject();
}

void BnDeviceObjectProperty::setIdBnPropertiesInObject(int id) {
    Poco::Dynamic::Var property =
        Entity::sqlGetVarByVar(pDB, Names::BN_PROPERTIES_IN_OBJECT, Names::ID_BN_PROPERTY_TYPE,
                               Names::ID_BN_PROPERTIES_IN_OBJECT + "=?", id);
    if (property.isEmpty()) return;
    linkCatalogueRow(property.convert<int>(), id);
}

void BnDeviceObjectProperty::setPropertyIdentifier(BACNET_PROPERTY_ID property) {
    BnDeviceObject* object = getBnDeviceObject();
    if (!object) return;
    const int objectType = static_cast<int>(object->getObjectIdentifier().getValue() >> 22);
    Poco::Dynamic::Var row =
        Entity::sqlGetVarByVars(pDB, Names::BN_PROPERTIES_IN_OBJECT, Names::ID_BN_PROPERTIES_IN_OBJECT,
                                Names::ID_BN_OBJECT_TYPE + "=? AND " + Names::ID_BN_PROPERTY_TYPE + "=?",
                                {objectType, static_cast<int>(property)});
    if (row.isEmpty()) return;
    linkCatalogueRow(static_cast<int>(property), row.convert<int>());
}

void BnDeviceObjectProperty::linkCatalogueRow(int property, int idPropertiesInObject) {
    // A catalogue row loaded for the previous link would describe another property.
    if (_ownsBnPropertiesInObject) releaseBnPropertiesInObject();
    setVar(_COL_ID_BN_PROPERTY_TYPE, property, true);
    setVar(_COL_ID_BN_PROPERTIES_IN_OBJECT, idPropertiesInObject, true);
}

void BnDeviceObjectProperty::setValue(const ValueContainer& value) {
    std::string text;
    value.getText(text, false);
    setVar(_COL_VALUE, text, true);
}

ValueContainer& BnDeviceObjectProperty::getValue(ValueContainer& value) {
    BnPropertiesInObject* row = getBnPropertiesInObject();
    if (!row) throw Poco::NullPointerException("BnDeviceObjectProperty::getValue(): no catalogue row");
    Poco::Nullable<std::string> text = getValueText();
    value.setText(static_cast<BACnetDataType>(row->getIdBnDataType()),
                  static_cast<BACNET_APPLICATION_TAG>(row->getTag()),
                  text.isNull() ? std::string() : text.value(), true);
    return value;
}

void BnDeviceObjectProperty::setBnDeviceObject(BnDeviceObject* object) {
    Detail::setParent(_pBnDeviceObject, _ownsBnDeviceObject, object);
    if (object) setVar(_COL_ID_BN_DEVICE_OBJECT, object->getPK(), true);
}

void BnDeviceObjectProperty::attachBnDeviceObject(BnDeviceObject* object) {
    Detail::setParent(_pBnDeviceObject, _ownsBnDeviceObject, object);
}

BnDeviceObject* BnDeviceObjectProperty::retrieveBnDeviceObject() {
    return Detail::retrieveParent(*this, _COL_ID_BN_DEVICE_OBJECT, _pBnDeviceObject, _ownsBnDeviceObject);
}

BnDeviceObject* BnDeviceObjectProperty::getBnDeviceObject() {
    return _pBnDeviceObject ? _pBnDeviceObject : retrieveBnDeviceObject();
}

void BnDeviceObjectProperty::addBnDeviceObjectPropertyValue(const BnDeviceObjectPropertyValue& row) {
    delete _pValue;
    _pValue = new BnDeviceObjectPropertyValue(row);
    _pValue->setIdBnDeviceObjectProperty(getPK());
}

BnDeviceObjectPropertyValue* BnDeviceObjectProperty::retrieveBnDeviceObjectPropertyValue() {
    if (getPK() < 0) return _pValue;
    // The value row names this property in a column of the same name as this key column.
    std::string where = getParentWhere(_COL_ID_BN_DEVICE_OBJECT_PROPERTY, nullptr);
    EntityServer server(pDB, nullptr, &where);
    server.addBind(getPK());
    if (!_pValue) _pValue = new BnDeviceObjectPropertyValue(false);
    if (server.retrieve(*_pValue) < 1) {
        delete _pValue;
        _pValue = nullptr;
    }
    return _pValue;
}

BnDeviceObjectPropertyValue* BnDeviceObjectProperty::getBnDeviceObjectPropertyValue() {
    return _pValue ? _pValue : retrieveBnDeviceObjectPropertyValue();
}

int BnDeviceObjectProperty::updateAll(EntityServer& server,
                                      std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements) {
    int rows = server.update(*this, autoIncrements);
    if (_pValue) rows += server.update(*_pValue, autoIncrements);
    return rows;
}

int BnDeviceObjectProperty::dbUpdatePropertyValue(int id, const std::string& value,
                                                  Poco::Data::Statement* statement) {
    using Poco::Data::Keywords::use;
    // The statement binds these by reference: each execution reads the current call's values.
    static std::string boundValue;
    static int boundId = 0;
    static const Poco::Data::Statement* prepared = nullptr;
    static const std::string sql =
        "UPDATE bn_device_object_property SET value=? WHERE id_bn_device_object_property=?";
    TQ::Utility::Data::SmoDbSession::Use session(globalSession("BnDeviceObjectProperty::dbUpdatePropertyValue()"));
    boundValue = value;
    boundId = id;
    if (!statement) {
        Poco::Data::Statement temporary(pDB->getSession());
        temporary << sql, use(boundValue), use(boundId);
        temporary.execute();
        return 1;
    }
    if (prepared != statement) {
        *statement << sql, use(boundValue), use(boundId);
        prepared = statement;
    }
    statement->execute(true);
    return 1;
}

bool BnDeviceObjectProperty::dbGetPropertyValue(int id, std::string& value) {
    using Poco::Data::Keywords::into;
    using Poco::Data::Keywords::use;
    int key = id;
    int found = -1;
    std::string text;
    TQ::Utility::Data::SmoDbSession::Use session(globalSession("BnDeviceObjectProperty::dbGetPropertyValue()"));
    Poco::Data::Statement statement(pDB->getSession());
    statement
        << "SELECT id_bn_device_object_property,IFNULL(value,'NULL') FROM bn_device_object_property WHERE "
           "id_bn_device_object_property=?",
        into(found), into(text), use(key);
    statement.execute();
    if (found != id) return false;
    value = text;
    return true;
}

int BnDeviceObjectProperty::retrievePropertyIDs(unsigned int idDeviceObject, Optional above, Optional below,
                                                std::vector<int>& propertyIds) {
    using Poco::Data::Keywords::into;
    using Poco::Data::Keywords::use;
    static const std::string sql =
        "SELECT c.id_bn_property_type FROM  bn_device_object_property b, bn_properties_in_object c, "
        "bn_property_type d "
        "WHERE b.id_bn_properties_in_object = c.id_bn_properties_in_object AND c.optional>? AND c.optional<? "
        "AND "
        "d.id_bn_property_type = c.id_bn_property_type AND c.id_bn_property_type <> " +
        std::to_string(kPropertyList) + " AND b.id_bn_device_object=? ORDER BY d.sort";
    propertyIds.clear();
    int lower = above;
    int upper = below;
    int object = static_cast<int>(idDeviceObject);
    TQ::Utility::Data::SmoDbSession::Use session(globalSession("BnDeviceObjectProperty::retrievePropertyIDs()"));
    Poco::Data::Statement statement(pDB->getSession());
    statement << sql, use(lower), use(upper), use(object), into(propertyIds);
    statement.execute();
    propertyIds.push_back(-1);
    propertyIds.shrink_to_fit();
    return static_cast<int>(propertyIds.size()) - 1;
}

void BnDeviceObjectProperty::printIt() const {
    Detail::printColumns(*this, std::cout,
                         {_COL_ID_BN_DEVICE_OBJECT_PROPERTY, _COL_ID_BN_PROPERTY_TYPE,
                          _COL_ID_BN_DEVICE_OBJECT, _COL_ID_BN_PROPERTIES_IN_OBJECT, _COL_VALUE},
                         ":", ",");
    std::cout << std::endl;
}

void BnDeviceObjectProperty::attachBnPropertiesInObject(BnPropertiesInObject* row) {
    releaseBnPropertiesInObject();
    _pBnPropertiesInObject = row;
    _ownsBnPropertiesInObject = row == nullptr;
}

void BnDeviceObjectProperty::releaseBnPropertiesInObject() {
    if (_ownsBnPropertiesInObject) delete _pBnPropertiesInObject;
    _pBnPropertiesInObject = nullptr;
    _ownsBnPropertiesInObject = true;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
