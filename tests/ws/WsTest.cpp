#include "TQTestRecordingFactory.h"
#include "TQTestCatalogue.h"
#include "TQ_BACnet/WS/Metadata.h"
#include "TQ_BACnet/WS/MetadataValue.h"
#include "WellFormed.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <sstream>

using TQTest::RecordingFactory;
using MF = TQ::BACnet::WS::MarkupFactory;
using Poco::DeflatingStreamBuf;
using TQ::BACnet::BACNET_DT_NULL;
using TQ::BACnet::WS::Metadata;
using TQ::BACnet::WS::MetadataValue;

namespace {

void open(MF& f, MF::BaseType type, const std::string& name, unsigned int flags = 0) {
    f.markupNew(type, name, "", flags, nullptr);
}

std::vector<unsigned int> numbers(const RecordingFactory::Opened& o) {
    std::vector<unsigned int> n;
    for (const auto& m : o.metadata) n.push_back(m.getMetadata());
    return n;
}

// A response big and repetitive enough that compression shows, with nesting and text.
void writeDocument(MF& f) {
    f.header();
    f.markupNew(MF::BT_ARRAY, "priority-array", "", MF::MF_ROOT, nullptr);
    for (int i = 1; i <= 200; ++i)
        f.markupNew(MF::BT_REAL, std::to_string(i), "21.5", MF::MF_COMPLETE, nullptr);
    f.closeAllOpenMarkups();
}

}  // namespace

TEST(MarkupFactoryStack, OpenCompleteAndCloseInReverseOrder) {
    std::ostringstream out;
    RecordingFactory f(out);
    // Nothing open: closing writes nothing and does not fail.
    f.closeOpenMarkup();
    f.closeAllOpenMarkups();
    EXPECT_TRUE(out.str().empty());
    open(f, MF::BT_SEQUENCE, "x", MF::MF_ROOT);
    f.markupNew(MF::BT_UNSIGNED, "a", "1", MF::MF_COMPLETE, nullptr);
    EXPECT_EQ(f.getOpenMarkupCount(), 1u) << "a complete markup pushes nothing";
    open(f, MF::BT_CHOICE, "b");
    open(f, MF::BT_LIST, "c");
    f.closeOpenMarkup();
    f.closeAllOpenMarkups();
    f.closeAllOpenMarkups();  // again, with everything closed: silent
    EXPECT_EQ(f.getOpenMarkupCount(), 0u);
    EXPECT_EQ(out.str(), "<Sequence x><Unsigned a=1/><Choice b><List c></List></Choice></Sequence>");
    std::ostringstream pretty;
    RecordingFactory g(pretty, true);
    g.header();
    open(g, MF::BT_SEQUENCE, "r");
    open(g, MF::BT_SEQUENCE, "s");
    g.markupNew(MF::BT_REAL, "v", "1.5", MF::MF_COMPLETE, nullptr);
    open(g, MF::BT_ARRAY, "t");
    g.closeAllOpenMarkups();
    EXPECT_EQ(pretty.str(),
              "<?hdr?>\n<Sequence r>\n\t<Sequence s>\n\t\t<Real v=1.5/>\n\t\t<Array t>\n\t\t</Array>\n"
              "\t</Sequence>\n</Sequence>\n");
}

