// Request paths and query options to path parameters, or to web-service errors.
#include "TQTestCatalogue.h"
#include "TQTestSupport.h"
#include "TQ_BACnet/WS/UriParser.h"

#include <Poco/Exception.h>

#include <tuple>

#include <gtest/gtest.h>

using TQ::BACnet::WS::DataWsError;
using TQ::BACnet::WS::DotBACnetPathParams;
using TQ::BACnet::WS::UriParser;
using SD = DotBACnetPathParams::ServiceDescriptor;

namespace {

constexpr auto RPM = SERVICE_SUPPORTED_READ_PROP_MULTIPLE;
constexpr auto RP = SERVICE_SUPPORTED_READ_PROPERTY;
constexpr auto GEI = SERVICE_SUPPORTED_GET_EVENT_INFORMATION;
constexpr auto WP = SERVICE_SUPPORTED_WRITE_PROPERTY;

class UriParserTest : public testing::Test {
protected:
    void SetUp() override {
        TQTest::Catalogue::open();
        UriParser::setLocalDevInstance(1234);
    }
};

struct Parsed {
    bool ok;
    DotBACnetPathParams params;
    DataWsError error;
};

Parsed parse(const std::string& uri, BACNET_SERVICES_SUPPORTED service = RPM,
             SD::HttpMethod method = SD::HM_READ) {
    Parsed p{false, DotBACnetPathParams(method, service), DataWsError()};
    p.ok = UriParser::validateRequest(uri, p.params, p.error);
    return p;
}

}  // namespace

TEST_F(UriParserTest, AcceptedPathsResolveEveryItem) {
    // uri, service asked, method, canonical path of what was resolved, service that carries it out
    const std::tuple<std::string, BACNET_SERVICES_SUPPORTED, SD::HttpMethod, const char*, BACNET_SERVICES_SUPPORTED>
        cases[] = {
            {"/bacnetws/.bacnet", RPM, SD::HM_READ, "/.bacnet", RPM},
            {"/bacnetws/.bacnet", GEI, SD::HM_READ, "/.bacnet", GEI},
            {"//bacnetws//.bacnet/ .local /1234/ analog-value , 3 /present-value/", RPM, SD::HM_READ,
             "/.bacnet/.local/1234/analog-value,3/present-value", RPM},
            {"/bacnetws/.bltd/object-list/3", RPM, SD::HM_READ, "/.bacnet/.local/1234/device,1234/object-list/3", RPM},
            {"/bacnetws/.blt/analog-value,3/present-value", RP, SD::HM_READ, "/.bacnet/.local/1234/analog-value,3/present-value", RP},
            {"/bacnetws/.bacnet/5/.self/trendlog,1/log-buffer", RPM, SD::HM_READ, "/.bacnet/5/1234/trend-log,1/log-buffer", RPM},
            {"/bacnetws/.bacnet/65535/4194303/1023,4194303/16777214", RPM, SD::HM_READ,
             "/.bacnet/65535/4194303/1023,4194303/16777214", RPM},
            {"/bacnetws/.bacnet/.local/1/analog-value,1/priority-array/16", WP, SD::HM_WRITE,
             "/.bacnet/.local/1/analog-value,1/priority-array/16", WP},
            {"/bacnetws/.bacnet/.local/1/analog-value,1/1,024", RPM, SD::HM_READ, "/.bacnet/.local/1/analog-value,1/1024", RPM},
            {"/bacnetws/.bacnet/.local/1/analog-value,1/present-value?947-srv=read-property", RPM, SD::HM_READ,
             "/.bacnet/.local/1/analog-value,1/present-value", RP},
            {"/bacnetws/.bacnet/.local/1/analog-value,1?depth=1&alt=json", RPM, SD::HM_READ, "/.bacnet/.local/1/analog-value,1", RPM},
            {"/bacnetws/.bacnet/.local/1/analog-value,1/present-value?alt=plain&depth=-1", RP, SD::HM_READ,
             "/.bacnet/.local/1/analog-value,1/present-value", RP},
            {"/bacnetws/.bacnet/.local/1/device,1/object-list/0?alt=json&unknown=1&depth=&alt=plain", RP, SD::HM_READ,
             "/.bacnet/.local/1/device,1/object-list/0", RP},
        };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::get<0>(c));
        const Parsed p = parse(std::get<0>(c), std::get<1>(c), std::get<2>(c));
        EXPECT_TRUE(p.ok) << p.error.getWsErrorText();
        EXPECT_EQ(p.params.getPath(), std::get<3>(c));
        EXPECT_EQ(p.params.getService(), std::get<4>(c));
        EXPECT_FALSE(p.error.hasWsError());
    }
    const Parsed p = parse("/bacnetws/.bltd/object-list/3");
    EXPECT_EQ(p.params.depth, 6);
    EXPECT_EQ(p.params.scope, ".local");
    EXPECT_EQ(p.params.deviceInstance, 1234u);
    EXPECT_EQ(p.params.objectId, TQ::BACnet::DataType::ObjectIdentifier(OBJECT_DEVICE, 1234));
    EXPECT_EQ(p.params.propertyId, PROP_OBJECT_LIST);
    EXPECT_EQ(p.params.arrayIndex, 3u);
}

