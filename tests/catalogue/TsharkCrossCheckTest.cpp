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

const CatalogueDb& catalogue() {
    return CatalogueDb::get();
}

// Analyser field -> catalogue type. Engineering units are not compared: the analyser registers
// no value table for them.
const std::map<std::string, std::string> kFields = {
    {"bacapp.objectType", "BACnetObjectType"},    {"bacapp.property_identifier", "BACnetPropertyIdentifier"},
    {"bacapp.error_class", "BACnetErrorClass"},   {"bacapp.error_code", "BACnetErrorCode"},
    {"bacapp.abort_reason", "BACnetAbortReason"}, {"bacapp.reject_reason", "BACnetRejectReason"},
    {"bacapp.event_type", "BACnetEventType"},     {"bacapp.restart_reason", "BACnetRestartReason"},
    {"bacapp.notify_type", "BACnetNotifyType"},
};

// Explained differences: all are property identifiers.
const std::set<long long> kAllowedProperties = {
    // The analyser's spelling differs from the standard's production: acked-transition,
    // active-vt-session, daylights-savings-status, vt-class-supported, event-time-stamp,
    // subordinate-relationship, ssc-direct-connect-binding, sc-failed-connection-request
    // (standard: acked-transitions, ..., sc-direct-connect-binding, ...-requests).
    0, 5, 24, 122, 130, 489, 4194311, 4194315,
    // The analyser prefixes the IPv4 network-port properties with "bacnet-".
    400, 401, 402, 403, 404, 405, 406, 411,
    // Withdrawn by the standard in earlier revisions; the analyser still names them:
    // issue-confirmed-notifications, list-of-session-keys, protocol-conformance-class, recipient,
    // current-notify-time, previous-notify-time, master-, occupancy- and passback-exemption.
    51, 55, 95, 101, 129, 138, 284, 293, 299,
    // Draft numbers that were published elsewhere in the end (group-member-names is 346,
    // member-status-flags 347, node-subtype 207, node-type 208, ...).
    194, 198, 199, 200, 201, 216, 217};

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
            if (field == "bacapp.property_identifier" && kAllowedProperties.count(number)) continue;
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