TEST(MarkupFactoryStack, ArrayMarkersAreBookkeepingOnly) {
    std::ostringstream out;
    RecordingFactory f(out, true, true);
    open(f, MF::BT_SEQUENCE, "root");
    // A complete element with the array flag leaves only its marker; the same kind after it
    // keeps that marker and pushes another.
    f.markupNew(MF::BT_REAL, "1", "2", MF::MF_COMPLETE | MF::MF_ARRAY, nullptr);
    EXPECT_EQ(f.getOpenMarkupCount(), 2u);
    f.markupNew(MF::BT_REAL, "2", "3", MF::MF_COMPLETE | MF::MF_ARRAY, nullptr);
    EXPECT_EQ(f.getArrayMarkerCount(), 2);
    // Another kind follows: the top marker closes silently before it is written.
    f.markupNew(MF::BT_STRING, "n", "x", MF::MF_COMPLETE, nullptr);
    ASSERT_EQ(f.closed.size(), 1u);
    EXPECT_EQ(f.closed[0].baseTypeName, "Real");
    EXPECT_TRUE(f.closed[0].arrayMarker);
    EXPECT_EQ(f.getArrayMarkerCount(), 1);
    // An open element with the array flag ends the remaining Real marker, then stacks its own
    // marker below itself; markers do not indent.
    open(f, MF::BT_LIST, "l", MF::MF_ARRAY);
    EXPECT_EQ(f.getOpenMarkupCount(), 3u);
    EXPECT_EQ(f.getArrayMarkerCount(), 1);
    f.markupNew(MF::BT_NULL, "z", "", MF::MF_COMPLETE, nullptr);
    // closeOpenMarkup ends the list only; the next one passes its marker and ends the root.
    f.closeOpenMarkup();
    EXPECT_EQ(f.getOpenMarkupCount(), 2u);
    f.closeOpenMarkup();
    EXPECT_EQ(f.getArrayMarkerCount(), 0);
    EXPECT_EQ(out.str(),
              "<Sequence root>\n\t<Real 1=2/>\n\t<Real 2=3/>\n\t<String n=x/>\n\t<List l>\n\t\t<Null z/>\n"
              "\t</List>\n</Sequence>\n");
    // A writer without arrays ignores the flag for bookkeeping, but still hands it over.
    std::ostringstream flat;
    RecordingFactory g(flat, false, false);
    g.markupNew(MF::BT_REAL, "1", "2", MF::MF_COMPLETE | MF::MF_ARRAY, nullptr);
    open(g, MF::BT_ARRAY, "a", MF::MF_ARRAY);
    EXPECT_EQ(g.getOpenMarkupCount(), 1u);
    EXPECT_EQ(g.getArrayMarkerCount(), 0);
    EXPECT_TRUE(g.opened.back().flags & MF::MF_ARRAY);
    // Invalid base types and reset write nothing.
    std::ostringstream out2;
    RecordingFactory h(out2, true, true);
    open(h, MF::BT_SEQUENCE, "s");
    h.markupNew(MF::BT_MAX, "bad", "1", 0, nullptr);
    h.markupNew(static_cast<MF::BaseType>(0xFFFFFFFFu), "bad", "1", MF::MF_ARRAY, nullptr);
    h.markup(static_cast<MF::BaseType>(200), "bad", "1", false, true, BACNET_DT_NULL, false);
    EXPECT_EQ(h.opened.size(), 1u);
    h.closeOpenMarkup(MF::OpenMarkup(MF::BT_MAX, false));
    EXPECT_TRUE(h.closed.empty());
    EXPECT_EQ(out2.str(), "<Sequence s>\n");
    // Reset abandons what is open without closing it.
    open(h, MF::BT_ARRAY, "a", MF::MF_ARRAY);
    const std::string before = out2.str();
    h.reset();
    EXPECT_EQ(h.getOpenMarkupCount(), 0u);
    EXPECT_EQ(h.getArrayMarkerCount(), 0);
    h.closeAllOpenMarkups();
    EXPECT_EQ(out2.str(), before);
    EXPECT_TRUE(h.closed.empty());
}

