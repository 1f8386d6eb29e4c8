#include "TQTestSupport.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/BitString.h"

#include <Poco/JSON/Parser.h>

#include <cmath>
#include <tuple>

using namespace TQ::BACnet;
using namespace TQTest;

namespace {

Poco::Dynamic::Var json(const std::string& text) {
    return Poco::JSON::Parser().parse(text);
}

}  // namespace

TEST(DataApplicationValueText, nullRecognition) {
    EXPECT_EQ(BACNET_APPLICATION_TAG_NULL, parsed(BACNET_APPLICATION_TAG_UNSIGNED_INT, "NuLl").getTag());
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_UNSIGNED_INT, "").isNull());
    EXPECT_EQ("null", textOf(parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "null")));
    EXPECT_FALSE(parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "", false).isNull());
    EXPECT_EQ("", textOf(parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "", false)));
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "", true).isNull());
    EXPECT_TRUE(parsed(BACNET_APPLICATION_TAG_NULL, "anything").isNull());

    // The text of a null reads back as a null of tag NULL for every tag but CHARACTER STRING.
    EXPECT_EQ("NULL", textOf(DataApplicationValue(BACNET_APPLICATION_TAG_REAL, false)));
    for (unsigned tag = 0; tag <= 12; ++tag) {
        if (tag == BACNET_APPLICATION_TAG_CHARACTER_STRING) continue;
        auto back = parsed(static_cast<BACNET_APPLICATION_TAG>(tag), "NULL");
        EXPECT_TRUE(back.isNull() && back.getTag() == BACNET_APPLICATION_TAG_NULL) << tag;
    }
}

TEST(DataApplicationValueText, everyTagRoundTripsThroughTextAndBytes) {
    const std::pair<BACNET_APPLICATION_TAG, std::string> cases[] = {
        {BACNET_APPLICATION_TAG_NULL, "NULL"},
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
        {BACNET_APPLICATION_TAG_TIME, "08.30.15.50"},
        {BACNET_APPLICATION_TAG_OBJECT_ID, "8,260001"},
    };
    for (const auto& [tag, text] : cases) {
        SCOPED_TRACE(text);
        const auto v = parsed(tag, text);
        bool ok = false;
        EXPECT_EQ(text, textOf(v, true, &ok));
        EXPECT_TRUE(ok && v.getTag() == tag && parsed(tag, textOf(v)) == v);

        const auto bytes = TQTest::encoded(v);
        ASSERT_FALSE(bytes.empty());
        DataApplicationValue back;
        EXPECT_EQ(static_cast<int>(bytes.size()), back.decode(bytes.data(), bytes.size()));
        EXPECT_TRUE(back == v && back.isNull() == v.isNull());
        // Every shorter slice is refused rather than read past its end.
        for (size_t cut = 0; cut < bytes.size(); ++cut)
            EXPECT_LT(DataApplicationValue().decode(bytes.data(), cut), 0) << "cut " << cut;
    }
    EXPECT_EQ(0.1f, parsed(BACNET_APPLICATION_TAG_REAL, "0.1").type.Real);

    // Bits print as positions unless asked for booleans; hex input sets them from the top.
    const auto bits = parsed(BACNET_APPLICATION_TAG_BIT_STRING, "true,false,true");
    EXPECT_EQ("0;2", textOf(bits, false));
    EXPECT_EQ("0;3;7", textOf(parsed(BACNET_APPLICATION_TAG_BIT_STRING, "91"), false));
    DataApplicationValue none;
    none.setBitString(TQ::BACnet::DataType::BitString(8));
    EXPECT_EQ("", textOf(none, false));
}

