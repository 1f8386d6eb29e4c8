#include "RecordingFactory.h"

#include <Poco/InflatingStream.h>
#include <Poco/StreamCopier.h>

#include <gtest/gtest.h>

#include <sstream>

using TQWsTest::RecordingFactory;
using MF = TQ::BACnet::WS::MarkupFactory;
using Poco::DeflatingStreamBuf;

namespace {

// A response big and repetitive enough that compression shows, with nesting and text.
void writeDocument(MF& f) {
    f.header();
    f.markupNew(MF::BT_ARRAY, "priority-array", "", MF::MF_ROOT, nullptr);
    for (int i = 1; i <= 200; ++i)
        f.markupNew(MF::BT_REAL, std::to_string(i), "21.5", MF::MF_COMPLETE, nullptr);
    f.closeAllOpenMarkups();
}

std::string inflate(const std::string& bytes, Poco::InflatingStreamBuf::StreamType type) {
    std::istringstream in(bytes);
    Poco::InflatingInputStream inflater(in, type);
    std::string text;
    Poco::StreamCopier::copyToString(inflater, text);
    return text;
}

}  // namespace

TEST(MarkupFactoryHelpers, BaseTypeNames) {
    std::string all;
    for (unsigned int i = 0; i < MF::BT_MAX; ++i)
        all += MF::getBaseTypeName(static_cast<MF::BaseType>(i)) + ",";
    EXPECT_EQ(all,
              "Null,Boolean,Unsigned,Integer,Real,Double,OctetString,String,BitString,Enumerated,Date,Time,"
              "ObjectIdentifier,DatePattern,DateTime,DateTimePattern,TimePattern,StringSet,Object,Interface,"
              "Composition,List,Sequence,Array,SequenceOf,Choice,Any,Link,Collection,Tag,"
              "ObjectIdentifierPattern,WeekNDay,NamedValues,MemberTypeDefinition,Choices,NamedBits,Bit,"
              "Composition,");
    EXPECT_EQ(MF::getBaseTypeName(MF::BT_MAX), "");
    EXPECT_EQ(MF::getBaseTypeName(static_cast<MF::BaseType>(0xFFFFFFFFu)), "");
    // Primitive kinds coincide with the application tags.
    EXPECT_EQ(static_cast<unsigned int>(MF::BT_OBJECT_IDENTIFIER), BACNET_APPLICATION_TAG_OBJECT_ID);
    EXPECT_EQ(static_cast<unsigned int>(MF::BT_ENUMERATED), BACNET_APPLICATION_TAG_ENUMERATED);
}

