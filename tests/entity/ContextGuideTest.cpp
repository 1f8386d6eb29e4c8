// The context-tag guide the protocol stack walks while decoding constructed values.

#include "TestCatalogue.h"
#include "TQTestCodec.h"

#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"

#include "tq_stack/context_decode.h"
#include "tq_stack/rpm.h"

#include <gtest/gtest.h>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

namespace {

// A root record for a value of `datatype`, freeing what the guide hangs below it.
struct Root {
    explicit Root(int datatype) { init_bacnet_datatype_by_context_tag(&record, datatype); }
    ~Root() { BnDataTypeConstruct::deleteBdbct(&record.child); }
    BACnet_Datatype_By_Context_Tag record;
};

}  // namespace

TEST(ContextGuide, UnknownParentsTypesAndTagsAnswerNullAndLeaveTheParentAlone) {
    TQTest::TestCatalogue::get();
    EXPECT_EQ(BnDataTypeConstruct::get_datatype_by_context(nullptr, 0), nullptr);

    Root unknownType(7777);
    EXPECT_EQ(BnDataTypeConstruct::get_datatype_by_context(&unknownType.record, 0), nullptr);

    Root list(2100);
    ASSERT_NE(BnDataTypeConstruct::get_datatype_by_context(&list.record, 1), nullptr);
    BACnet_Datatype_By_Context_Tag* child = list.record.child;
    EXPECT_EQ(BnDataTypeConstruct::get_datatype_by_context(&list.record, 9), nullptr);
    EXPECT_EQ(BnDataTypeConstruct::get_datatype_by_context(&list.record, 256 + 1), nullptr);
    EXPECT_EQ(BnDataTypeConstruct::get_datatype_by_context(&list.record, -1), nullptr);
    EXPECT_EQ(list.record.context_tag, 1);
    EXPECT_EQ(list.record.child, child);
}

TEST(ContextGuide, MembersGiveTheirTypeAndMarkupAndReplaceTheParentsPreviousChild) {
    TQTest::TestCatalogue::get();
    Root list(2100);
    BACnet_Datatype_By_Context_Tag* value = BnDataTypeConstruct::get_datatype_by_context(&list.record, 1);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->datatype, 2);
    EXPECT_EQ(value->markup, 2u);
    EXPECT_EQ(value->parent, &list.record);
    EXPECT_EQ(value->child, nullptr);
    EXPECT_EQ(list.record.child, value);
    EXPECT_EQ(list.record.context_tag, 1);

    // A member without a type: 2000 with the member's own markup kind.
    BACnet_Datatype_By_Context_Tag* untyped = BnDataTypeConstruct::get_datatype_by_context(&list.record, 2);
    ASSERT_NE(untyped, nullptr);
    EXPECT_EQ(list.record.child, untyped);
    EXPECT_EQ(untyped->datatype, BACNET_DT_UNKNOWN);
    EXPECT_EQ(untyped->markup, 7u);
    EXPECT_EQ(list.record.context_tag, 2);

    // A member whose type is not catalogued, without a markup kind of its own.
    BACnet_Datatype_By_Context_Tag* uncatalogued =
        BnDataTypeConstruct::get_datatype_by_context(&list.record, 3);
    ASSERT_NE(uncatalogued, nullptr);
    EXPECT_EQ(uncatalogued->datatype, BACNET_DT_UNKNOWN);
    EXPECT_EQ(uncatalogued->markup, 0xFFFFFFFFu);

    // The recursive member leads to the same type again, one level deeper.
    BACnet_Datatype_By_Context_Tag* next = BnDataTypeConstruct::get_datatype_by_context(&list.record, 0);
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(next->datatype, 2100);
    EXPECT_EQ(next->markup, 22u);
    BACnet_Datatype_By_Context_Tag* deeper = BnDataTypeConstruct::get_datatype_by_context(next, 1);
    ASSERT_NE(deeper, nullptr);
    EXPECT_EQ(deeper->parent, next);
    EXPECT_EQ(next->child, deeper);

    BnDataTypeConstruct::deleteBdbct(&list.record.child);
    EXPECT_EQ(list.record.child, nullptr);
    BnDataTypeConstruct::deleteBdbct(&list.record.child);
    BnDataTypeConstruct::deleteBdbct(nullptr);
}

TEST(ContextGuide, GuidesTheStackThroughAConstructedValue) {
    TQTest::TestCatalogue::get();
    // RecursiveList: [1] value 7, [0] { [1] value 300 }, [2] untyped raw bytes.
    const uint8_t bytes[] = {0x19, 0x07, 0x0E, 0x1A, 0x01, 0x2C, 0x0F, 0x2A, 0xAB, 0xCD};
    Root guide(2100);
    BACNET_APPLICATION_DATA_VALUE* values = nullptr;
    ASSERT_EQ(bacapp_decode_by_context(bytes, sizeof bytes, &guide.record,
                                       BnDataTypeConstruct::get_datatype_by_context, &values),
              static_cast<int>(sizeof bytes));
    // Markup 7 names a character string, but the two octets are no valid one: kept raw.
    EXPECT_EQ(TQTest::describe(values).rfind("[1]u7 [0]{ [1]u300 [0]} [2]", 0), 0u) << TQTest::describe(values);
    bacapp_value_list_free(values);
}
