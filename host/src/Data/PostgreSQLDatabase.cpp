// The only place that knows the central database is PostgreSQL; like the embedded database,
// everything above speaks Poco::Data.
#include "TQ/Utility/Data/PostgreSQLDatabase.h"

#include "TQ/Utility/Data/SqlScript.h"
#include "TQ_Catalogue/CatalogueSql.h"

#include <Poco/Data/DataException.h>
#include <Poco/Data/PostgreSQL/Connector.h>
#include <Poco/Data/PostgreSQL/PostgreSQLStatementImpl.h>
#include <Poco/Data/PostgreSQL/SessionImpl.h>
#include <Poco/Exception.h>

#include <sstream>

namespace TQ {
namespace Utility {
namespace Data {

std::string numberPlaceholders(const std::string& sql) {
    std::string out;
    out.reserve(sql.size() + 8);
    unsigned number = 0;
    for (std::size_t i = 0; i < sql.size(); ++i) {
        const char c = sql[i];
        if (c == '\'' || c == '"') {
            // Quoted text and identifiers are copied as they are ('' and "" stay inside).
            std::size_t end = sql.find(c, i + 1);
            if (end == std::string::npos) end = sql.size() - 1;
            out.append(sql, i, end - i + 1);
            i = end;
        } else if (c == '-' && i + 1 < sql.size() && sql[i + 1] == '-') {
            std::size_t end = sql.find('\n', i);
            if (end == std::string::npos) end = sql.size() - 1;
            out.append(sql, i, end - i + 1);
            i = end;
        } else if (c == '?') {
            out += '$' + std::to_string(++number);
        } else {
            out += c;
        }
    }
    return out;
}

namespace {

// Poco's PostgreSQL connector hands the SQL text to the server as it stands, and the server
// numbers its parameters ($1, $2, ...). Everything above speaks "?": the statements of this
// session number them just before the text is prepared.
struct NumberPlaceholders {};

std::ostream& operator<<(std::ostream& stream, const NumberPlaceholders&) {
    auto& text = dynamic_cast<std::ostringstream&>(stream);
    text.str(numberPlaceholders(text.str()));
    text.seekp(0, std::ios_base::end);
    return stream;
}

class NumberingStatementImpl : public Poco::Data::PostgreSQL::PostgreSQLStatementImpl {
public:
    using PostgreSQLStatementImpl::PostgreSQLStatementImpl;

protected:
    void compileImpl() override {
        add(NumberPlaceholders());
        PostgreSQLStatementImpl::compileImpl();
    }
};

class NumberingSessionImpl : public Poco::Data::PostgreSQL::SessionImpl {
public:
    using SessionImpl::SessionImpl;

    Poco::Data::StatementImpl::Ptr createStatementImpl() override {
        return new NumberingStatementImpl(*this);
    }
};

bool hasTable(Poco::Data::Session& session, const std::string& table) {
    Poco::Int64 count = 0;
    std::string name = table;
    session << "SELECT COUNT(*) FROM information_schema.tables WHERE table_schema=current_schema() AND "
               "table_name=?",
        Poco::Data::Keywords::use(name), Poco::Data::Keywords::into(count), Poco::Data::Keywords::now;
    return count > 0;
}

}  // namespace

std::unique_ptr<SmoDbSession> openPostgreSQLDatabase(const std::string& connection, bool* created) {
    if (connection.empty())
        throw Poco::InvalidArgumentException("openPostgreSQLDatabase(): no connection string");
    Poco::Data::Session session(new NumberingSessionImpl(connection));
    bool fresh = !hasTable(session, "bn_datatype");
    if (fresh)
        SqlScript::run(session, TQ::Catalogue::schemaPostgreSqlSql() + ";\n" + TQ::Catalogue::contentSql());
    if (created) *created = fresh;

    auto db = std::make_unique<SmoDbSession>(session);
    // Per session: another process's inserts in between do not change it.
    db->setGeneratedKeyQuery("SELECT lastval()");
    // libpq connects its connection object again in place; Poco's reconnect would leave the
    // lost one behind.
    db->setReconnect([](Poco::Data::Session& lost) {
        auto& handle = dynamic_cast<Poco::Data::PostgreSQL::SessionImpl&>(*lost.impl()).handle();
        if (handle.reset()) return;
        const std::string why = handle.lastError();
        throw Poco::Data::ConnectionFailedException("PostgreSQL: the connection is lost and cannot be made again" +
                                                    (why.empty() ? std::string() : ": " + why));
    });
    return db;
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
