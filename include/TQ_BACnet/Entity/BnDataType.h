#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/HashMap.h>
#include <Poco/Mutex.h>

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

/// The catalogue of data types (bn_datatype): number and name of every type the gateway
/// knows. Lookups in both directions are answered from a process-wide cache that only grows;
/// a miss is looked up in the database every time.
class BnDataType : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_DATATYPE = 0;
    static constexpr int _COL_NAME = 1;

    /// Types below this number are standard (vendor 0), those from it up to
    /// kProprietaryEnd the maker's own (vendor 947).
    static constexpr unsigned int kProprietaryBegin = 3000;
    static constexpr unsigned int kProprietaryEnd = 4000;
    static constexpr int kMakerVendorId = 947;

    /// One listed type: its number and its (possibly vendor-prefixed) name.
    struct Record {
        Record() = default;
        explicit Record(const BnDataType& row);
        int id = 0;
        std::string name;
    };

    explicit BnDataType(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

    int getIdBnDataType() const;
    /// Raises Poco::InvalidAccessException for a NULL name.
    std::string getName() const;

    /// The name of `type`, or empty when the catalogue has none.
    static std::string find(BACnetDataType type, TQ::Utility::Data::EntityServer* server = nullptr);
    static std::string retrieve(BACnetDataType type, TQ::Utility::Data::EntityServer& server);
    /// The number of the type called exactly `name`, or BACNET_DT_NOT_FOUND (1999).
    static BACnetDataType findReverse(const std::string& name,
                                      TQ::Utility::Data::EntityServer* server = nullptr);
    static BACnetDataType retrieveReverse(const std::string& name, TQ::Utility::Data::EntityServer& server);

    /// Appends the types with low <= number < high to `out` in name order, each name prefixed
    /// with "<vendorId>-" (for vendor 947 the prefix replaces a leading "Proprietary"); a
    /// negative vendor appends nothing. Returns the rows read.
    static int retrieveRange(unsigned int low, unsigned int high, int vendorId, std::vector<Record>& out,
                             TQ::Utility::Data::EntityServer* server = nullptr);
    /// The standard types, then the maker's own, as web clients see them.
    static int retrieveAllUserVisible(std::vector<Record>& out,
                                      TQ::Utility::Data::EntityServer* server = nullptr);

    void printIt() const;

private:
    static Poco::HashMap<int, std::string> _types;
    static Poco::HashMap<std::string, int> _typesReverse;
    static Poco::FastMutex _mutexTypes;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
