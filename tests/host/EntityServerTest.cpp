#include "ScratchDatabase.h"

#include "TQ/Utility/Data/EntityServer.h"

#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <map>
#include <vector>

using Poco::Data::Keywords::into;
using Poco::Data::Keywords::now;
using Poco::Data::Keywords::use;
using TQ::Utility::Data::DataAutoIncrement;
using TQ::Utility::Data::EntityServer;
using TQTest::JoinedProbe;
using TQTest::Probe;
using TQTest::ProbeParent;

namespace {

class EntityServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        TQTest::createProbeTables(session());
        session() << "INSERT INTO probe_parent VALUES (1, 'first'), (2, 'second')", now;
        session() << "INSERT INTO probe VALUES (10, 1, 'ten', 100, NULL), (11, 1, 'eleven', 50, 'x'), "
                     "(12, 2, 'twelve', 75, NULL), (13, 99, 'orphan', 1, NULL)",
            now;
    }
    Poco::Data::Session& session() { return scratch.session(); }
    std::string textOf(const std::string& sql) {
        std::string text;
        session() << sql, into(text), now;
        return text;
    }
    int numberOf(const std::string& sql) {
        int number = -1;
        session() << sql, into(number), now;
        return number;
    }

    TQTest::ScratchDatabase scratch;
};

}  // namespace

TEST_F(EntityServerTest, SelectTextIsBuiltFromTheEntity) {
    std::string where = "name=?";
    EntityServer server(nullptr, nullptr, &where);
    Probe probe(false);
    EXPECT_EQ(server.getSelectString(probe),
              "SELECT id_probe,id_probe_parent,name,amount,note FROM probe WHERE name=?");
    server.setOrderBy("amount DESC");
    std::stringstream replaced;
    replaced << "amount>"
             << "?";
    server.setWhere(replaced);
    EXPECT_EQ(
        server.getSelectString(probe),
        "SELECT id_probe,id_probe_parent,name,amount,note FROM probe WHERE amount>? ORDER BY amount DESC");

    JoinedProbe joined(false);
    EXPECT_EQ(server.getSelectString(joined),
              "SELECT a.id_probe,a.id_probe_parent,a.name,a.amount,a.note FROM probe a,probe_parent b "
              "WHERE a.id_probe_parent=b.id_probe_parent AND (amount>?) ORDER BY 4")
        << "the entity's own order wins and its columns go through the alias";

    std::string first = "DISTINCT";
    EntityServer distinct(scratch.db.get(), &first, nullptr);
    EXPECT_EQ(distinct.getSelectString(probe).rfind("SELECT DISTINCT id_probe,", 0), 0u);

    TQ::Utility::Data::SmoDbSession* saved = TQ::Utility::Data::pDB;
    TQ::Utility::Data::pDB = nullptr;
    EXPECT_THROW(EntityServer(nullptr, nullptr, nullptr), Poco::NullPointerException);
    TQ::Utility::Data::pDB = saved;
}

TEST_F(EntityServerTest, ReadsOneRowVectorsAndMaps) {
    EntityServer server;
    server.setWhere("id_probe=?");
    server.addBind(10);
    Probe probe(false);
    probe.setVar(Probe::_COL_NOTE, std::string("default"), true);
    ASSERT_EQ(server.retrieve(probe), 1);
    EXPECT_EQ(probe.getPK(), 10) << "column 0 goes through setPK";
    EXPECT_EQ(probe.getName(), "ten");
    EXPECT_EQ(probe.getAmount(), 100);
    EXPECT_EQ(probe.getVar(Probe::_COL_NOTE).convert<std::string>(), "default")
        << "NULL keeps the prototype's value";
    EXPECT_FALSE(probe.isChanged(Probe::_COL_NOTE));
    EXPECT_FALSE(probe.isNew());

    server.clearBinds();
    server.addBind(404);
    Probe untouched(false);
    untouched.setPK(7, false);
    EXPECT_EQ(server.retrieve(untouched), 0);
    EXPECT_EQ(untouched.getPK(), 7) << "no row leaves the entity unchanged";

    server.setWhere("id_probe_parent=?");
    server.clearBinds();
    server.addBind(1);
    server.setOrderBy("amount");
    std::vector<Probe> rows(3, Probe(false));
    ASSERT_EQ(server.retrieve(rows), 2);
    ASSERT_EQ(rows.size(), 2u) << "the vector is cleared first";
    EXPECT_EQ(rows[0].getName(), "eleven");
    EXPECT_EQ(rows[1].getName(), "ten");
    EXPECT_TRUE(rows[1].getVar(Probe::_COL_NOTE).isEmpty()) << "NULL reads as an empty value";
    EXPECT_THROW(rows[1].getVar(Probe::_COL_NOTE).convert<std::string>(), Poco::InvalidAccessException);

    // Map keys come from operator()(); of two rows with the same key the first one stays.
    session() << "INSERT INTO probe VALUES (14, 2, 'abcdef', 80, NULL)", now;
    EntityServer all;
    std::map<int, JoinedProbe> byLength;
    ASSERT_EQ(all.retrieve(byLength), 4) << "the inner join drops the orphan";
    ASSERT_EQ(byLength.size(), 2u) << "eleven, twelve and abcdef share the key 6";
    EXPECT_EQ(byLength.at(3).getName(), "ten");
    EXPECT_EQ(byLength.at(6).getName(), "eleven") << "rows come by amount and the first (50) stays";
    EXPECT_EQ(byLength.at(6).getPK(), 11);
    EXPECT_EQ(byLength.at(6).getVar(Probe::_COL_AMOUNT).convert<int>(), 50);
    EXPECT_EQ(byLength.at(6).getVar(Probe::_COL_NOTE).convert<std::string>(), "x");
}

