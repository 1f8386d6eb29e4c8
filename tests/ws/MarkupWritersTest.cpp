#include "TQTestCatalogue.h"
#include "TQ_BACnet/WS/MarkupFactoryMaker.h"
#include "WellFormed.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>

using MF = TQ::BACnet::WS::MarkupFactory;
using TQ::BACnet::BACNET_DT_NULL;
using TQ::BACnet::WS::MarkupFactoryMaker;
using TQ::BACnet::WS::MarkupOptions;
using TQ::BACnet::WS::Metadata;
using TQWsTest::jsonError;
using TQWsTest::xmlRootNamespace;

namespace {

const std::string kNs = "http://bacnet.org/CSML/1.2";
const std::string kDecl = "<?xml version=\"1.0\"?>";

using Writer = std::function<void(MF&)>;

// Renders through a factory from the maker, as a response would be.
std::string render(const std::string& query, const Writer& write, bool useNames = false) {
    MarkupOptions options;
    options.parseOptionsFromQuery(query);
    std::ostringstream out;
    MF* f = MarkupFactoryMaker::getMarkupFactoryPointer(options, out, useNames);
    write(*f);
    f->closeAllOpenMarkups();
    MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer(f);
    return out.str();
}

void leaf(MF& f, MF::BaseType type, const std::string& name, const std::string& value, bool root = false,
          bool omitEmpty = false) {
    f.markup(type, name, value, true, false, BACNET_DT_NULL, root, "", 0, "", "", "", false, "", "", "", "",
             "", "", omitEmpty);
}
void open(MF& f, MF::BaseType type, const std::string& name, bool root = false) {
    f.markup(type, name, "", false, false, BACNET_DT_NULL, root);
}

const Writer kPrimitive = [](MF& f) { leaf(f, MF::BT_REAL, "present-value", "21.5", true); };
const Writer kArray = [](MF& f) {
    open(f, MF::BT_ARRAY, "priority-array", true);
    leaf(f, MF::BT_REAL, "1", "21.5");
    leaf(f, MF::BT_REAL, "2", "22");
};
const Writer kNested = [](MF& f) {
    open(f, MF::BT_SEQUENCE, "x", true);
    leaf(f, MF::BT_UNSIGNED, "a", "1");
    open(f, MF::BT_SEQUENCE, "b");
    leaf(f, MF::BT_STRING, "c", "it's <ok>");
};

}  // namespace

TEST(MarkupWriters, WorkedExamplesByteForByte) {
    TQTest::Catalogue::open();
    const struct { const char* what; const Writer* write; const char* query; std::string expected; } cases[] = {
        {"primitive", &kPrimitive, "",
         kDecl + "<Real name=\"present-value\" value=\"21.5\" xmlns=\"" + kNs + "\"/>"},
        {"primitive", &kPrimitive, "alt=json", "{\"$value\":21.5}"},
        {"primitive", &kPrimitive, "alt=plain", "21.5"},
        {"array", &kArray, "alt=xml",
         kDecl + "<Array name=\"priority-array\" xmlns=\"" + kNs +
             "\"><Real name=\"1\" value=\"21.5\"/><Real name=\"2\" value=\"22\"/></Array>"},
        {"array", &kArray, "alt=json", "{\"1\":21.5,\"2\":22}"},
        {"nested", &kNested, "alt=media",
         kDecl + "<Sequence name=\"x\" xmlns=\"" + kNs +
             "\"><Unsigned name=\"a\" value=\"1\"/><Sequence name=\"b\"><String name=\"c\" "
             "value=\"it&apos;s &lt;ok&gt;\"/></Sequence></Sequence>"},
        {"nested", &kNested, "alt=json", "{\"a\":1,\"b\":{\"c\":\"it's <ok>\"}}"},
        {"metadata", &kPrimitive, "alt=json&metadata=cat-value", "{\"$base\":\"Real\",\"$value\":21.5}"},
        {"metadata member", &kArray, "alt=json&metadata=cat-value",
         "{\"$base\":\"Array\",\"1\":{\"$base\":\"Real\",\"$value\":21.5},\"2\":{\"$base\":\"Real\",\"$"
         "value\":22}}"},
    };
    for (const auto& c : cases) {
        const std::string text = render(c.query, *c.write);
        EXPECT_EQ(text, c.expected) << c.what << " " << c.query;
        if (text[0] == '<') {
            EXPECT_EQ(xmlRootNamespace(text), kNs) << c.what;
        } else if (text[0] == '{') {
            EXPECT_EQ(jsonError(text), "") << c.what;
        }
    }
}

