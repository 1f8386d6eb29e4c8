// tq-catalogue [dbfile]: opens the embedded database (creating it with the full catalogue on
// first use) and prints what it holds.
#include "CatalogueReport.h"

#include "TQ/Utility/Data/EmbeddedDatabase.h"

#include <Poco/Exception.h>

#include <exception>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    const std::string defaultFile = "data/tq_bacnet.db";
    if (argc > 2 || (argc == 2 && (std::string(argv[1]) == "-h" || std::string(argv[1]) == "--help"))) {
        std::cerr << "usage: tq-catalogue [dbfile]   (default " << defaultFile << ")\n";
        return argc > 2 ? 2 : 0;
    }
    const std::string file = argc == 2 ? argv[1] : defaultFile;
    try {
        bool created = false;
        auto db = TQ::Utility::Data::openEmbeddedDatabase(file, &created);
        std::cout << "Database " << file << (created ? " (created with the catalogue)" : "") << "\n\n";
        TQ::Apps::CatalogueReport(db->getSession()).write(std::cout);
        return 0;
    } catch (const Poco::Exception& error) {
        std::cerr << "tq-catalogue: " << file << ": " << error.displayText() << "\n";
    } catch (const std::exception& error) {
        std::cerr << "tq-catalogue: " << file << ": " << error.what() << "\n";
    }
    return 1;
}
