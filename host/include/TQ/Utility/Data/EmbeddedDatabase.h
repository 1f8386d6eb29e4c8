#pragma once

#include "TQ/Utility/Data/SmoDbSession.h"

#include <memory>
#include <string>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {

/// Opens (creating it and its directory when absent) the embedded SQLite database `file`.
/// A database without the table bn_datatype receives the catalogue schema and content, in one
/// transaction; `created` (when given) tells whether that happened. The session returned
/// reports generated keys to `EntityServer::update`. Failures raise Poco exceptions.
std::unique_ptr<SmoDbSession> openEmbeddedDatabase(const std::string& file, bool* created = nullptr);

/// The names of the tables of an embedded database, in alphabetical order.
std::vector<std::string> embeddedTableNames(Poco::Data::Session& session);

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
