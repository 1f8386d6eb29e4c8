// Enumeration and bit names: cache keys, the object-type alias, names, values and bit strings.

#include "TestCatalogue.h"

#include "TQ/Utility/BitBuffer.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

namespace {
const char* const kEnumQuery = "FROM bn_datatype_enum WHERE";
}

TEST(BnDataTypeEnum, NamesAndValuesAreCachedAndConstruct121SharesTheObjectTypes) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    int before = db.queries(kEnumQuery);
    EXPECT_EQ(BnDataTypeEnum::find(121, 8), "device");
    // Cached under 120: neither direction needs the database any more.
    EXPECT_EQ(BnDataTypeEnum::find(120, 8), "device");
    EXPECT_EQ(BnDataTypeEnum::findReverse(120, "device"), 8u);
    EXPECT_EQ(BnDataTypeEnum::findReverse(121, "device"), 8u);
    EXPECT_EQ(db.queries(kEnumQuery) - before, 1);

    EXPECT_EQ(BnDataTypeEnum::findReverse(121, "analog-output"), 1u);
    before = db.queries(kEnumQuery);
    EXPECT_EQ(BnDataTypeEnum::find(120, 1), "analog-output");
    EXPECT_EQ(db.queries(kEnumQuery), before);

    // Misses are empty or 0xFFFFFFFF and are looked up again each time.
    EXPECT_EQ(BnDataTypeEnum::find(120, 999), "");
    EXPECT_EQ(BnDataTypeEnum::find(120, 999), "");
    EXPECT_EQ(BnDataTypeEnum::findReverse(120, "Device"), 0xFFFFFFFFu);
    EXPECT_EQ(db.queries(kEnumQuery) - before, 3);
}

TEST(BnDataTypeEnum, ValuesAboveSixteenBitsNeitherShareNorOverwriteACachedName) {
    TQTest::TestCatalogue::get();
    // The cache key keeps the low 16 bits only: 65613 and 77 share it.
    EXPECT_EQ(BnDataTypeEnum::getHashKey(51, 65613), BnDataTypeEnum::getHashKey(51, 77));
    EXPECT_EQ(BnDataTypeEnum::findReverse(51, "vendor-label"), 65613u);
    EXPECT_EQ(BnDataTypeEnum::find(51, 77), "object-name");
    EXPECT_EQ(BnDataTypeEnum::find(51, 65613), "vendor-label");
    EXPECT_EQ(BnDataTypeEnum::find(120, 8), "device");
    EXPECT_EQ(BnDataTypeEnum::find(120, 65544), "");
}

TEST(BnDataTypeEnum, NameLookupsFallBackToDecimalAndTypeLookupsGoThroughTheConstruct) {
    TQTest::TestCatalogue::get();
    bool found = true;
    EXPECT_EQ(BnDataTypeEnum::getEnumNameById(51, 9999, nullptr, &found), "9999");
    EXPECT_FALSE(found);
    EXPECT_EQ(BnDataTypeEnum::getEnumNameById(51, 85, nullptr, &found), "present-value");
    EXPECT_TRUE(found);
    EXPECT_EQ(BnDataTypeEnum::getEnumNameById(51, 0), "0");

    EXPECT_EQ(BnDataTypeEnum::getEnumNameByType(static_cast<BACnetDataType>(1090), 77, nullptr, &found),
              "object-name");
    EXPECT_TRUE(found);
    EXPECT_EQ(BnDataTypeEnum::getEnumNameByType(static_cast<BACnetDataType>(9998), 3, nullptr, &found), "3");
    EXPECT_FALSE(found);
    EXPECT_EQ(BnDataTypeEnum::getEnumNameByType(BACNET_DT_OBJECT_TYPE, 3), "binary-input");

    EXPECT_EQ(BnDataTypeEnum::getEnumValueById(51, "description"), 28u);
    EXPECT_EQ(BnDataTypeEnum::getEnumValueByType(BACNET_DT_OBJECT_TYPE, "analog-input"), 0u);
    EXPECT_EQ(BnDataTypeEnum::getEnumValueByType(static_cast<BACnetDataType>(9998), "analog-input"),
              0xFFFFFFFFu);
    EXPECT_EQ(BnDataTypeEnum::getEnumValueByType(BACNET_DT_OBJECT_TYPE, "no-such-type"), 0xFFFFFFFFu);
}

