#pragma once

#include <Poco/Dynamic/Var.h>
#include <Poco/Nullable.h>

#include <cstdint>
#include <string>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {

class SmoDbSession;

/// One row of one table: a Poco::Dynamic::Var per column, the integer primary key (column 0),
/// new/deleted flags and, per column, whether UPDATE statements may write it and whether it
/// was changed since it was read or written.
///
/// A column that was NULL in the database holds an empty Var; reading it as a typed value
/// raises Poco::InvalidAccessException "Can not convert empty value.".
class Entity {
public:
    explicit Entity(bool isNew = false);
    Entity(const Entity& other) = default;
    Entity& operator=(const Entity& other) = default;
    virtual ~Entity();

    // The virtual operations, in this order.
    virtual const std::string& getTableName() const = 0;
    /// Column names in table order; column 0 is the integer primary key.
    virtual const std::vector<const std::string*>& getColNames() const = 0;
    virtual int getPK() const;
    /// Compares `getPK()` of both.
    virtual bool operator<(const Entity& other) const;
    /// The key under which a row is put into a map; the primary key by default.
    virtual int operator()() const;
    /// Takes over values, key, flags and column marks of `other`.
    virtual void copyBaseStuff(const Entity& other);
    /// Stores the key and writes it into column 0, marked as changed when `changed` is true.
    virtual void setPK(int pk, bool changed);
    /// The table expression after FROM; the table name by default. A join names this entity's
    /// table first followed by an alias ("bn_x a,bn_y b"); its columns are then selected
    /// through that alias.
    virtual std::string sqlFrom() const;
    /// Join condition, ANDed with the where text; empty by default.
    virtual std::string sqlJoin() const;
    /// Column list for ORDER BY; empty by default.
    virtual std::string sqlOrderBy() const;

    void setColumnCnt(unsigned count);
    unsigned getColumnCnt() const noexcept { return static_cast<unsigned>(_vars.size()); }
    /// The column's name; a column outside `getColNames()` raises Poco::RangeException.
    const std::string& getColName(unsigned column) const;

    /// Stores a column value; its changed mark becomes `changed`.
    void setVar(int column, const Poco::Dynamic::Var& value, bool changed);
    const Poco::Dynamic::Var& getVar(int column) const;
    /// A null Nullable for an empty (NULL) column, otherwise the value converted to T.
    template <typename T>
    Poco::Nullable<T> getNullableVar(int column) const {
        const Poco::Dynamic::Var& value = getVar(column);
        if (value.isEmpty()) return Poco::Nullable<T>();
        return Poco::Nullable<T>(value.convert<T>());
    }

    bool isNew() const noexcept { return _new; }
    void setNew(bool isNew) noexcept { _new = isNew; }
    bool isDeleted() const noexcept { return _deleted; }
    void setDeleted(bool deleted) noexcept { _deleted = deleted; }
    /// A column that is not updateable is left out of UPDATE statements (INSERT still writes it).
    void setUpdateable(unsigned column, bool updateable);
    bool isUpdateable(unsigned column) const;
    bool isChanged(unsigned column) const;
    void setChanged(unsigned column, bool changed);
    void clearChanged() noexcept;

    /// "<fk column name>=?": selects the parent row whose key, named like this entity's
    /// foreign-key column, equals that column's value (which the caller binds). `extra` is
    /// ANDed when given and not empty.
    std::string getParentWhere(unsigned fkColumn, const std::string* extra) const;
    /// "<key column name>=?": selects the child rows whose foreign key, named like this entity's
    /// key column, equals this key; `binds` becomes this key followed by `extraBinds`.
    /// `extraWhere` is ANDed in parentheses when given and not empty. `alias`, when given and
    /// not empty, qualifies the key column ("a.id_x=?") for joined child tables.
    std::string getChildsWhere(std::vector<Poco::Dynamic::Var>& binds, const std::string* extraWhere,
                               const std::vector<Poco::Dynamic::Var>* extraBinds,
                               const std::string* alias) const;

    /// The value of `column` in the first row of `table` matching `where` (one "?" bound to
    /// `bind`); an empty Var when no row matches or the value is NULL. A null session means the
    /// process-wide session `pDB`. `table`, `column` and `where` are SQL text, never user data.
    static Poco::Dynamic::Var sqlGetVarByVar(SmoDbSession* session, const std::string& table,
                                             const std::string& column, const std::string& where,
                                             const Poco::Dynamic::Var& bind);
    /// The same with one bound value per "?" of `where`, in order.
    static Poco::Dynamic::Var sqlGetVarByVars(SmoDbSession* session, const std::string& table,
                                              const std::string& column, const std::string& where,
                                              const std::vector<Poco::Dynamic::Var>& binds);

private:
    enum ColumnMark : uint8_t { kNotUpdateable = 1, kChanged = 2 };

    std::vector<Poco::Dynamic::Var> _vars;
    std::vector<uint8_t> _marks;
    int _pk = -1;
    bool _new;
    bool _deleted = false;
};

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
