#include "TQTestCatalogue.h"
#include "TQTestSupport.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/ProtocolText.h"

using TQ::BACnet::ProtocolText;
using TQTest::messageOf;

namespace {

class ProtocolTextCatalogue : public ::testing::Test {
protected:
    void SetUp() override {
        auto& db = TQTest::Catalogue::open();
        db.seedConstruct(120, 1100, "BACnetObjectType");
        db.seedEnum(120, 0, "analog-input");
        db.seedEnum(120, 8, "device");
        db.seedEnum(ProtocolText::PROPERTY_NAMES, 85, "present-value");
    }
};

}  // namespace

TEST_F(ProtocolTextCatalogue, namesResolveThroughTheCatalogue) {
    BACNET_OBJECT_TYPE type = static_cast<BACNET_OBJECT_TYPE>(99);
    EXPECT_TRUE(ProtocolText::objectTypeIndex("device", type));
    EXPECT_TRUE(!ProtocolText::objectTypeIndex("no-such-type", type) && type == 8);
    EXPECT_EQ(0u, ProtocolText::objectTypeId("analog-input").value());
    EXPECT_TRUE(ProtocolText::objectTypeId("Device").isNull());  // names compare exactly

    BACNET_PROPERTY_ID property = static_cast<BACNET_PROPERTY_ID>(0);
    EXPECT_TRUE(ProtocolText::propertyIndex("present-value", property) && property == 85);
    EXPECT_EQ(85u, ProtocolText::propertyId("present-value").value());
    EXPECT_TRUE(ProtocolText::propertyId("device").isNull());
}

TEST_F(ProtocolTextCatalogue, objectIdentifiersAndValuesUseTheNames) {
    using TQ::BACnet::DataType::ObjectIdentifier;
    EXPECT_EQ(ObjectIdentifier(std::string("0,3")), ObjectIdentifier(std::string("analog-input,3")));
    EXPECT_EQ("String \"heater,3\" does contain valid BACnet Object Type name",
              messageOf<Poco::NotFoundException>([] { ObjectIdentifier(std::string("heater,3")); }));

    TQ::BACnet::DataApplicationValue v;
    v.setObjectIdentifier(ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(8), 1));
    EXPECT_EQ("8,1", v.getText(false, TQ::BACnet::BACNET_DT_NOT_FOUND, nullptr, nullptr, true));
    EXPECT_EQ("device,1", v.getText(true, TQ::BACnet::BACNET_DT_NOT_FOUND, nullptr, nullptr, true));
    EXPECT_EQ(8u, (v.setText(BACNET_APPLICATION_TAG_OBJECT_ID, "device,1", false), v.type.Object_Id.type));
}

TEST_F(ProtocolTextCatalogue, enumerationsAndBitsPrintByName) {
    // A proprietary enumerated type with its own construct and names.
    auto& db = TQTest::Catalogue::open();
    db.seedConstruct(60001, 3987, "TestMode");
    db.seedEnum(60001, 0, "off");
    db.seedEnum(60001, 2, "boost");
    const auto type = static_cast<TQ::BACnet::BACnetDataType>(3987);

    TQ::BACnet::DataApplicationValue v;
    v.setEnum(2);
    EXPECT_EQ("boost", v.getText(true, type, nullptr, nullptr, false));
    EXPECT_EQ("2", v.getText(false, type, nullptr, nullptr, false));
    v.setEnum(1);
    EXPECT_EQ("1", v.getText(true, type, nullptr, nullptr, false));  // a value without a name
    v.setText(BACNET_APPLICATION_TAG_BIT_STRING, "true,false,true", false);
    EXPECT_EQ("off;boost", v.getText(true, type, nullptr, nullptr, false));
    EXPECT_EQ("0;2", v.getText(false, type, nullptr, nullptr, false));
    EXPECT_EQ("true,false,true", v.getText(true, type, nullptr, nullptr, true));
}

TEST(ProtocolTextFormat, detectsAndConvertsFormats) {
    const std::pair<const char*, ProtocolText::IdentifierNameFormat> detected[] = {
        {"Analog_Input", ProtocolText::INF_SPACED},
        {"Analog Input", ProtocolText::INF_SPACED},
        {"analog_input", ProtocolText::INF_HYPHENATED},
        {"analog-input", ProtocolText::INF_HYPHENATED},
        {"", ProtocolText::INF_UNDERSCORE},
    };
    for (const auto& [name, format] : detected)
        EXPECT_EQ(format, ProtocolText::detectIdentfierFormat(name)) << name;

    const auto D = ProtocolText::INF_DETECT, S = ProtocolText::INF_SPACED, U = ProtocolText::INF_UNDERSCORE,
               H = ProtocolText::INF_HYPHENATED;
    const struct {
        const char* in;
        ProtocolText::IdentifierNameFormat to, from;
        const char* out;
    } cases[] = {
        {"analog-input", S, D, "Analog Input"},
        {"analog-input", U, D, "Analog_Input"},
        {"Analog Input", H, D, "analog-input"},
        {"Analog_Input", H, U, "analog-input"},
        {"cov-increment", S, D, "COV Increment"},
        {"max-segments-accepted", U, D, "Max_Segments_Accepted"},
        {"anaLog-Input", H, H, "anaLog-Input"},  // same format: unchanged, upper case included
        {"analog--input", S, D, "Analog  Input"},
        {"cov-cov", S, D, "COV Cov"},  // only the first "Cov" is upper-cased
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.out, ProtocolText::formatIdentifierName(c.in, c.to, c.from)) << c.in;

    std::string name = "present-value";
    ProtocolText::formatIdentifierNameInPlace(name, S, H);
    EXPECT_EQ("Present Value", name);
    const auto bad = [](int format) { return static_cast<ProtocolText::IdentifierNameFormat>(format); };
    EXPECT_EQ("Unknown from-format", messageOf<Poco::NotFoundException>(
                                         [&] { ProtocolText::formatIdentifierName("x", bad(4), S); }));
    EXPECT_THROW(ProtocolText::formatIdentifierName("x", S, bad(7)), Poco::NotFoundException);
}

TEST(ProtocolTextFormat, asn1TypeWordsBecomeWebServiceNames) {
    std::string text = "SEQUENCE OF BACnetObjectIdentifier";
    ProtocolText::convertAshreTypesInStringToBACnetWsInPlace(text);
    EXPECT_EQ("SequenceOf ObjectIdentifier", text);
    text =
        "INTEGER16, INTEGER, REAL ARRAY, CHOICE LIST, ABSTRACT-SYNTAX.&Type, NULL, BOOLEAN, OCTET STRING, "
        "BIT STRING, ENUMERATED, SEQUENCE";
    ProtocolText::convertAshreTypesInStringToBACnetWsInPlace(text);
    EXPECT_EQ(
        "Integer16, Integer, Real Array, Choice List, Any,  Null, Boolean, OctetString, BitString, "
        "Enumerated, Sequence",
        text);
}
