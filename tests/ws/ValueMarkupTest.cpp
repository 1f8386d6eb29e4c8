#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"
#include "WellFormed.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <vector>

namespace BN = TQ::BACnet;
using MF = BN::WS::MarkupFactory;

namespace {

using Writer = std::function<void(MF&)>;

// Renders inside a root object in JSON (returned) and checks that the XML form parses too.
std::string json(const Writer& write, unsigned int categories = 0) {
    std::string text[2];
    for (int format = 0; format < 2; ++format) {
        std::ostringstream out;
        std::unique_ptr<MF> f;
        if (format == 0)
            f.reset(new BN::WS::MarkupFactoryJSON(out, false, true, -1));
        else
            f.reset(new BN::WS::MarkupFactoryXML(out, false, true, -1));
        f->setMetaData(BN::WS::Metadata(categories));
        f->markup(MF::BT_SEQUENCE, "r", "", false, false, BN::BACNET_DT_NULL, true);
        write(*f);
        f->closeAllOpenMarkups();
        text[format] = out.str();
    }
    EXPECT_EQ(TQWsTest::xmlRootNamespace(text[1]), "http://bacnet.org/CSML/1.2");
    EXPECT_EQ(TQWsTest::jsonError(text[0]), "");
    return text[0];
}

BN::DataType::ANY any(BN::BACnetDataType type, BN::BACnetDataTypeStructure structure,
                      std::vector<uint8_t> bytes) {
    const BN::DataPropertyInObject0 descriptor(type, BACNET_APPLICATION_TAG_NULL, structure, false, 0);
    return BN::DataType::ANY(descriptor, bytes.data(), static_cast<unsigned>(bytes.size()));
}

constexpr auto kPriorityArray = static_cast<BN::BACnetDataType>(1064);
constexpr auto kTimeStamp = static_cast<BN::BACnetDataType>(1280);

}  // namespace

TEST(ValueMarkup, AnyRendersThroughTheCatalogue) {
    TQTest::Catalogue::open();
    const auto A = BN::BACNET_DTS_ARRAY, S = BN::BACNET_DTS_SINGLE_VALUE;
    const std::string protocolError = "{\"error-class\":\"property\",\"error-code\":\"unknown-property\"}";
    // clang-format off
    const struct { const char* what; BN::DataType::ANY value; std::string expected; } cases[] = {
        {"priority array as one list", any(kPriorityArray, A, {0x00, 0x44, 0x41, 0xAC, 0, 0, 0x91, 1}),
         "{\"v\":{\"1\":{\"null\":\"NULL\"},\"2\":{\"real\":21.5},\"3\":{\"enumerated\":\"1\"}}}"},
        {"array element by element", any(kTimeStamp, A, {0x19, 5, 0x19, 6}), "{\"v\":{\"1\":{\"sequence-number\":5},\"2\":{\"sequence-number\":6}}}"},
        {"a list", any(kTimeStamp, BN::BACNET_DTS_LIST, {0x19, 5}), "{\"v\":{\"1\":{\"sequence-number\":5}}}"},
        {"single value", any(BN::BACNET_DT_ERROR, S, {0x91, 2, 0x91, 32}), "{\"v\":" + protocolError + "}"},
        {"left-over values are marked", any(BN::BACNET_DT_ERROR, S, {0x91, 2, 0x91, 32, 0x21, 1}),
         "{\"v\":" + protocolError + ",\"truncated\":\"truncated\"}"},
        {"a mismatch is shown and the rest marked", any(kTimeStamp, A, {0x19, 5, 0x21, 1}),
         "{\"v\":{\"1\":{\"sequence-number\":5},\"2\":{},\"truncated\":\"truncated\"}}"},
        {"unknown type", any(static_cast<BN::BACnetDataType>(2999), S, {0x21, 1}), "{\"v\":\"truncated\"}"},
        {"bytes that do not decode render nothing", any(BN::BACNET_DT_ERROR, S, {0x91}), "{}"},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(json([&c](MF& f) { c.value.markup(f, "v", false, false, -1); }), c.expected) << c.what;
}

TEST(ValueMarkup, ErrorsAndDescriptors) {
    TQTest::Catalogue::open();
    const auto error = [](unsigned errorClass, unsigned code) -> Writer {
        return [=](MF& f) { BN::DataError(static_cast<BACNET_ERROR_CLASS>(errorClass), static_cast<BACNET_ERROR_CODE>(code)).markup(f, "err", "ab", "rj", false); };
    };
    // clang-format off
    const struct { const char* what; Writer write; const char* expected; } cases[] = {
        {"error by the catalogue's names", error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY),
         "{\"err\":{\"error-class\":\"property\",\"error-code\":\"unknown-property\"}}"},
        {"abort reason", error(BN::DataError::ABORT_CLASS, 4), "{\"ab\":\"segmentation-not-supported\"}"},
        {"reject reason", error(BN::DataError::REJECT_CLASS, 9), "{\"rj\":\"unrecognized-service\"}"},
        {"descriptor",
         [](MF& f) {
             BN::DataPropertyInObject0(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, BN::BACNET_DTS_ARRAY, true, 3)
                 .markup(f, "d", false, false, -1);
         },
         "{\"d\":{\"datatype\":\"4\",\"tag\":\"4\",\"structure\":\"1\",\"empty-allowed\":true,\"managed-internally\":3}}"},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(json(c.write), c.expected) << c.what;
}

TEST(ValueMarkup, TypeDescriptionsListMembersAndNames) {
    TQTest::Catalogue::open();
    const std::string error =
        json([](MF& f) { BN::Entity::BnDataTypeConstruct::find(BN::BACNET_DT_ERROR)->markup(f, 0); }, 1);
    for (const char* part :
         {"\"Error\":{\"$base\":\"Sequence\"", "\"error-class\":{\"$base\":\"Enumerated\"",
          "\"$base\":\"NamedValues\"", "\"services\":{\"$base\":\"Unsigned\",\"$value\":5}"})
        EXPECT_NE(error.find(part), std::string::npos) << part << " in " << error;
    // A type that contains itself is described once, not for ever.
    for (int type = 1000; type < 1300; ++type) {
        const auto* definition = BN::Entity::BnDataTypeConstruct::find(static_cast<BN::BACnetDataType>(type));
        if (definition != nullptr) json([definition](MF& f) { definition->markup(f, 0); });
    }
    // Without the value or encoding category the names stand alone.
    const std::string names = json([](MF& f) {
        const auto* errorClass = BN::Entity::BnDataTypeConstruct::find(static_cast<BN::BACnetDataType>(5033));
        BN::Entity::BnDataTypeEnum::markupAll(
            f, "n", static_cast<unsigned>(errorClass->getIdBnDataTypeConstruct()),
            BN::Entity::BnDataTypeEnum::BASE_TYPE_ENUMERATED, BN::Entity::BnDataTypeEnum::ORDER_BY_VALUE, 0);
    });
    EXPECT_EQ(names.compare(0, 26, "{\"device\":0,\"object\":1,\"pr"), 0) << names;
}
