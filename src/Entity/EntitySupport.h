#pragma once

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/Exception.h>

#include <utility>

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

/// The session a lookup with `server` (or without one: the process-wide session) runs on.
inline TQ::Utility::Data::SmoDbSession& sessionFor(TQ::Utility::Data::EntityServer* server) {
    if (server) return server->getDbSession();
    if (!TQ::Utility::Data::pDB) throw Poco::NullPointerException("catalogue lookup: no database session");
    return *TQ::Utility::Data::pDB;
}

/// A cached catalogue lookup. `hit` gives the cached answer's address or null, asked under the
/// cache's `mutex`; a hit costs that lock only. On a miss the session is taken before the mutex
/// again, the order every thread keeps (a thread in a transaction holds the session and may
/// look up too), `hit` is asked again since another thread may have loaded meanwhile, and then
/// `load` runs against the database.
template <typename Answer, typename Mutex, typename Hit, typename Load>
#if defined(__GNUC__) || defined(__clang__)
__attribute__((noinline, cold))
#endif
Answer loadCached(Mutex& mutex, TQ::Utility::Data::EntityServer* server, Hit& hit, Load& load) {
    TQ::Utility::Data::SmoDbSession::Use use(sessionFor(server));
    typename Mutex::ScopedLock lock(mutex);
    if (const auto* found = hit()) return static_cast<Answer>(*found);
    return withServer(server, load);
}

template <typename Answer, typename Mutex, typename Hit, typename Load>
inline Answer findCached(Mutex& mutex, TQ::Utility::Data::EntityServer* server, Hit&& hit, Load&& load) {
    {
        typename Mutex::ScopedLock lock(mutex);
        if (const auto* found = hit()) return static_cast<Answer>(*found);
    }
    // Kept out of line: the hit above is all that a warm cache runs.
    return loadCached<Answer>(mutex, server, hit, load);
}

/// The address of `key`'s value in `cache`, or null.
template <typename Cache, typename Key>
#if defined(__GNUC__) || defined(__clang__)
__attribute__((always_inline))
#endif
inline auto cachedIn(Cache& cache, const Key& key) -> decltype(&cache.find(key)->second) {
    auto it = cache.find(key);
    return it == cache.end() ? nullptr : &it->second;
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