TEST(MarkupWriters, CompactJsonShapesStayValid) {
    const struct { const char* what; Writer write; const char* expected; } cases[] = {
        {"named null keeps an empty string", [](MF& f) { leaf(f, MF::BT_NULL, "n", ""); }, "{\"n\":\"\"}"},
        {"omitted empty value", [](MF& f) { leaf(f, MF::BT_REAL, "r", "", false, true); }, "{\"r\":null}"},
        {"a number that is no JSON number", [](MF& f) { leaf(f, MF::BT_REAL, "r", "nan"); },
         "{\"r\":\"nan\"}"},
        {"unnamed member keyed by its type", [](MF& f) { leaf(f, MF::BT_ENUMERATED, "", "3"); },
         "{\"$Enumerated\":\"3\"}"},
        {"empty complete sequence",
         [](MF& f) { f.markup(MF::BT_SEQUENCE, "s", "", true, false, BACNET_DT_NULL, false); }, "{\"s\":{}}"},
        {"escapes and control characters", [](MF& f) { leaf(f, MF::BT_STRING, "s", "a\"\\\t\x01/\xff"); },
         "{\"s\":\"a\\\"\\\\\\t\\u0001/\xEF\xBF\xBD\"}"},
        {"open primitive with children",
         [](MF& f) {
             open(f, MF::BT_ANY, "any");
             leaf(f, MF::BT_REAL, "r", "1");
         },
         "{\"any\":{\"$value\":\"\",\"r\":1}}"},
    };
    for (const auto& c : cases) {
        const std::string text = render("alt=json", [&c](MF& f) {
            open(f, MF::BT_SEQUENCE, "root", true);
            c.write(f);
        });
        EXPECT_EQ(text, c.expected) << c.what;
        EXPECT_EQ(jsonError(text), "") << c.what;
    }
    EXPECT_EQ(render("alt=json",
                     [](MF& f) { f.markup(MF::BT_SEQUENCE, "s", "", true, false, BACNET_DT_NULL, true); }),
              "{}")
        << "an empty root";
    EXPECT_EQ(render("alt=json&random=1", kArray), "{\"1\":\"21.5\",\"2\":\"22\"}")
        << "random quotes every value";
}

TEST(MarkupWriters, XmlEscapesEveryTextAndOmitsEmptyValues) {
    const std::string text = render("", [](MF& f) {
        open(f, MF::BT_SEQUENCE, "a&b", true);
        leaf(f, MF::BT_STRING, "s", "<&>\"'\x02\xc3\x28");
        leaf(f, MF::BT_NULL, "n", "", false, true);
        leaf(f, MF::BT_ENUMERATED, "e", "x<y");
    });
    EXPECT_EQ(text, kDecl + "<Sequence name=\"a&amp;b\" xmlns=\"" + kNs +
                        "\"><String name=\"s\" value=\"&lt;&amp;&gt;&quot;&apos;\xEF\xBF\xBD\xEF\xBF\xBD(\"/>"
                        "<Null name=\"n\"/><Enumerated name=\"e\" value=\"x&lt;y\"/></Sequence>");
    EXPECT_EQ(xmlRootNamespace(text), kNs);
    EXPECT_EQ(render("alt=plain", kArray), "21.522") << "plain writes bare values only";
}

TEST(MarkupWriters, MetadataMembersFromTheCatalogue) {
    TQTest::Catalogue::open();
    const Writer withMetadata = [](MF& f) {
        f.markup(MF::BT_ANY, "v", "truncated", true, false, BACNET_DT_NULL, true, "Unsupported \"type\"", 200,
                 "no <row>", "", "947.Hidden");
    };
    const std::string json = render("alt=json&metadata=cat-all", withMetadata);
    EXPECT_EQ(jsonError(json), "");
    EXPECT_NE(json.find("\"$base\":\"Any\",\"$value\":\"truncated\""), std::string::npos) << json;
    EXPECT_NE(json.find(":200"), std::string::npos) << "numbers stay bare: " << json;
    EXPECT_NE(json.find("Unsupported \\\"type\\\""), std::string::npos) << json;
    EXPECT_EQ(json.find("947.Hidden"), std::string::npos) << "the maker's own types are not shown";
    const std::string xml = render("metadata=cat-all", withMetadata);
    EXPECT_EQ(xmlRootNamespace(xml), kNs);
    EXPECT_NE(xml.find("=\"200\""), std::string::npos) << xml;
    EXPECT_NE(xml.find("no &lt;row&gt;"), std::string::npos) << xml;
    EXPECT_EQ(render("alt=json", withMetadata), "{\"$value\":\"truncated\"}") << "no category, no metadata";
}
