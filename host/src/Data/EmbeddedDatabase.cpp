// The only place that knows the embedded database is SQLite; the rest of the layer speaks
// Poco::Data and works with any of its connectors.
#include "TQ/Utility/Data/EmbeddedDatabase.h"

#include "TQ/Utility/Data/SqlScript.h"
#include "TQ_Catalogue/CatalogueSql.h"

#include <Poco/Data/SQLite/Connector.h>
#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/Path.h>

namespace TQ {
namespace Utility {
namespace Data {

namespace {

bool hasTable(Poco::Data::Session& session, const std::string& table) {
    int count = 0;
    std::string name = table;
    session << "SELECT COUNT(*) FROM sqlite_master WHERE type='table' AND name=?",
        Poco::Data::Keywords::use(name), Poco::Data::Keywords::into(count), Poco::Data::Keywords::now;
    return count > 0;
}

}  // namespace

std::unique_ptr<SmoDbSession> openEmbeddedDatabase(const std::string& file, bool* created) {
    if (file.empty()) throw Poco::InvalidArgumentException("openEmbeddedDatabase(): no database file");
    Poco::Data::SQLite::Connector::registerConnector();
    Poco::Path path(file);
    // SQLite would keep retrying a directory until its connection timeout; refuse at once.
    if (Poco::File(file).exists() && Poco::File(file).isDirectory())
        throw Poco::OpenFileException("openEmbeddedDatabase(): is a directory", file);
    if (path.depth() > 0) Poco::File(path.parent()).createDirectories();

    Poco::Data::Session session(Poco::Data::SQLite::Connector::KEY, file);
    // Foreign writers (the host's other processes) may hold the file briefly.
    session << "PRAGMA busy_timeout=5000", Poco::Data::Keywords::now;
    bool fresh = !hasTable(session, "bn_datatype");
    if (fresh) SqlScript::run(session, TQ::Catalogue::schemaSql() + ";\n" + TQ::Catalogue::contentSql());
    if (created) *created = fresh;

    auto db = std::make_unique<SmoDbSession>(session);
    db->setGeneratedKeyQuery("SELECT last_insert_rowid()");
    return db;
}

std::vector<std::string> embeddedTableNames(Poco::Data::Session& session) {
    std::vector<std::string> names;
    session << "SELECT name FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite_%' ORDER BY name",
        Poco::Data::Keywords::into(names), Poco::Data::Keywords::now;
    return names;
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
