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

TEST(ConvertItBitString, booleanListAndHexForms) {
    BACnet_Bit_String b;
    ASSERT_TRUE(ConvertIt::getBACnetBitString("true", b));
    EXPECT_EQ("1", bits(b));
    ASSERT_TRUE(ConvertIt::getBACnetBitString("false", b));
    EXPECT_EQ("0", bits(b));
    // Only the exact word "true" sets a bit.
    ASSERT_TRUE(ConvertIt::getBACnetBitString("1,0", b));
    EXPECT_EQ("00", bits(b));
    ASSERT_TRUE(ConvertIt::getBACnetBitString(" true , false ,true", b));
    EXPECT_EQ("101", bits(b));
    ASSERT_TRUE(ConvertIt::getBACnetBitString("FF", b));
    EXPECT_EQ("11111111", bits(b));
    ASSERT_TRUE(ConvertIt::getBACnetBitString("A0", b));
    EXPECT_EQ("10100000", bits(b));
    ASSERT_TRUE(ConvertIt::getBACnetBitString("", b));
    EXPECT_EQ(0, b.bits_used);

    EXPECT_FALSE(ConvertIt::getBACnetBitString(std::string(32, 'F'), b));
    EXPECT_TRUE(ConvertIt::getBACnetBitString(std::string(30, 'F'), b));
    EXPECT_EQ(120, b.bits_used);
    std::string sixteen = "true";
    for (int i = 1; i < 16; ++i) sixteen += ",false";
    EXPECT_FALSE(ConvertIt::getBACnetBitString(sixteen, b));
    EXPECT_FALSE(ConvertIt::getBACnetBitString("XYZ", b));
}

TEST(ConvertItBitString, hostBuffersBothWays) {
    TQ::Utility::BitBuffer buffer(16);
    buffer.setBit(0);
    buffer.setBit(15);
    BACnet_Bit_String b;
    ASSERT_TRUE(ConvertIt::getBACnetBitBuffer(buffer, b));
    EXPECT_EQ(16, b.bits_used);
    EXPECT_EQ("1000000000000001", bits(b));

    TQ::Utility::BitBuffer three(3);
    three.setBit(0);
    three.setBit(2);
    ASSERT_TRUE(ConvertIt::getBACnetBitBuffer(three, b));
    EXPECT_EQ("101", bits(b));

    TQ::Utility::BitBuffer tooLong(16 * 8);
    EXPECT_FALSE(ConvertIt::getBACnetBitBuffer(tooLong, b));
    // An empty buffer fails the host's index check instead of producing garbage.
    EXPECT_THROW(ConvertIt::getBACnetBitBuffer(TQ::Utility::BitBuffer(), b),
                 Poco::AssertionViolationException);

    TQ::Utility::BitBuffer back;
    ConvertIt::setBitBuffer(b, back);
    EXPECT_EQ(3u, back.getBitsUsed());
    EXPECT_EQ(1u, back.size());
    EXPECT_TRUE(back.getBit(0));
    EXPECT_FALSE(back.getBit(1));
    EXPECT_TRUE(back.getBit(2));

    std::string hex;
    ConvertIt::getBACnetBitString("true,false,true,true,false,false,false,false,true", b);
    ConvertIt::setStdString(b, hex);
    EXPECT_EQ("B080", hex);
}

