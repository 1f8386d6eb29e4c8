// The codec's enumerations and name tables against the catalogue's ASN.1 source, which is the
// reference for every number and word: a value the catalogue names must read the same through
// bactext_*, and the codec must name no number the catalogue lacks.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "asn_enumerations.h"
#include "tq_stack/bactext.h"
#include "tq_stack/enums.h"

using TQ::Consistency::AsnEnumerations;
using TQ::Consistency::NamedNumbers;

namespace {

const AsnEnumerations& catalogue() {
    static const AsnEnumerations lists =
        AsnEnumerations::load(std::string(TQ_SOURCE_DIR) + "/catalogue/source/enumerations.asn");
    return lists;
}

struct NameTable {
    const char* asnType;
    const char* (*nameOrDefault)(unsigned, const char*);
    uint32_t scanEnd;  // every number below this is asked for a name
};

const NameTable kTables[] = {
    {"BACnetObjectType", bactext_object_type_name_default, MAX_BACNET_OBJECT_TYPE},
    {"BACnetPropertyIdentifier", bactext_property_name_default, (1u << 22) + 1024},
    {"BACnetErrorClass", bactext_error_class_name_default, 65536},
    {"BACnetErrorCode", bactext_error_code_name_default, 65536},
    {"BACnetAbortReason", bactext_abort_reason_name_default, 256},
    {"BACnetRejectReason", bactext_reject_reason_name_default, 256},
    {"BACnetConfirmedServiceChoice", bactext_confirmed_service_name_default, 256},
    {"BACnetUnconfirmedServiceChoice", bactext_unconfirmed_service_name_default, 256},
};

std::set<std::string> words(const NamedNumbers& numbers) {
    std::set<std::string> out;
    for (const auto& entry : numbers) out.insert(entry.second);
    return out;
}

}  // namespace

TEST(CodecNames, CatalogueHoldsTheExpectedLists) {
    for (const NameTable& table : kTables) {
        ASSERT_TRUE(catalogue().has(table.asnType)) << table.asnType;
        EXPECT_FALSE(catalogue().get(table.asnType).empty()) << table.asnType;
    }
    ASSERT_TRUE(catalogue().has("BACnetServicesSupported"));
    // Guards against a reader that stops early: both ends of the two largest lists.
    EXPECT_TRUE(catalogue().get("BACnetObjectType").rbegin()->first == 64 &&
                catalogue().get("BACnetErrorCode").rbegin()->first == 205);
    EXPECT_EQ(catalogue().get("BACnetPropertyIdentifier").at(85), "present-value");
    // Standard properties above the vendors' range, not folded into it.
    EXPECT_EQ(catalogue().get("BACnetPropertyIdentifier").at(4194304), "max-bvlc-length-accepted");
}

TEST(CodecNames, EveryCatalogueValueHasTheSameName) {
    for (const NameTable& table : kTables) {
        for (const auto& [number, word] : catalogue().get(table.asnType)) {
            const char* name = table.nameOrDefault(number, nullptr);
            EXPECT_TRUE(name && word == name) << table.asnType << " " << number << ": catalogue " << word
                                              << ", codec " << (name ? name : "(none)");
        }
    }
}

TEST(CodecNames, CodecNamesNoNumberTheCatalogueLacks) {
    for (const NameTable& table : kTables) {
        const NamedNumbers& reference = catalogue().get(table.asnType);
        for (uint32_t number = 0; number < table.scanEnd; ++number) {
            const char* name = table.nameOrDefault(number, nullptr);
            // No allow-list: the codec has no deliberate differences from the catalogue.
            EXPECT_TRUE(!name || reference.count(number))
                << table.asnType << " " << number << " (" << name << ") is not in the catalogue";
        }
    }
}

TEST(CodecNames, ServicesSupportedCoversEveryCatalogueBit) {
    const NamedNumbers& bits = catalogue().get("BACnetServicesSupported");
    // The enumeration must reach the catalogue's last bit: a shorter one drops services from
    // every protocol-services-supported value the codec builds or reads.
    EXPECT_EQ(uint32_t(MAX_BACNET_SERVICES_SUPPORTED), bits.rbegin()->first + 1);
    EXPECT_TRUE(SERVICE_SUPPORTED_YOU_ARE == 48 && SERVICE_SUPPORTED_WRITE_GROUP == 40);
    std::set<std::string> serviceWords = words(catalogue().get("BACnetConfirmedServiceChoice"));
    for (const auto& entry : catalogue().get("BACnetUnconfirmedServiceChoice"))
        serviceWords.insert(entry.second);
    for (const auto& [bit, word] : bits) {
        EXPECT_LT(bit, uint32_t(MAX_BACNET_SERVICES_SUPPORTED)) << word;
        EXPECT_TRUE(serviceWords.count(word)) << "bit " << bit << " " << word << " names no service";
    }
    // Each confirmed service keeps its choice number as its bit below read-range's move to 35.
    for (const auto& [choice, word] : catalogue().get("BACnetConfirmedServiceChoice")) {
        if (choice >= 24) break;
        EXPECT_EQ(bits.count(choice) ? bits.at(choice) : std::string(), word) << choice;
    }
}
