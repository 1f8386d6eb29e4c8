#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/HashMap.h>
#include <Poco/Mutex.h>
#include <Poco/Nullable.h>

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

/// The names of the markup kinds (bn_markup_type), cached in both directions.
class BnMarkupType : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_MARKUP_TYPE = 0;
    static constexpr int _COL_NAME = 1;

    explicit BnMarkupType(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

    int getIdBnMarkupType() const;
    std::string getName() const;

    /// The name of markup kind `id`; Poco::NullValueException when there is none.
    static std::string find(int id, TQ::Utility::Data::EntityServer* server = nullptr);
    static Poco::Nullable<std::string> retrieve(unsigned int id, TQ::Utility::Data::EntityServer& server);
    /// The markup kind called `name`; null when there is none.
    static Poco::Nullable<int> findReverse(const std::string& name,
                                           TQ::Utility::Data::EntityServer* server = nullptr);
    static Poco::Nullable<int> retrieveReverse(const std::string& name,
                                               TQ::Utility::Data::EntityServer& server);

    void printIt() const;

private:
    static Poco::HashMap<int, std::string> _types;
    static Poco::HashMap<std::string, int> _typesReverse;
    static Poco::FastMutex _mutexTypes;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