TEST(ConvertItOctetString, hexAndBuffers) {
    BACnet_Octet_String o;
    ASSERT_TRUE(ConvertIt::getBACnetOctetString("0aFF", o));
    std::string hex;
    ConvertIt::setStdString(o, hex);
    EXPECT_EQ("0AFF", hex);
    EXPECT_FALSE(ConvertIt::getBACnetOctetString("ABC", o));
    EXPECT_FALSE(ConvertIt::getBACnetOctetString("zz", o));

    TQ::Utility::OctetBuffer buffer;
    ConvertIt::setOctetBuffer(o, buffer);
    ASSERT_EQ(2u, buffer.size());
    EXPECT_EQ(0xFF, buffer.data()[1]);
    ASSERT_TRUE(ConvertIt::getBACnetOctetBuffer(TQ::Utility::OctetBuffer(), o));
    EXPECT_EQ(0u, o.length);
    ConvertIt::setStdString(o, hex);
    EXPECT_EQ("", hex);

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
    EXPECT_EQ(0, s.encoding);
    ConvertIt::setStdString(s, text);
    EXPECT_EQ("Grüße", text);

    const char ucs2[] = {0x00, 0x41, 0x00, 0x42};
    s.encoding = 4;
    s.length = 4;
    std::memcpy(s.value, ucs2, 4);
    ConvertIt::setStdString(s, text);
    EXPECT_EQ("AB", text);

    const char ucs4[] = {0, 0, 0, 'h', 0, 0, 0, 'i'};
    s.encoding = 3;
    s.length = 8;
    std::memcpy(s.value, ucs4, 8);
    ConvertIt::setStdString(s, text);
    EXPECT_EQ("hi", text);

    // ISO 8859-1 keeps every byte and converts to UTF-8.
    s.encoding = 5;
    s.length = 2;
    s.value[0] = static_cast<char>(0xE4);
    s.value[1] = 'x';
    ConvertIt::setStdString(s, text);
    EXPECT_EQ("äx", text);

    // DBCS: the marker 4 drops itself and the two code bytes after it.
    const char dbcs[] = {'a', 4, 'x', 'y', 'b'};
    s.encoding = 1;
    s.length = 5;
    std::memcpy(s.value, dbcs, 5);
    ConvertIt::setStdString(s, text);
    EXPECT_EQ("ab", text);

    EXPECT_TRUE(ConvertIt::getEncoding(CHARACTER_UTF8).isNull());
    EXPECT_TRUE(ConvertIt::getEncoding(static_cast<BACNET_CHARACTER_STRING_ENCODING>(9)).isNull());
    EXPECT_EQ(std::string("ISO-8859-15"), ConvertIt::getEncoding(CHARACTER_MS_DBCS)->canonicalName());
    EXPECT_EQ(std::string("ISO-8859-1"), ConvertIt::getEncoding(CHARACTER_UCS2)->canonicalName());
    EXPECT_FALSE(ConvertIt::getEncoding(CHARACTER_JISX_0208).isNull());
    EXPECT_NE(ConvertIt::getEncoding(CHARACTER_ISO8859).get(),
              ConvertIt::getEncoding(CHARACTER_ISO8859).get());
}

TEST(ConvertItDateTime, datesTimesAndWeekdays) {
    BACnet_Date d;
    ConvertIt::getBACnetDate(std::string("2024-01-05"), d);
    EXPECT_EQ(2024, d.year);
    EXPECT_EQ(1, d.month);
    EXPECT_EQ(5, d.day);
    EXPECT_EQ(5, d.wday);  // Friday
    ConvertIt::getBACnetDate(std::string("7.1.2024"), d);
    EXPECT_EQ(7, d.day);
    EXPECT_EQ(7, d.wday);  // Sunday is 7, not 0
    EXPECT_THROW(ConvertIt::getBACnetDate(std::string("yesterday"), d), Poco::SyntaxException);

    BACnet_Time t;
    ConvertIt::getBACnetTime(std::string("13:05:09.255"), t);
    EXPECT_EQ(13, t.hour);
    EXPECT_EQ(5, t.min);
    EXPECT_EQ(9, t.sec);
    EXPECT_EQ(25, t.hundredths);
    EXPECT_THROW(ConvertIt::getBACnetTime(std::string("13h05"), t), Poco::SyntaxException);

    Poco::DateTime sunday(2024, 3, 10, 8, 30, 0, 990);
    ConvertIt::getBACnetDate(sunday, d);
    ConvertIt::getBACnetTime(sunday, t);
    EXPECT_EQ(7, d.wday);
    EXPECT_EQ(99, t.hundredths);

    BACnet_DateTime dt;
    dt.time = {1, 2, 3, 4};
    ConvertIt::getBACnetDateTime("2024-03-07", dt);
    EXPECT_EQ(7, dt.date.day);
    EXPECT_EQ(1, dt.time.hour);  // no time part: left as it was
    ConvertIt::getBACnetDateTime("2024-03-07 08:30:00.000", dt);
    EXPECT_EQ(8, dt.time.hour);
    std::string text;
    ConvertIt::setBACnetDateTime(dt, text);
    EXPECT_EQ("2024-03-07 4 08.30.00.00", text);
}

TEST(ConvertItObjects, identifiersAndAlarmType) {
    EXPECT_TRUE(TQ::BACnet::Utility::isObjectAlarmsOrEvents(static_cast<BACNET_OBJECT_TYPE>(200)));
    EXPECT_FALSE(TQ::BACnet::Utility::isObjectAlarmsOrEvents(static_cast<BACNET_OBJECT_TYPE>(199)));
    EXPECT_FALSE(TQ::BACnet::Utility::isObjectAlarmsOrEvents(static_cast<BACNET_OBJECT_TYPE>(201)));

    TQ::BACnet::DataObjectIdentifier id(8, 0x7FFFFF);
    EXPECT_EQ(0x3FFFFFu, id.getInstance());
    EXPECT_EQ((8u << 22) | 0x3FFFFFu, id.getObjectIdentifier());
    TQ::BACnet::DataObjectIdentifier packed(4194307u);
    EXPECT_EQ(1u, packed.getObjectType());
    EXPECT_EQ(3u, packed.getInstance());
}
