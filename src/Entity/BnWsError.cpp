#include "TQ_BACnet/Entity/BnWsError.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnWsError::_colNames{
    &Names::ID_BN_WS_ERROR, &Names::NAME, &Names::HTTP_STATUS, &Names::ERROR_TEXT};
TQ_ENTITY_STATIC_INIT Poco::HashMap<int, BnWsError> BnWsError::_wsErrors(64);
TQ_ENTITY_STATIC_INIT Poco::FastMutex BnWsError::_mutexWsErrors;

BnWsError::BnWsError(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& BnWsError::getTableName() const {
    return Names::BN_WS_ERROR;
}

const std::vector<const std::string*>& BnWsError::getColNames() const {
    return _colNames;
}

void BnWsError::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnWsError::getIdBnWsError() const {
    return getVar(_COL_ID_BN_WS_ERROR).convert<int>();
}

std::string BnWsError::getName() const {
    return getVar(_COL_NAME).convert<std::string>();
}

int BnWsError::getHttpStatus() const {
    return getVar(_COL_HTTP_STATUS).convert<int>();
}

std::string BnWsError::getErrorText() const {
    return getVar(_COL_ERROR_TEXT).convert<std::string>();
}

const BnWsError& BnWsError::find(WsErrorCode code, EntityServer* server) {
    return Detail::findCached<const BnWsError&>(
        _mutexWsErrors, server, [code] { return Detail::cachedIn(_wsErrors, code); },
        [code](EntityServer& s) -> const BnWsError& { return retrieve(code, s); });
}

const BnWsError& BnWsError::retrieve(WsErrorCode code, EntityServer& server) {
    server.setWhere(Names::ID_BN_WS_ERROR + "=?");
    server.clearBinds();
    server.addBind(code);
    BnWsError row(false);
    if (server.retrieve(row) < 1) throw Poco::NotFoundException("WS Error not found in database");
    BnWsError& stored = _wsErrors[code];
    stored = row;
    return stored;
}

void BnWsError::printIt(std::ostream& out) const {
    Detail::printAllColumns(*this, out, ": ", ",");
    out << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
