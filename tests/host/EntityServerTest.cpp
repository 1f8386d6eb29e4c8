#include "ProbeEntities.h"

#include "TQ/Utility/Data/EntityServer.h"

#include <Poco/Data/Statement.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <vector>

using Poco::Data::Keywords::into;
using Poco::Data::Keywords::now;
using Poco::Dynamic::Var;
using namespace TQ::Utility::Data;
using namespace TQTest;

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
    template <class T = int>
    T valueOf(const std::string& sql) {
        T value{};
        session() << sql, into(value), now;
        return value;
    }
    // Reads the probe with key `id` through a server that keeps the where clause and bind.
    void readProbe(EntityServer& server, Probe& probe, int id) {
        server.setWhere("id_probe=?");
        server.setBinds({Var(id)});
        ASSERT_EQ(server.retrieve(probe), 1);
    }

    TQTest::TempDatabase scratch;
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
    replaced << "amount>?";
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
    EXPECT_EQ(EntityServer(&scratch.db(), &first, nullptr)
                  .getSelectString(probe)
                  .rfind("SELECT DISTINCT id_probe,", 0),
              0u);

    TQ::Utility::Data::SmoDbSession* saved = TQ::Utility::Data::pDB;
    TQ::Utility::Data::pDB = nullptr;
    EXPECT_THROW(EntityServer(nullptr, nullptr, nullptr), Poco::NullPointerException);
    TQ::Utility::Data::pDB = saved;
}

TEST_F(EntityServerTest, ReadsOneRowVectorsAndMaps) {
    EntityServer server;
    Probe probe(false);
    probe.setVar(Probe::_COL_NOTE, std::string("default"), true);
    readProbe(server, probe, 10);
    EXPECT_TRUE(probe.getPK() == 10 && probe.getName() == "ten") << "column 0 goes through setPK";
    EXPECT_EQ(probe.getVar(Probe::_COL_NOTE).convert<std::string>(), "default")
        << "NULL keeps the prototype's value";
    EXPECT_FALSE(probe.isChanged(Probe::_COL_NOTE) || probe.isNew());
    server.setBinds({Var(404)});
    Probe untouched(false);
    untouched.setPK(7, false);
    EXPECT_TRUE(server.retrieve(untouched) == 0 && untouched.getPK() == 7) << "no row: the entity unchanged";

    server.setWhere("id_probe_parent=?");
    server.setBinds({Var(1)});
    server.setOrderBy("amount");
    std::vector<Probe> rows(3, Probe(false));
    ASSERT_EQ(server.retrieve(rows), 2);
    ASSERT_EQ(rows.size(), 2u) << "the vector is cleared first";
    EXPECT_EQ(rows[0].getName() + rows[1].getName(), "eleventen");
    EXPECT_TRUE(rows[1].getVar(Probe::_COL_NOTE).isEmpty()) << "NULL reads as an empty value";

    // Map keys come from operator()(); of two rows with the same key the first one stays.
    session() << "INSERT INTO probe VALUES (14, 2, 'abcdef', 80, NULL)", now;
    std::map<int, JoinedProbe> byLength;
    ASSERT_EQ(EntityServer().retrieve(byLength), 4) << "the inner join drops the orphan";
    ASSERT_EQ(byLength.size(), 2u) << "eleven, twelve and abcdef share the key 6";
    EXPECT_EQ(byLength.at(3).getName(), "ten");
    EXPECT_TRUE(byLength.at(6).getPK() == 11 && byLength.at(6).getVar(Probe::_COL_NOTE) == "x")
        << "rows come by amount and the first (50) stays";
}

TEST_F(EntityServerTest, ParentAndChildRoundTrips) {
    Probe child(false);
    EntityServer byKey;
    readProbe(byKey, child, 12);
    std::string parentWhere = child.getParentWhere(Probe::_COL_ID_PROBE_PARENT, nullptr);
    EntityServer parentServer(nullptr, nullptr, &parentWhere);
    parentServer.addBind(child.getVar(Probe::_COL_ID_PROBE_PARENT));
    ProbeParent parent(false);
    ASSERT_EQ(parentServer.retrieve(parent), 1);
    EXPECT_EQ(parent.getVar(ProbeParent::_COL_LABEL).convert<std::string>(), "second");

    ProbeParent first(false);
    first.setPK(1, false);
    std::vector<Var> binds;
    std::string extra = "amount>=?";
    std::vector<Var> extraBinds{Var(60)};
    std::string childWhere = first.getChildsWhere(binds, &extra, &extraBinds, nullptr);
    EntityServer children(nullptr, nullptr, &childWhere);
    children.setBinds(binds);
    std::map<int, Probe> kids;
    ASSERT_EQ(children.retrieve(kids), 1);
    EXPECT_EQ(kids.at(10).getName(), "ten");
}