TEST(MarkupFactoryHelpers, NumericIndexAndVisibility) {
    for (auto t : {MF::BT_BOOLEAN, MF::BT_UNSIGNED, MF::BT_INTEGER, MF::BT_REAL, MF::BT_DOUBLE})
        EXPECT_TRUE(MF::isNumeric(t, "anything")) << t;
    EXPECT_TRUE(MF::isNumeric(MF::BT_ENUMERATED, "12"));
    EXPECT_TRUE(MF::isNumeric(MF::BT_ENUMERATED, "1,024"));
    EXPECT_FALSE(MF::isNumeric(MF::BT_ENUMERATED, "active"));
    EXPECT_FALSE(MF::isNumeric(MF::BT_ENUMERATED, "-1"));
    EXPECT_FALSE(MF::isNumeric(MF::BT_ENUMERATED, ""));
    EXPECT_FALSE(MF::isNumeric(MF::BT_NULL, "0"));
    EXPECT_FALSE(MF::isNumeric(MF::BT_STRING, "12"));
    EXPECT_FALSE(MF::isNumeric(MF::BT_MAX, "12"));

    EXPECT_EQ(MF::initArrayIdx(0), 1u);
    EXPECT_EQ(MF::initArrayIdx(0xFFFFFFFFu), 1u);
    EXPECT_EQ(MF::initArrayIdx(7), 7u);
    EXPECT_EQ(MF::arrayIndexAsString(0), "");
    EXPECT_EQ(MF::arrayIndexAsString(16), "16");
    EXPECT_EQ(MF::arrayIndexAsString(0xFFFFFFFFu), "4294967295");

    for (auto t : {MF::BT_LIST, MF::BT_ARRAY, MF::BT_SEQUENCE_OF}) {
        EXPECT_TRUE(MF::isCollection(t));
        EXPECT_EQ(MF::getMetadataFromBaseType(t).getCategories(), 0x44Fu);
    }
    for (auto t : {MF::BT_NULL, MF::BT_SEQUENCE, MF::BT_CHOICE, MF::BT_COMPOSITION_2}) {
        EXPECT_FALSE(MF::isCollection(t));
        EXPECT_EQ(MF::getMetadataFromBaseType(t).getCategories(), 0x193u);
    }

    std::ostringstream out;
    RecordingFactory f(out);
    const unsigned int hidden[] = {18, 20, 21, 22, 23, 24, 25, 28, 32, 33, 34, 35, 37};
    for (unsigned int i = 0; i < MF::BT_MAX; ++i) {
        const bool isHidden = std::find(std::begin(hidden), std::end(hidden), i) != std::end(hidden);
        EXPECT_EQ(f.shouldValueBeVisibleForBaseType(static_cast<MF::BaseType>(i)), !isHidden) << i;
    }
}

TEST(MarkupFactoryHelpers, CompressedOutputInflatesToThePlainText) {
    std::ostringstream plainOut;
    RecordingFactory plain(plainOut);
    EXPECT_FALSE(plain.isCompressing());
    writeDocument(plain);
    plain.flush();
    const std::string expected = plainOut.str();
    ASSERT_GT(expected.size(), 2000u);

    for (auto type : {DeflatingStreamBuf::STREAM_ZLIB, DeflatingStreamBuf::STREAM_GZIP}) {
        std::ostringstream out;
        RecordingFactory f(out, false, false, type);
        EXPECT_TRUE(f.isCompressing());
        writeDocument(f);
        f.flush();
        const std::string bytes = out.str();
        EXPECT_LT(bytes.size(), expected.size() / 4) << type;
        if (type == DeflatingStreamBuf::STREAM_GZIP) {
            ASSERT_GE(bytes.size(), 2u);
            EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0x1F);
            EXPECT_EQ(static_cast<unsigned char>(bytes[1]), 0x8B);
        }
        const auto inflateType = type == DeflatingStreamBuf::STREAM_ZLIB
                                     ? Poco::InflatingStreamBuf::STREAM_ZLIB
                                     : Poco::InflatingStreamBuf::STREAM_GZIP;
        EXPECT_EQ(inflate(bytes, inflateType), expected) << type;

        // Once the compressed stream is ended, later writes and flushes go nowhere.
        f.markupNew(MF::BT_REAL, "late", "1", MF::MF_COMPLETE, nullptr);
        f.flush();
        EXPECT_EQ(out.str(), bytes);
    }

    // Any other compression value writes plain text.
    for (int other : {-1, 2, 99}) {
        std::ostringstream out;
        RecordingFactory f(out, false, false, other);
        EXPECT_FALSE(f.isCompressing()) << other;
        writeDocument(f);
        f.flush();
        EXPECT_EQ(out.str(), expected) << other;
    }
}

TEST(MarkupFactoryHelpers, DeleteThroughTheBase) {
    std::ostringstream out;
    std::unique_ptr<MF> f(new RecordingFactory(out, false, false, DeflatingStreamBuf::STREAM_GZIP));
    writeDocument(*f);
    f->flush();
    const std::string bytes = out.str();
    f.reset();
    EXPECT_EQ(out.str(), bytes) << "destruction after flush adds nothing";
    EXPECT_FALSE(inflate(bytes, Poco::InflatingStreamBuf::STREAM_GZIP).empty());
}
