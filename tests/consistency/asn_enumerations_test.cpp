#include "asn_enumerations.h"

#include <gtest/gtest.h>

#include <stdexcept>

using TQ::Consistency::AsnEnumerations;

// The cross-check is only as good as the reader: a reader that silently drops entries would
// let every comparison pass.
TEST(AsnEnumerations, ReadsListsSkippingCommentsAndExtensionMarker) {
    const auto lists = AsnEnumerations::parse(R"(
-- a (0) in a comment is not an entry
Colour ::= ENUMERATED {
    red (0),
    -- 1 is withdrawn
    deep-blue (2),  -- trailing (7) comment
    ...
}
Flags ::= BIT STRING { first(0), last-one (31) }
Other ::= SEQUENCE { a INTEGER }
)");
    ASSERT_TRUE(lists.has("Colour") && lists.has("Flags"));
    EXPECT_FALSE(lists.has("Other"));
    EXPECT_EQ(lists.get("Colour"), (TQ::Consistency::NamedNumbers{{0, "red"}, {2, "deep-blue"}}));
    EXPECT_EQ(lists.get("Flags"), (TQ::Consistency::NamedNumbers{{0, "first"}, {31, "last-one"}}));
    EXPECT_THROW(lists.get("Missing"), std::out_of_range);
}

TEST(AsnEnumerations, RejectsMalformedSource) {
    EXPECT_THROW(AsnEnumerations::parse("A ::= ENUMERATED { x (1), y (1) }"), std::runtime_error);
    EXPECT_THROW(AsnEnumerations::parse("A ::= ENUMERATED { x (1),"), std::runtime_error);
    EXPECT_THROW(AsnEnumerations::parse("A ::= ENUMERATED { x (1) }\nA ::= ENUMERATED { y (2) }"),
                 std::runtime_error);
    EXPECT_THROW(AsnEnumerations::load("/nonexistent/enumerations.asn"), std::runtime_error);
}