TEST_F(EntityServerTest, InsertFillsGeneratedKeysAndKeepsGivenOnes) {
    EntityServer server;
    std::vector<DataAutoIncrement> generated;
    Probe fresh(true);
    fresh.setVar(Probe::_COL_NAME, std::string("fresh"), true);
    ASSERT_EQ(server.update(fresh, &generated), 1);
    EXPECT_FALSE(fresh.isNew() || fresh.isChanged(Probe::_COL_NAME));
    EXPECT_EQ(fresh.getVar(0).convert<int>(), 14) << "the database's next key";
    ASSERT_EQ(generated.size(), 1u);
    EXPECT_EQ(generated[0].table + "." + generated[0].column + std::to_string(generated[0].value),
              "probe.id_probe14");
    EXPECT_EQ(valueOf("SELECT amount FROM probe WHERE id_probe=14"), 7)
        << "an unset column keeps its default";

    Probe keyed(true);
    keyed.setPK(500, true);
    keyed.setVar(Probe::_COL_NAME, std::string("keyed"), true);
    keyed.setVar(Probe::_COL_NOTE, Var(), true);
    ASSERT_EQ(server.update(keyed, &generated), 1);
    EXPECT_EQ(generated.size(), 1u) << "a given key is not generated";
    EXPECT_EQ(valueOf("SELECT COUNT(*) FROM probe WHERE id_probe=500 AND name='keyed' AND note IS NULL"), 1);

    // Without a generated-key query the highest key is read back; the result is the same.
    scratch.db().setGeneratedKeyQuery("");
    Probe another(true);
    another.setVar(Probe::_COL_NAME, std::string("another"), true);
    ASSERT_EQ(server.update(another, nullptr), 1);
    EXPECT_EQ(another.getPK(), 501);

    // A failing insert (NOT NULL violated) raises and leaves the entity new.
    Probe broken(true);
    broken.setVar(Probe::_COL_AMOUNT, Var(), true);
    EXPECT_THROW(server.update(broken, nullptr), Poco::Exception);
    EXPECT_TRUE(broken.isNew());
}

TEST_F(EntityServerTest, UpdateWritesOnlyChangedUpdateableColumnsAndDeletes) {
    EntityServer server;
    Probe probe(false);
    readProbe(server, probe, 11);
    EXPECT_EQ(server.update(probe, nullptr), 0) << "nothing changed: no statement";
    // Another writer changes the row; only our changed columns may overwrite it.
    session() << "UPDATE probe SET amount=51, note='theirs' WHERE id_probe=11", now;
    probe.setVar(Probe::_COL_NAME, std::string("renamed"), true);
    probe.setVar(Probe::_COL_ID_PROBE_PARENT, 2, true);
    probe.setUpdateable(Probe::_COL_ID_PROBE_PARENT, false);
    ASSERT_EQ(server.update(probe, nullptr), 1);
    EXPECT_EQ(valueOf<std::string>("SELECT name||amount||note||id_probe_parent FROM probe WHERE id_probe=11"),
              "renamed51theirs1");
    EXPECT_FALSE(probe.isChanged(Probe::_COL_NAME));
    EXPECT_EQ(valueOf("SELECT COUNT(*) FROM probe WHERE name='renamed'"), 1) << "only the entity's own row";
    probe.setVar(Probe::_COL_NOTE, Var(), true);
    ASSERT_EQ(server.update(probe, nullptr), 1);
    EXPECT_EQ(valueOf("SELECT COUNT(*) FROM probe WHERE id_probe=11 AND note IS NULL"), 1)
        << "empty writes NULL";

    probe.setDeleted(true);
    EXPECT_EQ(server.update(probe, nullptr), 1);
    EXPECT_EQ(server.update(probe, nullptr), 0) << "already gone";
    Probe neverStored(true);
    neverStored.setDeleted(true);
    EXPECT_EQ(server.update(neverStored, nullptr), 0);
    EXPECT_EQ(valueOf("SELECT COUNT(*) FROM probe"), 3);
}

TEST_F(EntityServerTest, HostileTextStaysData) {
    const std::string hostile = "x'); DROP TABLE probe; --\"; ;'";
    EntityServer server;
    Probe probe(true);
    probe.setVar(Probe::_COL_NAME, hostile, true);
    probe.setVar(Probe::_COL_NOTE, std::string("it's; fine"), true);
    ASSERT_EQ(server.update(probe, nullptr), 1);
    server.setWhere("name=?");
    server.addBind(hostile);
    std::vector<Probe> found;
    ASSERT_EQ(server.retrieve(found), 1);
    EXPECT_EQ(found[0].getVar(Probe::_COL_NOTE).convert<std::string>(), "it's; fine");
    found[0].setVar(Probe::_COL_NOTE, hostile, true);
    ASSERT_EQ(server.update(found[0], nullptr), 1);
    EXPECT_EQ(valueOf("SELECT COUNT(*) FROM probe WHERE note=name"), 1);
    EXPECT_EQ(valueOf("SELECT COUNT(*) FROM probe"), 5) << "the table is intact";
}

TEST_F(EntityServerTest, SelectAndExecuteBindsEveryKindOfValue) {
    EntityServer server;
    for (const Var& bind : {Var(true), Var(2.5), Var(4000000000u), Var(), Var(1), Var(std::string("eleven"))})
        server.addBind(bind);
    std::vector<int> keys, matches;
    Poco::Data::Statement statement(session());
    statement << "SELECT id_probe, (?=1) + (?=2.5) + (?=4000000000) + (? IS NULL) FROM probe "
                 "WHERE id_probe_parent=? AND name<>? ORDER BY id_probe",
        into(keys), into(matches);
    EXPECT_EQ(server.sqlSelectAndExecute(statement), 1);
    EXPECT_TRUE(keys == std::vector<int>{10} && matches == std::vector<int>{4})
        << "each kind binds as its SQL type";
}
