#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/ProtocolText.h"
#include "ValueDatabase.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

using TQ::BACnet::ProtocolText;

namespace {

class ProtocolTextCatalogue : public ::testing::Test {
protected:
    void SetUp() override {
        auto& db = TQValueTest::ValueDatabase::instance();
        db.seedObjectTypeName(0, "analog-input");
        db.seedObjectTypeName(8, "device");
        db.seedEnum(ProtocolText::PROPERTY_NAMES, 85, "present-value");
    }
};

std::string formatted(const std::string& name, ProtocolText::IdentifierNameFormat to,
                      ProtocolText::IdentifierNameFormat from = ProtocolText::INF_DETECT) {
    return ProtocolText::formatIdentifierName(name, to, from);
}

}  // namespace

TEST_F(ProtocolTextCatalogue, namesResolveThroughTheCatalogue) {
    BACNET_OBJECT_TYPE type = static_cast<BACNET_OBJECT_TYPE>(99);
    EXPECT_TRUE(ProtocolText::objectTypeIndex("device", type));
    EXPECT_EQ(8u, type);
    EXPECT_FALSE(ProtocolText::objectTypeIndex("no-such-type", type));
    EXPECT_EQ(8u, type);
    EXPECT_EQ(0u, ProtocolText::objectTypeId("analog-input").value());
    EXPECT_TRUE(ProtocolText::objectTypeId("Device").isNull());  // names compare exactly

    BACNET_PROPERTY_ID property = static_cast<BACNET_PROPERTY_ID>(0);
    EXPECT_TRUE(ProtocolText::propertyIndex("present-value", property));
    EXPECT_EQ(85u, property);
    EXPECT_EQ(85u, ProtocolText::propertyId("present-value").value());
    EXPECT_TRUE(ProtocolText::propertyId("device").isNull());
}

TEST_F(ProtocolTextCatalogue, objectIdentifiersAndValuesUseTheNames) {
    using TQ::BACnet::DataType::ObjectIdentifier;
    ObjectIdentifier byName(std::string("analog-input,3"));
    EXPECT_EQ(ObjectIdentifier(std::string("0,3")), byName);
    try {
        ObjectIdentifier(std::string("heater,3"));
        FAIL();
    } catch (const Poco::NotFoundException& e) {
        EXPECT_EQ("String \"heater,3\" does contain valid BACnet Object Type name", e.message());
    }

    TQ::BACnet::DataApplicationValue v;
    v.setObjectIdentifier(ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(8), 1));
    EXPECT_EQ("8,1", v.getText(false, TQ::BACnet::BACNET_DT_NOT_FOUND, nullptr, nullptr, true));
    EXPECT_EQ("device,1", v.getText(true, TQ::BACnet::BACNET_DT_NOT_FOUND, nullptr, nullptr, true));
    v.setText(BACNET_APPLICATION_TAG_OBJECT_ID, "device,1", false);
    EXPECT_EQ(8u, v.type.Object_Id.type);
}

TEST_F(ProtocolTextCatalogue, enumerationsAndBitsPrintByName) {
    // A proprietary enumerated type with its own construct and names.
    auto& db = TQValueTest::ValueDatabase::instance();
    db.seed("SELECT COUNT(*) FROM bn_datatype_construct WHERE id_bn_datatype_construct=60001",
            "INSERT INTO bn_datatype_construct (id_bn_datatype_construct, id_parent, id_bn_datatype, "
            "id_bn_markup, "
            "name, optional, sort) VALUES (60001, NULL, 3987, 9, 'TestMode', 0, 0)");
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

TEST(ProtocolTextFormat, detectsFormats) {
    EXPECT_EQ(ProtocolText::INF_SPACED, ProtocolText::detectIdentfierFormat("Analog_Input"));
    EXPECT_EQ(ProtocolText::INF_SPACED, ProtocolText::detectIdentfierFormat("Analog Input"));
    EXPECT_EQ(ProtocolText::INF_HYPHENATED, ProtocolText::detectIdentfierFormat("analog_input"));
    EXPECT_EQ(ProtocolText::INF_HYPHENATED, ProtocolText::detectIdentfierFormat("analog-input"));
    EXPECT_EQ(ProtocolText::INF_UNDERSCORE, ProtocolText::detectIdentfierFormat(""));
}

TEST(ProtocolTextFormat, convertsBetweenFormats) {
    EXPECT_EQ("Analog Input", formatted("analog-input", ProtocolText::INF_SPACED));
    EXPECT_EQ("Analog_Input", formatted("analog-input", ProtocolText::INF_UNDERSCORE));
    EXPECT_EQ("analog-input", formatted("Analog Input", ProtocolText::INF_HYPHENATED));
    EXPECT_EQ("analog-input",
              formatted("Analog_Input", ProtocolText::INF_HYPHENATED, ProtocolText::INF_UNDERSCORE));
    EXPECT_EQ("COV Increment", formatted("cov-increment", ProtocolText::INF_SPACED));
    EXPECT_EQ("Max_Segments_Accepted", formatted("max-segments-accepted", ProtocolText::INF_UNDERSCORE));
    // Same format: unchanged, upper-case letters included.
    EXPECT_EQ("anaLog-Input",
              formatted("anaLog-Input", ProtocolText::INF_HYPHENATED, ProtocolText::INF_HYPHENATED));
    EXPECT_EQ("Analog  Input", formatted("analog--input", ProtocolText::INF_SPACED));
    // Only the first "Cov" is upper-cased.
    EXPECT_EQ("COV Cov", formatted("cov-cov", ProtocolText::INF_SPACED));

    std::string name = "present-value";
    ProtocolText::formatIdentifierNameInPlace(name, ProtocolText::INF_SPACED, ProtocolText::INF_HYPHENATED);
    EXPECT_EQ("Present Value", name);

    try {
        formatted("x", static_cast<ProtocolText::IdentifierNameFormat>(4), ProtocolText::INF_SPACED);
        FAIL();
    } catch (const Poco::NotFoundException& e) {
        EXPECT_EQ("Unknown from-format", e.message());
    }
    EXPECT_THROW(formatted("x", ProtocolText::INF_SPACED, static_cast<ProtocolText::IdentifierNameFormat>(7)),
                 Poco::NotFoundException);
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
