#include "TQTestCatalogue.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_Catalogue/Types.h"

#include <gtest/gtest.h>

namespace BN = TQ::BACnet;
using BN::Entity::BnDataTypeConstruct;

// The generated member tables are the rows of bn_datatype_construct, member by member.
TEST(GeneratedTables, MemberTablesMatchTheCatalogueRows) {
    TQTest::Catalogue::open();
    ASSERT_GT(sizeof TQ::Catalogue::Members::Tables / sizeof TQ::Catalogue::Members::Tables[0], 10u);
    for (const auto& table : TQ::Catalogue::Members::Tables) {
        const BnDataTypeConstruct* type =
            BnDataTypeConstruct::find(static_cast<BN::BACnetDataType>(table.type));
        ASSERT_NE(type, nullptr) << table.type;
        const auto& rows = type->getInternalBDTCs();
        ASSERT_EQ(rows.size(), table.count) << table.type;
        for (unsigned int i = 0; i < table.count; ++i) {
            const auto& member = table.members[i];
            const auto& row = rows[i];
            const std::string where = std::to_string(table.type) + "/" + member.name;
            EXPECT_EQ(row.name, member.name) << where;
            EXPECT_EQ(row.contextNr.isNull() ? -1 : row.contextNr.value(), member.context) << where;
            EXPECT_EQ(row.pDTC ? row.pDTC->getIdBnDataType() : -1, member.type) << where;
            EXPECT_EQ(row.idBnMarkup.isNull() ? -1 : static_cast<int>(row.idBnMarkup.value()), member.markup)
                << where;
            EXPECT_EQ(row.optional, member.optional) << where;
            const unsigned int parent =
                member.parent < 0 ? static_cast<unsigned>(type->getIdBnDataTypeConstruct())
                                  : rows[static_cast<unsigned>(member.parent)].idBnDataTypeConstruct;
            EXPECT_EQ(row.idParent, parent) << where;
        }
    }
    // The numbers the library names and the markup kinds' names are the catalogue's too.
    EXPECT_EQ(BN::Entity::BnDataType::find(BN::BACNET_DT_ERROR), "Error");
    EXPECT_EQ(BN::Entity::BnDataType::find(BN::BACNET_DT_DATE_TIME), "BACnetDateTime");
    EXPECT_EQ(BN::WS::MarkupFactory::getBaseTypeName(BN::WS::MarkupFactory::BT_SEQUENCE_OF), "SequenceOf");
}
