#include "TQ/Utility/BitBuffer.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataObjectIdentifier.h"
#include "TQ_BACnet/Utility/ConvertIt.h"
#include "TQ_BACnet/Utility/ObjectAlarmsOrEvents.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <cstring>

using TQ::BACnet::Utility::ConvertIt;

namespace {

std::string bits(const BACnet_Bit_String& b) {
    std::string out;
    for (unsigned i = 0; i < b.bits_used; ++i) out += (b.value[i / 8] & (0x80 >> (i % 8))) ? '1' : '0';
    return out;
}

}  // namespace

TEST(ConvertItBitString, textForms) {
    std::string sixteen = "true";
    for (int i = 1; i < 16; ++i) sixteen += ",false";
    const struct {
        std::string text;
        bool ok;
        std::string bits;
    } cases[] = {
        {"true", true, "1"},
        {"false", true, "0"},
        {"1,0", true, "00"},  // only the exact word "true" sets a bit
        {" true , false ,true", true, "101"},
        {"FF", true, "11111111"},
        {"A0", true, "10100000"},
        {"", true, ""},
        {std::string(30, 'F'), true, std::string(120, '1')},
        {std::string(32, 'F'), false, ""},
        {sixteen, false, ""},
        {"XYZ", false, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        BACnet_Bit_String b;
        ASSERT_EQ(c.ok, ConvertIt::getBACnetBitString(c.text, b));
        EXPECT_TRUE(!c.ok || c.bits == bits(b)) << bits(b);
    }
}

TEST(ConvertItBitString, hostBuffersBothWays) {
    BACnet_Bit_String b;
    for (unsigned size : {16u, 3u}) {
        TQ::Utility::BitBuffer buffer(size);
        buffer.setBit(0);
        buffer.setBit(size - 1);
        ASSERT_TRUE(ConvertIt::getBACnetBitBuffer(buffer, b));
        EXPECT_EQ(size == 16 ? "1000000000000001" : "101", bits(b));
    }
    EXPECT_FALSE(ConvertIt::getBACnetBitBuffer(TQ::Utility::BitBuffer(16 * 8), b));
    // An empty buffer fails the host's index check instead of producing garbage.
    EXPECT_THROW(ConvertIt::getBACnetBitBuffer(TQ::Utility::BitBuffer(), b),
                 Poco::AssertionViolationException);

    TQ::Utility::BitBuffer back;
    ConvertIt::setBitBuffer(b, back);
    EXPECT_TRUE(back.getBitsUsed() == 3 && back.size() == 1 && back.getBitsString() == "101");

    std::string hex;
    ConvertIt::getBACnetBitString("true,false,true,true,false,false,false,false,true", b);
    ConvertIt::setStdString(b, hex);
    EXPECT_EQ("B080", hex);
}

TEST(ConvertItOctetString, hexAndBuffers) {
    BACnet_Octet_String o;
    std::string hex;
    EXPECT_FALSE(ConvertIt::getBACnetOctetString("ABC", o) || ConvertIt::getBACnetOctetString("zz", o));
    ASSERT_TRUE(ConvertIt::getBACnetOctetString("0aFF", o));
    ConvertIt::setStdString(o, hex);
    EXPECT_EQ("0AFF", hex);

    TQ::Utility::OctetBuffer buffer;
    ConvertIt::setOctetBuffer(o, buffer);
    EXPECT_EQ("0AFF", buffer.getHexString(false));
    ASSERT_TRUE(ConvertIt::getBACnetOctetBuffer(TQ::Utility::OctetBuffer(), o));
    ConvertIt::setStdString(o, hex);
    EXPECT_TRUE(o.length == 0 && hex.empty());

    // A buffer over foreign storage cannot grow to take the bytes.
    uint8_t storage[1];
    auto foreign = TQ::Utility::OctetBuffer::over(storage, 1);
    ConvertIt::getBACnetOctetString("0102", o);
    EXPECT_THROW(ConvertIt::setOctetBuffer(o, foreign), Poco::InvalidAccessException);
}

TEST(ConvertItCharacterString, characterSets) {
    BACnet_Character_String s;
    std::string text;
    ASSERT_TRUE(ConvertIt::getBACnetCharacterString("Grüße", s));
    ConvertIt::setStdString(s, text);
    EXPECT_TRUE(s.encoding == 0 && text == "Grüße");

    const struct {
        uint8_t encoding;
        std::string bytes, text;
    } cases[] = {
        {4, std::string("\0A\0B", 4), "AB"},          // UCS-2
        {3, std::string("\0\0\0h\0\0\0i", 8), "hi"},  // UCS-4
        {5, "\xE4x", "äx"},                           // ISO 8859-1 keeps every byte
        {1, std::string("a\x04xyb", 5), "ab"},        // DBCS: the marker drops two code bytes
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        s.encoding = c.encoding;
        s.length = c.bytes.size();
        std::memcpy(s.value, c.bytes.data(), c.bytes.size());
        ConvertIt::setStdString(s, text);
        EXPECT_EQ(c.text, text);
    }

    EXPECT_TRUE(ConvertIt::getEncoding(CHARACTER_UTF8).isNull() &&
                ConvertIt::getEncoding(static_cast<BACNET_CHARACTER_STRING_ENCODING>(9)).isNull());
    EXPECT_EQ(std::string("ISO-8859-15"), ConvertIt::getEncoding(CHARACTER_MS_DBCS)->canonicalName());
    EXPECT_EQ(std::string("ISO-8859-1"), ConvertIt::getEncoding(CHARACTER_UCS2)->canonicalName());
    EXPECT_FALSE(ConvertIt::getEncoding(CHARACTER_JISX_0208).isNull());
    EXPECT_NE(ConvertIt::getEncoding(CHARACTER_ISO8859).get(),
              ConvertIt::getEncoding(CHARACTER_ISO8859).get());
}

TEST(ConvertItDateTime, datesTimesAndWeekdays) {
    BACnet_Date d;
    ConvertIt::getBACnetDate(std::string("2024-01-05"), d);
    EXPECT_EQ((std::vector<int>{2024, 1, 5, 5}), (std::vector<int>{d.year, d.month, d.day, d.wday}));
    ConvertIt::getBACnetDate(std::string("7.1.2024"), d);
    EXPECT_TRUE(d.day == 7 && d.wday == 7);  // Sunday is 7, not 0
    EXPECT_THROW(ConvertIt::getBACnetDate(std::string("yesterday"), d), Poco::SyntaxException);

    BACnet_Time t;
    ConvertIt::getBACnetTime(std::string("13:05:09.255"), t);
    EXPECT_EQ((std::vector<int>{13, 5, 9, 25}), (std::vector<int>{t.hour, t.min, t.sec, t.hundredths}));
    EXPECT_THROW(ConvertIt::getBACnetTime(std::string("13h05"), t), Poco::SyntaxException);

    Poco::DateTime sunday(2024, 3, 10, 8, 30, 0, 990);
    ConvertIt::getBACnetDate(sunday, d);
    ConvertIt::getBACnetTime(sunday, t);
    EXPECT_TRUE(d.wday == 7 && t.hundredths == 99);

    BACnet_DateTime dt;
    dt.time = {1, 2, 3, 4};
    ConvertIt::getBACnetDateTime("2024-03-07", dt);
    EXPECT_TRUE(dt.date.day == 7 && dt.time.hour == 1);  // no time part: left as it was
    ConvertIt::getBACnetDateTime("2024-03-07 08:30:00.000", dt);
    std::string text;
    ConvertIt::setBACnetDateTime(dt, text);
    EXPECT_EQ("2024-03-07 4 08.30.00.00", text);
}

TEST(ConvertItObjects, identifiersAndAlarmType) {
    using TQ::BACnet::Utility::isObjectAlarmsOrEvents;
    const auto type = [](int t) { return static_cast<BACNET_OBJECT_TYPE>(t); };
    EXPECT_TRUE(isObjectAlarmsOrEvents(type(200)) && !isObjectAlarmsOrEvents(type(199)) &&
                !isObjectAlarmsOrEvents(type(201)));

    TQ::BACnet::DataObjectIdentifier id(8, 0x7FFFFF), packed(4194307u);
    EXPECT_TRUE(id.getInstance() == 0x3FFFFF && id.getObjectIdentifier() == ((8u << 22) | 0x3FFFFFu));
    EXPECT_TRUE(packed.getObjectType() == 1 && packed.getInstance() == 3);
}
