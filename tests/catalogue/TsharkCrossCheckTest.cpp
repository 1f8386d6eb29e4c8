// Cross-check of the catalogue's name tables against an independent source: the value strings
// of the BACnet dissector of the installed protocol analyser. A number that means something else
// there is either our mistake or a known, explained difference listed below.
#include "TQTestCatalogue.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <sstream>

using TQTest::CatalogueDb;

namespace {

const CatalogueDb& catalogue() { return CatalogueDb::get(); }

// Analyser field -> catalogue type. Engineering units are not compared: the analyser registers
// no value table for them.
const std::map<std::string, std::string> kFields = {
    {"bacapp.objectType", "BACnetObjectType"},    {"bacapp.property_identifier", "BACnetPropertyIdentifier"},
    {"bacapp.error_class", "BACnetErrorClass"},   {"bacapp.error_code", "BACnetErrorCode"},
    {"bacapp.abort_reason", "BACnetAbortReason"}, {"bacapp.reject_reason", "BACnetRejectReason"},
    {"bacapp.event_type", "BACnetEventType"},     {"bacapp.restart_reason", "BACnetRestartReason"},
    {"bacapp.notify_type", "BACnetNotifyType"},
};

// Explained differences, by field and number.
const std::set<std::pair<std::string, long long>> kAllowed = {
    // The analyser's spelling differs from the standard's production.
    {"bacapp.property_identifier", 0},    // acked-transition (standard: acked-transitions)
    {"bacapp.property_identifier", 5},    // active-vt-session (standard: active-vt-sessions)
    {"bacapp.property_identifier", 24},   // daylights-savings-status (standard: daylight-savings-status)
    {"bacapp.property_identifier", 122},  // vt-class-supported (standard: vt-classes-supported)
    {"bacapp.property_identifier", 130},  // event-time-stamp (standard: event-time-stamps)
    {"bacapp.property_identifier", 489},  // subordinate-relationship (standard: subordinate-relationships)
    {"bacapp.property_identifier",
     4194311},  // ssc-direct-connect-binding (standard: sc-direct-connect-binding)
    {"bacapp.property_identifier", 4194315},  // sc-failed-connection-request (standard: ...-requests)
    // The analyser prefixes the IPv4 network-port properties with "bacnet-".
    {"bacapp.property_identifier", 400},
    {"bacapp.property_identifier", 401},
    {"bacapp.property_identifier", 402},
    {"bacapp.property_identifier", 403},
    {"bacapp.property_identifier", 404},
    {"bacapp.property_identifier", 405},
    {"bacapp.property_identifier", 406},
    {"bacapp.property_identifier", 411},
    // Withdrawn by the standard in earlier revisions; the analyser still names them.
    {"bacapp.property_identifier", 51},   // issue-confirmed-notifications
    {"bacapp.property_identifier", 55},   // list-of-session-keys
    {"bacapp.property_identifier", 95},   // protocol-conformance-class
    {"bacapp.property_identifier", 101},  // recipient
    {"bacapp.property_identifier", 129},  // current-notify-time
    {"bacapp.property_identifier", 138},  // previous-notify-time
    {"bacapp.property_identifier", 284},  // master-exemption
    {"bacapp.property_identifier", 293},  // occupancy-exemption
    {"bacapp.property_identifier", 299},  // passback-exemption
    // Draft numbers that were published elsewhere in the end (group-member-names is 346,
    // member-status-flags 347, node-subtype 207, node-type 208, ...).
    {"bacapp.property_identifier", 194},
    {"bacapp.property_identifier", 198},
    {"bacapp.property_identifier", 199},
    {"bacapp.property_identifier", 200},
    {"bacapp.property_identifier", 201},
    {"bacapp.property_identifier", 216},
    {"bacapp.property_identifier", 217},
};

std::string normalised(const std::string& text) {
    std::string out;
    for (char c : text)
        if (!std::isspace(static_cast<unsigned char>(c)) && c != '-' && c != '_')
            out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

// Texts the analyser uses for numbers that carry no name any more.
bool isPlaceholder(const std::string& text) {
    for (const char* word : {"deleted", "unassigned", "removed", "deprecated", "reserved"})
        if (text.find(word) != std::string::npos) return true;
    return false;
}

bool analyserInstalled() {
    return std::system("tshark -v >/dev/null 2>&1") == 0;
}

std::map<std::string, std::map<long long, std::string>> analyserValues() {
    std::map<std::string, std::map<long long, std::string>> values;
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen("tshark -G values 2>/dev/null", "r"), pclose);
    if (!pipe) return values;
    std::string line;
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe.get())) {
        line = buffer;
        if (!line.empty() && line.back() == '\n') line.pop_back();
        std::istringstream in(line);
        std::string kind, field, number, text;
        if (!std::getline(in, kind, '\t') || kind != "V" || !std::getline(in, field, '\t') ||
            !kFields.count(field) || !std::getline(in, number, '\t') || !std::getline(in, text))
            continue;
        values[field][std::stoll(number)] = text;
    }
    return values;
}

}  // namespace

TEST(CatalogueCrossCheck, NameTablesAgreeWithTheProtocolAnalyser) {
    if (!analyserInstalled()) GTEST_SKIP() << "tshark is not installed";
    auto analyser = analyserValues();
    ASSERT_EQ(analyser.size(), kFields.size())
        << "the analyser lists fewer BACnet value tables than expected";
    std::vector<std::string> mismatches;
    size_t compared = 0;
    for (const auto& [field, typeName] : kFields) {
        long long type = catalogue().typeNumber(typeName);
        ASSERT_GE(type, 0) << typeName;
        long long construct = catalogue().scalar(
            "SELECT id_bn_datatype_construct FROM bn_datatype_construct WHERE "
            "id_bn_datatype=? AND id_parent=id_bn_datatype_construct",
            {type});
        auto ours = catalogue().enumNames(construct);
        std::map<std::string, long long> ourNumbers;
        for (const auto& [number, name] : ours) ourNumbers[normalised(name)] = number;
        for (const auto& [number, text] : analyser[field]) {
            if (kAllowed.count({field, number})) continue;
            auto it = ours.find(number);
            if (it == ours.end()) {
                if (isPlaceholder(text)) continue;
                auto elsewhere = ourNumbers.find(normalised(text));
                mismatches.push_back(field + " " + std::to_string(number) + ": analyser has '" + text +
                                     "', " +
                                     (elsewhere == ourNumbers.end()
                                          ? std::string("catalogue has no name")
                                          : "catalogue has it as " + std::to_string(elsewhere->second)));
                continue;
            }
            ++compared;
            if (normalised(it->second) != normalised(text))
                mismatches.push_back(field + " " + std::to_string(number) + ": analyser '" + text +
                                     "', catalogue '" + it->second + "'");
        }
    }
    EXPECT_GT(compared, 700u);
    std::string report;
    for (const auto& m : mismatches) report += "  " + m + "\n";
    EXPECT_TRUE(mismatches.empty()) << mismatches.size() << " unexplained differences:\n" << report;
}
