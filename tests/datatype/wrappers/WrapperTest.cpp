#include "TQTestCatalogue.h"
#include "TQTestSupport.h"

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/CharacterString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/DataType/Time.h"
#include "tq_stack/codec.h"

#include <Poco/DateTime.h>
#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <tuple>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQTest;

namespace {

// 2024-03-07 (a Thursday) 08:30:15.42: date tag 10 and time tag 11, each with 4 content bytes.
const BACnetDateTime SAMPLE(BACnet_Date{2024, 3, 7, 4}, BACnet_Time{8, 30, 15, 42});
const char* const SAMPLE_BYTES = "A4 7C030704 B4 081E0F2A";
const BACnetDateTime WILDCARD(BACnet_Date{2155, 255, 255, 255}, BACnet_Time{255, 255, 255, 255});

/// Runs in Central European time by its POSIX rule (no zone files needed): UTC+1, and UTC+2 from
/// the last Sunday of March 02:00 to the last Sunday of October 03:00. The expected moments
/// below follow from that rule alone.
class BACnetDateTimeClock : public ::testing::Test {
protected:
    void SetUp() override {
        const char* tz = std::getenv("TZ");
        _hadTz = tz != nullptr;
        if (_hadTz) _savedTz = tz;
        setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
        tzset();
    }
    void TearDown() override {
        if (_hadTz)
            setenv("TZ", _savedTz.c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }

    static long utcSeconds(int year, int month, int day, int hour, int minute, int second) {
        return static_cast<long>(
            Poco::DateTime(year, month, day, hour, minute, second).timestamp().epochTime());
    }

private:
    bool _hadTz = false;
    std::string _savedTz;
};

}  // namespace

TEST(BACnetDateTime, DefaultsAndOrderIgnoreOnlyTheWeekday) {
    EXPECT_EQ(BACnetDateTime(BACnet_Date{0, 0, 0, BACnetDateTime().date.wday}, BACnet_Time{0, 0, 0, 0}),
              BACnetDateTime());
    EXPECT_EQ(1026u, static_cast<const BACnetComplex&>(SAMPLE).getBACnetDataType());
    BACnetDateTime copy = SAMPLE;
    copy.time.hundredths = 43;
    EXPECT_TRUE(SAMPLE != copy && SAMPLE < copy && !(copy < SAMPLE));
    copy = SAMPLE;
    copy.date.wday = 255;  // equality sees the weekday, order does not
    EXPECT_NE(SAMPLE, copy);
    EXPECT_FALSE(SAMPLE < copy || copy < SAMPLE);
    copy.setDate(BACnet_Date{2023, 12, 31, 7});
    EXPECT_LT(copy, SAMPLE);
}

TEST(BACnetDateTime, EncodesTheStandardLayoutAndRefusesAnythingElse) {
    expectWireForm(SAMPLE, SAMPLE_BYTES);
    expectWireForm(WILDCARD, "A4 FFFFFFFF B4 FFFFFFFF");  // year 255 is 2155
    EXPECT_EQ(10, SAMPLE.encode(nullptr));
    // The unbounded forms stay visible.
    const Bytes bytes = hex(SAMPLE_BYTES);
    BACnetDateTime decoded, framedBack;
    const Bytes framed = hex(std::string("3E ") + SAMPLE_BYTES + " 3F");
    EXPECT_TRUE(decoded.decode(bytes.data()) == 10 &&
                framedBack.decodeContext(framed.data(), uint8_t(3)) == 12);
    EXPECT_TRUE(SAMPLE == decoded && SAMPLE == framedBack);
    expectEveryCutRefused(WILDCARD, bytes);
    expectMutationsStayInBounds<BACnetDateTime>(bytes);
    // Time before date, a context-tagged date, an unsigned in place of the time; a wrong
    // closing tag and a cut framing.
    for (const char* wrong : {"B4 081E0F2A A4 7C030704", "0C 7C030704 B4 081E0F2A", "A4 7C030704 21 05"}) {
        BACnetDateTime kept = WILDCARD;
        EXPECT_LT(decodeExactly(kept, hex(wrong), hex(wrong).size()), 1) << wrong;
        EXPECT_EQ(WILDCARD, kept);
    }
    BACnetDateTime kept = WILDCARD;
    EXPECT_LT(kept.decode(nullptr, 10), 1);
    const Bytes wrongClose = hex(std::string("3E ") + SAMPLE_BYTES + " 4F");
    EXPECT_EQ(-1, kept.decodeContext(wrongClose.data(), 12u, 3));
    for (unsigned len : {11u, 1u, 0u}) EXPECT_EQ(-1, kept.decodeContext(framed.data(), len, 3)) << len;
    // Bad hexadecimal, odd length and a truncated value read nothing.
    for (const char* bad : {"A47C030704B4081E0F2", "ZZ", "A47C030704"})
        EXPECT_FALSE(kept.setString(bad)) << bad;
    EXPECT_EQ(WILDCARD, kept);
}

TEST(BACnetDateTime, BuildsFromAndBreaksIntoPrimitives) {
    const DataPropertyInObject0 descriptor;
    // The value's own primitives and one more: date and time are taken, the cursor lands on the third.
    std::vector<DataApplicationValue> chain;
    SAMPLE.getBACnetPrimitives(chain);
    chain.push_back(uintValue(1));
    link(chain);
    DataApplicationValue &date = chain[0], &time = chain[1], &after = chain[2];
    const DataApplicationValue* next = nullptr;
    EXPECT_TRUE(SAMPLE == BACnetDateTime(descriptor, date, &next) && next == &after);
    time.next = nullptr;
    EXPECT_TRUE(SAMPLE == BACnetDateTime(descriptor, date, &next) && next == nullptr);
    // A lone date is midnight and moves the cursor by that date only.
    date.next = &after;
    const BACnetDateTime lone(descriptor, date, &next);
    EXPECT_TRUE(BACnetDateTime(SAMPLE.getDate(), BACnet_Time{0, 0, 0, 0}) == lone && next == &after);
    date.next = nullptr;
    EXPECT_EQ(lone, BACnetDateTime(descriptor, date, nullptr));
    // Not a date: nothing is built and the cursor is not written.
    const DataApplicationValue* untouched = &date;
    EXPECT_TRUE(BACnetDateTime() == BACnetDateTime(descriptor, time, &untouched) && untouched == &date);
}

TEST_F(BACnetDateTimeClock, TimestampsAndLocalDateTimesAreLocalTime) {
    // Winter: 12:00:00.50 local is 11:00:00.500 UTC; summer: 12:00 local is 10:00 UTC.
    const BACnetDateTime winter(BACnet_Date{2024, 1, 15, 1}, BACnet_Time{12, 0, 0, 50});
    const BACnetDateTime summer(BACnet_Date{2024, 7, 15, 1}, BACnet_Time{12, 0, 0, 0});
    EXPECT_EQ(Poco::DateTime(2024, 1, 15, 11, 0, 0, 500).timestamp(), winter.getTimestamp());
    EXPECT_EQ(Poco::DateTime(2024, 7, 15, 10, 0, 0).timestamp(), BACnetDateTime::getTimestamp(summer));
    BACnetDateTime wrongDay = winter;  // the weekday takes no part
    wrongDay.date.wday = 5;
    EXPECT_EQ(winter.getTimestamp(), wrongDay.getTimestamp());
    // Back from a moment: milliseconds truncated to hundredths, the weekday filled in (Sunday 7).
    const std::pair<Poco::Timestamp, BACnetDateTime> moments[] = {
        {Poco::DateTime(2024, 1, 15, 11, 0, 0, 509).timestamp(), winter},
        {Poco::DateTime(2024, 7, 15, 10, 0, 0).timestamp(), summer},
        {Poco::DateTime(2024, 3, 31, 1, 30, 0).timestamp(),  // 03:30 CEST, the switch day
         BACnetDateTime(BACnet_Date{2024, 3, 31, 7}, BACnet_Time{3, 30, 0, 0})},
    };
    for (const auto& m : moments) {
        BACnetDateTime back;
        back.setTimestamp(m.first);
        EXPECT_EQ(m.second, back);
    }
    const std::pair<Poco::LocalDateTime, BACnetDateTime> locals[] = {
        {Poco::LocalDateTime(2024, 3, 10, 23, 59, 58, 999, 999),
         BACnetDateTime(BACnet_Date{2024, 3, 10, 7}, BACnet_Time{23, 59, 58, 99})},
        {Poco::LocalDateTime(2024, 3, 11, 0, 0, 0, 9, 0),
         BACnetDateTime(BACnet_Date{2024, 3, 11, 1}, BACnet_Time{0, 0, 0, 0})},
        {Poco::LocalDateTime(2024, 3, 16, 6, 7, 8, 120, 0),
         BACnetDateTime(BACnet_Date{2024, 3, 16, 6}, BACnet_Time{6, 7, 8, 12})},
    };
    BACnetDateTime value;
    for (const auto& l : locals) {
        value.setLocalDateTime(l.first);
        EXPECT_EQ(l.second, value);
    }
    Poco::LocalDateTime local(2000, 1, 1, 0, 0, 0, 0, 0);
    value.getLocalDateTime(local);
    EXPECT_TRUE(Poco::LocalDateTime(2024, 3, 16, 6, 7, 8, 120, 0) == local);
    // Unspecified fields are not real moments: Poco refuses them.
    EXPECT_THROW(WILDCARD.getLocalDateTime(local), Poco::AssertionViolationException);
    EXPECT_THROW(WILDCARD.getTimestamp(), Poco::AssertionViolationException);
}

TEST_F(BACnetDateTimeClock, SecondsSinceTheEpoch) {
    const BACnetDateTime winter(BACnet_Date{2024, 1, 15, 1}, BACnet_Time{12, 0, 0, 99});
    EXPECT_EQ(utcSeconds(2024, 1, 15, 11, 0, 0), winter.get());  // hundredths are dropped
    const BACnetDateTime summer(BACnet_Date{2024, 7, 15, 1}, BACnet_Time{12, 0, 0, 0});
    EXPECT_EQ(utcSeconds(2024, 7, 15, 10, 0, 0), summer.get());
    // The zero date of 1900 is the first of January 1900, local midnight.
    const BACnetDateTime zero1900(BACnet_Date{1900, 0, 0, 0}, BACnet_Time{0, 0, 0, 0});
    EXPECT_EQ(utcSeconds(1899, 12, 31, 23, 0, 0), zero1900.get());
    BACnetDateTime value = WILDCARD;
    value.set(utcSeconds(2024, 7, 14, 10, 0, 1));  // a Sunday, summer time
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 7, 14, 7}, BACnet_Time{12, 0, 1, 0}), value);
    value.set(utcSeconds(2024, 1, 15, 11, 0, 0));
    EXPECT_EQ(BACnetDateTime(BACnet_Date{2024, 1, 15, 1}, BACnet_Time{12, 0, 0, 0}), value);
    EXPECT_EQ(utcSeconds(2024, 1, 15, 11, 0, 0), value.get());
}

