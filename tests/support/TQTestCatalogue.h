#pragma once

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <memory>
#include <string>

namespace TQTest {

/// The generated catalogue in a temporary SQLite file, made the process-wide session for the
/// whole test process: the library's catalogue caches outlive any single test.
class Catalogue {
public:
    static Catalogue& open() {
        static Catalogue catalogue;
        return catalogue;
    }
    TQ::Utility::Data::SmoDbSession& db() { return *_db; }

private:
    Catalogue() : _dir(Poco::TemporaryFile::tempName()) {
        Poco::File(_dir).createDirectories();
        _db = TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(_dir, "catalogue.db").toString());
        TQ::Utility::Data::pDB = _db.get();
    }
    ~Catalogue() {
        TQ::Utility::Data::pDB = nullptr;
        _db.reset();
        Poco::File(_dir).remove(true);
    }

    std::string _dir;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

}  // namespace TQTest
