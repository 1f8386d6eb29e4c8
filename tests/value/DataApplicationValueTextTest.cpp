#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/OctetString.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <gtest/gtest.h>

#include <cmath>

using TQ::BACnet::BACNET_DT_NOT_FOUND;
using TQ::BACnet::DataApplicationValue;
namespace DT = TQ::BACnet::DataType;

namespace {

std::string textOf(const DataApplicationValue& v, bool bitsAsBooleans = true, bool* ok = nullptr) {
    return v.getText(false, BACNET_DT_NOT_FOUND, ok, nullptr, bitsAsBooleans);
}

DataApplicationValue parsed(BACNET_APPLICATION_TAG tag, const std::string& text, bool emptyIsNull = false) {
    DataApplicationValue v;
    v.setText(tag, text, emptyIsNull);
    return v;
}

Poco::Dynamic::Var json(const std::string& text) {
    Poco::JSON::Parser parser;
    return parser.parse(text);
}

}  // namespace

TEST(DataApplicationValueText, nullRecognition) {
    auto v = parsed(BACNET_APPLICATION_TAG_UNSIGNED_INT, "NuLl");
    EXPECT_TRUE(v.isNull());
    EXPECT_EQ(BACNET_APPLICATION_TAG_NULL, v.getTag());
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_UNSIGNED_INT, "").isNull());

    v = parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "null");
    EXPECT_FALSE(v.isNull());
    EXPECT_EQ("null", textOf(v));
    v = parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "", false);
    EXPECT_FALSE(v.isNull());
    EXPECT_EQ("", textOf(v));
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "", true).isNull());

    // The text of a null reads back as a null of tag NULL for every tag but CHARACTER STRING.
    DataApplicationValue nullReal(BACNET_APPLICATION_TAG_REAL, false);
    EXPECT_EQ("NULL", textOf(nullReal));
    for (unsigned tag = 0; tag <= 12; ++tag) {
        if (tag == BACNET_APPLICATION_TAG_CHARACTER_STRING) continue;
        auto back = parsed(static_cast<BACNET_APPLICATION_TAG>(tag), "NULL");
        EXPECT_TRUE(back.isNull()) << tag;
        EXPECT_EQ(BACNET_APPLICATION_TAG_NULL, back.getTag()) << tag;
    }
}

TEST(DataApplicationValueText, everyTagRoundTrips) {
    const std::pair<BACNET_APPLICATION_TAG, std::string> cases[] = {
        {BACNET_APPLICATION_TAG_BOOLEAN, "true"},
        {BACNET_APPLICATION_TAG_UNSIGNED_INT, "4294967295"},
        {BACNET_APPLICATION_TAG_SIGNED_INT, "-2147483648"},
        {BACNET_APPLICATION_TAG_REAL, "21.5"},
        {BACNET_APPLICATION_TAG_DOUBLE, "0.1"},
        {BACNET_APPLICATION_TAG_OCTET_STRING, "0AFF"},
        {BACNET_APPLICATION_TAG_CHARACTER_STRING, "Grüße | 1,2"},
        {BACNET_APPLICATION_TAG_BIT_STRING, "true,false,true"},
        {BACNET_APPLICATION_TAG_ENUMERATED, "3"},
        {BACNET_APPLICATION_TAG_DATE, "2024-03-07 4"},
        {BACNET_APPLICATION_TAG_TIME, "08.30.00.00"},
        {BACNET_APPLICATION_TAG_OBJECT_ID, "8,1"},
    };
    for (const auto& [tag, text] : cases) {
        auto v = parsed(tag, text);
        EXPECT_EQ(tag, v.getTag());
        bool ok = false;
        EXPECT_EQ(text, textOf(v, true, &ok)) << tag;
        EXPECT_TRUE(ok);
        EXPECT_TRUE(parsed(tag, textOf(v)) == v) << tag;
    }
    EXPECT_EQ(0.1f, parsed(BACNET_APPLICATION_TAG_REAL, "0.1").type.Real);
}

TEST(DataApplicationValueText, bitStringForms) {
    DT::BitString b(3);
    b.setBit(0);
    b.setBit(2);
    DataApplicationValue v;
    v.setBitString(b);
    EXPECT_EQ("0;2", textOf(v, false));
    EXPECT_EQ("true,false,true", textOf(v, true));
    DT::BitString none(8);
    v.setBitString(none);
    EXPECT_EQ("", textOf(v, false));
    auto hex = parsed(BACNET_APPLICATION_TAG_BIT_STRING, "91");
    EXPECT_EQ("0;3;7", textOf(hex, false));
}