TEST(BACnetDateTimeText, HumanTextReadsOrLeavesTheValue) {
    BACnetDateTime value;
    ASSERT_TRUE(value.setString2("15.01.2024 12:30:05.250"));
    EXPECT_EQ((BACnet_Date{2024, 1, 15, value.date.wday}), value.getDate());
    EXPECT_EQ((BACnet_Time{12, 30, 5, 25}), value.getTime());
    // A date alone leaves the time as it was.
    ASSERT_TRUE(value.setString2("16.01.2024"));
    EXPECT_EQ(16, value.date.day);
    EXPECT_EQ((BACnet_Time{12, 30, 5, 25}), value.getTime());
    // A bad time after a good date changes nothing.
    const BACnetDateTime before = value;
    EXPECT_FALSE(value.setString2("17.02.2025 noon"));
    EXPECT_FALSE(value.setString2("yesterday"));
    EXPECT_EQ(before, value);
}

TEST(CharacterStringWrapper, fromTextKeepsBytesAndRefusesWhatDoesNotFit) {
    const std::string text(
        "Pump \xC3\xBC"
        "ber\0zero",
        14);  // UTF-8 and an embedded NUL survive
    CharacterString s(text);
    EXPECT_EQ(std::make_tuple(uint8_t(CHARACTER_UTF8), text.size(), text, '\0'),
              std::make_tuple(uint8_t(s.getEncoding()), size_t(s.length), s.getString(), s.value[s.length]));
    CharacterString latin(std::string("abc"), CHARACTER_ISO8859);
    // Same bytes in another character set are another string.
    EXPECT_NE(CharacterString(std::string("abc")), latin);
    EXPECT_EQ(CharacterString(std::string("abc"), CHARACTER_ISO8859), latin);
    EXPECT_NE(CharacterString(std::string("abd"), CHARACTER_ISO8859), latin);
    const std::string longest(MAX_CHARACTER_STRING_BYTES, 'x');
    EXPECT_EQ(longest, CharacterString(longest).getString());
    EXPECT_THROW(CharacterString(longest + "x"), Poco::RangeException);
    EXPECT_THROW(CharacterString(std::string("abc"), MAX_CHARACTER_STRING_ENCODING),
                 Poco::InvalidArgumentException);
    // The application encoding: tag 7 with length 4 in the tag byte, character set 5, bytes.
    uint8_t buffer[16];
    ASSERT_EQ(5, encode_application_character_string(buffer, &latin));
    EXPECT_EQ(hex("74 05 616263"), Bytes(buffer, buffer + 5));
}

