#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/CharacterString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/DataType/Time.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <cstring>

using TQ::BACnet::DataType::Date;
using TQ::BACnet::DataType::ObjectIdentifier;
using TQ::BACnet::DataType::Time;

namespace {

template <class E, class F>
std::string messageOf(F f) {
    try {
        f();
    } catch (const E& e) {
        return e.message();
    }
    return "<no exception>";
}

const std::string DATE_SET = "TQ::BACnet::DataType::Date::operator=(const std::string& str), ";
const std::string TIME_SET = "TQ::BACnet::DataType::Time::operator=(const std::string& str), ";

}  // namespace

TEST(DateText, parsesAndPrintsEveryForm) {
    Date d;
    EXPECT_EQ("*-*-*", d.getString());
    d = std::string("*-*-*");
    EXPECT_EQ(2155, d.year);
    EXPECT_EQ(255, d.month);
    EXPECT_EQ(255, d.day);
    EXPECT_EQ(255, d.wday);
    d = std::string("2024-03-07 4");
    EXPECT_EQ("2024-03-07 4", d.getString());
    d = std::string("2024-13-33");  // odd months, odd days
    EXPECT_EQ("2024-13-33", d.getString());
    EXPECT_EQ(255, d.wday);
    d = std::string("1900-1-1");
    EXPECT_EQ("1900-01-01", d.getString());
    d = std::string("*-12-32");
    EXPECT_EQ("*-12-32", d.getString());
}

TEST(DateText, rejectsOutOfRangeFieldsWithExactMessages) {
    Date d;
    EXPECT_EQ(DATE_SET + "year number out of range 1900 to 2155: 2155",
              messageOf<Poco::RangeException>([&] { d = std::string("2155-01-01"); }));
    EXPECT_EQ(DATE_SET + "year number out of range 1900 to 2155: 1899",
              messageOf<Poco::RangeException>([&] { d = std::string("1899-01-01"); }));
    EXPECT_EQ(DATE_SET + "month number out of range: 15",
              messageOf<Poco::RangeException>([&] { d = std::string("2024-15-01"); }));
    EXPECT_EQ(DATE_SET + "day number out of range: 35",
              messageOf<Poco::RangeException>([&] { d = std::string("2024-01-35"); }));
    EXPECT_EQ(DATE_SET + "week-day number out of range: 0",
              messageOf<Poco::RangeException>([&] { d = std::string("2024-01-01 0"); }));
    EXPECT_EQ(DATE_SET + "invalid date-string \"str\": 2024-01",
              messageOf<Poco::BadCastException>([&] { d = std::string("2024-01"); }));
    EXPECT_THROW(d = std::string("20x4-01-01"), Poco::SyntaxException);

    // Fields read before the failure stay changed.
    Date partial;
    EXPECT_THROW(partial = std::string("2020-07-99"), Poco::RangeException);
    EXPECT_EQ(2020, partial.year);
    EXPECT_EQ(7, partial.month);

    BACnet_Date bad{2024, 15, 1, 1};
    std::string out;
    EXPECT_EQ("TQ::BACnet::DataType::Date::getString(), in string, month number out of range: 2024-",
              messageOf<Poco::RangeException>([&] { Date::getString(bad, out); }));
    bad = {2156, 1, 1, 1};
    EXPECT_THROW(Date::getString(bad, out), Poco::RangeException);
    bad = {2024, 1, 35, 1};
    EXPECT_THROW(Date::getString(bad, out), Poco::RangeException);
}

