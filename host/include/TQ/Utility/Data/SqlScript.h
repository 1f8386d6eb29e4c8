#pragma once

#include <Poco/Data/Session.h>

#include <string>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {

/// SQL script text: statements separated by ";".
class SqlScript {
public:
    /// The statements of `script` without their ";" and surrounding blanks. A ";" inside a
    /// '...' string (with '' as an escaped quote), a "..." or `...` identifier, a [...] name, a
    /// -- line comment or a /* */ comment does not end a statement; comments are dropped and
    /// statements left empty by that are skipped. Text that ends inside a string, identifier
    /// or comment raises Poco::SyntaxException.
    static std::vector<std::string> split(const std::string& script);

    /// Executes the statements of `script` in order inside one transaction of `session`
    /// (rolled back on failure, then Poco::Data::DataException naming the statement number).
    /// Returns the number of statements run.
    static std::size_t run(Poco::Data::Session& session, const std::string& script);
};

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