// The text forms' main cases are covered with the value model; these are the remaining edges.
TEST(DateWrapper, weekdayEdgesAndWriterArguments) {
    const std::string set = "TQ::BACnet::DataType::Date::operator=(const std::string& str), ";
    Date d;
    d = std::string("*-14-32 7");  // last day of even months, Sundays
    EXPECT_TRUE(d == (BACnet_Date{2155, 14, 32, 7}) && d.getString() == "*-14-32 7");
    d = std::string("2154-12-31 *");  // a wildcard weekday prints nothing
    EXPECT_TRUE(d == (BACnet_Date{2154, 12, 31, 255}) && d.getString() == "2154-12-31");
    EXPECT_EQ(set + "week-day number out of range: 8",
              messageOf<Poco::RangeException>([&] { d = std::string("2024-01-01 8"); }));
    // getString replaces what `out` held and hands it back; a stray weekday is left out.
    std::string out = "stale";
    EXPECT_EQ(&out, &Date::getString(BACnet_Date{2024, 1, 1, 9}, out));
    EXPECT_EQ("2024-01-01", out);
    EXPECT_EQ("TQ::BACnet::DataType::Date::getString(), in string, year number out of range",
              messageOf<Poco::RangeException>([&] {
                  Date::getString(BACnet_Date{2156, 1, 1, 1}, out);
              }));
    // Equality sees every field, the weekday included, from either side.
    EXPECT_EQ((BACnet_Date{2024, 1, 1, 1}), Date(BACnet_Date{2024, 1, 1, 1}));
    EXPECT_NE(Date(BACnet_Date{2024, 1, 1, 1}), (BACnet_Date{2024, 1, 1, 255}));
    // As a local date-time it is midnight; unspecified fields assert.
    Poco::LocalDateTime local(2000, 5, 5, 17, 18, 19, 20, 21);
    d = std::string("2024-02-29");
    d.getLocalDateTime(local);
    EXPECT_TRUE(Poco::LocalDateTime(2024, 2, 29) == local);
    EXPECT_THROW(Date().getLocalDateTime(local), Poco::AssertionViolationException);
    d = std::string("2024-13-01");
    EXPECT_THROW(d.getLocalDateTime(local), Poco::AssertionViolationException);
}

