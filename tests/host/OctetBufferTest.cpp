#include "TQ/Utility/OctetBuffer.h"

#include "ProbeEntities.h"

#include <gtest/gtest.h>

using TQ::Utility::OctetBuffer;
using TQTest::messageOf;

TEST(OctetBuffer, GrowsGeometricallyAndKeepsContent) {
    OctetBuffer buffer;
    int reallocations = 0;
    const uint8_t* last = buffer.data();
    for (int i = 0; i < 10000; ++i) {
        buffer.append(static_cast<uint8_t>(i));
        reallocations += buffer.data() != last;
        last = buffer.data();
    }
    EXPECT_LT(reallocations, 25) << "appending byte by byte must not reallocate each time";
    for (int i = 0; i < 10000; ++i) ASSERT_EQ(buffer[i], static_cast<uint8_t>(i));

    // Bytes that become used read as zero, also after a shrink; reserve keeps the used size.
    OctetBuffer small(std::string("0102"));
    small.resize(1);
    small.resize(5);
    small.reserve(1000);
    EXPECT_TRUE(small.capacity() >= 1000 && small.getHexString() == "0100000000");

    // Self-append across a reallocation, then erasing more than there is.
    OctetBuffer self(std::string("010203"));
    self.append(self.data(), self.size());
    EXPECT_EQ(self.getHexString(), "010203010203");
    self.eraseFront(4);
    EXPECT_EQ(self.getHexString(), "0203");
    EXPECT_TRUE((self.eraseFront(10), self.empty()));
    EXPECT_THROW(self.append(nullptr, 3), Poco::NullPointerException);
}

TEST(OctetBuffer, HexTextRoundTripsAndBadTextLeavesContent) {
    const uint8_t bytes[] = {0x0A, 0xFF, 0x00, 0x7f};
    OctetBuffer buffer(bytes, sizeof bytes);
    EXPECT_EQ(buffer.getHexString(false), "0AFF007F");
    std::string out = "stale";
    EXPECT_EQ(buffer.getHexString(out, true), "0A FF 00 7F");
    OctetBuffer parsed;
    EXPECT_TRUE(parsed.setHexString("0a ff:00-7F") == 4 && parsed == buffer);
    EXPECT_TRUE(OctetBuffer(buffer.getHexString(true)) == buffer && OctetBuffer().getHexString(true).empty());

    OctetBuffer kept(std::string("CAFE"));
    for (const char* bad : {"ABC", "0G", "A B", "12 3", "0x12", "zz"}) {
        EXPECT_THROW(kept.setHexString(bad), Poco::SyntaxException) << bad;
        EXPECT_EQ(kept.getHexString(), "CAFE") << bad;
    }
    EXPECT_NE(OctetBuffer(std::string("AABC")), OctetBuffer(std::string("AABB")));
    EXPECT_NE(OctetBuffer(std::string("AA")), OctetBuffer(std::string("AABB")));
}

TEST(OctetBuffer, ForeignStorageIsUsedInPlaceAndRefusesToGrow) {
    uint8_t storage[4] = {1, 2, 3, 4};
    OctetBuffer view = OctetBuffer::over(storage, sizeof storage, 2);
    EXPECT_FALSE(view.ownsStorage());
    view.resize(4);  // within capacity: allowed and still in place
    view[3] = 0x44;
    EXPECT_TRUE(storage[3] == 0x44 && storage[2] == 0) << "in place; bytes that become used read as zero";

    const std::string message = "Cannot resize buffer which does not own its storage.";
    EXPECT_EQ(messageOf([&] { view.resize(5); }), message);
    EXPECT_EQ(messageOf([&] { view.append(uint8_t(9)); }), message);
    EXPECT_EQ(messageOf([&] { view.setHexString("0102030405"); }), message);
    EXPECT_EQ(messageOf([&] { view = OctetBuffer(10); }), message);
    EXPECT_THROW(view.reserve(100), Poco::InvalidAccessException);
    EXPECT_THROW(OctetBuffer::over(storage, 2, 3), Poco::InvalidArgumentException);

    // A copy of a view owns its bytes and may grow; a move takes the bytes along.
    OctetBuffer copy(view);
    copy.append(uint8_t(5));
    EXPECT_TRUE(copy.data() != storage && copy.getHexString() == "0102004405" && storage[0] == 1);
    const uint8_t* owned = copy.data();
    OctetBuffer moved(std::move(copy));
    EXPECT_TRUE(moved.data() == owned && copy.size() == 0);
    copy.append(uint8_t(1));  // a moved-from buffer stays usable
    EXPECT_EQ(copy.getHexString(), "01");
}

TEST(OctetBuffer, IndexBeyondUsedSizeFailsTheAssertion) {
    OctetBuffer buffer(3);
    buffer.reserve(64);
    EXPECT_NO_THROW(buffer[2]);
    EXPECT_NE(messageOf([&] { buffer[3]; }).find("index < _used"), std::string::npos);
    const OctetBuffer& constant = buffer;
    EXPECT_THROW(constant[100], Poco::AssertionViolationException);
}