TEST_F(EntityServerTest, ParentAndChildRoundTrips) {
    Probe child(false);
    EntityServer byKey;
    byKey.setWhere("id_probe=?");
    byKey.addBind(12);
    ASSERT_EQ(byKey.retrieve(child), 1);

    std::string parentWhere = child.getParentWhere(Probe::_COL_ID_PROBE_PARENT, nullptr);
    EntityServer parentServer(nullptr, nullptr, &parentWhere);
    parentServer.addBind(child.getVar(Probe::_COL_ID_PROBE_PARENT));
    ProbeParent parent(false);
    ASSERT_EQ(parentServer.retrieve(parent), 1);
    EXPECT_EQ(parent.getPK(), 2);
    EXPECT_EQ(parent.getVar(ProbeParent::_COL_LABEL).convert<std::string>(), "second");

    ProbeParent first(false);
    first.setPK(1, false);
    std::vector<Poco::Dynamic::Var> binds;
    std::string extra = "amount>=?";
    std::vector<Poco::Dynamic::Var> extraBinds{Poco::Dynamic::Var(60)};
    std::string childWhere = first.getChildsWhere(binds, &extra, &extraBinds, nullptr);
    EntityServer children(nullptr, nullptr, &childWhere);
    children.setBinds(binds);
    std::map<int, Probe> kids;
    ASSERT_EQ(children.retrieve(kids), 1);
    EXPECT_EQ(kids.begin()->first, 10);
    EXPECT_EQ(kids.begin()->second.getName(), "ten");
}

TEST_F(EntityServerTest, InsertFillsGeneratedKeysAndKeepsGivenOnes) {
    EntityServer server;
    std::vector<DataAutoIncrement> generated;

    Probe fresh(true);
    fresh.setVar(Probe::_COL_ID_PROBE_PARENT, 1, true);
    fresh.setVar(Probe::_COL_NAME, std::string("fresh"), true);
    ASSERT_EQ(server.update(fresh, &generated), 1);
    EXPECT_FALSE(fresh.isNew());
    EXPECT_EQ(fresh.getPK(), 14) << "the database's next key";
    EXPECT_EQ(fresh.getVar(0).convert<int>(), 14);
    EXPECT_FALSE(fresh.isChanged(Probe::_COL_NAME));
    ASSERT_EQ(generated.size(), 1u);
    EXPECT_EQ(generated[0].table, "probe");
    EXPECT_EQ(generated[0].column, "id_probe");
    EXPECT_EQ(generated[0].value, 14);
    EXPECT_EQ(numberOf("SELECT amount FROM probe WHERE id_probe=14"), 7)
        << "an unset column keeps its default";

    Probe keyed(true);
    keyed.setPK(500, true);
    keyed.setVar(Probe::_COL_NAME, std::string("keyed"), true);
    keyed.setVar(Probe::_COL_NOTE, Poco::Dynamic::Var(), true);
    ASSERT_EQ(server.update(keyed, &generated), 1);
    EXPECT_EQ(generated.size(), 1u) << "a given key is not generated";
    EXPECT_EQ(textOf("SELECT name FROM probe WHERE id_probe=500"), "keyed");
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe WHERE id_probe=500 AND note IS NULL"), 1);

    // Without a generated-key query the highest key is read back; the result is the same.
    scratch.db->setGeneratedKeyQuery("");
    Probe another(true);
    another.setVar(Probe::_COL_NAME, std::string("another"), true);
    ASSERT_EQ(server.update(another, nullptr), 1);
    EXPECT_EQ(another.getPK(), 501);

    // A failing insert (NOT NULL violated) raises and leaves the entity new.
    Probe broken(true);
    broken.setVar(Probe::_COL_AMOUNT, Poco::Dynamic::Var(), true);
    EXPECT_THROW(server.update(broken, nullptr), Poco::Exception);
    EXPECT_TRUE(broken.isNew());
}

