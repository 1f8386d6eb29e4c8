#include "RecordingFactory.h"

#include <gtest/gtest.h>

#include <sstream>

using TQWsTest::RecordingFactory;
using MF = TQ::BACnet::WS::MarkupFactory;

namespace {

void open(MF& f, MF::BaseType type, const std::string& name, unsigned int flags = 0) {
    f.markupNew(type, name, "", flags, nullptr);
}

}  // namespace

TEST(MarkupFactoryStack, OpenCompleteAndCloseInReverseOrder) {
    std::ostringstream out;
    RecordingFactory f(out);

    // Nothing open: closing writes nothing and does not fail.
    f.closeOpenMarkup();
    f.closeAllOpenMarkups();
    EXPECT_TRUE(out.str().empty());
    EXPECT_TRUE(f.closed.empty());

    open(f, MF::BT_SEQUENCE, "x", MF::MF_ROOT);
    f.markupNew(MF::BT_UNSIGNED, "a", "1", MF::MF_COMPLETE, nullptr);
    EXPECT_EQ(f.getOpenMarkupCount(), 1u) << "a complete markup pushes nothing";
    open(f, MF::BT_CHOICE, "b");
    open(f, MF::BT_LIST, "c");
    EXPECT_EQ(f.getOpenMarkupCount(), 3u);

    f.closeOpenMarkup();
    EXPECT_EQ(f.getOpenMarkupCount(), 2u);
    f.closeAllOpenMarkups();
    EXPECT_EQ(f.getOpenMarkupCount(), 0u);
    EXPECT_EQ(out.str(), "<Sequence x><Unsigned a=1/><Choice b><List c></List></Choice></Sequence>");
    ASSERT_EQ(f.closed.size(), 3u);
    EXPECT_EQ(f.closed[0].baseTypeName, "List");
    EXPECT_EQ(f.closed[2].baseTypeName, "Sequence");

    // Closing again after everything is closed stays silent.
    f.closeAllOpenMarkups();
    EXPECT_EQ(f.closed.size(), 3u);
}

TEST(MarkupFactoryStack, PrettyIndentsByOpenDepth) {
    std::ostringstream out;
    RecordingFactory f(out, true);
    f.header();
    open(f, MF::BT_SEQUENCE, "r");
    open(f, MF::BT_SEQUENCE, "s");
    f.markupNew(MF::BT_REAL, "v", "1.5", MF::MF_COMPLETE, nullptr);
    open(f, MF::BT_ARRAY, "t");
    f.closeAllOpenMarkups();
    EXPECT_EQ(out.str(),
              "<?hdr?>\n"
              "<Sequence r>\n"
              "\t<Sequence s>\n"
              "\t\t<Real v=1.5/>\n"
              "\t\t<Array t>\n"
              "\t\t</Array>\n"
              "\t</Sequence>\n"
              "</Sequence>\n");

    std::ostringstream flat;
    RecordingFactory g(flat, false);
    g.header();
    open(g, MF::BT_SEQUENCE, "r");
    g.closeAllOpenMarkups();
    EXPECT_EQ(flat.str(), "<?hdr?><Sequence r></Sequence>");
}

TEST(MarkupFactoryStack, ArrayMarkersAreBookkeepingOnly) {
    std::ostringstream out;
    RecordingFactory f(out, true, true);

    open(f, MF::BT_SEQUENCE, "root");
    // A complete element with the array flag leaves only its marker.
    f.markupNew(MF::BT_REAL, "1", "2", MF::MF_COMPLETE | MF::MF_ARRAY, nullptr);
    EXPECT_EQ(f.getOpenMarkupCount(), 2u);
    EXPECT_EQ(f.getArrayMarkerCount(), 1);
    // The same kind follows: the marker stays (and a second one is pushed).
    f.markupNew(MF::BT_REAL, "2", "3", MF::MF_COMPLETE | MF::MF_ARRAY, nullptr);
    EXPECT_EQ(f.getArrayMarkerCount(), 2);
    // Another kind follows: the top marker closes silently before it is written.
    f.closed.clear();
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

    // closeOpenMarkup ends the list only; its marker stays until the next close.
    f.closeOpenMarkup();
    EXPECT_EQ(f.getOpenMarkupCount(), 2u);
    // The next close passes the marker and ends at the root.
    f.closeOpenMarkup();
    EXPECT_EQ(f.getOpenMarkupCount(), 0u);
    EXPECT_EQ(f.getArrayMarkerCount(), 0);
    EXPECT_EQ(out.str(),
              "<Sequence root>\n"
              "\t<Real 1=2/>\n"
              "\t<Real 2=3/>\n"
              "\t<String n=x/>\n"
              "\t<List l>\n"
              "\t\t<Null z/>\n"
              "\t</List>\n"
              "</Sequence>\n");
}

TEST(MarkupFactoryStack, WritersWithoutArraysIgnoreTheArrayFlag) {
    std::ostringstream out;
    RecordingFactory f(out, false, false);
    f.markupNew(MF::BT_REAL, "1", "2", MF::MF_COMPLETE | MF::MF_ARRAY, nullptr);
    EXPECT_EQ(f.getOpenMarkupCount(), 0u);
    open(f, MF::BT_ARRAY, "a", MF::MF_ARRAY);
    EXPECT_EQ(f.getOpenMarkupCount(), 1u);
    EXPECT_EQ(f.getArrayMarkerCount(), 0);
    // The flag still reaches the writer.
    EXPECT_TRUE(f.opened.back().flags & MF::MF_ARRAY);
}

TEST(MarkupFactoryStack, ResetAbandonsWithoutOutput) {
    std::ostringstream out;
    RecordingFactory f(out, false, true);
    open(f, MF::BT_SEQUENCE, "s");
    open(f, MF::BT_ARRAY, "a", MF::MF_ARRAY);
    const std::string before = out.str();
    f.reset();
    EXPECT_EQ(f.getOpenMarkupCount(), 0u);
    EXPECT_EQ(f.getArrayMarkerCount(), 0);
    f.closeAllOpenMarkups();
    EXPECT_EQ(out.str(), before);
    EXPECT_TRUE(f.closed.empty());
}

TEST(MarkupFactoryStack, InvalidBaseTypesAreIgnored) {
    std::ostringstream out;
    RecordingFactory f(out, true, true);
    open(f, MF::BT_SEQUENCE, "s");
    f.markupNew(MF::BT_MAX, "bad", "1", 0, nullptr);
    f.markupNew(static_cast<MF::BaseType>(0xFFFFFFFFu), "bad", "1", MF::MF_ARRAY, nullptr);
    f.markup(static_cast<MF::BaseType>(200), "bad", "1", false, true, TQ::BACnet::BACNET_DT_NULL, false);
    EXPECT_TRUE(f.opened.size() == 1u);
    EXPECT_EQ(f.getOpenMarkupCount(), 1u);

    f.closeOpenMarkup(MF::OpenMarkup(MF::BT_MAX, false));
    EXPECT_TRUE(f.closed.empty());
    EXPECT_EQ(out.str(), "<Sequence s>\n");

    MF::OpenMarkup entry;
    EXPECT_EQ(entry.baseType, MF::BT_NULL);
    EXPECT_FALSE(entry.arrayMarker);
    entry.set(MF::BT_CHOICE, true);
    EXPECT_EQ(entry.baseType, MF::BT_CHOICE);
    EXPECT_TRUE(entry.arrayMarker);
}