TEST(MarkupFactoryMarkup, FlagsAndMetadataFollowTheArguments) {
    std::ostringstream out;
    RecordingFactory f(out, false, true);
    f.markup(MF::BT_REAL, "a", "1", true, false, BACNET_DT_NULL, false);
    f.markup(MF::BT_REAL, "b", "1", true, true, BACNET_DT_NULL, true);
    f.markup(MF::BT_REAL, "c", "", false, false, BACNET_DT_NULL, false, "", 0, "", "", "", false, "", "", "",
             "", "", "", true);
    f.setQuoteValues(true);
    f.markup(MF::BT_REAL, "d", "1", true, false, BACNET_DT_NULL, true);
    ASSERT_EQ(f.opened.size(), 4u);
    EXPECT_EQ(f.opened[0].flags, MF::MF_COMPLETE);
    EXPECT_EQ(f.opened[1].flags, MF::MF_COMPLETE | MF::MF_ARRAY | MF::MF_ROOT);
    EXPECT_EQ(f.opened[2].flags, MF::MF_OMIT_EMPTY);
    EXPECT_EQ(f.opened[3].flags, MF::MF_COMPLETE | MF::MF_ROOT | MF::MF_QUOTE);
    // Without metadata arguments the writer gets no list at all.
    for (const auto& o : f.opened) EXPECT_FALSE(o.hasMetadata);
    // The marker of "b" stays below "c" (same kind), the only markup left open.
    EXPECT_EQ(f.getOpenMarkupCount(), 2u);
    EXPECT_EQ(f.getArrayMarkerCount(), 1);
    // With metadata arguments, the list in its fixed order.
    f.opened.clear();
    f.markup(MF::BT_REAL, "v", "1", true, false, BACNET_DT_NULL, false, "p8-comment", 42, "p10-errText",
             "p11-display", "p12-type", true, "p14-target", "p15-href", "3", "85", "p18-desc", "p19-units");
    ASSERT_EQ(f.opened.size(), 1u);
    EXPECT_EQ(numbers(f.opened[0]),
              (std::vector<unsigned int>{409, 403, 2105, 2106, 802, 801, 413, 410, 1310, 705, 706, 412}));
    const std::vector<std::string> texts{"p11-display", "p12-type", "3",           "85",
                                         "p14-target",  "p15-href", "p18-desc",    "p19-units",
                                         "true",        "42",       "p10-errText", "p8-comment"};
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(f.opened[0].metadata[i].getValue(), texts[i]) << i;
    // A lone argument is a list of one; a zero or negative error number is no item.
    f.markup(MF::BT_REAL, "v", "1", true, false, BACNET_DT_NULL, false, "", 7);
    EXPECT_EQ(numbers(f.opened.back()), (std::vector<unsigned int>{705}));
    EXPECT_EQ(f.opened.back().metadata[0].getValue(), "7");
    f.markup(MF::BT_REAL, "v", "1", true, false, BACNET_DT_NULL, false, "", -5);
    EXPECT_FALSE(f.opened.back().hasMetadata);
    // Collections name their members' type (1103), everything else its own (403), except the
    // gateway's own types; none means no list.
    const std::tuple<MF::BaseType, const char*, std::vector<unsigned int>> types[] = {
        {MF::BT_LIST, "BACnetTimeStamp", {1103}},
        {MF::BT_ARRAY, "947.Own", {1103}},
        {MF::BT_SEQUENCE_OF, "x", {1103}},
        {MF::BT_SEQUENCE, "BACnetDateTime", {403}},
        {MF::BT_SEQUENCE, "947.BACnetTrendLogLastUploaded", {}},
        {MF::BT_CHOICE, "947.", {}},
        {MF::BT_CHOICE, "947", {403}},
        {MF::BT_CHOICE, "x947.", {403}},
    };
    for (const auto& t : types) {
        f.markup(std::get<0>(t), "n", "", true, false, BACNET_DT_NULL, false, "", 0, "", "", std::get<1>(t));
        EXPECT_EQ(numbers(f.opened.back()), std::get<2>(t)) << std::get<1>(t);
        EXPECT_EQ(f.opened.back().hasMetadata, !std::get<2>(t).empty()) << std::get<1>(t);
    }
}

