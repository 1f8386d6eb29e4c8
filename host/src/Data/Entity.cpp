#include "TQ/Utility/Data/Entity.h"

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/Data/Extraction.h>
#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>

namespace TQ {
namespace Utility {
namespace Data {

Entity::Entity(bool isNew) : _new(isNew) {}

Entity::~Entity() = default;

int Entity::getPK() const {
    return _pk;
}

bool Entity::operator<(const Entity& other) const {
    return getPK() < other.getPK();
}

int Entity::operator()() const {
    return getPK();
}

void Entity::copyBaseStuff(const Entity& other) {
    if (this == &other) return;
    _vars = other._vars;
    _marks = other._marks;
    _pk = other._pk;
    _new = other._new;
    _deleted = other._deleted;
}

void Entity::setPK(int pk, bool changed) {
    _pk = pk;
    if (_vars.empty()) setColumnCnt(1);
    setVar(0, pk, changed);
}

std::string Entity::sqlFrom() const {
    return getTableName();
}

std::string Entity::sqlJoin() const {
    return std::string();
}

std::string Entity::sqlOrderBy() const {
    return std::string();
}

void Entity::setColumnCnt(unsigned count) {
    _vars.resize(count);
    _marks.resize(count, 0);
}

const std::string& Entity::getColName(unsigned column) const {
    const std::vector<const std::string*>& names = getColNames();
    if (column >= names.size() || names[column] == nullptr)
        throw Poco::RangeException("Entity::getColName(): no column " + std::to_string(column) + " in " +
                                   getTableName());
    return *names[column];
}

void Entity::setVar(int column, const Poco::Dynamic::Var& value, bool changed) {
    if (column < 0 || static_cast<std::size_t>(column) >= _vars.size())
        throw Poco::RangeException("Entity::setVar(): no column " + std::to_string(column));
    _vars[column] = value;
    setChanged(static_cast<unsigned>(column), changed);
}

const Poco::Dynamic::Var& Entity::getVar(int column) const {
    if (column < 0 || static_cast<std::size_t>(column) >= _vars.size())
        throw Poco::RangeException("Entity::getVar(): no column " + std::to_string(column));
    return _vars[column];
}

void Entity::setUpdateable(unsigned column, bool updateable) {
    if (column >= _marks.size())
        throw Poco::RangeException("Entity::setUpdateable(): no column " + std::to_string(column));
    if (updateable)
        _marks[column] &= static_cast<uint8_t>(~kNotUpdateable);
    else
        _marks[column] |= kNotUpdateable;
}

bool Entity::isUpdateable(unsigned column) const {
    return column < _marks.size() && (_marks[column] & kNotUpdateable) == 0;
}

bool Entity::isChanged(unsigned column) const {
    return column < _marks.size() && (_marks[column] & kChanged) != 0;
}

void Entity::setChanged(unsigned column, bool changed) {
    if (column >= _marks.size())
        throw Poco::RangeException("Entity::setChanged(): no column " + std::to_string(column));
    if (changed)
        _marks[column] |= kChanged;
    else
        _marks[column] &= static_cast<uint8_t>(~kChanged);
}

void Entity::clearChanged() noexcept {
    for (uint8_t& mark : _marks) mark &= static_cast<uint8_t>(~kChanged);
}

std::string Entity::getParentWhere(unsigned fkColumn, const std::string* extra) const {
    std::string where = getColName(fkColumn) + "=?";
    if (extra && !extra->empty()) where += " AND " + *extra;
    return where;
}

std::string Entity::getChildsWhere(std::vector<Poco::Dynamic::Var>& binds, const std::string* extraWhere,
                                   const std::vector<Poco::Dynamic::Var>* extraBinds,
                                   const std::string* alias) const {
    std::string where;
    if (alias && !alias->empty()) where = *alias + ".";
    where += getColName(0) + "=?";
    if (extraWhere && !extraWhere->empty()) where += " AND (" + *extraWhere + ")";
    binds.clear();
    binds.emplace_back(getPK());
    if (extraBinds) binds.insert(binds.end(), extraBinds->begin(), extraBinds->end());
    return where;
}

Poco::Dynamic::Var Entity::sqlGetVarByVar(SmoDbSession* session, const std::string& table,
                                          const std::string& column, const std::string& where,
                                          const Poco::Dynamic::Var& bind) {
    return sqlGetVarByVars(session, table, column, where, std::vector<Poco::Dynamic::Var>{bind});
}

Poco::Dynamic::Var Entity::sqlGetVarByVars(SmoDbSession* session, const std::string& table,
                                           const std::string& column, const std::string& where,
                                           const std::vector<Poco::Dynamic::Var>& binds) {
    EntityServer server(session);
    server.setBinds(binds);
    std::vector<Poco::Dynamic::Var> values;
    Poco::Data::Statement statement(server.getSession());
    statement << "SELECT " + column + " FROM " + table + (where.empty() ? "" : " WHERE " + where),
        Poco::Data::Keywords::into(values);
    server.sqlSelectAndExecute(statement);
    return values.empty() ? Poco::Dynamic::Var() : values.front();
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
