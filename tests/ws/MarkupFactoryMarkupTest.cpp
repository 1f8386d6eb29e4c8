#include "RecordingFactory.h"
#include "WsCatalogue.h"

#include <gtest/gtest.h>

#include <sstream>

using TQWsTest::RecordingFactory;
using MF = TQ::BACnet::WS::MarkupFactory;
using TQ::BACnet::BACNET_DT_NULL;
using TQ::BACnet::WS::Metadata;

namespace {

std::vector<unsigned int> numbers(const RecordingFactory::Opened& o) {
    std::vector<unsigned int> n;
    for (const auto& m : o.metadata) n.push_back(m.getMetadata());
    return n;
}

}  // namespace

TEST(MarkupFactoryMarkup, FlagsFollowTheArguments) {
    std::ostringstream out;
    RecordingFactory f(out, false, true);
    f.markup(MF::BT_REAL, "a", "1", true, false, BACNET_DT_NULL, false);
    f.markup(MF::BT_REAL, "b", "1", true, true, BACNET_DT_NULL, true);
    f.markup(MF::BT_REAL, "c", "", false, false, BACNET_DT_NULL, false, "", 0, "", "", "", false, "", "", "",
             "", "", "", true);
    f.setQuoteValues(true);
    EXPECT_TRUE(f.getQuoteValues());
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
}

TEST(MarkupFactoryMarkup, MetadataListOrderAndValues) {
    std::ostringstream out;
    RecordingFactory f(out);
    f.markup(MF::BT_REAL, "v", "1", true, false, BACNET_DT_NULL, false, "p8-comment", 42, "p10-errText",
             "p11-display", "p12-type", true, "p14-target", "p15-href", "3", "85", "p18-desc", "p19-units");
    ASSERT_EQ(f.opened.size(), 1u);
    const auto& o = f.opened[0];
    EXPECT_TRUE(o.hasMetadata);
    EXPECT_EQ(numbers(o),
              (std::vector<unsigned int>{409, 403, 2105, 2106, 802, 801, 413, 410, 1310, 705, 706, 412}));
    const std::vector<std::string> texts{"p11-display", "p12-type", "3",           "85",
                                         "p14-target",  "p15-href", "p18-desc",    "p19-units",
                                         "true",        "42",       "p10-errText", "p8-comment"};
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(o.metadata[i].getValue(), texts[i]) << i;

    // Each argument alone; a zero or negative error number is not an item.
    f.markup(MF::BT_REAL, "v", "1", true, false, BACNET_DT_NULL, false, "", -5);
    f.markup(MF::BT_REAL, "v", "1", true, false, BACNET_DT_NULL, false, "", 0, "", "", "", true);
    f.markup(MF::BT_REAL, "v", "1", true, false, BACNET_DT_NULL, false, "", 7);
    EXPECT_FALSE(f.opened[1].hasMetadata);
    EXPECT_EQ(numbers(f.opened[2]), (std::vector<unsigned int>{1310}));
    EXPECT_EQ(numbers(f.opened[3]), (std::vector<unsigned int>{705}));
    EXPECT_EQ(f.opened[3].metadata[0].getValue(), "7");
}

TEST(MarkupFactoryMarkup, TypeArgumentByBaseTypeAndVendorPrefix) {
    std::ostringstream out;
    RecordingFactory f(out);
    auto typed = [&f](MF::BaseType t, const std::string& type) {
        f.markup(t, "n", "", true, false, BACNET_DT_NULL, false, "", 0, "", "", type);
        return f.opened.back();
    };
    // Collections name their members' type.
    EXPECT_EQ(numbers(typed(MF::BT_LIST, "BACnetTimeStamp")), (std::vector<unsigned int>{1103}));
    EXPECT_EQ(numbers(typed(MF::BT_ARRAY, "947.Own")), (std::vector<unsigned int>{1103}));
    EXPECT_EQ(numbers(typed(MF::BT_SEQUENCE_OF, "x")), (std::vector<unsigned int>{1103}));
    // Everything else names its own type, except the gateway's own types.
    EXPECT_EQ(numbers(typed(MF::BT_SEQUENCE, "BACnetDateTime")), (std::vector<unsigned int>{403}));
    EXPECT_FALSE(typed(MF::BT_SEQUENCE, "947.BACnetTrendLogLastUploaded").hasMetadata);
    EXPECT_FALSE(typed(MF::BT_CHOICE, "947.").hasMetadata);
    EXPECT_EQ(numbers(typed(MF::BT_CHOICE, "947")), (std::vector<unsigned int>{403}));
    EXPECT_EQ(numbers(typed(MF::BT_CHOICE, "x947.")), (std::vector<unsigned int>{403}));
}

TEST(MarkupFactoryMarkup, PropertyOverloadsNameAndTypeFromTheCatalogue) {
    TQWsTest::WsCatalogue::open();
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
    f.markup(OBJECT_ANALOG_INPUT, static_cast<BACNET_PROPERTY_ID>(351), "x", true, false, false);
    f.markup(OBJECT_ANALOG_INPUT, static_cast<BACNET_PROPERTY_ID>(355), "x", true, false, false);
    f.markup(OBJECT_ANALOG_INPUT, static_cast<BACNET_PROPERTY_ID>(4000000), "x", true, false, false);
    EXPECT_EQ(f.opened.size(), 2u);
    EXPECT_EQ(f.getOpenMarkupCount(), 0u);
}

TEST(MarkupFactoryMarkup, FactoryMetadataSelection) {
    std::ostringstream out;
    RecordingFactory f(out);
    EXPECT_EQ(f.getMetadata(), 0u);
    f.setMetaData(Metadata::METADATA_CAT_DOC, true);
    f.setMetaData(Metadata::METADATA_CAT_VALUE, true);
    EXPECT_EQ(f.getMetadata(), 0x41u);
    EXPECT_TRUE(f.isMetadata(Metadata::METADATA_CAT_DOC));
    EXPECT_FALSE(f.isMetadata(Metadata::METADATA_CAT_UI));
    f.setMetaData(Metadata::METADATA_CAT_VALUE, false);
    EXPECT_EQ(f.getMetadata2(), Metadata(0x40));
    f.setMetaData(Metadata(0x44F));
    EXPECT_EQ(f.getMetadata(), 0x44Fu);

    EXPECT_EQ(f.getLastErrorCode(), 0);
    EXPECT_TRUE(f.getLastErrorText().empty());
    f.setLastError(200, "no such type");
    EXPECT_EQ(f.getLastErrorCode(), 200);
    EXPECT_EQ(f.getLastErrorText(), "no such type");

    EXPECT_FALSE(f.getUseNames());
    f.setUseNames(true);
    EXPECT_TRUE(f.getUseNames());
    std::string text = "a<b";
    f.stringEncode(text);
    EXPECT_EQ(text, "a&lt;b");
}
