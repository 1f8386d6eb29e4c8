#include "ScratchDatabase.h"

#include "TQ/Utility/Data/EntityServer.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

using TQ::Utility::Data::Entity;
using TQTest::Probe;
using TQTest::ProbeParent;

TEST(Entity, ColumnsFlagsAndKeys) {
    Probe probe(true);
    EXPECT_TRUE(probe.isNew());
    EXPECT_FALSE(probe.isDeleted());
    EXPECT_EQ(probe.getColumnCnt(), 5u);
    EXPECT_EQ(probe.getColName(Probe::_COL_NOTE), "note");
    EXPECT_THROW(probe.getColName(5), Poco::RangeException);
    EXPECT_THROW(probe.setVar(5, 1, true), Poco::RangeException);
    EXPECT_THROW(probe.setVar(-1, 1, true), Poco::RangeException);
    EXPECT_EQ(probe.getPK(), -1);

    probe.setPK(12, true);
    EXPECT_EQ(probe.getPK(), 12);
    EXPECT_EQ(probe(), 12);
    EXPECT_EQ(probe.getVar(0).convert<int>(), 12);
    EXPECT_TRUE(probe.isChanged(0));
    probe.setVar(Probe::_COL_NAME, std::string("a"), true);
    probe.setVar(Probe::_COL_NAME, std::string("b"), false);
    EXPECT_FALSE(probe.isChanged(Probe::_COL_NAME)) << "the changed mark follows the last setVar";
    probe.setUpdateable(Probe::_COL_AMOUNT, false);
    EXPECT_FALSE(probe.isUpdateable(Probe::_COL_AMOUNT));
    EXPECT_TRUE(probe.isUpdateable(Probe::_COL_NAME));

    Probe other(false);
    other.setPK(3, false);
    EXPECT_TRUE(other < probe);
    EXPECT_FALSE(probe < other);

    other.copyBaseStuff(probe);
    EXPECT_EQ(other.getPK(), 12);
    EXPECT_TRUE(other.isNew());
    EXPECT_EQ(other.getName(), "b");
    EXPECT_FALSE(other.isUpdateable(Probe::_COL_AMOUNT));
    EXPECT_TRUE(other.isChanged(0));
}

TEST(Entity, EmptyColumnsReadAsNullOrRaise) {
    Probe probe(false);
    EXPECT_TRUE(probe.getNullableVar<int>(Probe::_COL_AMOUNT).isNull());
    try {
        probe.getAmount();
        FAIL() << "reading an empty column as a number must raise";
    } catch (const Poco::InvalidAccessException& error) {
        EXPECT_EQ(error.message(), "Can not convert empty value.");
    }
    probe.setVar(Probe::_COL_AMOUNT, std::string("41"), true);
    Poco::Nullable<int> amount = probe.getNullableVar<int>(Probe::_COL_AMOUNT);
    ASSERT_FALSE(amount.isNull());
    EXPECT_EQ(amount.value(), 41);
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
    std::vector<Poco::Dynamic::Var> binds{Poco::Dynamic::Var(1), Poco::Dynamic::Var(2)};
    EXPECT_EQ(parent.getChildsWhere(binds, nullptr, nullptr, nullptr), "id_probe_parent=?");
    ASSERT_EQ(binds.size(), 1u) << "old binds are replaced";
    EXPECT_EQ(binds[0].convert<int>(), 9);

    std::string where = "amount>? OR name=?";
    std::vector<Poco::Dynamic::Var> extraBinds{Poco::Dynamic::Var(3), Poco::Dynamic::Var(std::string("n"))};
    std::string alias = "a";
    EXPECT_EQ(parent.getChildsWhere(binds, &where, &extraBinds, &alias),
              "a.id_probe_parent=? AND (amount>? OR name=?)");
    ASSERT_EQ(binds.size(), 3u);
    EXPECT_EQ(binds[0].convert<int>(), 9);
    EXPECT_EQ(binds[2].convert<std::string>(), "n");
}

TEST(Entity, SingleValueLookups) {
    TQTest::ScratchDatabase scratch;
    TQTest::createProbeTables(scratch.session());
    using Poco::Data::Keywords::now;
    scratch.session() << "INSERT INTO probe VALUES (1, 4, 'one', 10, NULL)", now;
    scratch.session() << "INSERT INTO probe VALUES (2, 4, 'two', 20, 'n')", now;

    Poco::Dynamic::Var name = Entity::sqlGetVarByVar(nullptr, "probe", "name", "id_probe=?", 2);
    EXPECT_EQ(name.convert<std::string>(), "two");
    EXPECT_TRUE(Entity::sqlGetVarByVar(scratch.db.get(), "probe", "name", "id_probe=?", 3).isEmpty());
    EXPECT_TRUE(Entity::sqlGetVarByVar(nullptr, "probe", "note", "id_probe=?", 1).isEmpty())
        << "NULL reads empty";
    Poco::Dynamic::Var amount =
        Entity::sqlGetVarByVars(nullptr, "probe", "amount", "id_probe_parent=? AND name=?",
                                {Poco::Dynamic::Var(4), Poco::Dynamic::Var(std::string("one"))});
    EXPECT_EQ(amount.convert<int>(), 10);
    // A hostile value is only ever data.
    EXPECT_TRUE(
        Entity::sqlGetVarByVar(nullptr, "probe", "name", "name=?", std::string("x' OR '1'='1")).isEmpty());
}