TEST_F(UriParserTest, RejectionsCarryCodeAndMessage) {
    const std::string dev = "/bacnetws/.bacnet/.local/", av = dev + "1/analog-value,1/";
    const std::string dev22 = "\" exceed the max possible value of 22 bits, 003FFFFFh (4194303)";
    const std::string plain = "result can not be represented in \"plain\" format";
    const std::string depth = "Options parmeter \"depth\" as ";
    const std::string tooDeep = " is invalid. Currently truncation can be done up to BACnet property level, but not";
    // uri, ReadPropertyMultiple (or ReadProperty) asked, code, the message's beginning
    const std::tuple<std::string, bool, int, std::string> cases[] = {
        {"/bacnetws", true, -1, ""},
        {"/other/.bacnet", true, -1, ""},
        {"/bacnetws/.bacnet", false, 50, "The path for service  \"read-property\" is not supported for that service"},
        {"/bacnetws/.data", true, 50, "\".data\" is invalid path item"},
        {"/bacnetws/.bacnet/x1", true, 49, "Addressing scope as \"x1\" is invalid"},
        {"/bacnetws/.bacnet/65536", true, 49, "Addressing scope as \"65536\" is invalid"},
        {dev + "4194304", true, 52, "dev-inst \"4194304" + dev22},
        {dev + "99999999999", true, 52, "dev-inst \"99999999999" + dev22},
        {dev + "12a", true, 3, "dev-inst \"12a\" is not a valid number"},
        {dev + "+5", true, 3, "dev-inst \"+5\" is not a valid number"},
        {dev + "-5", true, 3, "dev-inst \"-5\" is not a valid number"},
        {dev + "0012", true, 3, "dev-inst \"0012\" is not a valid number"},
        {dev + "1 2", true, 3, "dev-inst \"1 2\" is not a valid number"},
        {dev + "1,00", true, 3, "dev-inst \"1,00\" is not a valid number"},
        {dev + "1/analog-value", true, 49, "object-identifier as \"analog-value\" is invalid syntax"},
        {dev + "1/analog-value,1,2", true, 49, "object-identifier as \"analog-value,1,2\" is invalid syntax"},
        {dev + "1/1024,1", true, 52, "object-type as number 1024 is out of range"},
        {dev + "1/colour,1", true, 50, "object-type as name \"colour\" does not exist or not supported"},
        {dev + "1/analog-v%C3%A4lue,1", true, 50, "object-type as name \"analog-v\xC3\xA4lue\" does not exist"},
        {dev + "1/analog-value,4194304", true, 52, "object-inst \"4194304" + dev22},
        {dev + "1/analog-value,x", true, 3, "object-inst \"x\" is not a valid number"},
        {av + "no-such", true, 3, "property-id \"no-such\" is invalid property name"},
        {av + "16777215", true, 52, "property-id \"16777215\" is out of range"},
        {dev + "1/file,1/.contents", true, 50, "\".contents\" is not supported for objects of type \"file\""},
        {av + ".contents", true, 39, "property as path item \"/.contents\" is only valid with object type \"file\""},
        {av + "priority-array/.history", true, 50, "\".history\" is not supported"},
        {av + "priority-array/x", true, 49, "array index \"x\" is not a positive integer"},
        {av + "priority-array/4294967295", true, 49, "array index \"4294967295\" is not a positive integer"},
        {av + "priority-array/1/x", true, 50, "\"x\" and all path items after (if any) are unexpeced"},
        {av + "present-value/1", true, 50, "property \"present-value\" is not an array, therefore array index \"1\" is"},
        {dev + "1/analog-value,1?alt=plain", true, 27, plain},
        {dev + "1/device,1/object-list?alt=plain", true, 27, plain},
        {av + "priority-array?alt=plain", true, 27, plain},
        {dev + "1/device,1/device-address-binding?alt=plain", true, 27, plain},
        {dev + "1?depth=0", true, 52, depth + "0 is invalid. A zeror value for depth is meaningless, would cause no"},
        {dev + "1?depth=-2", true, 52, depth + "-2 is invalid. Negative values other than -1 (referring to infinite"},
        {dev + "1/analog-value,1?depth=2", true, 52, depth + "2" + tooDeep},
        {dev + "1?depth=2147483647", true, 52, depth + "2147483647" + tooDeep},
        {av + "present-value?947-srv=write-property", true, 8,
         "\"Invalid or not supported service ( parameter \"947-srv\") \"write-property\" specified"},
        {av + "present-value?depth=abc", true, 3, "Syntax error"},
        {av + "present-value?depth=2147483648", true, 3, "Syntax error"},
        {"/bacnetws/.bacnet/%zz", true, 3, "Bad URI syntax"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::get<0>(c));
        const Parsed p = parse(std::get<0>(c), std::get<1>(c) ? RPM : RP);
        EXPECT_FALSE(p.ok);
        EXPECT_EQ(p.error.getWsErrorCode(), std::get<2>(c)) << p.error.getWsErrorText();
        EXPECT_EQ(p.error.getWsErrorText().rfind(std::get<3>(c), 0), 0u) << p.error.getWsErrorText();
    }
}

