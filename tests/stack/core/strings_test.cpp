#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tq_stack/strings.h"

TEST(CharacterStrings, InitCopyCompareAndLimits) {
    BACNET_CHARACTER_STRING a, ucs2, copy;
    ASSERT_TRUE(characterstring_init_ansi(&a, "hello"));
    EXPECT_EQ(std::make_tuple(characterstring_length(&a), characterstring_encoding(&a)),
              std::make_tuple(size_t(5), uint8_t(CHARACTER_ANSI_X34)));
    EXPECT_STREQ(characterstring_value(&a), "hello");
    EXPECT_TRUE(characterstring_ansi_same(&a, "hello") && !characterstring_ansi_same(&a, "hell"));
    ASSERT_TRUE(characterstring_init_ansi(&a, nullptr));
    EXPECT_TRUE(characterstring_length(&a) == 0 && characterstring_value(&a)[0] == '\0');

    // Bytes are kept as given, including embedded NULs and other character sets.
    const char raw[] = {0x00, 0x41, 0x00, 0x42};
    ASSERT_TRUE(characterstring_init(&ucs2, CHARACTER_UCS2, raw, sizeof raw));
    ASSERT_TRUE(characterstring_copy(&copy, &ucs2));
    EXPECT_TRUE(characterstring_length(&ucs2) == 4 && characterstring_same(&copy, &ucs2));
    characterstring_set_encoding(&copy, CHARACTER_ISO8859);
    EXPECT_FALSE(characterstring_same(&copy, &ucs2));  // same bytes, other character set

    const std::string full(MAX_CHARACTER_STRING_BYTES, 'q');
    EXPECT_TRUE(characterstring_init(&a, CHARACTER_UTF8, full.data(), full.size()));
    EXPECT_TRUE(characterstring_capacity(&a) == MAX_CHARACTER_STRING_BYTES &&
                !characterstring_append(&a, "x", 1));
    EXPECT_FALSE(characterstring_init(&a, CHARACTER_UTF8, full.data(), full.size() + 1));
    EXPECT_FALSE(characterstring_init(&a, 6, "x", 1));  // unknown character set
    EXPECT_FALSE(characterstring_init(&a, CHARACTER_UTF8, nullptr, 3));
    EXPECT_EQ(characterstring_length(&a), full.size());  // unchanged by the refusals
    ASSERT_TRUE(characterstring_truncate(&a, 2));
    EXPECT_TRUE(!characterstring_truncate(&a, 3) && characterstring_append(&a, "rs", 2));
    EXPECT_STREQ(characterstring_value(&a), "qqrs");
    EXPECT_TRUE(!characterstring_same(&a, nullptr) && characterstring_length(nullptr) == 0);
}

