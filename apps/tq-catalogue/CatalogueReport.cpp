#include "CatalogueReport.h"

#include "TQ/Utility/Data/EmbeddedDatabase.h"

#include <Poco/Data/RecordSet.h>
#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>

#include <iomanip>
#include <string>
#include <vector>

namespace TQ {
namespace Apps {

namespace {

using Poco::Data::Keywords::into;
using Poco::Data::Keywords::now;

// Table names are spliced into SQL, so only plain identifiers are accepted.
bool isPlainIdentifier(const std::string& name) {
    if (name.empty()) return false;
    for (char c : name)
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'))
            return false;
    return true;
}

std::vector<std::string> catalogueTables(Poco::Data::Session& session) {
    std::vector<std::string> tables;
    for (const std::string& name : TQ::Utility::Data::embeddedTableNames(session))
        if (name.compare(0, 3, "bn_") == 0 && isPlainIdentifier(name)) tables.push_back(name);
    return tables;
}

std::size_t rowCount(Poco::Data::Session& session, const std::string& table) {
    Poco::Int64 count = 0;
    session << "SELECT COUNT(*) FROM " + table, into(count), now;
    return static_cast<std::size_t>(count);
}

std::string cellText(const Poco::Data::RecordSet& rows, std::size_t column, std::size_t row) {
    if (rows.isNull(column, row)) return "NULL";
    std::string text = rows.value(column, row).convert<std::string>();
    // Keep each sample row on one line.
    for (char& c : text)
        if (c == '\n' || c == '\r' || c == '\t') c = ' ';
    return text.size() > 40 ? text.substr(0, 37) + "..." : text;
}

}  // namespace

CatalogueReport::CatalogueReport(Poco::Data::Session& session, std::size_t typeLines, std::size_t sampleRows)
    : _session(session), _typeLines(typeLines), _sampleRows(sampleRows) {}

void CatalogueReport::write(std::ostream& out) {
    writeCounts(out);
    writeDataTypes(out);
    writeSamples(out);
}

void CatalogueReport::writeCounts(std::ostream& out) {
    out << "Rows per table:\n";
    for (const std::string& table : catalogueTables(_session))
        out << "  " << std::left << std::setw(34) << table << std::right << std::setw(8)
            << rowCount(_session, table) << "\n";
}

void CatalogueReport::writeDataTypes(std::ostream& out) {
    std::vector<int> numbers;
    std::vector<std::string> names;
    _session << "SELECT id_bn_datatype, name FROM bn_datatype ORDER BY id_bn_datatype", into(numbers),
        into(names), now;
    out << "\nData types (" << numbers.size() << "):\n";
    if (numbers.empty()) out << "  (none)\n";
    std::size_t shown = numbers.size() < _typeLines ? numbers.size() : _typeLines;
    for (std::size_t i = 0; i < shown; ++i)
        out << "  " << std::setw(6) << numbers[i] << "  " << names[i] << "\n";
    if (shown < numbers.size()) out << "  ... " << numbers.size() - shown << " more\n";
}

void CatalogueReport::writeSamples(std::ostream& out) {
    for (const std::string& table : catalogueTables(_session)) {
        if (table == "bn_datatype") continue;
        std::size_t total = rowCount(_session, table);
        if (total == 0) continue;
        Poco::Data::Statement select(_session);
        select << "SELECT * FROM " + table + " LIMIT " + std::to_string(_sampleRows);
        select.execute();
        Poco::Data::RecordSet rows(select);
        out << "\n" << table << " (first " << rows.rowCount() << " of " << total << "):\n  ";
        for (std::size_t c = 0; c < rows.columnCount(); ++c) out << (c ? " | " : "") << rows.columnName(c);
        out << "\n";
        for (std::size_t r = 0; r < rows.rowCount(); ++r) {
            out << "  ";
            for (std::size_t c = 0; c < rows.columnCount(); ++c)
                out << (c ? " | " : "") << cellText(rows, c, r);
            out << "\n";
        }
    }
}

}  // namespace Apps
}  // namespace TQ