TEST(MarkupFactoryMarkup, PropertyOverloadsNameAndTypeFromTheCatalogue) {
    TQTest::Catalogue::open();
    std::ostringstream out;
    RecordingFactory f(out);
    f.markup(MF::BT_ARRAY, PROP_PRIORITY_ARRAY, "", false, false, BACNET_DT_NULL, true);
    ASSERT_EQ(f.opened.size(), 1u);
    EXPECT_EQ(f.opened[0].name, "priority-array");
    EXPECT_EQ(f.opened[0].flags, MF::MF_ROOT);
    f.closeAllOpenMarkups();
    // Analog Input's Present_Value is a single REAL: written as Real under its property name.
    f.markup(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE, "21.5", true, false, false, "", 0, "", "", "", false,
             "", "", "", "", "", "degrees-celsius");
    ASSERT_EQ(f.opened.size(), 2u);
    EXPECT_EQ(f.opened[1].baseType, MF::BT_REAL);
    EXPECT_EQ(f.opened[1].name, "present-value");
    EXPECT_EQ(f.opened[1].value, "21.5");
    EXPECT_EQ(numbers(f.opened[1]), (std::vector<unsigned int>{410}));
    // An array of strings, a constructed single value and an unknown property write nothing.
    for (unsigned property : {351u, 355u, 4000000u})
        f.markup(OBJECT_ANALOG_INPUT, static_cast<BACNET_PROPERTY_ID>(property), "x", true, false, false);
    EXPECT_EQ(f.opened.size(), 2u);
    EXPECT_EQ(f.getOpenMarkupCount(), 0u);
}

TEST(MarkupFactoryHelpers, BaseTypeNamesNumbersAndVisibility) {
    EXPECT_EQ(MF::getBaseTypeName(MF::BT_SEQUENCE_OF), "SequenceOf");
    EXPECT_EQ(MF::getBaseTypeName(MF::BT_MAX), "");
    EXPECT_EQ(MF::getBaseTypeName(static_cast<MF::BaseType>(0xFFFFFFFFu)), "");
    const std::tuple<MF::BaseType, const char*, bool> numeric[] = {
        {MF::BT_BOOLEAN, "anything", true}, {MF::BT_UNSIGNED, "x", true},
        {MF::BT_INTEGER, "x", true},        {MF::BT_REAL, "x", true},
        {MF::BT_DOUBLE, "x", true},         {MF::BT_ENUMERATED, "12", true},
        {MF::BT_ENUMERATED, "1,024", true}, {MF::BT_ENUMERATED, "active", false},
        {MF::BT_ENUMERATED, "-1", false},   {MF::BT_ENUMERATED, "", false},
        {MF::BT_NULL, "0", false},          {MF::BT_STRING, "12", false},
        {MF::BT_MAX, "12", false},
    };
    for (const auto& n : numeric)
        EXPECT_EQ(MF::isNumeric(std::get<0>(n), std::get<1>(n)), std::get<2>(n))
            << std::get<0>(n) << " " << std::get<1>(n);
    EXPECT_EQ(MF::initArrayIdx(0), 1u);
    EXPECT_EQ(MF::initArrayIdx(0xFFFFFFFFu), 1u);
    EXPECT_EQ(MF::initArrayIdx(7), 7u);
    EXPECT_EQ(MF::arrayIndexAsString(0), "");
    EXPECT_EQ(MF::arrayIndexAsString(0xFFFFFFFFu), "4294967295");
    for (auto t : {MF::BT_LIST, MF::BT_ARRAY, MF::BT_SEQUENCE_OF, MF::BT_NULL, MF::BT_SEQUENCE, MF::BT_CHOICE,
                   MF::BT_COMPOSITION_2}) {
        const bool collection = t == MF::BT_LIST || t == MF::BT_ARRAY || t == MF::BT_SEQUENCE_OF;
        EXPECT_EQ(MF::isCollection(t), collection) << t;
        EXPECT_EQ(MF::getMetadataFromBaseType(t).getCategories(), collection ? 0x44Fu : 0x193u) << t;
    }
    std::ostringstream out;
    RecordingFactory f(out);
    EXPECT_TRUE(f.shouldValueBeVisibleForBaseType(MF::BT_REAL));
    EXPECT_FALSE(f.shouldValueBeVisibleForBaseType(MF::BT_SEQUENCE));
}

