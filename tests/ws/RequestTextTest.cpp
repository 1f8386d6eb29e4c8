// The request path's own readers against what they stand in for: query numbers against the
// general number parser, long and percent-encoded request targets, items beyond those the
// parser keeps in view.
#include "TQTestCatalogue.h"
#include "TQ_BACnet/WS/UriParser.h"

#include <Poco/Exception.h>
#include <Poco/NumberParser.h>

#include <gtest/gtest.h>

using namespace TQ::BACnet::WS;
using SD = DotBACnetPathParams::ServiceDescriptor;

TEST(RequestText, QueryNumbersReadAsTheGeneralParserReadsThem) {
    for (const char* text :
         {"0",          "7",          "-7",         "007",        "-0",          "+5",          "999999999",
          "-999999999", "1000000000", "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967295",
          "4294967296", "1,000",      "12a",        "-",          "--1",         "1 2"}) {
        MarkupOptions o;
        int signedValue = 0;
        if (Poco::NumberParser::tryParse(text, signedValue, ',')) {
            o.parseOptionsFromQuery(std::string("priority=") + text);
            EXPECT_EQ(o.priority, signedValue) << text;
        } else {
            EXPECT_THROW(o.parseOptionsFromQuery(std::string("priority=") + text), Poco::SyntaxException)
                << text;
        }
        unsigned unsignedValue = 0;
        if (Poco::NumberParser::tryParseUnsigned(text, unsignedValue, ',')) {
            o.parseOptionsFromQuery(std::string("sequence-gt=") + text);
            EXPECT_EQ(o.sequenceGt, unsignedValue) << text;
        } else {
            EXPECT_THROW(o.parseOptionsFromQuery(std::string("sequence-gt=") + text), Poco::SyntaxException)
                << text;
        }
    }
}

TEST(RequestText, LongAndEncodedTargetsKeepPathUriAndOptions) {
    TQTest::Catalogue::open();
    UriParser::setLocalDevInstance(1234);
    const std::string path = "/bacnetws/.bacnet/.local/1234/analog-value,3/present-value";
    const std::string longQuery = "?select=" + std::string(300, 'a') + "&priority=9";
    for (const std::string& target :
         {path + longQuery, path + "?priority=9#top",
          std::string("/bacnetws/.bacnet/.local/1234/analog%2Dvalue,3/present-value?priority=%39")}) {
        UriParser parser(target);
        EXPECT_EQ(parser.getPath(), path) << target;
        EXPECT_EQ(parser.getUri().getPath(), path) << target;
        EXPECT_EQ(parser.getOptions().priority, 9) << target;
        DotBACnetPathParams params(SD::HM_READ, SERVICE_SUPPORTED_READ_PROP_MULTIPLE);
        DataWsError error;
        EXPECT_TRUE(parser.getAndValidatePath(params, error)) << target << ": " << error.getWsErrorText();
        EXPECT_EQ(params.getPath(), "/.bacnet/.local/1234/analog-value,3/present-value") << target;
    }
}

TEST(RequestText, ItemsBeyondTheIndexAreNamedAlsoAfterAShorthand) {
    TQTest::Catalogue::open();
    UriParser::setLocalDevInstance(1234);
    for (const char* target : {"/bacnetws/.bacnet/.local/1/analog-value,1/priority-array/1/x/y/z/w/v/u",
                               "/bacnetws/.blt/analog-value,1/priority-array/1/x/y/z/w/v/u",
                               "/bacnetws/.bltd/object-list/1/x/y/z/w/v/u"}) {
        DotBACnetPathParams params(SD::HM_READ, SERVICE_SUPPORTED_READ_PROP_MULTIPLE);
        DataWsError error;
        EXPECT_FALSE(UriParser::validateRequest(target, params, error)) << target;
        EXPECT_EQ(error.getWsErrorCode(), 50) << target;
        EXPECT_EQ(error.getWsErrorText(), "\"x\" and all path items after (if any) are unexpeced") << target;
    }
}