TEST(DataApplicationValueText, failuresNameTheTagAndText) {
    DataApplicationValue v;
    try {
        v.setText(BACNET_APPLICATION_TAG_REAL, "abc", false);
        FAIL();
    } catch (const Poco::BadCastException& e) {
        EXPECT_EQ("DataApplicationValue::setText(4,\"abc\") tagToSet=\"REAL\"", e.message());
    }
    // The tag is already replaced and the null flag cleared.
    EXPECT_EQ(BACNET_APPLICATION_TAG_REAL, v.getTag());
    EXPECT_FALSE(v.isNull());
    EXPECT_THROW(v.setText(BACNET_APPLICATION_TAG_UNSIGNED_INT, "-1", false), Poco::BadCastException);
    EXPECT_THROW(v.setText(BACNET_APPLICATION_TAG_OCTET_STRING, "ABC", false), Poco::BadCastException);
    EXPECT_THROW(v.setText(BACNET_APPLICATION_TAG_DATE, "2024-15-01", false), Poco::BadCastException);
    EXPECT_THROW(v.setText(BACNET_APPLICATION_TAG_TIME, "8:30", false), Poco::BadCastException);
    EXPECT_THROW(v.setText(BACNET_APPLICATION_TAG_OBJECT_ID, "x,1", false), Poco::BadCastException);
    EXPECT_THROW(v.setText(BACNET_APPLICATION_TAG_RESERVE1, "1", false), Poco::BadCastException);
    auto n = parsed(BACNET_APPLICATION_TAG_NULL, "anything");
    EXPECT_TRUE(n.isNull());

    DataApplicationValue odd;
    odd.setUInt(1);
    odd.tag = 17;
    bool ok = true;
    EXPECT_EQ("", textOf(odd, true, &ok));
    EXPECT_FALSE(ok);
}

TEST(DataApplicationValueApplyTag, conversionTable) {
    DataApplicationValue v;
    v.setReal(-2.7f);
    v.applyTag(BACNET_APPLICATION_TAG_SIGNED_INT);
    EXPECT_EQ(-2, v.type.Signed_Int);
    v.setReal(-2.7f);
    v.applyTag(BACNET_APPLICATION_TAG_UNSIGNED_INT);
    EXPECT_EQ(0u, v.type.Unsigned_Int);
    v.setDouble(1e20);
    v.applyTag(BACNET_APPLICATION_TAG_UNSIGNED_INT);
    EXPECT_EQ(4294967295u, v.type.Unsigned_Int);
    v.setReal(NAN);
    v.applyTag(BACNET_APPLICATION_TAG_SIGNED_INT);
    EXPECT_EQ(0, v.type.Signed_Int);
    v.setUInt(5);
    v.applyTag(BACNET_APPLICATION_TAG_ENUMERATED);
    EXPECT_EQ(BACNET_APPLICATION_TAG_ENUMERATED, v.getTag());
    EXPECT_EQ(5u, v.type.Enumerated);
    try {
        v.applyTag(BACNET_APPLICATION_TAG_UNSIGNED_INT);
        FAIL();
    } catch (const Poco::BadCastException& e) {
        EXPECT_EQ("DataApplicationValue::ApplyTag()", e.message());
    }
    v.setInt(-1);
    v.applyTag(BACNET_APPLICATION_TAG_UNSIGNED_INT);
    EXPECT_EQ(0xFFFFFFFFu, v.type.Unsigned_Int);
    v.setBool(true);
    v.applyTag(BACNET_APPLICATION_TAG_REAL);
    EXPECT_EQ(1.0f, v.type.Real);
    v.applyTag(BACNET_APPLICATION_TAG_BOOLEAN);
    EXPECT_TRUE(v.type.Boolean);

    v.setCharString("42");
    v.applyTag(BACNET_APPLICATION_TAG_DOUBLE);
    EXPECT_EQ(42.0, v.type.Double);
    v.setCharString("");
    v.applyTag(BACNET_APPLICATION_TAG_UNSIGNED_INT);
    EXPECT_TRUE(v.isNull());
    v.setCharString("0A");
    v.applyTag(BACNET_APPLICATION_TAG_OCTET_STRING);
    EXPECT_EQ("0A", textOf(v));
    v.setCharString("7");
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_ENUMERATED), Poco::BadCastException);
    v.setUInt(1);
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_CHARACTER_STRING), Poco::AssertionViolationException);
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_OCTET_STRING), Poco::AssertionViolationException);
    v.setUInt(1);
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_DATE), Poco::BadCastException);

    // NULL keeps the tag and sets the null flag; a null only changes its tag.
    v.setReal(3.0f);
    v.applyTag(BACNET_APPLICATION_TAG_NULL);
    EXPECT_TRUE(v.isNull());
    EXPECT_EQ(BACNET_APPLICATION_TAG_REAL, v.getTag());
    v.applyTag(BACNET_APPLICATION_TAG_DATE);
    EXPECT_TRUE(v.isNull());
    EXPECT_EQ(BACNET_APPLICATION_TAG_DATE, v.getTag());
}

