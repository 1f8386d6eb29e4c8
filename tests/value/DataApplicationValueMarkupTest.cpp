#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MetadataValue.h"

#include "TQTestRecordingFactory.h"
#include "TQTestSupport.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace BN = TQ::BACnet;
using BN::WS::MarkupFactory;

using TQTest::RecordingFactory;

TEST(DataApplicationValueMarkup, oneCompleteMarkupOfTheValuesOwnKind) {
    std::ostringstream sink;
    RecordingFactory factory(sink, false, true);

    const BN::DataApplicationValue real = TQTest::realValue(21.5f);
    real.markup(factory, "present-value", false, BN::BACNET_DT_REAL, false, 0, false);
    BN::DataApplicationValue text;
    text.setCharString("a<b");
    text.markup(factory, "name", true, BN::BACNET_DT_CHARACTER_STRING, true, 0, false);
    const BN::DataApplicationValue nullUnsigned(BACNET_APPLICATION_TAG_UNSIGNED_INT, false);
    nullUnsigned.markup(factory, "n", false, BN::BACNET_DT_UNSIGNED_INT, false, 0, false);
    const BN::DataApplicationValue tagged = TQTest::context(TQTest::uintValue(5), 3);
    tagged.markup(factory, "t", false, BN::BACNET_DT_UNSIGNED_INT, false, 0, false);
    BN::DataApplicationValue bits;
    BN::DataType::BitString three;
    three.setBitsUsed(3);
    bits.setBitString(three);
    bits.markup(factory, "b", false, BN::BACNET_DT_BIT_STRING, false, 0, true);
    BN::DataApplicationValue reserved = TQTest::uintValue(1);
    reserved.tag = static_cast<BACNET_APPLICATION_TAG>(13);
    reserved.markup(factory, "r", false, BN::BACNET_DT_UNSIGNED_INT, false, 0, false);

    ASSERT_EQ(6u, factory.opened.size());
    // Kind and text of each; the string's escaping is the writer's; a value with no text form
    // still renders, visibly marked.
    const std::pair<MarkupFactory::BaseType, std::string> kinds[] = {
        {MarkupFactory::BT_REAL, "21.5"},
        {MarkupFactory::BT_STRING, "a<b"},
        {MarkupFactory::BT_NULL, "NULL"},
        {MarkupFactory::BT_UNSIGNED, "5"},
        {MarkupFactory::BT_BIT_STRING, "false,false,false"},
        {static_cast<MarkupFactory::BaseType>(13), "???"},
    };
    for (size_t i = 0; i < 6; ++i)
        EXPECT_EQ(kinds[i], std::make_pair(factory.opened[i].baseType, factory.opened[i].value)) << i;
    const auto& r = factory.opened[0];
    EXPECT_TRUE(r.name == "present-value" && r.flags == MarkupFactory::MF_COMPLETE && r.metadata.empty());
    EXPECT_EQ(MarkupFactory::MF_COMPLETE | MarkupFactory::MF_ROOT | MarkupFactory::MF_ARRAY,
              factory.opened[1].flags);
    // The context tag travels as metadata.
    ASSERT_EQ(1u, factory.opened[3].metadata.size());
    EXPECT_TRUE(factory.opened[3].metadata[0].getMetadata() == 2105 &&
                factory.opened[3].metadata[0].getValue() == "3");
}