TEST(TimeWrapper, remainingLimitsAndEquality) {
    const std::string set = "TQ::BACnet::DataType::Time::operator=(const std::string& str), ";
    Time t;
    EXPECT_EQ(set + "hour number out of range: 25",
              messageOf<Poco::RangeException>([&] { t = std::string("25.0.0.0"); }));
    // Colons are not separators: the whole text is one field.
    EXPECT_EQ(set + "invalid time-string \"str\": 08:30:00:00",
              messageOf<Poco::BadCastException>([&] { t = std::string("08:30:00:00"); }));
    EXPECT_THROW(t = std::string("1.1.1.x"), Poco::SyntaxException);
    std::string out;
    EXPECT_EQ("TQ::BACnet::DataType::Time::getString(), in string, hundredths number out of range: 01.02.03.",
              messageOf<Poco::RangeException>([&] {
                  Time::getString(BACnet_Time{1, 2, 3, 100}, out);
              }));
    // A fifth field is ignored; equality sees every field.
    t = std::string("1.2.3.4.5");
    EXPECT_TRUE(t == (BACnet_Time{1, 2, 3, 4}) && !(t == (BACnet_Time{1, 2, 3, 5})));
}

// Numbers and packed values are covered with the value model; these are the named forms.
TEST(ObjectIdentifierNames, namedTypesAndFailures) {
    TQTest::Catalogue::open();
    const ObjectIdentifier ai3(OBJECT_ANALOG_INPUT, 3);
    EXPECT_EQ(ai3, ObjectIdentifier("analog-input,3"));
    EXPECT_EQ(ai3, ObjectIdentifier("0,3,ignored,tokens"));
    EXPECT_EQ(0x020004D2u, ObjectIdentifier("device,1234").getValue());
    EXPECT_EQ(0x00400005u,
              ObjectIdentifier::createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(1025), 5));
    EXPECT_EQ("String \"\" is not a valid unsigned integer, nor does it contain two comma separated tokens",
              messageOf<Poco::InvalidArgumentException>([] { ObjectIdentifier(""); }));
    EXPECT_EQ("String \"no-such-type,1\" does contain valid BACnet Object Type name",
              messageOf<Poco::NotFoundException>([] { ObjectIdentifier("no-such-type,1"); }));
    EXPECT_THROW(ObjectIdentifier("device,-1"), Poco::SyntaxException);
    // A failed assignment leaves the previous value.
    ObjectIdentifier id = ai3;
    EXPECT_THROW(id = std::string("device"), Poco::InvalidArgumentException);
    EXPECT_THROW(id = std::string("device,x"), Poco::SyntaxException);
    EXPECT_EQ(ai3, id);
    // BACnet/WS path segments read back as the same identifier.
    EXPECT_EQ("/analog-input,3", ai3.getPath(true));
    EXPECT_EQ("device,4194303", ObjectIdentifier(OBJECT_DEVICE, 4194303).getPath(false));
    const ObjectIdentifier unnamed(static_cast<BACNET_OBJECT_TYPE>(1000), 12);  // no catalogue name
    EXPECT_EQ("1000,12", unnamed.getPath(false));
    EXPECT_EQ(unnamed, ObjectIdentifier(unnamed.getPath(false)));
}

