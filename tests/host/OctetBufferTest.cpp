#include "TQ/Utility/OctetBuffer.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

using TQ::Utility::OctetBuffer;

namespace {

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Poco::Exception& error) {
        return error.message();
    }
    return "<no exception>";
}

}  // namespace

TEST(OctetBuffer, GrowsGeometricallyAndKeepsContent) {
    OctetBuffer buffer;
    EXPECT_TRUE(buffer.empty());
    EXPECT_TRUE(buffer.ownsStorage());
    int reallocations = 0;
    const uint8_t* last = buffer.data();
    for (int i = 0; i < 10000; ++i) {
        buffer.append(static_cast<uint8_t>(i));
        if (buffer.data() != last) ++reallocations;
        last = buffer.data();
    }
    ASSERT_EQ(buffer.size(), 10000u);
    EXPECT_LT(reallocations, 25) << "appending byte by byte must not reallocate each time";
    for (int i = 0; i < 10000; ++i) ASSERT_EQ(buffer[i], static_cast<uint8_t>(i));

    // resize keeps the content; bytes that become used read as zero, also after a shrink.
    OctetBuffer small(std::string("0102"));
    small.resize(1);
    small.resize(5);
    EXPECT_EQ(small.getHexString(), "0100000000");
    small.reserve(1000);
    EXPECT_GE(small.capacity(), 1000u);
    EXPECT_EQ(small.size(), 5u) << "reserve must not change the used size";
    EXPECT_EQ(small.getHexString(), "0100000000");
}

TEST(OctetBuffer, HexTextRoundTripsWithAndWithoutSeparators) {
    const uint8_t bytes[] = {0x0A, 0xFF, 0x00, 0x7f};
    OctetBuffer buffer(bytes, sizeof bytes);
    EXPECT_EQ(buffer.getHexString(), "0AFF007F");
    EXPECT_EQ(buffer.getHexString(false), "0AFF007F");
    EXPECT_EQ(buffer.getHexString(true), "0A FF 00 7F");
    std::string out = "stale";
    EXPECT_EQ(buffer.getHexString(out, true), "0A FF 00 7F");

    OctetBuffer parsed;
    EXPECT_EQ(parsed.setHexString("0a ff:00-7F"), 4u);
    EXPECT_EQ(parsed, buffer);
    EXPECT_EQ(OctetBuffer(buffer.getHexString(true)), buffer);
    EXPECT_EQ(OctetBuffer(buffer.getHexString(false)), buffer);

    EXPECT_EQ(OctetBuffer(std::string()).size(), 0u);
    EXPECT_EQ(OctetBuffer().getHexString(true), "");
}

TEST(OctetBuffer, BadHexTextIsRejectedAndLeavesContent) {
    OctetBuffer buffer(std::string("CAFE"));
    for (const char* bad : {"ABC", "0G", "A B", "12 3", "0x12", "zz"}) {
        EXPECT_THROW(buffer.setHexString(bad), Poco::SyntaxException) << bad;
        EXPECT_EQ(buffer.getHexString(), "CAFE") << "a failed parse must not change the buffer: " << bad;
    }
}

TEST(OctetBuffer, ForeignStorageIsUsedInPlaceAndRefusesToGrow) {
    uint8_t storage[4] = {1, 2, 3, 4};
    OctetBuffer view = OctetBuffer::over(storage, sizeof storage, 2);
    EXPECT_FALSE(view.ownsStorage());
    EXPECT_EQ(view.data(), storage);
    EXPECT_EQ(view.size(), 2u);
    view.resize(4);  // within capacity: allowed and still in place
    view[3] = 0x44;
    EXPECT_EQ(storage[3], 0x44);
    EXPECT_EQ(storage[2], 0) << "bytes that become used read as zero";

    const std::string message = "Cannot resize buffer which does not own its storage.";
    EXPECT_EQ(messageOf([&] { view.resize(5); }), message);
    EXPECT_EQ(messageOf([&] { view.append(uint8_t(9)); }), message);
    EXPECT_EQ(messageOf([&] { view.setHexString("0102030405"); }), message);
    EXPECT_EQ(messageOf([&] { view = OctetBuffer(10); }), message);
    EXPECT_THROW(view.reserve(100), Poco::InvalidAccessException);
    EXPECT_EQ(view.size(), 4u);
    EXPECT_EQ(view.data(), storage);

    // A copy of a view owns its bytes and may grow.
    OctetBuffer copy(view);
    EXPECT_TRUE(copy.ownsStorage());
    EXPECT_NE(copy.data(), storage);
    copy.append(uint8_t(5));
    EXPECT_EQ(copy.getHexString(), "0102004405");
    EXPECT_EQ(storage[0], 1);

    EXPECT_THROW(OctetBuffer::over(storage, 2, 3), Poco::InvalidArgumentException);
}

TEST(OctetBuffer, IndexBeyondUsedSizeFailsTheAssertion) {
    OctetBuffer buffer(3);
    buffer.reserve(64);
    EXPECT_NO_THROW(buffer[2]);
    try {
        buffer[3];
        FAIL() << "index 3 of 3 used bytes must fail";
    } catch (const Poco::AssertionViolationException& error) {
        EXPECT_NE(error.message().find("index < _used"), std::string::npos) << error.message();
    }
    const OctetBuffer& constant = buffer;
    EXPECT_THROW(constant[100], Poco::AssertionViolationException);
}

TEST(OctetBuffer, AppendEraseMoveAndCompare) {
    OctetBuffer buffer(std::string("010203"));
    buffer.append(buffer.data(), buffer.size());  // self-append across a reallocation
    EXPECT_EQ(buffer.getHexString(), "010203010203");
    buffer.eraseFront(4);
    EXPECT_EQ(buffer.getHexString(), "0203");
    buffer.eraseFront(10);
    EXPECT_TRUE(buffer.empty());

    OctetBuffer source(std::string("AABB"));
    const uint8_t* storage = source.data();
    OctetBuffer moved(std::move(source));
    EXPECT_EQ(moved.data(), storage) << "a move must not copy the bytes";
    EXPECT_EQ(source.size(), 0u);
    source.append(uint8_t(1));  // a moved-from buffer stays usable
    EXPECT_EQ(source.getHexString(), "01");

    EXPECT_EQ(OctetBuffer(std::string("AABB")), moved);
    EXPECT_NE(OctetBuffer(std::string("AABC")), moved);
    EXPECT_NE(OctetBuffer(std::string("AA")), moved);
    EXPECT_THROW(buffer.append(nullptr, 3), Poco::NullPointerException);
}
