// Constructed type definitions: loading a type tree once, members, recursion and failures.

#include "TestCatalogue.h"

#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

namespace {

const char* const kConstructQuery = "FROM bn_datatype_construct WHERE";

const BnDataTypeConstruct* findType(unsigned int type) {
    return BnDataTypeConstruct::find(static_cast<BACnetDataType>(type));
}

}  // namespace

TEST(BnDataTypeConstruct, ATypeLoadsItsTopRowAndItsMembersWithTheirOwnDefinitions) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    int before = db.queries(kConstructQuery);
    const BnDataTypeConstruct* dateTime = findType(BACNET_DT_DATE_TIME);
    ASSERT_NE(dateTime, nullptr);
    // The type itself, then Date and Time for its members.
    EXPECT_EQ(db.queries(kConstructQuery) - before, 3);
    EXPECT_EQ(findType(BACNET_DT_DATE_TIME), dateTime);
    EXPECT_EQ(db.queries(kConstructQuery) - before, 3);

    EXPECT_EQ(dateTime->getIdBnDataType(), 1026);
    EXPECT_TRUE(dateTime->getIdParent().isNull());
    EXPECT_EQ(dateTime->getIdBnMarkup().value(), 22u);
    const auto& members = dateTime->getInternalBDTCs();
    ASSERT_EQ(members.size(), 2u);
    EXPECT_EQ(members[0].name, "date");
    EXPECT_EQ(members[0].idBnMarkup.value(), 10u);
    EXPECT_TRUE(members[0].contextNr.isNull());
    EXPECT_FALSE(members[0].optional);
    ASSERT_NE(members[0].pDTC, nullptr);
    EXPECT_EQ(members[0].pDTC, findType(BACNET_DT_DATE));
    EXPECT_TRUE(members[0].pDTC->getInternalBDTCs().empty());
    EXPECT_EQ(members[1].pDTC->getIdBnDataType(), 11);
}

TEST(BnDataTypeConstruct, AMissingTypeIsNullAndIsLookedUpAgain) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    int before = db.queries(kConstructQuery);
    EXPECT_EQ(findType(7777), nullptr);
    EXPECT_EQ(findType(7777), nullptr);
    EXPECT_EQ(db.queries(kConstructQuery) - before, 2);

    const BnDataTypeConstruct* onlyTop = findType(2200);
    ASSERT_NE(onlyTop, nullptr);
    EXPECT_TRUE(onlyTop->getInternalBDTCs().empty());
    EXPECT_EQ(onlyTop->getIdParent().value(), 210);
}

TEST(BnDataTypeConstruct, ARecursiveTypeLoadsOnceAndMembersKeepTheirNullColumns) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    int before = db.queries(kConstructQuery);
    const BnDataTypeConstruct* list = findType(2100);
    ASSERT_NE(list, nullptr);
    // The self reference is answered by the definition being loaded: one query for 2100.
    EXPECT_EQ(db.queries("bn_datatype_construct WHERE id_bn_datatype=2100"), 1);
    EXPECT_LE(db.queries(kConstructQuery) - before, 3);

    const auto& members = list->getInternalBDTCs();
    ASSERT_EQ(members.size(), 4u);
    // Members follow the sort column, not the key.
    EXPECT_EQ(members[0].name, "next");
    EXPECT_EQ(members[0].pDTC, list);
    EXPECT_TRUE(members[0].optional);
    EXPECT_EQ(members[0].contextNr.value(), 0);
    EXPECT_TRUE(members[0].idBnMarkup.isNull());

    EXPECT_EQ(members[1].name, "");
    ASSERT_NE(members[1].pDTC, nullptr);
    EXPECT_EQ(members[1].pDTC->getIdBnDataType(), 2);

    EXPECT_EQ(members[2].name, "untyped");
    EXPECT_EQ(members[2].pDTC, nullptr);
    EXPECT_EQ(members[2].idBnMarkup.value(), 7u);

    EXPECT_EQ(members[3].name, "uncatalogued");
    EXPECT_EQ(members[3].pDTC, nullptr);

    before = db.queries(kConstructQuery);
    EXPECT_EQ(findType(2100), list);
    EXPECT_EQ(members[0].pDTC->getInternalBDTCs()[0].pDTC, list);
    EXPECT_EQ(db.queries(kConstructQuery), before);
}

