#include "WsCatalogue.h"

#include "TQ_BACnet/WS/Metadata.h"
#include "TQ_BACnet/WS/MetadataValue.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

using TQ::BACnet::WS::Metadata;
using TQ::BACnet::WS::MetadataValue;

TEST(Metadata, BitOperations) {
    Metadata m;
    EXPECT_EQ(m.getCategories(), 0u);
    m.setCategory(Metadata::METADATA_CAT_VALUE, true);
    m.setCategory(Metadata::METADATA_CAT_ALL, true);
    EXPECT_EQ(m.getCategories(), 0x801u);
    EXPECT_TRUE(m.isCategory(Metadata::METADATA_CAT_ALL));
    EXPECT_FALSE(m.isCategory(Metadata::METADATA_CAT_DOC));
    m.setCategory(Metadata::METADATA_CAT_VALUE, false);
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
}

TEST(Metadata, CategoriesAndNamesFromTheCatalogue) {
    TQWsTest::WsCatalogue::open();
    EXPECT_EQ(Metadata::getCategoryName(Metadata::METADATA_CAT_VALUE), "cat-value");
    EXPECT_EQ(Metadata::getCategoryName(Metadata::METADATA_CAT_ALL), "cat-all");
    EXPECT_EQ(Metadata::getCategoryName(static_cast<Metadata::METADATA_CATEGORY>(77)), "");
    EXPECT_EQ(Metadata::getMetadataName(Metadata::METADATA_TYPE), "type");
    EXPECT_EQ(Metadata::getMetadataName(Metadata::METADATA_PROPERTY_IDENTIFIER), "propertyIdentifier");
    EXPECT_EQ(Metadata::getMetadataName(static_cast<Metadata::METADATA>(9999)), "");

    Metadata m;
    EXPECT_EQ(m.setCategories("cat-value, cat-doc"), 0x41u);
    // Categories are only added; unknown, empty, differently cased and numeric tokens are skipped.
    EXPECT_EQ(m.setCategories(" cat-types ,,cat-nope, CAT-UI,7,"), 0x441u);
    EXPECT_EQ(m.setCategories(""), 0x441u);
    EXPECT_EQ(m.setCategories("cat-value"), 0x441u);
    EXPECT_EQ(m.getCategories(), 0x441u);
    Metadata every;
    EXPECT_EQ(every.setCategories("cat-value,cat-extensions,cat-change,cat-mutability,cat-encoding,"
                                  "cat-restrictions,cat-doc,cat-ui,cat-links,cat-tags,cat-types,cat-all"),
              0xFFFu);
}

TEST(Metadata, QueryOptionsByCategory) {
    TQWsTest::WsCatalogue::open();
    EXPECT_TRUE(Metadata::isQueryOption(Metadata::METADATA_CAT_ENCODING, Metadata::METADATA_TYPE));
    EXPECT_TRUE(Metadata::isQueryOption(Metadata::METADATA_CAT_TYPES, Metadata::METADATA_MEMBER_TYPE));
    EXPECT_FALSE(Metadata::isQueryOption(Metadata::METADATA_CAT_ENCODING, Metadata::METADATA_DISPLAY_NAME));
    EXPECT_TRUE(
        Metadata::isQueryOption(Metadata::METADATA_CAT_VALUE, static_cast<Metadata::METADATA>(12345)));
    EXPECT_THROW(
        Metadata::isQueryOption(static_cast<Metadata::METADATA_CATEGORY>(30), Metadata::METADATA_TYPE),
        Poco::NotFoundException);

    Metadata none;
    EXPECT_FALSE(none.isQueryOption(Metadata::METADATA_TYPE));
    Metadata doc;
    doc.setCategory(Metadata::METADATA_CAT_DOC, true);
    EXPECT_TRUE(doc.isQueryOption(Metadata::METADATA_COMMENT));
    EXPECT_TRUE(doc.isQueryOption(Metadata::METADATA_ERROR_TEXT));
    EXPECT_FALSE(doc.isQueryOption(Metadata::METADATA_HREF));
    doc.setCategory(Metadata::METADATA_CAT_LINKS, true);
    EXPECT_TRUE(doc.isQueryOption(Metadata::METADATA_HREF));
    EXPECT_TRUE(Metadata(0x1).isQueryOption(Metadata::METADATA_CONTEXT_TAG));
    // A selected category the catalogue has no rows for offers nothing instead of failing.
    EXPECT_FALSE(Metadata(0x80000000u).isQueryOption(Metadata::METADATA_TYPE));
}

TEST(MetadataValue, NameTextAndBoolean) {
    TQWsTest::WsCatalogue::open();
    const MetadataValue type(Metadata::METADATA_TYPE, "BACnetDateTime");
    EXPECT_EQ(type.getMetadata(), Metadata::METADATA_TYPE);
    EXPECT_EQ(type.getValue(), "BACnetDateTime");
    EXPECT_EQ(type.getName(" ", "=\""), " type=\"");
    EXPECT_EQ(type.getName(), "type");
    EXPECT_EQ(MetadataValue(Metadata::METADATA_DISPLAY_NAME, "").getName("\"$", "\":"), "\"$displayName\":");
    EXPECT_EQ(MetadataValue(static_cast<Metadata::METADATA>(9999), "x").getName(" ", "="), "");

    EXPECT_EQ(MetadataValue(Metadata::METADATA_ERROR, Poco::Dynamic::Var(300)).getValue(), "300");
    EXPECT_EQ(MetadataValue(Metadata::METADATA_TRUNCATED, Poco::Dynamic::Var(true)).getValue(), "true");
    EXPECT_EQ(MetadataValue(Metadata::METADATA_COMMENT, Poco::Dynamic::Var("text")).getValue(), "text");
    EXPECT_THROW(MetadataValue(Metadata::METADATA_COMMENT, Poco::Dynamic::Var()), Poco::Exception);

    for (const char* yes : {"true", "FALSE", "True", "fAlSe"})
        EXPECT_TRUE(MetadataValue(Metadata::METADATA_TRUNCATED, yes).isBoolean()) << yes;
    for (const char* no : {"", "1", "0", "yes", "truee", " true", "fals"})
        EXPECT_FALSE(MetadataValue(Metadata::METADATA_TRUNCATED, no).isBoolean()) << no;
}
