#include "CatalogueDb.h"

#include <TQ_Catalogue/CatalogueSql.h>

namespace TQ::CatalogueTest {

namespace {
void execOrThrow(sqlite3* db, const std::string& sql, const char* what) {
    char* message = nullptr;
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        std::string text = std::string(what) + ": " + (message ? message : "unknown error");
        sqlite3_free(message);
        throw std::runtime_error(text);
    }
}
}  // namespace

CatalogueDb::CatalogueDb() {
    if (sqlite3_open(":memory:", &_db) != SQLITE_OK)
        throw std::runtime_error("cannot open an in-memory database");
    execOrThrow(_db, TQ::Catalogue::schemaSql(), "schema");
    execOrThrow(_db, TQ::Catalogue::contentSql(), "content");
}

CatalogueDb::~CatalogueDb() {
    sqlite3_close(_db);
}

std::vector<Row> CatalogueDb::rows(const std::string& sql, const std::vector<long long>& binds) const {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(_db, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK)
        throw std::runtime_error("prepare failed: " + std::string(sqlite3_errmsg(_db)) + " in " + sql);
    for (size_t i = 0; i < binds.size(); ++i) sqlite3_bind_int64(stmt, static_cast<int>(i + 1), binds[i]);
    std::vector<Row> result;
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        Row row;
        for (int c = 0; c < sqlite3_column_count(stmt); ++c) {
            if (sqlite3_column_type(stmt, c) == SQLITE_NULL)
                row.emplace_back(std::nullopt);
            else
                row.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(stmt, c)));
        }
        result.push_back(std::move(row));
    }
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE)
        throw std::runtime_error("step failed: " + std::string(sqlite3_errmsg(_db)) + " in " + sql);
    return result;
}

std::vector<long long> CatalogueDb::ints(const std::string& sql, const std::vector<long long>& binds) const {
    std::vector<long long> result;
    for (const auto& row : rows(sql, binds)) result.push_back(toInt(row.at(0)));
    return result;
}

long long CatalogueDb::scalar(const std::string& sql, const std::vector<long long>& binds) const {
    auto all = rows(sql, binds);
    if (all.empty()) throw std::runtime_error("no row from " + sql);
    return toInt(all.front().at(0));
}

std::map<long long, std::string> CatalogueDb::enumNames(long long construct) const {
    std::map<long long, std::string> names;
    for (const auto& row :
         rows("SELECT value, name FROM bn_datatype_enum WHERE id_bn_datatype_construct=?", {construct}))
        names[toInt(row[0])] = row[1].value_or("");
    return names;
}

long long CatalogueDb::typeNumber(const std::string& name) const {
    for (const auto& row : rows("SELECT id_bn_datatype, name FROM bn_datatype"))
        if (row[1] == name) return toInt(row[0]);
    return -1;
}

const CatalogueDb& catalogue() {
    static const CatalogueDb db;
    return db;
}

}  // namespace TQ::CatalogueTest
