#include "TQ_BACnet/DataType/CharacterString.h"
#include "WrapperTestSupport.h"
#include "tq_stack/codec.h"

#include <gtest/gtest.h>

#include <cstring>

using TQ::BACnet::DataType::CharacterString;

TEST(CharacterStringWrapper, fromTextKeepsBytesAndRefusesWhatDoesNotFit) {
    const std::string text(
        "Pump \xC3\xBC"
        "ber\0zero",
        14);  // UTF-8 and an embedded NUL survive
    CharacterString s(text);
    EXPECT_EQ(CHARACTER_UTF8, s.getEncoding());
    EXPECT_EQ(text.size(), s.length);
    EXPECT_EQ(text, s.getString());
    EXPECT_EQ('\0', s.value[s.length]);

    CharacterString latin(std::string("abc"), CHARACTER_ISO8859);
    EXPECT_EQ(CHARACTER_ISO8859, latin.encoding);
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
    const uint8_t expected[] = {0x74, 0x05, 'a', 'b', 'c'};
    EXPECT_EQ(0, std::memcmp(expected, buffer, sizeof(expected)));
}
