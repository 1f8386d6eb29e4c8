#pragma once

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <memory>
#include <string>

namespace TQWsTest {

/// The generated catalogue in a temporary database, made the process-wide session for the whole
/// test process (the library's catalogue caches outlive any single test).
class WsCatalogue {
public:
    static void open() { static WsCatalogue catalogue; }

private:
    WsCatalogue() : _dir(Poco::TemporaryFile::tempName()) {
        Poco::File(_dir).createDirectories();
        _db = TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(_dir, "ws.db").toString());
        TQ::Utility::Data::pDB = _db.get();
    }
    ~WsCatalogue() {
        TQ::Utility::Data::pDB = nullptr;
        _db.reset();
        Poco::File(_dir).remove(true);
    }

    std::string _dir;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

}  // namespace TQWsTest
