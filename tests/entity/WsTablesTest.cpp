// Web-service error texts, metadata options and markup names.

#include "TestCatalogue.h"

#include "TQ_BACnet/Entity/BnMarkupType.h"
#include "TQ_BACnet/Entity/BnWsError.h"
#include "TQ_BACnet/Entity/BnWsMetadataQueryOptions.h"

#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <sstream>

using namespace TQ::BACnet::Entity;

TEST(BnWsError, ErrorsLoadOnceAndUnknownCodesThrow) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    const BnWsError& error = BnWsError::find(1);
    EXPECT_EQ(error.getHttpStatus(), 400);
    EXPECT_EQ(error.getErrorText(), "parameter out of range");
    int before = db.queries("FROM bn_ws_error");
    EXPECT_EQ(BnWsError::find(1).getHttpStatus(), 400);
    EXPECT_EQ(db.queries("FROM bn_ws_error"), before);

    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_EQ(TQTest::messageOf<Poco::NotFoundException>([] { BnWsError::find(77); }),
                  "WS Error not found in database");
    EXPECT_EQ(db.queries("FROM bn_ws_error") - before, 2);

    std::ostringstream out;
    BnWsError::find(2).printIt(out);
    EXPECT_EQ(out.str(), "id_bn_ws_error: 2,name: WS_ERR_NOT_FOUND,http_status: 404,error_text: not found\n");
}

TEST(BnWsMetadataQueryOptions, CategoriesListTheirItemsInDatabaseOrder) {
    using Cat = BnWsMetadataQueryOptions::MetadataCategory;
    using Item = BnWsMetadataQueryOptions::Metadata;
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    int before = db.queries("FROM bn_ws_metadata_query_options");
    EXPECT_TRUE(BnWsMetadataQueryOptions::isMetadata(Cat(0), Item(123456)));
    EXPECT_EQ(db.queries("FROM bn_ws_metadata_query_options"), before);

    // The order is the database's, whatever index it walks.
    std::vector<unsigned int> direct;
    db.session()
        << "SELECT metadata_enum_value FROM bn_ws_metadata_query_options WHERE catagory_enum_value=2",
        Poco::Data::Keywords::into(direct), Poco::Data::Keywords::now;
    ASSERT_EQ(direct.size(), 3u);
    before = db.queries("FROM bn_ws_metadata_query_options");
    EXPECT_EQ(BnWsMetadataQueryOptions::find(Cat(2)), direct);
    EXPECT_TRUE(BnWsMetadataQueryOptions::isMetadata(Cat(2), Item(3)));
    EXPECT_FALSE(BnWsMetadataQueryOptions::isMetadata(Cat(2), Item(4)));
    EXPECT_TRUE(BnWsMetadataQueryOptions::isMetadata(Cat(4), Item(1)));
    EXPECT_EQ(db.queries("FROM bn_ws_metadata_query_options") - before, 2);

    EXPECT_EQ(TQTest::messageOf<Poco::NotFoundException>([] { BnWsMetadataQueryOptions::isMetadata(Cat(7), Item(1)); }),
              "WS Metadata Category 7 not found in database");
    EXPECT_THROW(BnWsMetadataQueryOptions::find(Cat(7)), Poco::NotFoundException);
}

TEST(BnMarkupType, NamesBothWaysWithNullForUnknownNamesAndAnErrorForUnknownNumbers) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    EXPECT_EQ(BnMarkupType::find(22), "Sequence");
    EXPECT_THROW(BnMarkupType::find(555), Poco::NullValueException);
    EXPECT_TRUE(BnMarkupType::findReverse("unknown").isNull());
    EXPECT_TRUE(BnMarkupType::findReverse("sequence").isNull());

    Poco::Nullable<int> enumerated = BnMarkupType::findReverse("Enumerated");
    ASSERT_FALSE(enumerated.isNull());
    EXPECT_EQ(enumerated.value(), 9);
    int before = db.queries("FROM bn_markup_type");
    EXPECT_EQ(BnMarkupType::find(9), "Enumerated");
    EXPECT_EQ(BnMarkupType::findReverse("Sequence").value(), 22);
    EXPECT_EQ(db.queries("FROM bn_markup_type"), before);
}
