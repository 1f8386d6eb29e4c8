#pragma once

#include <string>

namespace TQ {
namespace Utility {
namespace Data {

/// One key that the database generated for an inserted row: table, key column and value.
/// `EntityServer::update` appends one per such insert when given a list, so that a caller
/// writing a whole tree learns every new key.
struct DataAutoIncrement {
    std::string table;
    std::string column;
    int value = -1;
};

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
