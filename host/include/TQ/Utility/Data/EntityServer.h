#pragma once

#include "TQ/Utility/Data/DataAutoIncrement.h"
#include "TQ/Utility/Data/Entity.h"
#include "TQ/Utility/Data/EntityRowReader.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/Data/Statement.h>
#include <Poco/Dynamic/Var.h>

#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {

/// A query context over a session: a where text, an order-by text and the values bound to the
/// "?" placeholders of the where text, in order. It builds the SQL of an entity from the
/// entity's column names and SQL fragments; every value reaches the database as a bound
/// parameter, never as SQL text. It holds the session (`SmoDbSession::Use`) for its lifetime.
class EntityServer {
public:
    /// A null `session` means the process-wide `pDB` (Poco::NullPointerException when that is
    /// null too). `first`, when given, is placed right after SELECT (e.g. "DISTINCT"); `where`,
    /// when given, is the initial where text.
    explicit EntityServer(SmoDbSession* session = nullptr, const std::string* first = nullptr,
                          const std::string* where = nullptr);

    SmoDbSession& getDbSession() const noexcept { return *_session; }
    Poco::Data::Session& getSession() const noexcept { return _session->getSession(); }

    const std::string& getWhere() const noexcept { return _where; }
    void setWhere(const std::string& where) { _where = where; }
    void setWhere(const std::stringstream& where) { _where = where.str(); }
    /// Used when the entity has no `sqlOrderBy()` of its own.
    const std::string& getOrderBy() const noexcept { return _orderBy; }
    void setOrderBy(const std::string& orderBy) { _orderBy = orderBy; }
    std::vector<Poco::Dynamic::Var>& getBinds() noexcept { return _binds; }
    const std::vector<Poco::Dynamic::Var>& getBinds() const noexcept { return _binds; }
    void setBinds(const std::vector<Poco::Dynamic::Var>& binds) { _binds = binds; }
    void clearBinds() noexcept { _binds.clear(); }
    void addBind(const Poco::Dynamic::Var& value) { _binds.push_back(value); }

    /// "SELECT <columns> FROM <sqlFrom()> [WHERE <sqlJoin()> AND (<where>)]
    /// [ORDER BY <sqlOrderBy() or the server's order-by>]". When `sqlFrom()` gives this
    /// entity's table an alias the columns are qualified with it.
    std::string getSelectString(const Entity& entity) const;

    /// Reads the first row into `entity` (NULL columns keep the entity's own values) and
    /// returns the number of rows the query gave; below 1 leaves the entity unchanged.
    template <typename T>
    int retrieve(T& entity) {
        // The entity is its own prototype: a row is complete before it is stored, and only
        // the first row is stored, so no copy of the entity is needed.
        bool first = true;
        return select(entity, [&](const EntityRowReader::Row& row) {
            if (!first) return;
            first = false;
            EntityRowReader::fill(entity, row);
        });
    }

    /// Clears `out` and reads every row; NULL columns read as empty Vars.
    template <typename T>
    int retrieve(std::vector<T>& out) {
        out.clear();
        T prototype(false);
        return select(prototype, [&](const EntityRowReader::Row& row) {
            out.emplace_back(false);
            EntityRowReader::fill(out.back(), row);
        });
    }

    /// Clears `out` and reads every row under the key of the entity's `operator()()`; a later
    /// row with a key already present is dropped.
    template <typename T>
    int retrieve(std::map<int, T>& out) {
        out.clear();
        T prototype(false);
        T scratch(false);
        return select(prototype, [&](const EntityRowReader::Row& row) {
            EntityRowReader::fill(scratch, row);
            auto placed = out.emplace(std::piecewise_construct, std::forward_as_tuple(scratch()),
                                      std::forward_as_tuple(false));
            if (placed.second) EntityRowReader::fill(placed.first->second, row);
        });
    }

    /// Binds the server's values to `statement` in order, executes it and returns the number
    /// of rows it extracted or changed.
    int sqlSelectAndExecute(Poco::Data::Statement& statement);

    /// Writes the entity and returns the number of rows written:
    /// - deleted: DELETE of its key (nothing when it was never stored);
    /// - new: INSERT of its key (left out when negative, so the database generates one) and of
    ///   every column that holds a value or was set; a generated key is stored with
    ///   `setPK(key, false)` and appended to `autoIncrements`. The entity is then not new;
    /// - otherwise: UPDATE of the columns that are updateable and changed (none: no SQL, 0).
    /// Written columns lose their changed mark.
    int update(Entity& entity, std::vector<DataAutoIncrement>* autoIncrements = nullptr);

    /// Binds one value as its SQL type: an empty Var as NULL, integers as 64-bit integers,
    /// floating point as double, bool as bool, anything else as its text.
    static void bindVar(Poco::Data::Statement& statement, const Poco::Dynamic::Var& value);

private:
    int select(const Entity& prototype, EntityRowReader::Sink sink);
    static SmoDbSession& sessionOf(SmoDbSession* session);

    SmoDbSession* _session;
    SmoDbSession::Use _use;
    std::string _first;
    std::string _where;
    std::string _orderBy;
    std::vector<Poco::Dynamic::Var> _binds;
};

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
