#pragma once

#include "TQ_BACnet/Entity/Bn.h"
#include "TQ_BACnet/WS/DataWsError.h"

#include <Poco/HashMap.h>
#include <Poco/Mutex.h>

#include <ostream>
#include <string>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {
class EntityServer;
}
}  // namespace Utility
namespace BACnet {
namespace Entity {

/// Name, HTTP status and text of every web-service error code (bn_ws_error), cached per code.
class BnWsError : public Bn {
public:
    /// Keyed by the web-service error codes that WS::DataWsError carries.
    using WsErrorCode = WS::DataWsError::WS_ERROR_CODE;

    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_WS_ERROR = 0;
    static constexpr int _COL_NAME = 1;
    static constexpr int _COL_HTTP_STATUS = 2;
    static constexpr int _COL_ERROR_TEXT = 3;

    explicit BnWsError(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

    int getIdBnWsError() const;
    std::string getName() const;
    int getHttpStatus() const;
    std::string getErrorText() const;

    /// The row of `code`, loaded on first use. Raises Poco::NotFoundException "WS Error not
    /// found in database" for an unknown code. The reference points into the cache, which
    /// may move its entries when another code is loaded: copy what must be kept.
    static const BnWsError& find(WsErrorCode code, TQ::Utility::Data::EntityServer* server = nullptr);
    static const BnWsError& retrieve(WsErrorCode code, TQ::Utility::Data::EntityServer& server);

    /// Each column as "name: value".
    void printIt(std::ostream& out) const;

private:
    static Poco::HashMap<int, BnWsError> _wsErrors;
    static Poco::FastMutex _mutexWsErrors;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
