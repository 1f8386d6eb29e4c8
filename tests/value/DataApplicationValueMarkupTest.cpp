#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MetadataValue.h"

#include "TQTestRecordingFactory.h"

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

    BN::DataApplicationValue real;
    real.setReal(21.5f);
    real.markup(factory, "present-value", false, BN::BACNET_DT_REAL, false, 0, false);
    BN::DataApplicationValue text;
    text.setCharString("a<b");
    text.markup(factory, "name", true, BN::BACNET_DT_CHARACTER_STRING, true, 0, false);
    const BN::DataApplicationValue nullUnsigned(BACNET_APPLICATION_TAG_UNSIGNED_INT, false);
    nullUnsigned.markup(factory, "n", false, BN::BACNET_DT_UNSIGNED_INT, false, 0, false);
    BN::DataApplicationValue tagged;
    tagged.setUInt(5);
    tagged.context_specific = true;
    tagged.context_tag = 3;
    tagged.markup(factory, "t", false, BN::BACNET_DT_UNSIGNED_INT, false, 0, false);
    BN::DataApplicationValue bits;
    BN::DataType::BitString three;
    three.setBitsUsed(3);
    bits.setBitString(three);
    bits.markup(factory, "b", false, BN::BACNET_DT_BIT_STRING, false, 0, true);
    BN::DataApplicationValue reserved;
    reserved.setUInt(1);
    reserved.tag = static_cast<BACNET_APPLICATION_TAG>(13);
    reserved.markup(factory, "r", false, BN::BACNET_DT_UNSIGNED_INT, false, 0, false);

    ASSERT_EQ(6u, factory.opened.size());
    const auto& r = factory.opened[0];
    EXPECT_EQ(MarkupFactory::BT_REAL, r.baseType);
    EXPECT_EQ("present-value", r.name);
    EXPECT_EQ("21.5", r.value);
    EXPECT_EQ(MarkupFactory::MF_COMPLETE, r.flags);
    EXPECT_TRUE(r.metadata.empty());

    const auto& s = factory.opened[1];
    EXPECT_EQ(MarkupFactory::BT_STRING, s.baseType);
    EXPECT_EQ("a<b", s.value) << "the writer escapes, not the value";
    EXPECT_EQ(MarkupFactory::MF_COMPLETE | MarkupFactory::MF_ROOT | MarkupFactory::MF_ARRAY, s.flags);

    EXPECT_EQ(MarkupFactory::BT_NULL, factory.opened[2].baseType);
    EXPECT_EQ("NULL", factory.opened[2].value);

    // The context tag travels as metadata.
    ASSERT_EQ(1u, factory.opened[3].metadata.size());
    EXPECT_EQ(2105, factory.opened[3].metadata[0].getMetadata());
    EXPECT_EQ("3", factory.opened[3].metadata[0].getValue());

    EXPECT_EQ(MarkupFactory::BT_BIT_STRING, factory.opened[4].baseType);
    EXPECT_EQ("false,false,false", factory.opened[4].value);

    // A value with no text form still renders, visibly marked.
    EXPECT_EQ("???", factory.opened[5].value);
    EXPECT_EQ(static_cast<MarkupFactory::BaseType>(13), factory.opened[5].baseType);
}
