#pragma once

#include <string>

namespace TQ {
namespace Catalogue {

/// CREATE TABLE / CREATE INDEX statements of every bn_* table (and the host's bus table),
/// separated by ";". Portable SQL: no connector-specific syntax.
const std::string& schemaSql();

/// INSERT statements that fill the catalogue tables with the standard's content.
const std::string& contentSql();

}  // namespace Catalogue
}  // namespace TQ