TEST_F(UriParserTest, StateAroundTheParse) {
    // The history item also marks the options.
    UriParser parser("/bacnetws/.bacnet/.local/1/trend-log,1/log-buffer/$history");
    DotBACnetPathParams params(SD::HM_READ, RPM);
    DataWsError error;
    EXPECT_FALSE(parser.getAndValidatePath(params, error));
    EXPECT_TRUE(parser.getOptions().history);

    // The first code set is the one kept.
    error.setWsError(41, "earlier");
    EXPECT_FALSE(UriParser::validateRequest("/bacnetws/.data", params, error));
    EXPECT_EQ(error.getWsErrorText(), "earlier");

    // Without a local device the shorthands cannot resolve.
    UriParser::setLocalDevInstance(0xFFFFFFFFu);
    const Parsed p = parse("/bacnetws/.blt/analog-value,1/present-value");
    EXPECT_EQ(p.error.getWsErrorCode(), 3);
    EXPECT_EQ(p.error.getWsErrorText(),
              "Out of range: Static Local device-instance has not been set in BACnet::WS::UriParser");
    EXPECT_THROW(UriParser("/bacnetws/.bacnet?depth=abc"), Poco::SyntaxException);
}

TEST(DotBACnetPathParams, ServicesAndDepths) {
    EXPECT_EQ(TQTest::messageOf<Poco::InvalidArgumentException>([] { DotBACnetPathParams(SD::HM_READ, WP); }),
              "Internal Error: Selected serivice not supported or not valid for selected HTTP method");
    DotBACnetPathParams none(SD::HM_READ, DotBACnetPathParams::NO_SERVICE);
    bool isService = true;
    EXPECT_EQ(none.getService(&isService), DotBACnetPathParams::NO_SERVICE);
    EXPECT_FALSE(isService);
    EXPECT_EQ(none.getServiceName(), "invalid-service");
    EXPECT_EQ(none.getPath(), "INVALID PATH");
    EXPECT_TRUE(none.setService(""));
    EXPECT_FALSE(none.setService("acknowledge-alarm"));  // a writing service
    EXPECT_TRUE(none.setService("get-event-information"));
    EXPECT_EQ(none.getService(), GEI);
    none.depth = 4;
    EXPECT_TRUE(none.isDepthValidForService());
    none.depth = 5;
    EXPECT_FALSE(none.isDepthValidForService());
    EXPECT_EQ(none.getTruncateDepth(-1), 65535);
    EXPECT_EQ(none.getTruncateDepth(1), 6);
    EXPECT_EQ(UriParser::getScopeName(0), ".local");
    EXPECT_EQ(UriParser::getScopeDisplayName(7), "Network nr. 7");
    EXPECT_TRUE(UriParser::isPathBACnetRequest("947-bacnet-srv"));
    EXPECT_TRUE(UriParser::isPathBACnetRequest(".bltd"));
    EXPECT_FALSE(UriParser::isPathBACnetRequest(".BACnet"));
}