TEST(BnDataTypeEnum, BitCountsComeFromTheHighestBitNumber) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    EXPECT_EQ(BnDataTypeEnum::getBitCount(130), 5);
    EXPECT_EQ(BnDataTypeEnum::getBitCount(131), 8);
    int before = db.queries(kEnumQuery);
    EXPECT_EQ(BnDataTypeEnum::getBitCount(131), 8);
    EXPECT_EQ(db.queries(kEnumQuery), before);
    EXPECT_EQ(BnDataTypeEnum::getBitCount(999), -1);
    EXPECT_EQ(BnDataTypeEnum::getBitCount(999), -1);
    EXPECT_EQ(db.queries(kEnumQuery) - before, 2);
    // The object types supported count as many bits as there are object types.
    EXPECT_EQ(BnDataTypeEnum::getBitCount(121), 9);
}

TEST(BnDataTypeEnum, BitStringsSetTheNamedBitsAndStopAtTheFirstBadName) {
    TQTest::TestCatalogue::get();
    // The bits set so far stay set when a bad name stops the parse.
    const std::tuple<const char*, bool, const char*> cases[] = {
        {"", true, "00000"}, {"b-one; b-three", true, "01010"}, {"  b-four  ;b-zero ", true, "10001"},
        {"b-one;;b-three", false, "01000"}, {"b-two;", false, "00100"}, {"b-two;b-nine", false, nullptr}};
    for (const auto& c : cases) {
        TQ::Utility::BitBuffer bits;
        EXPECT_EQ(BnDataTypeEnum::getBitString(130, std::get<0>(c), bits), std::get<1>(c)) << std::get<0>(c);
        if (std::get<2>(c)) { EXPECT_EQ(bits.getBitsString(), std::get<2>(c)) << std::get<0>(c); }
        if (std::get<1>(c)) { EXPECT_EQ(bits.getBitsUsed(), 5u); }
    }
    TQ::Utility::BitBuffer untouched(3);
    untouched.setBit(2);
    EXPECT_FALSE(BnDataTypeEnum::getBitString(999, "b-one", untouched));
    EXPECT_EQ(untouched.getBitsString(), "001");

    std::string text = "unchanged";
    EXPECT_TRUE(BnDataTypeEnum::getBitString(130, "b-zero;b-four", text));
    EXPECT_EQ(text, "true,false,false,false,true");
    text = "unchanged";
    EXPECT_FALSE(BnDataTypeEnum::getBitString(130, "b-zero;bogus", text));
    EXPECT_EQ(text, "unchanged");
    EXPECT_TRUE(BnDataTypeEnum::getBitString(131, "high", text));
    EXPECT_EQ(text, "false,false,false,false,false,false,false,true");
}

TEST(BnDataTypeEnum, ListingsOrderByValueOrName) {
    TQTest::TestCatalogue::get();
    std::vector<BnDataTypeEnum> rows;
    EXPECT_EQ(BnDataTypeEnum::retrieve(120, BnDataTypeEnum::ORDER_BY_VALUE, rows), 4);
    std::vector<unsigned int> values;
    for (const BnDataTypeEnum& row : rows) values.push_back(row.getValue());
    EXPECT_EQ(values, (std::vector<unsigned int>{0, 1, 3, 8}));

    EXPECT_EQ(BnDataTypeEnum::retrieve(120, BnDataTypeEnum::ORDER_BY_NAME, rows), 4);
    std::vector<std::string> names;
    for (const BnDataTypeEnum& row : rows) names.push_back(row.getName());
    EXPECT_EQ(names, (std::vector<std::string>{"analog-input", "analog-output", "binary-input", "device"}));
    EXPECT_EQ(rows.front().getIdBnDataTypeConstruct(), 120u);

    EXPECT_EQ(BnDataTypeEnum::retrieve(999, BnDataTypeEnum::ORDER_BY_NAME, rows), 0);
    EXPECT_TRUE(rows.empty());
}
