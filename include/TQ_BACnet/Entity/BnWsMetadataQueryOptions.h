#pragma once

#include "TQ_BACnet/Entity/Bn.h"
#include "TQ_BACnet/WS/Metadata.h"

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

/// Which metadata items each web-service metadata category offers
/// (bn_ws_metadata_query_options), cached per category.
class BnWsMetadataQueryOptions : public Bn {
public:
    /// A metadata category and a metadata item of the web services, by number.
    using MetadataCategory = WS::Metadata::METADATA_CATEGORY;
    using Metadata = WS::Metadata::METADATA;
    /// The category that offers every item.
    static constexpr MetadataCategory kCategoryAll = WS::Metadata::METADATA_CAT_VALUE;

    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID = 0;
    static constexpr int _COL_CATEGORY_ENUM_VALUE = 1;
    static constexpr int _COL_METADATA_ENUM_VALUE = 2;

    explicit BnWsMetadataQueryOptions(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

    int getId() const;
    unsigned int getCategoryEnumValue() const;
    unsigned int getMetadataEnumValue() const;

    /// The items of `category` in database order. Raises Poco::NotFoundException
    /// "WS Metadata Category <n> not found in database" when it has none. The reference points
    /// into the cache, which may move its entries when another category is loaded.
    static const std::vector<unsigned int>& find(MetadataCategory category,
                                                 TQ::Utility::Data::EntityServer* server = nullptr);
    static const std::vector<unsigned int>& retrieve(MetadataCategory category,
                                                     TQ::Utility::Data::EntityServer& server);
    /// Whether `category` offers `metadata`; category 0 offers everything.
    static bool isMetadata(MetadataCategory category, Metadata metadata);

    void printIt() const;

private:
    static Poco::HashMap<unsigned int, std::vector<unsigned int>> _queryOptions;
    static Poco::FastMutex _mutexEnt;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
