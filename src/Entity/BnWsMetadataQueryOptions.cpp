#include "TQ_BACnet/Entity/BnWsMetadataQueryOptions.h"

#include "EntitySupport.h"
#include "TQ_BACnet/Entity/Names.h"

#include <Poco/Exception.h>

#include <algorithm>
#include <iostream>

namespace TQ {
namespace BACnet {
namespace Entity {

using TQ::Utility::Data::EntityServer;

TQ_ENTITY_STATIC_INIT const std::vector<const std::string*> BnWsMetadataQueryOptions::_colNames{
    &Names::ID, &Names::CATAGORY_ENUM_VALUE, &Names::METADATA_ENUM_VALUE};
TQ_ENTITY_STATIC_INIT Poco::HashMap<unsigned int, std::vector<unsigned int>>
    BnWsMetadataQueryOptions::_queryOptions(64);
TQ_ENTITY_STATIC_INIT Poco::FastMutex BnWsMetadataQueryOptions::_mutexEnt;

BnWsMetadataQueryOptions::BnWsMetadataQueryOptions(bool isNew) : Bn(isNew) {
    setColumnCnt(static_cast<unsigned>(_colNames.size()));
}

const std::string& BnWsMetadataQueryOptions::getTableName() const {
    return Names::BN_WS_METADATA_QUERY_OPTIONS;
}

const std::vector<const std::string*>& BnWsMetadataQueryOptions::getColNames() const {
    return _colNames;
}

void BnWsMetadataQueryOptions::setPK(int pk, bool flag) {
    Entity::setPK(pk, flag);
}

int BnWsMetadataQueryOptions::getId() const {
    return getVar(_COL_ID).convert<int>();
}

unsigned int BnWsMetadataQueryOptions::getCategoryEnumValue() const {
    return getVar(_COL_CATEGORY_ENUM_VALUE).convert<unsigned int>();
}

unsigned int BnWsMetadataQueryOptions::getMetadataEnumValue() const {
    return getVar(_COL_METADATA_ENUM_VALUE).convert<unsigned int>();
}

const std::vector<unsigned int>& BnWsMetadataQueryOptions::find(MetadataCategory category,
                                                                EntityServer* server) {
    return Detail::findCached<const std::vector<unsigned int>&>(
        _mutexEnt, server, [category] { return Detail::cachedIn(_queryOptions, category); },
        [category](EntityServer& s) -> const std::vector<unsigned int>& { return retrieve(category, s); });
}

const std::vector<unsigned int>& BnWsMetadataQueryOptions::retrieve(MetadataCategory category,
                                                                    EntityServer& server) {
    server.setWhere(Names::CATAGORY_ENUM_VALUE + "=?");
    server.clearBinds();
    server.addBind(static_cast<unsigned int>(category));
    std::vector<BnWsMetadataQueryOptions> rows;
    if (server.retrieve(rows) < 1 || rows.empty())
        throw Poco::NotFoundException("WS Metadata Category " + std::to_string(category) +
                                      " not found in database");
    std::vector<unsigned int> items;
    items.reserve(rows.size());
    for (const BnWsMetadataQueryOptions& row : rows) items.push_back(row.getMetadataEnumValue());
    std::vector<unsigned int>& stored = _queryOptions[category];
    stored = std::move(items);
    return stored;
}

bool BnWsMetadataQueryOptions::isMetadata(MetadataCategory category, Metadata metadata) {
    if (category == kCategoryAll) return true;
    // Checked under the lock: a reference into the cache may move once another thread loads.
    const auto contains = [category, metadata]() -> const bool* {
        static const bool yes = true, no = false;
        const std::vector<unsigned int>* items = Detail::cachedIn(_queryOptions, category);
        if (!items) return nullptr;
        return std::find(items->begin(), items->end(), metadata) != items->end() ? &yes : &no;
    };
    return Detail::findCached<bool>(_mutexEnt, nullptr, contains, [&contains, category](EntityServer& s) {
        retrieve(category, s);
        return *contains();
    });
}

void BnWsMetadataQueryOptions::printIt() const {
    Detail::printAllColumns(*this, std::cout, ":", ",");
    std::cout << std::endl;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
