#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"
#include "WellFormed.h"
#include "tq_stack/context_decode.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace BN = TQ::BACnet;
using MF = BN::WS::MarkupFactory;
using BN::DataApplicationValue;

namespace {

// One run of decoded values; `cut` makes the run end early, as a truncated decode would.
struct Value {
    char kind;  // u unsigned, e enumerated, r real, o object id, n null, b boolean, ( opening, ) closing
    double number;
    int context;  // -1: application tagged
};

std::vector<DataApplicationValue> run(const std::vector<Value>& values) {
    std::vector<DataApplicationValue> out(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        DataApplicationValue& v = out[i];
        const Value& in = values[i];
        // clang-format off
        switch (in.kind) {
            case 'u': v.setUInt(static_cast<unsigned>(in.number)); break;
            case 'e': v.setEnum(static_cast<unsigned>(in.number)); break;
            case 'r': v.setReal(static_cast<float>(in.number)); break;
            case 'b': v.setBool(in.number != 0); break;
            case 'o': v.setObjectIdentifier(BN::DataType::ObjectIdentifier(static_cast<uint32_t>(in.number))); break;
            case '(': v.tag = BACNET_PSEUDO_TAG_OPENING; break;
            case ')': v.tag = BACNET_PSEUDO_TAG_CLOSING; break;
            default: break;  // null
        }
        // clang-format on
        v.context_specific = in.context >= 0;
        v.context_tag = static_cast<uint8_t>(in.context < 0 ? 0 : in.context);
        if (i + 1 < values.size()) v.next = &out[i + 1];
    }
    return out;
}

struct Rendered {
    std::string json, xml;
    bool ok;
    int error;
    std::size_t consumed;
};

Rendered render(BN::BACnetDataType type, const std::vector<Value>& values, bool useNames = true) {
    Rendered r{};
    for (int format = 0; format < 2; ++format) {
        std::vector<DataApplicationValue> chain = run(values);
        std::ostringstream out;
        std::unique_ptr<MF> f;
        if (format == 0)
            f.reset(new BN::WS::MarkupFactoryJSON(out, false, useNames, -1));
        else
            f.reset(new BN::WS::MarkupFactoryXML(out, false, useNames, -1));
        DataApplicationValue* cursor = chain.empty() ? nullptr : &chain[0];
        r.ok = f->markup2(type, &cursor, "v", true, Poco::Nullable<unsigned char>());
        f->closeAllOpenMarkups();
        r.error = f->getLastErrorCode();
        r.consumed = cursor == nullptr ? chain.size() : static_cast<std::size_t>(cursor - &chain[0]);
        (format == 0 ? r.json : r.xml) = out.str();
    }
    return r;
}

constexpr auto kTimeStamp = static_cast<BN::BACnetDataType>(1280);
constexpr auto kPriorityArray = static_cast<BN::BACnetDataType>(1064);
constexpr auto kReference = BN::BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE;
constexpr double kAnalogValue1 = (2u << 22) | 1u;
constexpr double kDevice9 = (8u << 22) | 9u;

}  // namespace

TEST(MarkupWalk, RunsRenderByTheirCatalogueDefinition) {
    TQTest::Catalogue::open();
    const auto E = BN::BACNET_DT_ERROR;
    // clang-format off
    // type, run, with names, JSON, success, last error code, values consumed
    const struct { const char* what; BN::BACnetDataType type; std::vector<Value> values; bool useNames; const char* json; bool ok; int error; std::size_t consumed; } cases[] = {
        {"choice picks the alternative of the context tag", kTimeStamp, {{'u', 7, 1}}, true, "{\"sequence-number\":7}", true, 0, 1},
        {"enumerations by name", E, {{'e', 2, -1}, {'e', 32, -1}}, true,
         "{\"error-class\":\"property\",\"error-code\":\"unknown-property\"}", true, 0, 2},
        {"enumerations by number without names", E, {{'e', 2, -1}, {'e', 32, -1}}, false,
         "{\"error-class\":\"2\",\"error-code\":\"32\"}", true, 0, 2},
        {"absent optional members", kReference, {{'o', kAnalogValue1, 0}, {'e', 85, 1}, {'o', kDevice9, 3}}, true,
         "{\"object-identifier\":\"analog-value,1\",\"property-identifier\":\"present-value\",\"device-identifier\":\"device,9\"}",
         true, 0, 3},
        {"absent mandatory member fails and leaves the run", kReference, {{'e', 85, 1}}, true, "{}", false, 300, 0},
        {"sequence-of names its elements and takes choices", kPriorityArray,
         {{'n', 0, -1}, {'r', 21.5, -1}, {'e', 1, -1}, {'b', 1, -1}}, true,
         "{\"1\":{\"null\":\"NULL\"},\"2\":{\"real\":21.5},\"3\":{\"enumerated\":\"1\"},\"4\":{\"boolean\":true}}", true, 0, 4},
        {"sequence-of stops at a closing tag", kPriorityArray, {{'r', 1, -1}, {')', 0, 3}, {'r', 2, -1}}, true,
         "{\"1\":{\"real\":1}}", true, 0, 1},
        {"a wrong value inside an alternative's tags is shown", kTimeStamp, {{'(', 0, 2}, {'n', 0, -1}}, true,
         "{\"datetime\":{\"date\":\"NULL\"}}", false, 300, 0},
        {"an unknown type is truncated", static_cast<BN::BACnetDataType>(2999), {{'r', 1, -1}}, true,
         "{\"$value\":\"truncated\"}", true, 200, 0},
        {"an empty run renders nothing", E, {}, true, "", false, 300, 0},
        {"a wrong tag is shown and marks the failure", E, {{'e', 2, -1}, {'r', 1.5, -1}}, true,
         "{\"error-class\":\"property\",\"error-code\":1.5}", false, 300, 2},
    };
    // clang-format on
    for (const auto& c : cases) {
        const Rendered r = render(c.type, c.values, c.useNames);
        EXPECT_EQ(r.json, c.json) << c.what;
        EXPECT_EQ(r.ok, c.ok) << c.what;
        EXPECT_EQ(r.error, c.error) << c.what;
        EXPECT_EQ(r.consumed, c.consumed) << c.what;
        if (r.json.empty()) continue;
        EXPECT_EQ(TQWsTest::jsonError(r.json), "") << c.what;
        EXPECT_EQ(TQWsTest::xmlRootNamespace(r.xml), "http://bacnet.org/CSML/1.2") << c.what;
    }
}

TEST(MarkupWalk, AdmDefinitionNamesAreCachedInRanges) {
    TQTest::Catalogue::open();
    std::ostringstream out;
    BN::WS::MarkupFactoryJSON f(out, false, true, -1);
    std::string name;
    // BACnetDeviceObjectPropertyReference: context tags 0..3 name its members.
    f.dbGetBnTypeContextName(kReference, 1, name);
    EXPECT_EQ(name, "property-identifier");
    f.dbGetBnTypeContextName(kReference, 9, name);
    EXPECT_EQ(name, "9") << "no such member: the number";
    // The first query cached the neighbours: with the session gone they still answer.
    auto* session = TQ::Utility::Data::pDB;
    TQ::Utility::Data::pDB = nullptr;
    f.dbGetBnTypeContextName(kReference, 3, name);
    TQ::Utility::Data::pDB = session;
    EXPECT_EQ(name, "device-identifier");
    EXPECT_EQ(MF::getBnDataTypeValueNameKey(static_cast<BN::BACnetDataType>(2), -1), 0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(MF::getBnDataTypeValueNameKey(static_cast<BN::BACnetDataType>(1), 7), 0x100000007ull);
}
