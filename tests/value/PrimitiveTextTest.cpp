#include "TQTestSupport.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/CharacterString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/DataType/Time.h"

#include <cstring>

using namespace TQ::BACnet::DataType;
using namespace TQTest;

namespace {

// Parses `text` into a fresh T and returns the range error's message, or what the value prints.
template <class T>
std::string parseOrRangeError(const std::string& text) {
    T value;
    std::string out = messageOf<Poco::RangeException>([&] { value = text; });
    return out == "<no exception>" ? value.getString() : out;
}

}  // namespace

TEST(DateText, parsesPrintsAndRejectsWithExactMessages) {
    const std::string set = "TQ::BACnet::DataType::Date::operator=(const std::string& str), ";
    const std::pair<std::string, std::string> cases[] = {
        {"2024-03-07 4", "2024-03-07 4"},
        {"2024-13-33", "2024-13-33"},  // odd months, odd days
        {"1900-1-1", "1900-01-01"},
        {"*-12-32", "*-12-32"},
        {"2155-01-01", set + "year number out of range 1900 to 2155: 2155"},
        {"1899-01-01", set + "year number out of range 1900 to 2155: 1899"},
        {"2024-15-01", set + "month number out of range: 15"},
        {"2024-01-35", set + "day number out of range: 35"},
        {"2024-01-01 0", set + "week-day number out of range: 0"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(expected, parseOrRangeError<Date>(text)) << text;

    Date d;
    EXPECT_EQ("*-*-*", d.getString());
    d = std::string("*-*-*");
    EXPECT_EQ((std::vector<int>{2155, 255, 255, 255}), (std::vector<int>{d.year, d.month, d.day, d.wday}));
    d = std::string("2024-13-33");
    EXPECT_EQ(255, d.wday);
    EXPECT_EQ(set + "invalid date-string \"str\": 2024-01",
              messageOf<Poco::BadCastException>([&] { d = std::string("2024-01"); }));
    EXPECT_THROW(d = std::string("20x4-01-01"), Poco::SyntaxException);
    // Fields read before the failure stay changed.
    Date partial;
    EXPECT_THROW(partial = std::string("2020-07-99"), Poco::RangeException);
    EXPECT_TRUE(partial.year == 2020 && partial.month == 7);

    std::string out;
    BACnet_Date bad{2024, 15, 1, 1};
    EXPECT_EQ("TQ::BACnet::DataType::Date::getString(), in string, month number out of range: 2024-",
              messageOf<Poco::RangeException>([&] { Date::getString(bad, out); }));
    for (BACnet_Date date : {BACnet_Date{2156, 1, 1, 1}, BACnet_Date{2024, 1, 35, 1}})
        EXPECT_THROW(Date::getString(date, out), Poco::RangeException);
}

TEST(TimeText, parsesPrintsAndRejectsWithExactMessages) {
    const std::string set = "TQ::BACnet::DataType::Time::operator=(const std::string& str), ";
    const std::pair<std::string, std::string> cases[] = {
        {"08.30.00.00", "08.30.00.00"},
        {"*.5.*.7", "*.05.*.07"},
        {"1.60.0.0", set + "minute number out of range: 60"},
        {"1.0.60.0", set + "second number out of range: 60"},
        {"1.0.0.100", set + "hundredths number out of range: 100"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(expected, parseOrRangeError<Time>(text)) << text;

    Time t;
    EXPECT_EQ("*.*.*.*", t.getString());
    // Hour 24 reads but does not print.
    t = std::string("24.00.00.00");
    EXPECT_EQ("TQ::BACnet::DataType::Time::getString(), in string, hour number out of range",
              messageOf<Poco::RangeException>([&] { t.getString(); }));
    EXPECT_EQ(set + "invalid time-string \"str\": 08.30",
              messageOf<Poco::BadCastException>([&] { t = std::string("08.30"); }));
    BACnet_Time bad{1, 2, 60, 0};
    std::string out;
    EXPECT_EQ("TQ::BACnet::DataType::Time::getString(), in string, sec. number out of range: 01.02.",
              messageOf<Poco::RangeException>([&] { Time::getString(bad, out); }));
}

TEST(ObjectIdentifierText, numbersPackedValuesAndErrors) {
    const struct {
        const char* text;
        unsigned type, instance;
    } cases[] = {{"0,3", 0, 3}, {"4194307", 1, 3}, {"8,4194304", 8, 0} /* instance masked to 22 bits */};
    for (const auto& c : cases)
        EXPECT_EQ(ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(c.type), c.instance),
                  ObjectIdentifier(std::string(c.text)))
            << c.text;
    EXPECT_EQ(
        "String \"device\" is not a valid unsigned integer, nor does it contain two comma separated tokens",
        messageOf<Poco::InvalidArgumentException>([] { ObjectIdentifier(std::string("device")); }));
    EXPECT_THROW(ObjectIdentifier(std::string("8,x")), Poco::SyntaxException);

    BACnet_Object_Id raw = ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(8), 1234);
    EXPECT_TRUE(raw.type == 8 && raw.instance == 1234);
    EXPECT_EQ((1023u << 22) | 5u,
              ObjectIdentifier::createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(1023), 5));

    TQ::BACnet::DataApplicationValue v, after;
    v.setObjectIdentifier(ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(2), 7));
    v.next = &after;
    const TQ::BACnet::DataApplicationValue* next = nullptr;
    ObjectIdentifier fromValue(v, &next);
    EXPECT_TRUE(next == &after && fromValue == ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(2), 7));
    v.setUInt(3);
    EXPECT_THROW(ObjectIdentifier(v, nullptr), Poco::AssertionViolationException);
}

TEST(CharacterStringValue, copiesOnlyWhatIsUsed) {
    BACnet_Character_String raw;
    raw.encoding = 5;
    raw.length = 3;
    std::memcpy(raw.value, "abcdef", 6);
    TQ::BACnet::DataType::CharacterString copy(raw), again(copy);
    EXPECT_TRUE(copy.encoding == 5 && copy.length == 3);
    EXPECT_EQ(std::make_tuple(std::string("abc"), std::string("abc")),
              std::make_tuple(copy.value, again.value));
    EXPECT_EQ(0u, TQ::BACnet::DataType::CharacterString().length);
}
