#include "ProbeEntities.h"

#include "TQ/Utility/Data/EntityServer.h"

#include <gtest/gtest.h>

using Poco::Dynamic::Var;
using namespace TQ::Utility::Data;
using namespace TQTest;

TEST(Entity, ColumnsFlagsKeysAndCopies) {
    Probe probe(true);
    EXPECT_EQ(probe.getColName(Probe::_COL_NOTE), "note");
    EXPECT_THROW(probe.getColName(5), Poco::RangeException);
    EXPECT_THROW(probe.setVar(5, 1, true), Poco::RangeException);
    EXPECT_THROW(probe.setVar(-1, 1, true), Poco::RangeException);
    EXPECT_EQ(probe.getPK(), -1);
    probe.setPK(12, true);
    EXPECT_TRUE(probe() == 12 && probe.getVar(0).convert<int>() == 12 && probe.isChanged(0));
    probe.setVar(Probe::_COL_NAME, std::string("a"), true);
    probe.setVar(Probe::_COL_NAME, std::string("b"), false);
    EXPECT_FALSE(probe.isChanged(Probe::_COL_NAME)) << "the changed mark follows the last setVar";
    probe.setUpdateable(Probe::_COL_AMOUNT, false);

    Probe other(false);
    other.setPK(3, false);
    EXPECT_TRUE(other < probe && !(probe < other));
    other.copyBaseStuff(probe);
    EXPECT_TRUE(other.getPK() == 12 && other.isNew() && other.getName() == "b");
    EXPECT_TRUE(!other.isUpdateable(Probe::_COL_AMOUNT) && other.isChanged(0));
}

TEST(Entity, EmptyColumnsReadAsNullOrRaise) {
    Probe probe(false);
    EXPECT_TRUE(probe.getNullableVar<int>(Probe::_COL_AMOUNT).isNull());
    EXPECT_EQ(TQTest::messageOf([&] { probe.getAmount(); }), "Can not convert empty value.");
    probe.setVar(Probe::_COL_AMOUNT, std::string("41"), true);
    EXPECT_EQ(probe.getNullableVar<int>(Probe::_COL_AMOUNT).value(), 41);
    probe.setVar(Probe::_COL_NAME, std::string("x"), true);
    EXPECT_THROW(probe.getNullableVar<int>(Probe::_COL_NAME), Poco::SyntaxException);
}

TEST(Entity, ParentAndChildConditions) {
    Probe child(false);
    child.setPK(5, false);
    child.setVar(Probe::_COL_ID_PROBE_PARENT, 9, false);
    EXPECT_EQ(child.getParentWhere(Probe::_COL_ID_PROBE_PARENT, nullptr), "id_probe_parent=?");
    std::string extra = "label<>''";
    EXPECT_EQ(child.getParentWhere(Probe::_COL_ID_PROBE_PARENT, &extra), "id_probe_parent=? AND label<>''");
    std::string none;
    EXPECT_EQ(child.getParentWhere(0, &none), "id_probe=?");

    ProbeParent parent(false);
    parent.setPK(9, false);
    std::vector<Var> binds{Var(1), Var(2)};
    EXPECT_EQ(parent.getChildsWhere(binds, nullptr, nullptr, nullptr), "id_probe_parent=?");
    ASSERT_EQ(binds.size(), 1u) << "old binds are replaced";
    EXPECT_EQ(binds[0].convert<int>(), 9);
    std::string where = "amount>? OR name=?";
    std::vector<Var> extraBinds{Var(3), Var(std::string("n"))};
    std::string alias = "a";
    EXPECT_EQ(parent.getChildsWhere(binds, &where, &extraBinds, &alias),
              "a.id_probe_parent=? AND (amount>? OR name=?)");
    ASSERT_EQ(binds.size(), 3u);
    EXPECT_TRUE(binds[0].convert<int>() == 9 && binds[2].convert<std::string>() == "n");
}

TEST(Entity, SingleValueLookups) {
    TQTest::TempDatabase scratch;
    TQTest::createProbeTables(scratch.session());
    using Poco::Data::Keywords::now;
    scratch.session() << "INSERT INTO probe VALUES (1, 4, 'one', 10, NULL), (2, 4, 'two', 20, 'n')", now;
    EXPECT_EQ(Entity::sqlGetVarByVar(nullptr, "probe", "name", "id_probe=?", 2).convert<std::string>(),
              "two");
    EXPECT_TRUE(Entity::sqlGetVarByVar(&scratch.db(), "probe", "name", "id_probe=?", 3).isEmpty());
    EXPECT_TRUE(Entity::sqlGetVarByVar(nullptr, "probe", "note", "id_probe=?", 1).isEmpty()) << "NULL";
    EXPECT_EQ(Entity::sqlGetVarByVars(nullptr, "probe", "amount", "id_probe_parent=? AND name=?",
                                      {Var(4), Var(std::string("one"))})
                  .convert<int>(),
              10);
    // A hostile value is only ever data.
    EXPECT_TRUE(
        Entity::sqlGetVarByVar(nullptr, "probe", "name", "name=?", std::string("x' OR '1'='1")).isEmpty());
}
