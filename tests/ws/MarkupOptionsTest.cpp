#include "TQTestCatalogue.h"
#include "TQ_BACnet/WS/MarkupOptions.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

using TQ::BACnet::WS::MarkupOptions;

namespace {

MarkupOptions parsed(const std::string& query) {
    MarkupOptions o;
    o.parseOptionsFromQuery(query);
    return o;
}

}  // namespace

TEST(MarkupOptions, DefaultsSurviveEmptyAndIgnoredInput) {
    for (const char* query : {"", "&&", "=", "alt", "unknown=1", "ALT=json", "compress=deflate",
                              "readback=yes", "947-keep-alive=maybe", " & alt= & "}) {
        const MarkupOptions o = parsed(query);
        EXPECT_EQ(o.alt, "xml") << query;
        EXPECT_EQ(o.contentType, "application/xml; charset=utf-8") << query;
        EXPECT_EQ(o.compression, -1) << query;
        EXPECT_EQ(o.depth, -1) << query;
        EXPECT_EQ(o.skip, -1) << query;
        EXPECT_EQ(o.priority, 16) << query;
        EXPECT_TRUE(o.readback) << query;
        EXPECT_FALSE(o.keepAlive || o.random || o.history || o.reverse) << query;
        EXPECT_EQ(o.errorPrefix, "?") << query;
        EXPECT_EQ(o.metadata.getCategories(), 0u) << query;
    }
}

TEST(MarkupOptions, FormatAndContentType) {
    const struct { const char* query, *alt, *contentType; } cases[] = {
        {"alt=json", "json", "application/json"},
        {"alt=json&alt=plain", "plain", "text/plain"},
        {"alt=json&alt=xml", "xml", "application/xml; charset=utf-8"},
        {"alt=json&alt=media", "media", "application/json"},  // unknown format keeps the type
        {" alt = json ", "json", "application/json"},
    };
    for (const auto& c : cases) {
        const MarkupOptions o = parsed(c.query);
        EXPECT_EQ(o.alt, c.alt) << c.query;
        EXPECT_EQ(o.contentType, c.contentType) << c.query;
    }
}

TEST(MarkupOptions, ValuesOfEachKind) {
    const MarkupOptions o = parsed(
        "compress=gzip&skip=2&max-results=1,000&depth=0&descendant-depth=-3&priority=8&sequence-ge=4,294,967,"
        "295"
        "&select=a,b&filter=x=y&error-prefix=!&947-srv=rp&readback=0&reverse=true&debug=1&html-report=false"
        "&947-keep-alive=yes&random=&random=no&locale=de");
    EXPECT_EQ(o.compression, 1);
    EXPECT_EQ(o.skip, 2);
    EXPECT_EQ(o.maxResults, 1000);
    EXPECT_EQ(o.depth, 0);
    EXPECT_EQ(o.descendantDepth, -3);
    EXPECT_EQ(o.priority, 8);
    EXPECT_EQ(o.sequenceGe, 4294967295u);
    EXPECT_EQ(o.select, "a,b");
    EXPECT_EQ(o.filter, "x") << "a value ends at the next '='";
    EXPECT_EQ(o.errorPrefix, "!");
    EXPECT_EQ(o.serviceName, "rp");
    EXPECT_FALSE(o.readback);
    EXPECT_TRUE(o.reverse && o.debug && o.keepAlive && o.random);
    EXPECT_FALSE(o.htmlReport);
    EXPECT_EQ(o.locale, "de");
    EXPECT_EQ(parsed("compress=zlib").compression, 0);
}

TEST(MarkupOptions, UnreadableNumbersRaise) {
    for (const char* query : {"depth=abc", "skip=1x", "sequence-lt=-1", "max-results=99999999999"})
        EXPECT_THROW(parsed(query), Poco::SyntaxException) << query;
}

TEST(MarkupOptions, MetadataCategoriesByCatalogueName) {
    TQTest::Catalogue::open();
    EXPECT_EQ(parsed("metadata=cat-value, cat-doc").metadata.getCategories(), 0x41u);
    EXPECT_EQ(parsed("metadata=cat-all,cat-bogus,&metadata=cat-types").metadata.getCategories(), 0xC00u)
        << "categories only add up; unknown names are skipped";
}

TEST(MarkupOptions, SplitStringSkipsAndTrimsOnlyWhenAsked) {
    using V = std::vector<std::string>;
    EXPECT_EQ(MarkupOptions::splitString(" a ,, b,", ",", true), (V{"a", "b"}));
    EXPECT_EQ(MarkupOptions::splitString(" a ,, b,", ",", false), (V{" a ", "", " b", ""}));
    EXPECT_EQ(MarkupOptions::splitString("a=b;c", "=;", true), (V{"a", "b", "c"}));
}
