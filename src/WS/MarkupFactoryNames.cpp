#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ/Utility/LboLogSystem.h"
#include "TQ/Utility/Message2.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <Poco/Data/RecordSet.h>
#include <Poco/Data/Statement.h>

namespace TQ {
namespace BACnet {
namespace WS {

Poco::HashMap<uint64_t, std::string> MarkupFactory::_bnDataTypeValueName(64);
Poco::FastMutex MarkupFactory::_mutexBnDataTypeValueName;

uint64_t MarkupFactory::getBnDataTypeValueNameKey(BACnetDataType type, int value) {
    return static_cast<uint64_t>(static_cast<int64_t>(value)) | (static_cast<uint64_t>(type) << 32);
}

void MarkupFactory::markupEnumOrBitStringValue(BACnetDataType type, int value, std::string& result) const {
    if (_useNames) {
        bool found = false;
        std::string name = Entity::BnDataTypeEnum::getEnumNameByType(type, static_cast<unsigned int>(value),
                                                                     nullptr, &found);
        if (found) {
            result.swap(name);
            return;
        }
    }
    result = std::to_string(value);
}

void MarkupFactory::dbGetBnAdmDefName(BACnetDataType type, int value, std::string& result, std::string column,
                                      int level) {
    const auto cached = [&]() {
        const auto it = _bnDataTypeValueName.find(getBnDataTypeValueNameKey(type, value));
        if (it == _bnDataTypeValueName.end()) return false;
        result = it->second;
        return true;
    };
    {
        Poco::FastMutex::ScopedLock lock(_mutexBnDataTypeValueName);
        if (cached()) return;
    }
    result.clear();
    std::string sql = "SELECT " + column + ", name FROM bn_adm_definition WHERE parent=";
    if (level > 1) sql += "(SELECT id_bn_adm_definition FROM bn_adm_definition WHERE parent=";
    sql +=
        "(SELECT id_bn_adm_definition FROM bn_adm_definition WHERE parent=id_bn_adm_definition AND "
        "id_bn_datatype=?)";
    if (level > 1) sql += " AND id_bn_adm_definition != parent)";
    sql += " AND " + column + " BETWEEN ? AND ?";
    try {
        if (TQ::Utility::Data::pDB == nullptr) throw Poco::NullPointerException("no database session");
        // The session before the cache's lock, as every lookup takes them.
        TQ::Utility::Data::SmoDbSession::Use session(*TQ::Utility::Data::pDB);
        Poco::FastMutex::ScopedLock lock(_mutexBnDataTypeValueName);
        if (cached()) return;
        unsigned int typeNumber = type;
        int low = value - 5;
        int high = value + 5;
        Poco::Data::Statement statement(TQ::Utility::Data::pDB->getSession());
        statement << sql, Poco::Data::Keywords::use(typeNumber), Poco::Data::Keywords::use(low),
            Poco::Data::Keywords::use(high);
        statement.execute();
        Poco::Data::RecordSet rows(statement);
        for (bool more = rows.moveFirst(); more; more = rows.moveNext()) {
            if (rows.value(0).isEmpty() || rows.value(1).isEmpty()) continue;
            const int number = rows.value(0).convert<int>();
            const std::string name = rows.value(1).convert<std::string>();
            _bnDataTypeValueName[getBnDataTypeValueNameKey(type, number)] = name;
            if (number == value) result = name;
        }
    } catch (const Poco::Exception& e) {
        TQ::Utility::LboLogSystem::log(TQ::Utility::Message2("src/WS/MarkupFactory", e.displayText()));
    }
    if (result.empty()) result = std::to_string(value);
}

void MarkupFactory::dbGetBnTypeContextName(BACnetDataType type, int contextNr, std::string& result) {
    dbGetBnAdmDefName(type, contextNr, result, "context_tag", 1);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
