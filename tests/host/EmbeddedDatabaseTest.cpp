#include "ProbeEntities.h"

#include "TQ/Utility/Data/SqlScript.h"

#include <Poco/Data/DataException.h>
#include <gtest/gtest.h>

#include <algorithm>

using Poco::Data::Keywords::into;
using Poco::Data::Keywords::now;
using namespace TQ::Utility::Data;

TEST(SqlScript, SplitsOnlyAtStatementEnds) {
    auto pieces = SqlScript::split(
        "CREATE TABLE t (a TEXT);\n"
        "INSERT INTO t VALUES ('semi;colon', 'it''s; here');  -- trailing; comment\n"
        "/* block; comment */ INSERT INTO \"odd;name\" VALUES (1);;\n"
        "  ;\n"
        "SELECT [a;b], `c;d` FROM t");
    EXPECT_EQ(pieces, (std::vector<std::string>{
                         "CREATE TABLE t (a TEXT)", "INSERT INTO t VALUES ('semi;colon', 'it''s; here')",
                         "INSERT INTO \"odd;name\" VALUES (1)", "SELECT [a;b], `c;d` FROM t"}));
    EXPECT_TRUE(SqlScript::split(" ; -- only a comment\n;").empty());
    EXPECT_THROW(SqlScript::split("INSERT INTO t VALUES ('open;"), Poco::SyntaxException);
    EXPECT_THROW(SqlScript::split("SELECT 1 /* open"), Poco::SyntaxException);
}

TEST(SqlScript, RunsInOneTransactionAndUndoesAFailure) {
    TQTest::TempDatabase scratch;
    Poco::Data::Session& session = scratch.session();
    EXPECT_EQ(
        SqlScript::run(session,
                       "CREATE TABLE s (v TEXT); INSERT INTO s VALUES ('a;b'); INSERT INTO s VALUES ('c')"),
        3u);
    try {
        SqlScript::run(session, "INSERT INTO s VALUES ('d'); INSERT INTO missing VALUES (1)");
        FAIL() << "a failing statement must raise";
    } catch (const Poco::Data::DataException& error) {
        EXPECT_NE(error.message().find("statement 2"), std::string::npos) << error.message();
    }
    std::vector<std::string> rows;
    session << "SELECT v FROM s ORDER BY v", into(rows), now;
    EXPECT_EQ(rows, (std::vector<std::string>{"a;b", "c"}))
        << "the failed script's first insert is rolled back";
}

TEST(EmbeddedDatabase, CreatesTheCatalogueOnceAndReopensIt) {
    std::string file;
    {
        TQTest::TempDatabase scratch;
        file = scratch.file();
        EXPECT_TRUE(scratch.created());
        auto tables = TQ::Utility::Data::embeddedTableNames(scratch.session());
        for (const char* table : {"bn_datatype", "bn_gw", "bn_device_object_property", "dv_bus"})
            EXPECT_NE(std::find(tables.begin(), tables.end(), table), tables.end()) << table;
        EXPECT_TRUE(std::is_sorted(tables.begin(), tables.end()));
        scratch.session() << "INSERT INTO bn_datatype (id_bn_datatype, name) VALUES (99999, 'marker')", now;

        // A second open of the same file must not run the schema again (it would fail on the
        // existing tables) nor lose what was written.
        bool createdAgain = true;
        auto again = TQ::Utility::Data::openEmbeddedDatabase(file, &createdAgain);
        std::string marker;
        again->getSession() << "SELECT name FROM bn_datatype WHERE id_bn_datatype=99999", into(marker), now;
        EXPECT_TRUE(!createdAgain && marker == "marker");
        EXPECT_EQ(again->getGeneratedKeyQuery(), "SELECT last_insert_rowid()");

        const std::string nested = scratch.dir() + "/a/b/nested.db";
        bool created = false;
        TQ::Utility::Data::openEmbeddedDatabase(nested, &created);
        EXPECT_TRUE(created && Poco::File(nested).exists()) << "missing directories are created";
        EXPECT_THROW(TQ::Utility::Data::openEmbeddedDatabase(""), Poco::InvalidArgumentException);
        // A directory in place of the file cannot be opened as a database.
        EXPECT_THROW(TQ::Utility::Data::openEmbeddedDatabase(scratch.dir() + "/a"), Poco::Exception);
    }
    EXPECT_FALSE(Poco::File(file).exists()) << "the scratch directory is cleaned up";
}
