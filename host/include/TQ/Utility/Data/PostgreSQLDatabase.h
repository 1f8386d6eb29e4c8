#pragma once

#include "TQ/Utility/Data/SmoDbSession.h"

#include <memory>
#include <string>

namespace TQ {
namespace Utility {
namespace Data {

/// Opens a session on a PostgreSQL database, `connection` being a libpq connection string
/// ("host=db.site port=5432 dbname=tq user=gateway password=..."). A database without the
/// table bn_datatype receives the catalogue schema (PostgreSQL dialect) and content in one
/// transaction; `created` (when given) tells whether that happened. The session reports keys
/// the database generated to `EntityServer::update`, so the entity layer and the stored tree
/// run on it unchanged. Failures raise Poco exceptions.
std::unique_ptr<SmoDbSession> openPostgreSQLDatabase(const std::string& connection, bool* created = nullptr);

/// `sql` with its "?" placeholders numbered for PostgreSQL ("$1", "$2", ...); a "?" inside
/// quoted text, a quoted identifier or a -- comment is left alone.
std::string numberPlaceholders(const std::string& sql);

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