TEST(ObjectIdentifierCodec, BoundedDecodersAndMatchingEncoders) {
    // Type 8 in bits 31..22, instance 1234; under context tag 1 with length 4.
    const ObjectIdentifier dev(OBJECT_DEVICE, 1234);
    const Bytes content = hex("020004D2");
    const Bytes context = hex("1C 020004D2");
    EXPECT_TRUE(encoded(dev) == content && dev.encode(nullptr) == 4);
    uint8_t buffer[8] = {};
    ASSERT_EQ(5, dev.encodeContext(buffer, 1));
    EXPECT_EQ(context, Bytes(buffer, buffer + 5));
    // Bounded and unbounded (within one APDU of the start) forms.
    ObjectIdentifier a, b, c, d;
    EXPECT_EQ(std::make_tuple(4, 5, 4, 5),
              std::make_tuple(decodeExactly(a, content, 4), b.decodeContext(context.data(), 5, 1),
                              c.decode(content.data()), d.decodeContext(context.data(), uint8_t(1))));
    EXPECT_TRUE(a == dev && b == dev && c == dev && d == dev);
    // Every truncation fails and leaves the value as it was; so do another tag and a null buffer.
    const ObjectIdentifier before(OBJECT_ANALOG_VALUE, 9);
    expectEveryCutRefused(before, content);
    ObjectIdentifier kept = before;
    for (uint32_t len = 0; len < 5; ++len) {
        std::unique_ptr<uint8_t[]> cut(new uint8_t[len + 1]);
        std::copy(context.begin(), context.begin() + len, cut.get());
        EXPECT_LT(kept.decodeContext(cut.get(), len, 1), 1) << len;
    }
    EXPECT_LT(kept.decodeContext(context.data(), 5, 2), 1);
    EXPECT_LT(kept.decode(nullptr, 4), 1);
    EXPECT_EQ(before, kept);
}
