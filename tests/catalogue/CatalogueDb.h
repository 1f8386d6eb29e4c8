#pragma once

#include <sqlite3.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace TQ::CatalogueTest {

/// One result cell: NULL stays distinguishable from 0 and from an empty text.
using Cell = std::optional<std::string>;
using Row = std::vector<Cell>;

/// A database built only from the SQL compiled into TQ_CatalogueSql, as the gateway builds it.
class CatalogueDb {
public:
    CatalogueDb();
    ~CatalogueDb();
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
    sqlite3* _db = nullptr;
};

/// The shared database of a test binary; built on first use.
const CatalogueDb& catalogue();

}  // namespace TQ::CatalogueTest