TEST(DataApplicationValueVariant, toVarAndFromVar) {
    DataApplicationValue v;
    Poco::Dynamic::Var out;
    EXPECT_THROW(v.toVar(out), Poco::BadCastException);
    v.setUInt(7);
    v.toVar(out);
    EXPECT_EQ(typeid(unsigned int), out.type());
    v.setReal(1.5f);
    v.toVar(out);
    EXPECT_EQ(1.5f, out.extract<float>());
    v.setCharString("abc");
    v.toVar(out);
    EXPECT_EQ("abc", out.extract<std::string>());
    v.setDate(DT::Date());
    try {
        v.toVar(out);
        FAIL();
    } catch (const Poco::BadCastException& e) {
        EXPECT_EQ("DataPortValue::toVar()", e.message());
    }

    v.fromVar(BACNET_APPLICATION_TAG_REAL, json("{\"b\": 2, \"a\": 21.5}"), false);
    EXPECT_EQ(21.5f, v.type.Real);  // the smallest key wins
    v.fromVar(BACNET_APPLICATION_TAG_UNSIGNED_INT, json("{\"v\": \"12\"}"), false);
    EXPECT_EQ(12u, v.type.Unsigned_Int);
    v.fromVar(BACNET_APPLICATION_TAG_OCTET_STRING, json("{\"v\": \"0aff\"}"), false);
    EXPECT_EQ("0AFF", textOf(v));
    v.fromVar(BACNET_APPLICATION_TAG_BIT_STRING, json("{\"v\": \"true,false\"}"), false);
    EXPECT_EQ("true,false", textOf(v));
    v.fromVar(BACNET_APPLICATION_TAG_OBJECT_ID, json("{\"v\": \"8,12\"}"), false);
    EXPECT_EQ("8,12", textOf(v));
    v.fromVar(BACNET_APPLICATION_TAG_REAL, json("{\"v\": \"nUlL\"}"), true);
    EXPECT_TRUE(v.isNull());
    EXPECT_EQ(BACNET_APPLICATION_TAG_REAL, v.getTag());
    v.fromVar(BACNET_APPLICATION_TAG_OCTET_STRING, json("{\"v\": \"\"}"), true);
    EXPECT_FALSE(v.isNull());  // an empty octet string is a value

    EXPECT_THROW(v.fromVar(BACNET_APPLICATION_TAG_REAL, Poco::Dynamic::Var(), false),
                 Poco::InvalidAccessException);
    EXPECT_THROW(v.fromVar(BACNET_APPLICATION_TAG_REAL, Poco::Dynamic::Var(3), false),
                 Poco::BadCastException);
    EXPECT_THROW(v.fromVar(BACNET_APPLICATION_TAG_REAL, json("{}"), false), Poco::InvalidArgumentException);
    EXPECT_THROW(v.fromVar(BACNET_APPLICATION_TAG_RESERVE1, json("{\"v\": 1}"), false),
                 Poco::InvalidArgumentException);
    EXPECT_THROW(v.fromVar(BACNET_APPLICATION_TAG_REAL, json("{\"v\": \"warm\"}"), false),
                 Poco::SyntaxException);
    EXPECT_FALSE(v.tryFromVar(BACNET_APPLICATION_TAG_SIGNED_INT, json("{\"v\": \"x\"}"), false));
    EXPECT_TRUE(v.tryFromVar(BACNET_APPLICATION_TAG_SIGNED_INT, json("{\"v\": -3}"), false));
    EXPECT_EQ(-3, v.type.Signed_Int);
}

TEST(DataApplicationValueValidation, writePropertyChecks) {
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    TQ::BACnet::DataErrorRef error(errorClass, errorCode);
    DataApplicationValue v;
    v.setReal(1.0f);
    EXPECT_TRUE(v.validateValueType(BACNET_APPLICATION_TAG_REAL, error, false));
    EXPECT_FALSE(v.validateValueType(BACNET_APPLICATION_TAG_UNSIGNED_INT, error, false));
    EXPECT_EQ(ERROR_CLASS_PROPERTY, errorClass);
    EXPECT_EQ(ERROR_CODE_INVALID_DATA_TYPE, errorCode);

    DataApplicationValue null;
    EXPECT_TRUE(null.validateValueType(BACNET_APPLICATION_TAG_REAL, error, true));
    EXPECT_FALSE(null.validateValueType(BACNET_APPLICATION_TAG_REAL, error, false));

    v.setCharString("");
    errorCode = ERROR_CODE_OTHER;
    EXPECT_TRUE(v.validateValueType(BACNET_APPLICATION_TAG_CHARACTER_STRING, error, true));
    EXPECT_FALSE(v.validateValueType(BACNET_APPLICATION_TAG_CHARACTER_STRING, error, false));
    EXPECT_EQ(ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);
}