TEST(OctetStrings, HexTextBytesAndLimits) {
    BACNET_OCTET_STRING o, a, b;
    ASSERT_TRUE(octetstring_init_ascii_hex(&o, "0aFF"));
    // Bad texts leave the previous value.
    for (const char* bad : {"ABC", "0G", "0a ff", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(octetstring_init_ascii_hex(&o, bad)) << (bad ? bad : "NULL");
    ASSERT_EQ(octetstring_length(&o), 2u);
    EXPECT_EQ(std::make_tuple(octetstring_value(&o)[0], octetstring_value(&o)[1]),
              std::make_tuple(uint8_t(0x0A), uint8_t(0xFF)));
    ASSERT_TRUE(octetstring_init_ascii_hex(&o, ""));
    EXPECT_TRUE(octetstring_length(&o) == 0 && octetstring_init(&o, nullptr, 0));

    std::string hex(size_t(2) * MAX_OCTET_STRING_BYTES, 'A');
    EXPECT_TRUE(octetstring_init_ascii_hex(&o, hex.c_str()) &&
                octetstring_length(&o) == MAX_OCTET_STRING_BYTES);
    EXPECT_FALSE(octetstring_init_ascii_hex(&o, (hex + "00").c_str()));
    EXPECT_FALSE(octetstring_append(&o, reinterpret_cast<const uint8_t*>("x"), 1));

    const uint8_t bytes[] = {1, 2, 3};
    octetstring_init(&a, bytes, 3);
    ASSERT_TRUE(octetstring_copy(&b, &a));
    EXPECT_TRUE(octetstring_value_same(&a, &b));
    ASSERT_TRUE(octetstring_truncate(&b, 2));
    EXPECT_FALSE(octetstring_value_same(&a, &b));
    EXPECT_TRUE(octetstring_append(&b, bytes + 2, 1) && octetstring_value_same(&a, &b));
    uint8_t small[2], enough[3];
    EXPECT_EQ(std::make_tuple(0u, 3u, uint8_t(3)),
              std::make_tuple(unsigned(octetstring_copy_value(small, sizeof small, &a)),
                              unsigned(octetstring_copy_value(enough, sizeof enough, &a)), enough[2]));
}

TEST(BitStrings, BitOrderCountsAndComparison) {
    BACNET_BIT_STRING b;
    bitstring_init(&b);
    EXPECT_EQ(std::make_tuple(bitstring_bits_used(&b), bitstring_bytes_used(&b), bitstring_bits_capacity(&b)),
              std::make_tuple(uint8_t(0), uint8_t(0), 120u));
    // Bit 0 is the most significant bit of the first byte.
    bitstring_set_bit(&b, 0, true);
    bitstring_set_bit(&b, 2, true);
    EXPECT_EQ(std::make_tuple(bitstring_bits_used(&b), bitstring_octet(&b, 0)),
              std::make_tuple(uint8_t(3), uint8_t(0xA0)));
    EXPECT_TRUE(bitstring_bit(&b, 0) && !bitstring_bit(&b, 1) && !bitstring_bit(&b, 3));  // 3: not in use
    bitstring_set_bit(&b, 0, false);
    EXPECT_EQ(bitstring_octet(&b, 0), 0x20);
    bitstring_set_bit(&b, 119, true);
    bitstring_set_bit(&b, 120, true);  // beyond capacity: ignored
    EXPECT_EQ(std::make_tuple(bitstring_bits_used(&b), bitstring_bytes_used(&b)),
              std::make_tuple(uint8_t(120), uint8_t(15)));
    for (unsigned i = 3; i < 119; ++i) EXPECT_FALSE(bitstring_bit(&b, uint8_t(i))) << i;

    // Octet-wise filling as the value model does: A0 is the bits 1 0 1 0 0 0 0 0.
    BACNET_BIT_STRING o;
    bitstring_init(&o);
    EXPECT_TRUE(bitstring_set_octet(&o, 0, 0xA0) && bitstring_set_bits_used(&o, 1, 0));
    EXPECT_TRUE(bitstring_bit(&o, 0) && bitstring_bit(&o, 2));
    EXPECT_FALSE(bitstring_set_octet(&o, 15, 0) || bitstring_set_bits_used(&o, 16, 0) ||
                 bitstring_set_bits_used(&o, 1, 8) || bitstring_set_bits_used(&o, 0, 1));
    EXPECT_EQ(bitstring_bits_used(&o), 8);
    EXPECT_TRUE(bitstring_set_bits_used(&o, 2, 3) && bitstring_bits_used(&o) == 13);

    // Equal bits in use compare equal whatever the unused tail holds.
    BACNET_BIT_STRING x, y, z;
    for (auto [s, octet] : {std::make_pair(&x, 0xA7), std::make_pair(&y, 0xA0)}) {
        bitstring_init(s);
        bitstring_set_octet(s, 0, uint8_t(octet));
        bitstring_set_bits_used(s, 1, 5);
    }
    EXPECT_TRUE(bitstring_same(&x, &y));
    bitstring_set_bits_used(&y, 1, 4);
    EXPECT_FALSE(bitstring_same(&x, &y));
    // Growing past a dirty tail does not resurrect its bits.
    bitstring_set_bit(&x, 6, false);
    EXPECT_TRUE(!bitstring_bit(&x, 5) && bitstring_bits_used(&x) == 7);
    ASSERT_TRUE(bitstring_copy(&z, &x));
    EXPECT_TRUE(bitstring_same(&z, &x));
}
