#include "ScratchDatabase.h"

#include "TQ/Utility/Data/EntityServer.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <cstdio>

using Poco::Data::Keywords::into;
using Poco::Data::Keywords::now;
using TQ::Utility::Data::EntityServer;
using TQTest::Probe;

namespace {

int probeCount(Poco::Data::Session& session) {
    int count = -1;
    session << "SELECT COUNT(*) FROM probe", into(count), now;
    return count;
}

void insertProbe(const std::string& name) {
    EntityServer server;
    Probe probe(true);
    probe.setVar(Probe::_COL_NAME, name, true);
    server.update(probe, nullptr);
}

}  // namespace

TEST(SmoDbSession, CommitKeepsAndRollbackUndoesNestedWrites) {
    TQTest::ScratchDatabase scratch;
    TQTest::createProbeTables(scratch.session());
    TQ::Utility::Data::SmoDbSession& db = *scratch.db;

    db.begin(nullptr, 1);
    insertProbe("a");
    db.begin(nullptr, 2);
    EXPECT_EQ(db.getDepth(), 2u);
    insertProbe("b");
    db.commit(0, 0, true);
    EXPECT_TRUE(db.isInTransaction()) << "an inner commit only closes its level";
    db.commit(0, 0, true);
    EXPECT_FALSE(db.isInTransaction());
    EXPECT_EQ(probeCount(scratch.session()), 2);

    db.begin(nullptr, 3);
    insertProbe("c");
    db.begin(nullptr, 4);
    insertProbe("d");
    db.rollback();
    EXPECT_FALSE(db.isInTransaction()) << "a rollback undoes the whole bracket";
    EXPECT_EQ(probeCount(scratch.session()), 2);
    EXPECT_NO_THROW(db.rollback());
    EXPECT_THROW(db.commit(0, 0, true), Poco::IllegalStateException);

    // The bracket that a destroyed session leaves open is undone, not committed.
    {
        TQ::Utility::Data::SmoDbSession other(scratch.session());
        other.begin(nullptr, 5);
        other.getSession() << "INSERT INTO probe (name) VALUES ('lost')", now;
    }
    EXPECT_EQ(probeCount(scratch.session()), 2);
}

TEST(SmoDbSession, BeginTracesItsCaller) {
    TQTest::ScratchDatabase scratch;
    FILE* trace = std::tmpfile();
    ASSERT_NE(trace, nullptr);
    scratch.db->begin(trace, 77);
    scratch.db->commit();
    std::rewind(trace);
    char line[128] = {};
    ASSERT_NE(std::fgets(line, sizeof line, trace), nullptr);
    std::fclose(trace);
    EXPECT_NE(std::string(line).find(" begin 77 depth 1"), std::string::npos) << line;
}
