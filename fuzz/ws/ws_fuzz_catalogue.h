// The generated catalogue for the web-service harnesses, opened once per process.
#pragma once

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <cstdlib>
#include <memory>

namespace TQFuzz {

inline void openCatalogue() {
    static std::unique_ptr<TQ::Utility::Data::SmoDbSession> db;
    if (db) return;
    const std::string dir = Poco::TemporaryFile::tempName();
    Poco::File(dir).createDirectories();
    Poco::TemporaryFile::registerForDeletion(dir);
    db = TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(dir, "catalogue.db").toString());
    TQ::Utility::Data::pDB = db.get();
}

inline void check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace TQFuzz