TEST(MarkupFactoryHelpers, CompressedOutputInflatesToThePlainText) {
    std::ostringstream plainOut;
    RecordingFactory plain(plainOut);
    writeDocument(plain);
    plain.flush();
    const std::string expected = plainOut.str();
    ASSERT_GT(expected.size(), 2000u);
    const std::pair<int, Poco::InflatingStreamBuf::StreamType> types[] = {
        {DeflatingStreamBuf::STREAM_ZLIB, Poco::InflatingStreamBuf::STREAM_ZLIB},
        {DeflatingStreamBuf::STREAM_GZIP, Poco::InflatingStreamBuf::STREAM_GZIP},
    };
    for (const auto& type : types) {
        SCOPED_TRACE(type.first);
        std::ostringstream out;
        std::unique_ptr<MF> f(new RecordingFactory(out, false, false, type.first));
        writeDocument(*f);
        f->flush();
        const std::string bytes = out.str();
        EXPECT_LT(bytes.size(), expected.size() / 4);
        EXPECT_EQ(TQWsTest::inflate(bytes, type.second), expected);
        // Once the compressed stream is ended, later writes, flushes and the destructor (through
        // the base) add nothing.
        f->markupNew(MF::BT_REAL, "late", "1", MF::MF_COMPLETE, nullptr);
        f->flush();
        f.reset();
        EXPECT_EQ(out.str(), bytes);
    }
    // Any other compression value writes plain text.
    for (int other : {-1, 2, 99}) {
        std::ostringstream out;
        RecordingFactory f(out, false, false, other);
        writeDocument(f);
        f.flush();
        EXPECT_EQ(out.str(), expected) << other;
    }
}