TEST(DataApplicationValueText, failuresNameTheTagAndText) {
    DataApplicationValue v;
    EXPECT_EQ(
        "DataApplicationValue::setText(4,\"abc\") tagToSet=\"REAL\"",
        messageOf<Poco::BadCastException>([&] { v.setText(BACNET_APPLICATION_TAG_REAL, "abc", false); }));
    // The tag is already replaced and the null flag cleared.
    EXPECT_TRUE(v.getTag() == BACNET_APPLICATION_TAG_REAL && !v.isNull());
    const std::pair<BACNET_APPLICATION_TAG, const char*> bad[] = {
        {BACNET_APPLICATION_TAG_UNSIGNED_INT, "-1"}, {BACNET_APPLICATION_TAG_OCTET_STRING, "ABC"},
        {BACNET_APPLICATION_TAG_DATE, "2024-15-01"}, {BACNET_APPLICATION_TAG_TIME, "8:30"},
        {BACNET_APPLICATION_TAG_OBJECT_ID, "x,1"},   {BACNET_APPLICATION_TAG_RESERVE1, "1"},
    };
    for (const auto& [tag, text] : bad)
        EXPECT_THROW(v.setText(tag, text, false), Poco::BadCastException) << text;

    DataApplicationValue odd;
    odd.setUInt(1);
    odd.tag = 17;
    bool ok = true;
    EXPECT_EQ("", textOf(odd, true, &ok));
    EXPECT_FALSE(ok);
}

TEST(DataApplicationValueApplyTag, conversionTable) {
    DataApplicationValue nan;
    nan.setReal(NAN);
    const struct {
        DataApplicationValue from;
        BACNET_APPLICATION_TAG to;
        double number;
    } cases[] = {
        {parsed(BACNET_APPLICATION_TAG_REAL, "-2.7"), BACNET_APPLICATION_TAG_SIGNED_INT, -2},
        {parsed(BACNET_APPLICATION_TAG_REAL, "-2.7"), BACNET_APPLICATION_TAG_UNSIGNED_INT, 0},
        {parsed(BACNET_APPLICATION_TAG_DOUBLE, "1e20"), BACNET_APPLICATION_TAG_UNSIGNED_INT, 4294967295.0},
        {nan, BACNET_APPLICATION_TAG_SIGNED_INT, 0},
        {parsed(BACNET_APPLICATION_TAG_UNSIGNED_INT, "5"), BACNET_APPLICATION_TAG_ENUMERATED, 5},
        {parsed(BACNET_APPLICATION_TAG_SIGNED_INT, "-1"), BACNET_APPLICATION_TAG_UNSIGNED_INT, 4294967295.0},
        {parsed(BACNET_APPLICATION_TAG_BOOLEAN, "true"), BACNET_APPLICATION_TAG_REAL, 1},
        {parsed(BACNET_APPLICATION_TAG_REAL, "1"), BACNET_APPLICATION_TAG_BOOLEAN, 1},
        {parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "42"), BACNET_APPLICATION_TAG_DOUBLE, 42},
    };
    for (auto c : cases) {
        SCOPED_TRACE(int(c.to));
        c.from.applyTag(c.to);
        EXPECT_EQ(std::make_tuple(c.to, c.number), std::make_tuple(c.from.getTag(), c.from.toDouble()));
    }
    auto v = parsed(BACNET_APPLICATION_TAG_ENUMERATED, "5");
    EXPECT_EQ("DataApplicationValue::ApplyTag()",
              messageOf<Poco::BadCastException>([&] { v.applyTag(BACNET_APPLICATION_TAG_UNSIGNED_INT); }));
    v = parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "");
    v.applyTag(BACNET_APPLICATION_TAG_UNSIGNED_INT);
    EXPECT_TRUE(v.isNull());
    v = parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "0A");
    v.applyTag(BACNET_APPLICATION_TAG_OCTET_STRING);
    EXPECT_EQ("0A", textOf(v));
    v = parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "7");
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_ENUMERATED), Poco::BadCastException);
    v.setUInt(1);
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_CHARACTER_STRING), Poco::AssertionViolationException);
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_OCTET_STRING), Poco::AssertionViolationException);
    v.setUInt(1);
    EXPECT_THROW(v.applyTag(BACNET_APPLICATION_TAG_DATE), Poco::BadCastException);

    // NULL keeps the tag and sets the null flag; a null only changes its tag.
    v.setReal(3.0f);
    v.applyTag(BACNET_APPLICATION_TAG_NULL);
    EXPECT_TRUE(v.isNull() && v.getTag() == BACNET_APPLICATION_TAG_REAL);
    v.applyTag(BACNET_APPLICATION_TAG_DATE);
    EXPECT_TRUE(v.isNull() && v.getTag() == BACNET_APPLICATION_TAG_DATE);
}

