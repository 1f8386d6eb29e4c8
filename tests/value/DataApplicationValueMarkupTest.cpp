#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MetadataValue.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace BN = TQ::BACnet;
using BN::WS::MarkupFactory;

namespace {

// Keeps what a value hands to its writer; strings are escaped by marking '<'.
class RecordingFactory : public MarkupFactory {
public:
    struct Markup {
        BaseType baseType;
        std::string name, value;
        unsigned flags;
        std::vector<std::pair<int, std::string>> metadata;
    };
    explicit RecordingFactory(std::ostream& out)
        : MarkupFactory(out, false, false, static_cast<Poco::DeflatingStreamBuf::StreamType>(-1)) {}

    void append(const std::string&) override {}
    bool allowArrays() const override { return true; }
    int descMarkup(BaseType baseType, const std::string& name, const std::string& value, unsigned flags,
                   const std::vector<BN::WS::MetadataValue>* metadata) override {
        Markup m{baseType, name, value, flags, {}};
        if (metadata)
            for (const auto& item : *metadata) m.metadata.emplace_back(item.getMetadata(), item.getValue());
        seen.push_back(m);
        return 0;
    }
    void descCloseOpenMarkup(const std::string&, bool) override {}
    void descStringEncode(std::string& text) override {
        for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 4))
            text.replace(at, 1, "&lt;");
    }
    std::vector<Markup> seen;
};

}  // namespace

TEST(DataApplicationValueMarkup, oneCompleteMarkupOfTheValuesOwnKind) {
    std::ostringstream sink;
    RecordingFactory factory(sink);

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

    ASSERT_EQ(6u, factory.seen.size());
    const auto& r = factory.seen[0];
    EXPECT_EQ(MarkupFactory::BT_REAL, r.baseType);
    EXPECT_EQ("present-value", r.name);
    EXPECT_EQ("21.5", r.value);
    EXPECT_EQ(MarkupFactory::MF_COMPLETE, r.flags);
    EXPECT_TRUE(r.metadata.empty());

    const auto& s = factory.seen[1];
    EXPECT_EQ(MarkupFactory::BT_STRING, s.baseType);
    EXPECT_EQ("a<b", s.value) << "the writer escapes, not the value";
    EXPECT_EQ(MarkupFactory::MF_COMPLETE | MarkupFactory::MF_ROOT | MarkupFactory::MF_ARRAY, s.flags);

    EXPECT_EQ(MarkupFactory::BT_NULL, factory.seen[2].baseType);
    EXPECT_EQ("NULL", factory.seen[2].value);

    // The context tag travels as metadata.
    const std::vector<std::pair<int, std::string>> contextTag{{2105, "3"}};
    EXPECT_EQ(contextTag, factory.seen[3].metadata);

    EXPECT_EQ(MarkupFactory::BT_BIT_STRING, factory.seen[4].baseType);
    EXPECT_EQ("false,false,false", factory.seen[4].value);

    // A value with no text form still renders, visibly marked.
    EXPECT_EQ("???", factory.seen[5].value);
    EXPECT_EQ(static_cast<MarkupFactory::BaseType>(13), factory.seen[5].baseType);
}
