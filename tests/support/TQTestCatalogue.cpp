#include "TQTestCatalogue.h"

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SqlScript.h"
#include "TQ_Catalogue/CatalogueSql.h"

#include <Poco/Data/SQLite/Utility.h>
#include <Poco/File.h>
#include <Poco/Mutex.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <sqlite3.h>

#include <stdexcept>

namespace TQTest {

namespace {

Poco::FastMutex traceMutex;
std::vector<std::string> traced;

int onTrace(unsigned type, void*, void* statement, void*) {
    if (type != SQLITE_TRACE_STMT || !statement) return 0;
    char* expanded = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
    if (!expanded) return 0;
    Poco::FastMutex::ScopedLock lock(traceMutex);
    traced.emplace_back(expanded);
    sqlite3_free(expanded);
    return 0;
}

void execOrThrow(sqlite3* db, const std::string& sql, const char* what) {
    char* message = nullptr;
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        std::string text = std::string(what) + ": " + (message ? message : "unknown error");
        sqlite3_free(message);
        throw std::runtime_error(text);
    }
}

}  // namespace

TempDatabase::TempDatabase(const char* ownRows) : _dir(Poco::TemporaryFile::tempName()) {
    Poco::File(_dir).createDirectories();
    _file = Poco::Path(_dir, "test.db").toString();
    _db = TQ::Utility::Data::openEmbeddedDatabase(_file, &_created);
    if (ownRows) {
        for (const char* table : {"bn_datatype", "bn_datatype_construct", "bn_datatype_enum", "bn_property_type",
                                  "bn_properties_in_object", "bn_ws_error", "bn_ws_metadata_query_options",
                                  "bn_markup_type", "bn_adm_definition"})
            exec(std::string("DELETE FROM ") + table);
        TQ::Utility::Data::SqlScript::run(session(), ownRows);
    }
    sqlite3_trace_v2(Poco::Data::SQLite::Utility::dbHandle(session()), SQLITE_TRACE_STMT, onTrace, nullptr);
    TQ::Utility::Data::pDB = _db.get();
}

TempDatabase::~TempDatabase() {
    if (TQ::Utility::Data::pDB == _db.get()) TQ::Utility::Data::pDB = nullptr;
    _db.reset();
    Poco::File(_dir).remove(true);
}

void TempDatabase::exec(const std::string& sql) {
    session() << sql, Poco::Data::Keywords::now;
}

void TempDatabase::seed(const std::string& table, const std::string& where, const std::string& columns,
                        const std::string& values) {
    using namespace Poco::Data::Keywords;
    int count = 0;
    session() << "SELECT COUNT(*) FROM " + table + " WHERE " + where, into(count), now;
    if (count == 0) exec("INSERT INTO " + table + " (" + columns + ") VALUES (" + values + ")");
}

void TempDatabase::seedConstruct(unsigned construct, unsigned datatype, const std::string& name) {
    const std::string id = std::to_string(construct);
    seed("bn_datatype_construct", "id_bn_datatype_construct=" + id,
         "id_bn_datatype_construct, id_parent, id_bn_datatype, id_bn_markup, name, optional, sort",
         id + ", NULL, " + std::to_string(datatype) + ", 9, '" + name + "', 0, 0");
}

void TempDatabase::seedEnum(unsigned construct, unsigned value, const std::string& name) {
    const std::string c = std::to_string(construct), v = std::to_string(value);
    seed("bn_datatype_enum", "id_bn_datatype_construct=" + c + " AND value=" + v,
         "id_bn_datatype_construct, value, name", c + "," + v + ",'" + name + "'");
}

void TempDatabase::seedProperty(unsigned objectType, unsigned property, unsigned datatype, unsigned structure,
                                bool emptyAllowed) {
    const std::string o = std::to_string(objectType), p = std::to_string(property), d = std::to_string(datatype);
    seed("bn_properties_in_object", "id_bn_object_type=" + o + " AND id_bn_property_type=" + p,
         "id_bn_object_type, id_bn_property_type, optional, empty_allowed, id_bn_datatype, tag, tag_structure, "
         "managed_internally",
         o + "," + p + ",0," + (emptyAllowed ? "1," : "0,") + d + "," + d + "," + std::to_string(structure) + ",4");
}

int TempDatabase::queries(const std::string& fragment) const {
    Poco::FastMutex::ScopedLock lock(traceMutex);
    int count = 0;
    for (const std::string& sql : traced)
        if (sql.find(fragment) != std::string::npos) ++count;
    return count;
}

const CatalogueDb& CatalogueDb::get() {
    static const CatalogueDb db;
    return db;
}

CatalogueDb::CatalogueDb() {
    if (sqlite3_open(":memory:", &_db) != SQLITE_OK) throw std::runtime_error("cannot open an in-memory database");
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
    if (rc != SQLITE_DONE) throw std::runtime_error("step failed: " + std::string(sqlite3_errmsg(_db)) + " in " + sql);
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
    for (const auto& row : rows("SELECT value, name FROM bn_datatype_enum WHERE id_bn_datatype_construct=?", {construct}))
        names[toInt(row[0])] = row[1].value_or("");
    return names;
}

long long CatalogueDb::typeNumber(const std::string& name) const {
    for (const auto& row : rows("SELECT id_bn_datatype, name FROM bn_datatype"))
        if (row[1] == name) return toInt(row[0]);
    return -1;
}

}  // namespace TQTest