TEST(DataApplicationValueVariant, toVarAndFromVar) {
    DataApplicationValue v;
    Poco::Dynamic::Var out;
    EXPECT_THROW(v.toVar(out), Poco::BadCastException);
    Poco::Dynamic::Var real, text;
    v.setUInt(7);
    v.toVar(out);
    v.setReal(1.5f);
    v.toVar(real);
    v.setCharString("abc");
    v.toVar(text);
    EXPECT_TRUE(out.type() == typeid(unsigned int) && real.extract<float>() == 1.5f &&
                text.extract<std::string>() == "abc");
    v = parsed(BACNET_APPLICATION_TAG_DATE, "2024-01-05");
    EXPECT_EQ("DataPortValue::toVar()", messageOf<Poco::BadCastException>([&] { v.toVar(out); }));

    const std::tuple<BACNET_APPLICATION_TAG, const char*, const char*> texts[] = {
        {BACNET_APPLICATION_TAG_REAL, "{\"b\": 2, \"a\": 21.5}", "21.5"},  // the smallest key wins
        {BACNET_APPLICATION_TAG_UNSIGNED_INT, "{\"v\": \"12\"}", "12"},
        {BACNET_APPLICATION_TAG_OCTET_STRING, "{\"v\": \"0aff\"}", "0AFF"},
        {BACNET_APPLICATION_TAG_BIT_STRING, "{\"v\": \"true,false\"}", "true,false"},
        {BACNET_APPLICATION_TAG_OBJECT_ID, "{\"v\": \"8,12\"}", "8,12"},
    };
    for (const auto& [tag, input, text] : texts) {
        v.fromVar(tag, json(input), false);
        EXPECT_EQ(text, textOf(v));
    }
    v.fromVar(BACNET_APPLICATION_TAG_REAL, json("{\"v\": \"nUlL\"}"), true);
    EXPECT_TRUE(v.isNull() && v.getTag() == BACNET_APPLICATION_TAG_REAL);
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
    EXPECT_TRUE(v.tryFromVar(BACNET_APPLICATION_TAG_SIGNED_INT, json("{\"v\": -3}"), false) &&
                v.type.Signed_Int == -3);
}

TEST(DataApplicationValueValidation, writePropertyChecks) {
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    TQ::BACnet::DataErrorRef error(errorClass, errorCode);
    const auto real = parsed(BACNET_APPLICATION_TAG_REAL, "1");
    EXPECT_TRUE(real.validateValueType(BACNET_APPLICATION_TAG_REAL, error, false));
    EXPECT_FALSE(real.validateValueType(BACNET_APPLICATION_TAG_UNSIGNED_INT, error, false));
    EXPECT_TRUE(errorClass == ERROR_CLASS_PROPERTY && errorCode == ERROR_CODE_INVALID_DATA_TYPE);
    EXPECT_TRUE(DataApplicationValue().validateValueType(BACNET_APPLICATION_TAG_REAL, error, true));
    EXPECT_FALSE(DataApplicationValue().validateValueType(BACNET_APPLICATION_TAG_REAL, error, false));

    const auto empty = parsed(BACNET_APPLICATION_TAG_CHARACTER_STRING, "");
    errorCode = ERROR_CODE_OTHER;
    EXPECT_TRUE(empty.validateValueType(BACNET_APPLICATION_TAG_CHARACTER_STRING, error, true));
    EXPECT_FALSE(empty.validateValueType(BACNET_APPLICATION_TAG_CHARACTER_STRING, error, false));
    EXPECT_EQ(ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);
}
