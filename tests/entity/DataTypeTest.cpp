// The data type catalogue: names by number and back, and the listing web clients see.

#include "TestCatalogue.h"

#include "TQ/Utility/Data/EntityServer.h"
#include "TQ_BACnet/Entity/BnDataType.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

namespace {

const char* const kTypeQuery = "FROM bn_datatype WHERE";

std::vector<std::string> namesOf(const std::vector<BnDataType::Record>& records) {
    std::vector<std::string> names;
    for (const BnDataType::Record& record : records) names.push_back(record.name);
    return names;
}

}  // namespace

TEST(BnDataType, FindAnswersFromTheCacheAfterTheFirstLookupAndMissesAskAgain) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    int before = db.queries(kTypeQuery);
    EXPECT_EQ(BnDataType::find(BACNET_DT_DATE_TIME), "BACnetDateTime");
    EXPECT_EQ(BnDataType::find(BACNET_DT_DATE_TIME), "BACnetDateTime");
    EXPECT_EQ(db.queries(kTypeQuery) - before, 1);

    // The reverse direction was filled by the same lookup.
    EXPECT_EQ(BnDataType::findReverse("BACnetDateTime"), BACNET_DT_DATE_TIME);
    EXPECT_EQ(db.queries(kTypeQuery) - before, 1);

    before = db.queries(kTypeQuery);
    EXPECT_EQ(BnDataType::find(static_cast<BACnetDataType>(4444)), "");
    EXPECT_EQ(BnDataType::find(static_cast<BACnetDataType>(4444)), "");
    EXPECT_EQ(db.queries(kTypeQuery) - before, 2);
}

TEST(BnDataType, FindReverseMatchesExactNamesAndReportsMissesAs1999) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    EXPECT_EQ(BnDataType::findReverse("Nope"), BACNET_DT_NOT_FOUND);
    EXPECT_EQ(BnDataType::findReverse("bacnetobjecttype"), BACNET_DT_NOT_FOUND);
    EXPECT_EQ(BnDataType::findReverse("BACnetObjectType"), BACNET_DT_OBJECT_TYPE);
    int before = db.queries(kTypeQuery);
    EXPECT_EQ(BnDataType::find(BACNET_DT_OBJECT_TYPE), "BACnetObjectType");
    EXPECT_EQ(db.queries(kTypeQuery), before);

    // A caller's own server is used as it is, and keeps the where text of the last lookup.
    TQ::Utility::Data::EntityServer server;
    EXPECT_EQ(BnDataType::findReverse("OnlyTop", &server), 2200);
    EXPECT_EQ(server.getWhere(), "name=?");
    ASSERT_EQ(server.getBinds().size(), 1u);
}

TEST(BnDataType, ListingsPrefixTheVendorAndReplaceTheProprietaryWord) {
    TQTest::TestCatalogue::get();
    std::vector<BnDataType::Record> out;
    EXPECT_EQ(BnDataType::retrieveRange(1020, 1030, 0, out), 1);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].id, 1026);
    EXPECT_EQ(out[0].name, "0-BACnetDateTime");

    out.clear();
    EXPECT_EQ(BnDataType::retrieveRange(3000, 4000, 947, out), 3);
    EXPECT_EQ(namesOf(out),
              (std::vector<std::string>{"947-TrendLog", "947-TrendLogLastUploaded", "VendorThing"}));

    // A range without rows adds nothing; a negative vendor counts rows but lists none.
    std::vector<BnDataType::Record> untouched{BnDataType::Record()};
    EXPECT_EQ(BnDataType::retrieveRange(4000, 5000, 0, untouched), 0);
    EXPECT_EQ(untouched.size(), 1u);
    EXPECT_EQ(BnDataType::retrieveRange(3000, 4000, -1, untouched), 3);
    EXPECT_EQ(untouched.size(), 1u);
    // Bounds: low is in, high is out.
    out.clear();
    EXPECT_EQ(BnDataType::retrieveRange(1026, 1026, 0, out), 0);
    EXPECT_EQ(BnDataType::retrieveRange(3513, 3514, 947, out), 1);
}

TEST(BnDataType, AllUserVisibleListsStandardTypesThenProprietaryOnesEachInNameOrder) {
    TQTest::TestCatalogue::get();
    std::vector<BnDataType::Record> out;
    int count = BnDataType::retrieveAllUserVisible(out);
    // Ten standard types, three proprietary ones; 5001 and above are in neither range.
    ASSERT_EQ(count, 13);
    ASSERT_EQ(out.size(), 13u);
    EXPECT_EQ(out.front().name, "0-BACnetDateTime");
    EXPECT_EQ(out[9].name, "0-Unsigned");
    EXPECT_EQ(out[10].name, "947-TrendLog");
    EXPECT_EQ(out.back().name, "VendorThing");
    for (std::size_t i = 1; i < 10; ++i) EXPECT_LT(out[i - 1].name, out[i].name);
}

TEST(BnDataType, DiagnosticDumpNamesEachColumnWithItsValue) {
    TQTest::TestCatalogue::get();
    TQ::Utility::Data::EntityServer server;
    server.setWhere("id_bn_datatype=?");
    server.addBind(1026);
    BnDataType row(false);
    ASSERT_EQ(server.retrieve(row), 1);
    BnDataType::Record record(row);
    EXPECT_EQ(record.id, 1026);
    EXPECT_EQ(record.name, "BACnetDateTime");
    testing::internal::CaptureStdout();
    row.printIt();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "id_bn_datatype:1026,name:BACnetDateTime\n");

    // A NULL name cannot be read as text.
    BnDataType empty(false);
    EXPECT_THROW(empty.getName(), Poco::InvalidAccessException);
}
