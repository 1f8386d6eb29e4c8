#include "TQ/Utility/Data/EntityServer.h"

#include <Poco/Data/Binding.h>
#include <Poco/Exception.h>

#include <typeinfo>

namespace TQ {
namespace Utility {
namespace Data {

namespace {

// The alias that `from` gives the entity's table ("bn_x a,bn_y b" -> "a"), or "" when the
// table stands alone or is not named first.
std::string aliasOf(const std::string& from, const std::string& table) {
    if (from.size() <= table.size() || from.compare(0, table.size(), table) != 0 || from[table.size()] != ' ')
        return std::string();
    std::size_t begin = from.find_first_not_of(' ', table.size());
    if (begin == std::string::npos) return std::string();
    std::size_t end = from.find_first_of(", ", begin);
    std::string alias = from.substr(begin, end == std::string::npos ? std::string::npos : end - begin);
    if (alias == "AS" || alias == "as") return aliasOf(table + from.substr(end), table);
    return alias;
}

bool isSignedInteger(const std::type_info& type) {
    return type == typeid(int) || type == typeid(long) || type == typeid(long long) ||
           type == typeid(short) || type == typeid(signed char) || type == typeid(char);
}

bool isUnsignedInteger(const std::type_info& type) {
    return type == typeid(unsigned int) || type == typeid(unsigned long) ||
           type == typeid(unsigned long long) || type == typeid(unsigned short) ||
           type == typeid(unsigned char);
}

}  // namespace

SmoDbSession& EntityServer::sessionOf(SmoDbSession* session) {
    if (!session) session = pDB;
    if (!session) throw Poco::NullPointerException("EntityServer: no database session");
    return *session;
}

EntityServer::EntityServer(SmoDbSession* session, const std::string* first, const std::string* where)
    : _session(&sessionOf(session)), _use(*_session) {
    if (first) _first = *first;
    if (where) _where = *where;
}

std::string EntityServer::getSelectString(const Entity& entity) const {
    const std::vector<const std::string*>& columns = entity.getColNames();
    std::string from = entity.sqlFrom();
    std::string alias = aliasOf(from, entity.getTableName());
    std::string sql = "SELECT ";
    if (!_first.empty()) sql += _first + " ";
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i != 0) sql += ',';
        if (!alias.empty()) sql += alias + ".";
        sql += *columns[i];
    }
    sql += " FROM " + from;
    std::string join = entity.sqlJoin();
    if (!join.empty() && !_where.empty())
        sql += " WHERE " + join + " AND (" + _where + ")";
    else if (!join.empty())
        sql += " WHERE " + join;
    else if (!_where.empty())
        sql += " WHERE " + _where;
    std::string orderBy = entity.sqlOrderBy();
    if (orderBy.empty()) orderBy = _orderBy;
    if (!orderBy.empty()) sql += " ORDER BY " + orderBy;
    return sql;
}

int EntityServer::select(const Entity& prototype, EntityRowReader::Sink sink) {
    if (prototype.getColumnCnt() != prototype.getColNames().size())
        throw Poco::IllegalStateException("EntityServer: column count differs from the column names of " +
                                          prototype.getTableName());
    Poco::Data::Statement statement(getSession());
    statement << getSelectString(prototype);
    EntityRowReader* reader = new EntityRowReader(prototype, std::move(sink));
    statement.addExtract(Poco::Data::AbstractExtraction::Ptr(reader));
    for (const Poco::Dynamic::Var& value : _binds) bindVar(statement, value);
    statement.execute();
    return static_cast<int>(reader->rows());
}

int EntityServer::sqlSelectAndExecute(Poco::Data::Statement& statement) {
    for (const Poco::Dynamic::Var& value : _binds) bindVar(statement, value);
    return static_cast<int>(statement.execute());
}

void EntityServer::bindVar(Poco::Data::Statement& statement, const Poco::Dynamic::Var& value) {
    using Poco::Data::Keywords::bind;
    if (value.isEmpty()) {
        statement.addBind(Poco::Data::Keywords::use(Poco::Data::Keywords::null));
        return;
    }
    const std::type_info& type = value.type();
    if (type == typeid(bool))
        statement.addBind(bind(value.extract<bool>()));
    else if (isSignedInteger(type))
        statement.addBind(bind(value.convert<Poco::Int64>()));
    else if (isUnsignedInteger(type))
        statement.addBind(bind(static_cast<Poco::Int64>(value.convert<Poco::UInt64>())));
    else if (type == typeid(double) || type == typeid(float))
        statement.addBind(bind(value.convert<double>()));
    else
        statement.addBind(bind(value.convert<std::string>()));
}

int EntityServer::update(Entity& entity, std::vector<DataAutoIncrement>* autoIncrements) {
    const std::vector<const std::string*>& columns = entity.getColNames();
    if (columns.empty() || entity.getColumnCnt() != columns.size())
        throw Poco::IllegalStateException(
            "EntityServer::update(): column count differs from the column names of " + entity.getTableName());
    const std::string& table = entity.getTableName();
    const std::string& key = *columns[0];
    Poco::Data::Statement statement(getSession());

    if (entity.isDeleted()) {
        if (entity.isNew()) return 0;
        statement << "DELETE FROM " + table + " WHERE " + key + "=?";
        bindVar(statement, entity.getPK());
        return static_cast<int>(statement.execute());
    }

    std::vector<unsigned> written;
    if (entity.isNew()) {
        bool generateKey = entity.getPK() < 0;
        std::string names;
        std::string marks;
        for (unsigned i = generateKey ? 1 : 0; i < columns.size(); ++i) {
            if (i != 0 && entity.getVar(static_cast<int>(i)).isEmpty() && !entity.isChanged(i)) continue;
            names += (names.empty() ? "" : ",") + *columns[i];
            marks += marks.empty() ? "?" : ",?";
            written.push_back(i);
        }
        if (names.empty())
            statement << "INSERT INTO " + table + " DEFAULT VALUES";
        else
            statement << "INSERT INTO " + table + " (" + names + ") VALUES (" + marks + ")";
        for (unsigned i : written)
            bindVar(statement, i == 0 ? Poco::Dynamic::Var(entity.getPK()) : entity.getVar(i));
        int rows = static_cast<int>(statement.execute());
        if (generateKey) {
            const std::string& query = _session->getGeneratedKeyQuery();
            Poco::Data::Statement keyQuery(getSession());
            Poco::Int64 generated = -1;
            keyQuery << (query.empty() ? "SELECT MAX(" + key + ") FROM " + table : query),
                Poco::Data::Keywords::into(generated);
            keyQuery.execute();
            entity.setPK(static_cast<int>(generated), false);
            if (autoIncrements)
                autoIncrements->push_back(DataAutoIncrement{table, key, static_cast<int>(generated)});
        }
        entity.setNew(false);
        for (unsigned i : written) entity.setChanged(i, false);
        return rows;
    }

    std::string assignments;
    for (unsigned i = 1; i < columns.size(); ++i) {
        if (!entity.isUpdateable(i) || !entity.isChanged(i)) continue;
        assignments += (assignments.empty() ? "" : ",") + *columns[i] + "=?";
        written.push_back(i);
    }
    if (written.empty()) return 0;
    statement << "UPDATE " + table + " SET " + assignments + " WHERE " + key + "=?";
    for (unsigned i : written) bindVar(statement, entity.getVar(i));
    bindVar(statement, entity.getPK());
    int rows = static_cast<int>(statement.execute());
    for (unsigned i : written) entity.setChanged(i, false);
    return rows;
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
