#pragma once

#include <Poco/Data/Session.h>

#include <cstddef>
#include <ostream>

namespace TQ {
namespace Apps {

/// Writes a readable report of the catalogue held by a database: the row count of every bn_*
/// table, the data types by number and name, and the first rows of every other filled table.
class CatalogueReport {
public:
    CatalogueReport(Poco::Data::Session& session, std::size_t typeLines = 40, std::size_t sampleRows = 5);

    void write(std::ostream& out);

private:
    void writeCounts(std::ostream& out);
    void writeDataTypes(std::ostream& out);
    void writeSamples(std::ostream& out);

    Poco::Data::Session& _session;
    std::size_t _typeLines;
    std::size_t _sampleRows;
};

}  // namespace Apps
}  // namespace TQ