TEST(BnDataTypeConstruct, AMemberWithoutKeysFailsTheLoadAndNothingOfItStaysCached) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_EQ(TQTest::messageOf<Poco::InvalidAccessException>([] { findType(2500); }),
                  "Can not convert empty value.");
    // A type whose member type fails is dropped again, together with everything loaded for it.
    int before = db.queries(kConstructQuery);
    EXPECT_THROW(findType(2600), Poco::InvalidAccessException);
    EXPECT_THROW(findType(2600), Poco::InvalidAccessException);
    EXPECT_GE(db.queries(kConstructQuery) - before, 4);
    // Other definitions are unharmed.
    ASSERT_NE(findType(BACNET_DT_DATE_TIME), nullptr);
    EXPECT_EQ(findType(BACNET_DT_DATE_TIME)->getInternalBDTCs().size(), 2u);
}

TEST(BnDataTypeConstruct, SyntheticDefinitionsCarryCopiesOfTheirMembersAndTheSyntheticKeys) {
    TQTest::TestCatalogue::get();
    const BnDataTypeConstruct* date = findType(BACNET_DT_DATE);
    std::vector<BnDataTypeConstruct::DataTypeAndName> members;
    members.emplace_back(date, "when", Poco::Nullable<unsigned int>(10), Poco::Nullable<unsigned char>(3), 5,
                         6, true);
    members.emplace_back();
    BnDataTypeConstruct synthetic(members);
    members[0].name = "changed";

    EXPECT_EQ(synthetic.getIdBnDataType(), 2147483647);
    EXPECT_EQ(synthetic.getIdParent().value(), 2147483647);
    ASSERT_EQ(synthetic.getInternalBDTCs().size(), 2u);
    const BnDataTypeConstruct::DataTypeAndName& first = synthetic.getInternalBDTCs()[0];
    EXPECT_EQ(first.name, "when");
    EXPECT_EQ(first.pDTC, date);
    EXPECT_EQ(first.contextNr.value(), 3);
    EXPECT_TRUE(first.optional);
    const BnDataTypeConstruct::DataTypeAndName& empty = synthetic.getInternalBDTCs()[1];
    EXPECT_EQ(empty.name, "");
    EXPECT_TRUE(empty.idBnMarkup.isNull());
    EXPECT_EQ(empty.pDTC, nullptr);
}

TEST(BnDataTypeConstruct, ClearingTheCacheMakesTheNextLookupLoadAgain) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    ASSERT_NE(findType(2200), nullptr);
    BnDataTypeConstruct::clearCash();
    int before = db.queries(kConstructQuery);
    const BnDataTypeConstruct* reloaded = findType(2200);
    ASSERT_NE(reloaded, nullptr);
    EXPECT_EQ(reloaded->getIdBnDataType(), 2200);
    EXPECT_EQ(db.queries(kConstructQuery) - before, 1);
}

TEST(BnDataTypeConstruct, DiagnosticDumpsStopAtRecursion) {
    TQTest::TestCatalogue::get();
    testing::internal::CaptureStdout();
    findType(2100)->printIt(0);
    std::string dump = testing::internal::GetCapturedStdout();
    EXPECT_NE(dump.find("id_bn_datatype: 2100"), std::string::npos);
    EXPECT_NE(dump.find("Size of _internalBDTCs: 4"), std::string::npos);
    EXPECT_NE(dump.find("name: \"untyped\",idBnMarkup: 7,contextNr: 2,"), std::string::npos);
    EXPECT_NE(dump.find("        name: \"next\""), std::string::npos);
    EXPECT_LT(dump.size(), 200000u);
}
