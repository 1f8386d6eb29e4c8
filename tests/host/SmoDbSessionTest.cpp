#include "ProbeEntities.h"

#include "TQ/Utility/Data/EntityServer.h"

#include <gtest/gtest.h>

#include <cstdio>

using Poco::Data::Keywords::into;
using Poco::Data::Keywords::now;

TEST(SmoDbSession, CommitKeepsAndRollbackUndoesNestedWrites) {
    TQTest::TempDatabase scratch;
    TQTest::createProbeTables(scratch.session());
    TQ::Utility::Data::SmoDbSession& db = scratch.db();
    auto insert = [](const std::string& name) {
        TQ::Utility::Data::EntityServer server;
        TQTest::Probe probe(true);
        probe.setVar(TQTest::Probe::_COL_NAME, name, true);
        server.update(probe, nullptr);
    };
    auto count = [&scratch] {
        int rows = -1;
        scratch.session() << "SELECT COUNT(*) FROM probe", into(rows), now;
        return rows;
    };

    db.begin(nullptr, 1);
    insert("a");
    db.begin(nullptr, 2);
    EXPECT_EQ(db.getDepth(), 2u);
    insert("b");
    db.commit(0, 0, true);
    EXPECT_TRUE(db.isInTransaction()) << "an inner commit only closes its level";
    db.commit(0, 0, true);
    EXPECT_TRUE(!db.isInTransaction() && count() == 2);

    db.begin(nullptr, 3);
    insert("c");
    db.begin(nullptr, 4);
    insert("d");
    db.rollback();
    EXPECT_TRUE(!db.isInTransaction() && count() == 2) << "a rollback undoes the whole bracket";
    EXPECT_NO_THROW(db.rollback());
    EXPECT_THROW(db.commit(0, 0, true), Poco::IllegalStateException);

    // The bracket that a destroyed session leaves open is undone, not committed.
    {
        TQ::Utility::Data::SmoDbSession other(scratch.session());
        other.begin(nullptr, 5);
        other.getSession() << "INSERT INTO probe (name) VALUES ('lost')", now;
    }
    EXPECT_EQ(count(), 2);

    FILE* trace = std::tmpfile();
    ASSERT_NE(trace, nullptr);
    db.begin(trace, 77);
    db.commit();
    std::rewind(trace);
    char line[128] = {};
    ASSERT_NE(std::fgets(line, sizeof line, trace), nullptr);
    std::fclose(trace);
    EXPECT_NE(std::string(line).find(" begin 77 depth 1"), std::string::npos) << line;
}