TEST_F(EntityServerTest, UpdateWritesOnlyChangedUpdateableColumns) {
    EntityServer server;
    server.setWhere("id_probe=?");
    server.addBind(11);
    Probe probe(false);
    ASSERT_EQ(server.retrieve(probe), 1);
    EXPECT_EQ(server.update(probe, nullptr), 0) << "nothing changed: no statement";

    // Another writer changes the row; only our changed columns may overwrite it.
    session() << "UPDATE probe SET amount=51, note='theirs' WHERE id_probe=11", now;
    probe.setVar(Probe::_COL_NAME, std::string("renamed"), true);
    probe.setVar(Probe::_COL_ID_PROBE_PARENT, 2, true);
    probe.setUpdateable(Probe::_COL_ID_PROBE_PARENT, false);
    ASSERT_EQ(server.update(probe, nullptr), 1);
    EXPECT_EQ(textOf("SELECT name FROM probe WHERE id_probe=11"), "renamed");
    EXPECT_EQ(numberOf("SELECT amount FROM probe WHERE id_probe=11"), 51);
    EXPECT_EQ(textOf("SELECT note FROM probe WHERE id_probe=11"), "theirs");
    EXPECT_EQ(numberOf("SELECT id_probe_parent FROM probe WHERE id_probe=11"), 1) << "not updateable";
    EXPECT_FALSE(probe.isChanged(Probe::_COL_NAME));
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe WHERE name='renamed'"), 1) << "only the entity's own row";

    probe.setVar(Probe::_COL_NOTE, Poco::Dynamic::Var(), true);
    ASSERT_EQ(server.update(probe, nullptr), 1);
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe WHERE id_probe=11 AND note IS NULL"), 1)
        << "empty writes NULL";
}

TEST_F(EntityServerTest, DeletedFlagRemovesTheRow) {
    EntityServer server;
    Probe probe(false);
    server.setWhere("id_probe=?");
    server.addBind(12);
    ASSERT_EQ(server.retrieve(probe), 1);
    probe.setDeleted(true);
    EXPECT_EQ(server.update(probe, nullptr), 1);
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe WHERE id_probe=12"), 0);
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe"), 3);
    EXPECT_EQ(server.update(probe, nullptr), 0) << "already gone";

    Probe neverStored(true);
    neverStored.setDeleted(true);
    EXPECT_EQ(server.update(neverStored, nullptr), 0);
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe"), 3);
}

TEST_F(EntityServerTest, HostileTextStaysData) {
    const std::string hostile = "x'); DROP TABLE probe; --\"; ;'";
    EntityServer server;
    Probe probe(true);
    probe.setVar(Probe::_COL_NAME, hostile, true);
    probe.setVar(Probe::_COL_NOTE, std::string("it's; fine"), true);
    ASSERT_EQ(server.update(probe, nullptr), 1);
    EXPECT_EQ(textOf("SELECT name FROM probe WHERE id_probe=" + std::to_string(probe.getPK())), hostile);

    server.setWhere("name=?");
    server.addBind(hostile);
    std::vector<Probe> found;
    ASSERT_EQ(server.retrieve(found), 1);
    EXPECT_EQ(found[0].getVar(Probe::_COL_NOTE).convert<std::string>(), "it's; fine");

    found[0].setVar(Probe::_COL_NOTE, hostile, true);
    ASSERT_EQ(server.update(found[0], nullptr), 1);
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe WHERE note=name"), 1);
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM probe"), 5) << "the table is intact";
}

TEST_F(EntityServerTest, SelectAndExecuteBindsServerValues) {
    EntityServer server;
    server.addBind(1);
    server.addBind(std::string("eleven"));
    std::vector<int> keys;
    Poco::Data::Statement statement(session());
    statement << "SELECT id_probe FROM probe WHERE id_probe_parent=? AND name<>? ORDER BY id_probe",
        into(keys);
    EXPECT_EQ(server.sqlSelectAndExecute(statement), 1);
    ASSERT_EQ(keys.size(), 1u);
    EXPECT_EQ(keys[0], 10);

    // Every kind of value binds as its SQL type.
    EntityServer kinds;
    kinds.addBind(true);
    kinds.addBind(2.5);
    kinds.addBind(static_cast<unsigned int>(4000000000u));
    kinds.addBind(Poco::Dynamic::Var());
    Poco::Data::Statement probe(session());
    int count = 0;
    probe << "SELECT (?=1) + (?=2.5) + (?=4000000000) + (? IS NULL)", into(count);
    kinds.sqlSelectAndExecute(probe);
    EXPECT_EQ(count, 4);
}
