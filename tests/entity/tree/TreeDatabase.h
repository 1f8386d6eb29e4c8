#pragma once

// The database the tree tests run on, made the process-wide session: SQLite by default; with
// TQ_TEST_BACKEND=postgresql a fresh database on the throwaway server of
// scripts/with-postgres.sh (TQ_PG_CONNECT), dropped when the process ends.

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/PostgreSQLDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/Entity/BnDevice.h"
#include "TQ_BACnet/Entity/BnGw.h"
#include "TQ_BACnet/ValueContainer.h"

#include <Poco/Data/Statement.h>

#include <Poco/Data/PostgreSQL/Connector.h>
#include <Poco/Data/Session.h>
#include <Poco/Environment.h>
#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/Process.h>
#include <Poco/TemporaryFile.h>

#include <memory>
#include <string>

namespace TQTest {

class TreeDatabase {
public:
    /// The backend this process was asked for.
    static bool wantsPostgreSQL() { return Poco::Environment::get("TQ_TEST_BACKEND", "") == "postgresql"; }
    /// PostgreSQL was asked for but no server was started for the run.
    static bool unavailable() { return wantsPostgreSQL() && !Poco::Environment::has("TQ_PG_CONNECT"); }

    static TreeDatabase& open() {
        static TreeDatabase database;
        return database;
    }

    TQ::Utility::Data::SmoDbSession& db() { return *_db; }
    bool isPostgreSQL() const { return _postgres; }
    /// What another process passes to `openAt` to open the same database.
    const std::string& location() const { return _location; }

    static std::unique_ptr<TQ::Utility::Data::SmoDbSession> openAt(bool postgres,
                                                                   const std::string& location) {
        return postgres ? TQ::Utility::Data::openPostgreSQLDatabase(location)
                        : TQ::Utility::Data::openEmbeddedDatabase(location);
    }

private:
    TreeDatabase() : _postgres(wantsPostgreSQL()) {
        if (_postgres) {
            const std::string server = Poco::Environment::get("TQ_PG_CONNECT");
            _name = "tq_tree_" + std::to_string(Poco::Process::id());
            admin(server, "CREATE DATABASE " + _name);
            _location = server + " dbname=" + _name;
        } else {
            _dir = Poco::TemporaryFile::tempName();
            Poco::File(_dir).createDirectories();
            _location = Poco::Path(_dir, "tree.db").toString();
        }
        _db = openAt(_postgres, _location);
        TQ::Utility::Data::pDB = _db.get();
    }
    ~TreeDatabase() {
        TQ::Utility::Data::pDB = nullptr;
        _db.reset();
        try {
            if (_postgres)
                admin(Poco::Environment::get("TQ_PG_CONNECT"), "DROP DATABASE IF EXISTS " + _name);
            else
                Poco::File(_dir).remove(true);
        } catch (...) {
        }
    }
    static void admin(const std::string& server, const std::string& sql) {
        Poco::Data::PostgreSQL::Connector::registerConnector();
        Poco::Data::Session session(Poco::Data::PostgreSQL::Connector::KEY, server + " dbname=postgres");
        session << sql, Poco::Data::Keywords::now;
    }

    bool _postgres;
    std::string _name;
    std::string _dir;
    std::string _location;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

/// The single integer a statement on the process's session returns.
inline int count(const std::string& sql) {
    Poco::Int64 n = -1;
    Poco::Data::Statement statement(TQ::Utility::Data::pDB->getSession());
    statement << sql, Poco::Data::Keywords::into(n);
    statement.execute();
    return static_cast<int>(n);
}

inline TQ::BACnet::ValueContainer real(float value) {
    TQ::BACnet::ValueContainer container;
    container.setReal(value);
    return container;
}

inline TQ::BACnet::ValueContainer text(const std::string& value) {
    TQ::BACnet::ValueContainer container;
    container.setCharString(value);
    return container;
}

/// The key of a stored device (under a stored gateway) with no objects.
inline int storeDevice() {
    TQ::Utility::Data::EntityServer server;
    TQ::BACnet::Entity::BnGw gw(true);
    TQ::BACnet::Entity::BnDevice device(true);
    gw.addDevice(device);
    gw.updateAll(server, nullptr);
    return gw.getDevices()->begin()->first;
}

}  // namespace TQTest

/// First line of every test that needs the database.
#define TQ_TREE_DATABASE()                                                                               \
    do {                                                                                                 \
        if (TQTest::TreeDatabase::unavailable()) GTEST_SKIP() << "no PostgreSQL server (TQ_PG_CONNECT)"; \
        try {                                                                                            \
            TQTest::TreeDatabase::open();                                                                \
        } catch (const Poco::Exception& e) {                                                             \
            FAIL() << e.displayText();                                                                   \
        }                                                                                                \
    } while (0)
