#pragma once

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TQWrapperTest {

/// The message of the E that `f` throws; any other exception fails the test on its own.
template <class E, class F>
std::string messageOf(F f) {
    try {
        f();
    } catch (const E& e) {
        return e.message();
    }
    return "<no exception>";
}

inline std::vector<uint8_t> bytes(std::initializer_list<uint8_t> list) {
    return std::vector<uint8_t>(list);
}

/// The generated catalogue in a temporary file, made the process-wide session for the tests
/// that read names from it.
class CatalogueDatabase {
public:
    static void open() { static CatalogueDatabase db; }

private:
    CatalogueDatabase() : _dir(Poco::TemporaryFile::tempName()) {
        Poco::File(_dir).createDirectories();
        _db = TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(_dir, "wrappers.db").toString());
        TQ::Utility::Data::pDB = _db.get();
    }
    ~CatalogueDatabase() {
        TQ::Utility::Data::pDB = nullptr;
        _db.reset();
        Poco::File(_dir).remove(true);
    }

    std::string _dir;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

}  // namespace TQWrapperTest
