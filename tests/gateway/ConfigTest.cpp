// The configuration file: what a person gets wrong is named, key and all; nothing half-read.
#include "TQ_BACnet/Gateway/Config.h"
#include "TQ_BACnet/Gateway/Tokens.h"

#include <Poco/Exception.h>
#include <Poco/String.h>
#include <gtest/gtest.h>

using namespace TQ::BACnet::Gateway;

namespace {

const std::string kToken = R"("tokens":[{"sha256":")" + Config::hashToken("t") + R"(","rights":"read"}])";

TEST(GatewayConfig, MistakesAreNamed) {
    const struct { std::string json; const char* message; } cases[] = {
        {"[1]", "not a JSON object"},
        {"{", "not a JSON object"},
        {"{}", "\"tokens\": at least one token"},
        {R"({"listen":{"port":70000},)" + kToken + "}", "\"listen.port\": expected 0 to 65535, not 70000"},
        {R"({"listen":{"port":"80"},)" + kToken + "}", "\"listen.port\": expected a whole number"},
        {R"({"listen":{"adress":"x"},)" + kToken + "}", "\"listen.adress\": unknown key"},
        {R"({"tls":{"certificate":"c"},)" + kToken + "}", "\"tls.\": give both"},
        {R"({"bacnet":[],)" + kToken + "}", "\"bacnet\": expected an object"},
        {R"({"polling":[{"device":1,"object":"analog-input,1"}],)" + kToken + "}", "\"polling[0].\": needs"},
        {R"({"tokens":[{"sha256":"abc","rights":"read"}]})", "\"tokens[0].sha256\": expected 64 hexadecimal"},
        {R"({"tokens":[{"sha256":")" + Config::hashToken("t") + R"(","rights":"all"}]})",
         "\"tokens[0].rights\": expected \"read\" or \"read-write\""},
    };
    for (const auto& c : cases) {
        try {
            Config::parse(c.json, "gw.json");
            ADD_FAILURE() << "accepted: " << c.json;
        } catch (const Poco::DataFormatException& e) {
            EXPECT_NE(e.message().find(c.message), std::string::npos) << e.message();
            EXPECT_EQ(e.message().rfind("gw.json: ", 0), 0u) << e.message();
        }
    }
    EXPECT_THROW(Config::load("/nonexistent/gw.json"), Poco::DataFormatException);
}

TEST(GatewayConfig, TokensGrantWhatTheirHashSays) {
    const Config c = Config::parse(R"({"tokens":[{"sha256":")" + Config::hashToken("reader") +
                                       R"(","rights":"read"},{"sha256":")" +
                                       Poco::toUpper(Config::hashToken("writer")) +
                                       R"(","rights":"read-write"}],"database":{"maxAgeMs":0}})",
                                   "gw.json");
    EXPECT_EQ(c.maxAgeMs, 0u);
    const Tokens tokens(c.tokens);
    const struct { std::string header; Tokens::Access access; } cases[] = {
        {"", Tokens::Access::Missing},        {"Basic cmVhZGVy", Tokens::Access::Missing},
        {"Bearer ", Tokens::Access::Missing}, {"Bearer reader", Tokens::Access::Read},
        {"bearer  writer ", Tokens::Access::ReadWrite}, {"Bearer Reader", Tokens::Access::Unknown},
        {"Bearer " + Config::hashToken("reader"), Tokens::Access::Unknown},  // the hash is no token
    };
    for (const auto& c2 : cases) EXPECT_EQ(tokens.check(c2.header), c2.access) << c2.header;
}

}  // namespace
