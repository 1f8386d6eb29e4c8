#pragma once

// A small, purpose-built catalogue in an in-memory database: the real schema with rows chosen
// for the entity tests. It is the process-wide session for the whole test run, because the
// catalogue caches live for the process. Every statement the database runs is counted, so
// tests can tell a cache hit from a query.

#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/Data/Session.h>

#include <atomic>
#include <memory>
#include <string>

namespace TQTest {

/// The message of the `Expected` exception `action` raises; a different exception fails the test.
template <class Expected, class Action>
std::string messageOf(Action&& action) {
    try {
        action();
    } catch (const Expected& error) {
        return error.message();
    }
    return "<no exception>";
}

class TestCatalogue {
public:
    /// The catalogue, created on first use and installed as the process-wide session.
    static TestCatalogue& get();

    Poco::Data::Session& session() { return _db->getSession(); }
    TQ::Utility::Data::SmoDbSession* db() { return _db.get(); }

    /// Statements run so far whose SQL text, with the bound values in place of the "?",
    /// contains `fragment`.
    int queries(const std::string& fragment) const;
    /// Runs one SQL statement directly (for rows a single test adds).
    void exec(const std::string& sql);

private:
    TestCatalogue();
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

}  // namespace TQTest