TEST(Metadata, CategoryBitsAndNames) {
    Metadata m;
    m.setCategory(Metadata::METADATA_CAT_VALUE, true);
    m.setCategory(Metadata::METADATA_CAT_ALL, true);
    EXPECT_EQ(m.getCategories(), 0x801u);
    EXPECT_TRUE(m.isCategory(Metadata::METADATA_CAT_ALL));
    EXPECT_FALSE(m.isCategory(Metadata::METADATA_CAT_DOC));
    m.setCategory(Metadata::METADATA_CAT_VALUE, false);
    EXPECT_EQ(m.getCategories(), 0x800u);
    // Numbers beyond the bit set are never selected and cannot be set.
    Metadata all(0xFFFFFFFFu);
    EXPECT_TRUE(all.isCategory(static_cast<Metadata::METADATA_CATEGORY>(31)));
    EXPECT_FALSE(all.isCategory(static_cast<Metadata::METADATA_CATEGORY>(32)));
    EXPECT_FALSE(all.isCategory(static_cast<Metadata::METADATA_CATEGORY>(1000)));
    all.setCategory(static_cast<Metadata::METADATA_CATEGORY>(40), false);
    EXPECT_EQ(all.getCategories(), 0xFFFFFFFFu);
    m.setCategory(static_cast<Metadata::METADATA_CATEGORY>(32), true);
    EXPECT_EQ(m.getCategories(), 0x800u);
    // Names come from the catalogue.
    TQTest::Catalogue::open();
    EXPECT_EQ(Metadata::getCategoryName(Metadata::METADATA_CAT_VALUE), "cat-value");
    EXPECT_EQ(Metadata::getCategoryName(Metadata::METADATA_CAT_ALL), "cat-all");
    EXPECT_EQ(Metadata::getCategoryName(static_cast<Metadata::METADATA_CATEGORY>(77)), "");
    EXPECT_EQ(Metadata::getMetadataName(Metadata::METADATA_TYPE), "type");
    EXPECT_EQ(Metadata::getMetadataName(Metadata::METADATA_PROPERTY_IDENTIFIER), "propertyIdentifier");
    EXPECT_EQ(Metadata::getMetadataName(static_cast<Metadata::METADATA>(9999)), "");
    m = Metadata();
    EXPECT_EQ(m.setCategories("cat-value, cat-doc"), 0x41u);
    // Categories are only added; unknown, empty, differently cased and numeric tokens are skipped.
    EXPECT_EQ(m.setCategories(" cat-types ,,cat-nope, CAT-UI,7,"), 0x441u);
    EXPECT_EQ(m.setCategories(""), 0x441u);
    EXPECT_EQ(m.setCategories("cat-value"), 0x441u);
    Metadata every;
    EXPECT_EQ(every.setCategories("cat-value,cat-extensions,cat-change,cat-mutability,cat-encoding,"
                                  "cat-restrictions,cat-doc,cat-ui,cat-links,cat-tags,cat-types,cat-all"),
              0xFFFu);
    // Which metadata a category offers, for one category and for a selection (a selected category
    // the catalogue has no rows for offers nothing instead of failing).
    using M = Metadata;
    const std::tuple<M::METADATA_CATEGORY, M::METADATA, bool> single[] = {
        {M::METADATA_CAT_ENCODING, M::METADATA_TYPE, true}, {M::METADATA_CAT_TYPES, M::METADATA_MEMBER_TYPE, true},
        {M::METADATA_CAT_ENCODING, M::METADATA_DISPLAY_NAME, false}, {M::METADATA_CAT_VALUE, M::METADATA(12345), true}};
    for (const auto& c : single) EXPECT_EQ(M::isQueryOption(std::get<0>(c), std::get<1>(c)), std::get<2>(c));
    EXPECT_THROW(M::isQueryOption(M::METADATA_CATEGORY(30), M::METADATA_TYPE), Poco::NotFoundException);
    const std::tuple<unsigned, M::METADATA, bool> selected[] = {
        {0, M::METADATA_TYPE, false},           {0x40, M::METADATA_COMMENT, true},  {0x40, M::METADATA_ERROR_TEXT, true},
        {0x40, M::METADATA_HREF, false},        {0x140, M::METADATA_HREF, true},    {0x1, M::METADATA_CONTEXT_TAG, true},
        {0x80000000u, M::METADATA_TYPE, false}};
    for (const auto& c : selected) EXPECT_EQ(M(std::get<0>(c)).isQueryOption(std::get<1>(c)), std::get<2>(c)) << std::get<0>(c);
}

TEST(MetadataValue, NameTextAndBoolean) {
    TQTest::Catalogue::open();
    const MetadataValue type(Metadata::METADATA_TYPE, "BACnetDateTime");
    EXPECT_EQ(type.getName(" ", "=\""), " type=\"");
    EXPECT_EQ(type.getName(), "type");
    EXPECT_EQ(MetadataValue(Metadata::METADATA_DISPLAY_NAME, "").getName("\"$", "\":"), "\"$displayName\":");
    EXPECT_EQ(MetadataValue(static_cast<Metadata::METADATA>(9999), "x").getName(" ", "="), "");
    EXPECT_EQ(MetadataValue(Metadata::METADATA_ERROR, Poco::Dynamic::Var(300)).getValue(), "300");
    EXPECT_EQ(MetadataValue(Metadata::METADATA_TRUNCATED, Poco::Dynamic::Var(true)).getValue(), "true");
    EXPECT_EQ(MetadataValue(Metadata::METADATA_COMMENT, Poco::Dynamic::Var("text")).getValue(), "text");
    EXPECT_THROW(MetadataValue(Metadata::METADATA_COMMENT, Poco::Dynamic::Var()), Poco::Exception);
    const std::pair<const char*, bool> booleans[] = {
        {"true", true}, {"FALSE", true}, {"True", true},   {"fAlSe", true},  {"", false},    {"1", false},
        {"0", false},   {"yes", false},  {"truee", false}, {" true", false}, {"fals", false}};
    for (const auto& b : booleans)
        EXPECT_EQ(MetadataValue(Metadata::METADATA_TRUNCATED, b.first).isBoolean(), b.second) << b.first;
}
