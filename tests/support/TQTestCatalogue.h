#pragma once

#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/Data/Session.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;

namespace TQTest {

/// A fresh embedded database in its own temporary directory, removed afterwards: the generated
/// schema and catalogue rows, or with `ownRows` the schema with those catalogue rows instead. It
/// is the process-wide session while it lives, and it counts the statements it runs, so a test
/// can tell a cache hit from a query.
class TempDatabase {
public:
    explicit TempDatabase(const char* ownRows = nullptr);
    ~TempDatabase();
    TempDatabase(const TempDatabase&) = delete;
    TempDatabase& operator=(const TempDatabase&) = delete;

    Poco::Data::Session& session() { return _db->getSession(); }
    TQ::Utility::Data::SmoDbSession& db() { return *_db; }
    const std::string& file() const { return _file; }
    const std::string& dir() const { return _dir; }
    /// Whether opening the file created it.
    bool created() const { return _created; }

    void exec(const std::string& sql);
    /// Inserts `values` into `table` unless a row matches `where`, so tests sharing the process's
    /// catalogue (and its caches) can each add the rows they need.
    void seed(const std::string& table, const std::string& where, const std::string& columns,
              const std::string& values);
    /// Rows of the catalogue tables, added with `seed`.
    void seedConstruct(unsigned construct, unsigned datatype, const std::string& name);
    void seedEnum(unsigned construct, unsigned value, const std::string& name);
    /// A property of an object type holding a primitive datatype, whose number is also its tag.
    void seedProperty(unsigned objectType, unsigned property, unsigned datatype, unsigned structure,
                      bool emptyAllowed);
    /// Statements run so far whose SQL, bound values in place, contains `fragment`.
    int queries(const std::string& fragment) const;

private:
    std::string _dir, _file;
    bool _created = false;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

/// The generated catalogue for the whole process: the library's catalogue caches outlive any
/// single test, so every test of a process sees the same database.
class Catalogue : public TempDatabase {
public:
    static Catalogue& open() {
        static Catalogue catalogue;
        return catalogue;
    }

private:
    Catalogue() = default;
};

/// One result cell: NULL stays distinguishable from 0 and from an empty text.
using Cell = std::optional<std::string>;
using Row = std::vector<Cell>;

/// The SQL compiled into TQ_CatalogueSql in an in-memory database opened with SQLite alone,
/// as the gateway builds it, for checks of the generated catalogue itself.
class CatalogueDb {
public:
    /// The shared database of a test program, built on first use.
    static const CatalogueDb& get();
    CatalogueDb(const CatalogueDb&) = delete;
    CatalogueDb& operator=(const CatalogueDb&) = delete;

    /// All rows of a statement; `binds` are bound as integers to its placeholders in order.
    std::vector<Row> rows(const std::string& sql, const std::vector<long long>& binds = {}) const;
    /// The first column of every row as integers (NULL as -1).
    std::vector<long long> ints(const std::string& sql, const std::vector<long long>& binds = {}) const;
    /// The single integer a statement returns; throws when it returns no row.
    long long scalar(const std::string& sql, const std::vector<long long>& binds = {}) const;
    /// value -> name of the enumeration rows of a construct.
    std::map<long long, std::string> enumNames(long long construct) const;
    /// The number of a data type by its exact name, or -1.
    long long typeNumber(const std::string& name) const;

    static long long toInt(const Cell& cell) { return cell ? std::stoll(*cell) : -1; }

private:
    CatalogueDb();
    ~CatalogueDb();
    ::sqlite3* _db = nullptr;
};

}  // namespace TQTest