TEST(TimeText, parsesAndPrints) {
    Time t;
    EXPECT_EQ("*.*.*.*", t.getString());
    t = std::string("08.30.00.00");
    EXPECT_EQ("08.30.00.00", t.getString());
    t = std::string("*.5.*.7");
    EXPECT_EQ("*.05.*.07", t.getString());

    // Hour 24 reads but does not print.
    t = std::string("24.00.00.00");
    EXPECT_EQ(24, t.hour);
    EXPECT_EQ("TQ::BACnet::DataType::Time::getString(), in string, hour number out of range",
              messageOf<Poco::RangeException>([&] { t.getString(); }));
    EXPECT_EQ(TIME_SET + "invalid time-string \"str\": 08.30",
              messageOf<Poco::BadCastException>([&] { t = std::string("08.30"); }));
    EXPECT_EQ(TIME_SET + "minute number out of range: 60",
              messageOf<Poco::RangeException>([&] { t = std::string("1.60.0.0"); }));
    EXPECT_EQ(TIME_SET + "second number out of range: 60",
              messageOf<Poco::RangeException>([&] { t = std::string("1.0.60.0"); }));
    EXPECT_EQ(TIME_SET + "hundredths number out of range: 100",
              messageOf<Poco::RangeException>([&] { t = std::string("1.0.0.100"); }));
    BACnet_Time bad{1, 2, 60, 0};
    std::string out;
    EXPECT_EQ("TQ::BACnet::DataType::Time::getString(), in string, sec. number out of range: 01.02.",
              messageOf<Poco::RangeException>([&] { Time::getString(bad, out); }));
}

TEST(ObjectIdentifierText, numbersPackedValuesAndErrors) {
    ObjectIdentifier a(std::string("0,3"));
    EXPECT_EQ(0u, a.getObjectType());
    EXPECT_EQ(3u, a.getInstance());
    ObjectIdentifier packed(std::string("4194307"));
    EXPECT_EQ(1u, packed.getObjectType());
    EXPECT_EQ(3u, packed.getInstance());
    ObjectIdentifier big(std::string("8,4194304"));  // instance masked to 22 bits
    EXPECT_EQ(8u, big.getObjectType());
    EXPECT_EQ(0u, big.getInstance());
    EXPECT_EQ(
        "String \"device\" is not a valid unsigned integer, nor does it contain two comma separated tokens",
        messageOf<Poco::InvalidArgumentException>([] { ObjectIdentifier(std::string("device")); }));
    EXPECT_THROW(ObjectIdentifier(std::string("8,x")), Poco::SyntaxException);

    BACnet_Object_Id id = ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(8), 1234);
    EXPECT_EQ(8, id.type);
    EXPECT_EQ(1234u, id.instance);
    EXPECT_EQ((1023u << 22) | 5u,
              ObjectIdentifier::createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(1023), 5));

    TQ::BACnet::DataApplicationValue v;
    v.setObjectIdentifier(ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(2), 7));
    TQ::BACnet::DataApplicationValue after;
    v.next = &after;
    const TQ::BACnet::DataApplicationValue* next = nullptr;
    ObjectIdentifier fromValue(v, &next);
    EXPECT_EQ(&after, next);
    EXPECT_EQ(2u, fromValue.getObjectType());
    v.setUInt(3);
    EXPECT_THROW(ObjectIdentifier(v, nullptr), Poco::AssertionViolationException);

    const uint8_t encoded[] = {0xC4, 0x00, 0x80, 0x00, 0x07};
    ObjectIdentifier decoded;
    EXPECT_EQ(4, decoded.decode(encoded + 1, 4));
    EXPECT_EQ(fromValue, decoded);
    EXPECT_LT(decoded.decode(encoded + 1, 3), 1);
    EXPECT_EQ(fromValue, decoded);  // unchanged on failure
}

TEST(CharacterStringValue, copiesOnlyWhatIsUsed) {
    TQ::BACnet::DataType::CharacterString s;
    EXPECT_EQ(0u, s.length);
    BACnet_Character_String raw;
    raw.encoding = 5;
    raw.length = 3;
    std::memcpy(raw.value, "abc", 3);
    TQ::BACnet::DataType::CharacterString copy(raw);
    EXPECT_EQ(5, copy.encoding);
    EXPECT_EQ(3u, copy.length);
    EXPECT_STREQ("abc", copy.value);
    TQ::BACnet::DataType::CharacterString again(copy);
    EXPECT_STREQ("abc", again.value);
}
