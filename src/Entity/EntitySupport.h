#pragma once

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ/Utility/Data/SmoDbSession.h"

// Static objects of the entity layer are built in two early waves, before any ordinary static
// object of the library or its host: first the name constants, then the column lists and the
// caches that refer to them. Without this a static object elsewhere that makes an entity could
// see an empty column list.
#if defined(__GNUC__) || defined(__clang__)
#define TQ_ENTITY_NAMES_INIT __attribute__((init_priority(1000)))
#define TQ_ENTITY_STATIC_INIT __attribute__((init_priority(1001)))
#else
#define TQ_ENTITY_NAMES_INIT
#define TQ_ENTITY_STATIC_INIT
#endif

namespace TQ {
namespace BACnet {
namespace Entity {
namespace Detail {

/// Runs `work` with the caller's server, or with a temporary one over the process-wide session
/// that lives only for this call.
template <typename Work>
auto withServer(TQ::Utility::Data::EntityServer* server, Work&& work) -> decltype(work(*server)) {
    if (server) return work(*server);
    TQ::Utility::Data::EntityServer temporary(TQ::Utility::Data::pDB, nullptr, nullptr);
    return work(temporary);
}

}  // namespace Detail
}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ

#include <initializer_list>
#include <ostream>
#include <string>

namespace TQ {
namespace BACnet {
namespace Entity {
namespace Detail {

/// A column's value as text for diagnostics; a NULL column prints as nothing.
inline std::string varText(const Poco::Dynamic::Var& value) {
    return value.isEmpty() ? std::string() : value.convert<std::string>();
}

/// "name<colon>value" per column in the given order, joined by `separator`, for printIt dumps.
inline void printColumns(const TQ::Utility::Data::Entity& entity, std::ostream& out,
                         std::initializer_list<unsigned> columns, const char* colon, const char* separator) {
    bool first = true;
    for (unsigned column : columns) {
        if (!first) out << separator;
        first = false;
        out << entity.getColName(column) << colon << varText(entity.getVar(static_cast<int>(column)));
    }
}

/// All columns of the entity, in table order.
inline void printAllColumns(const TQ::Utility::Data::Entity& entity, std::ostream& out, const char* colon,
                            const char* separator) {
    for (unsigned column = 0; column < entity.getColumnCnt(); ++column) {
        if (column != 0) out << separator;
        out << entity.getColName(column) << colon << varText(entity.getVar(static_cast<int>(column)));
    }
}

}  // namespace Detail
}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
