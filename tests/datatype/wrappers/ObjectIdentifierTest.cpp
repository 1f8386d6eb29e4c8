#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "WrapperTestSupport.h"

#include <gtest/gtest.h>

#include <vector>

using TQ::BACnet::DataType::ObjectIdentifier;
using TQWrapperTest::messageOf;

namespace {

ObjectIdentifier parsed(const std::string& text) {
    return ObjectIdentifier(text);
}

}  // namespace

// Numbers and packed values are covered with the value model; these are the named forms.
TEST(ObjectIdentifierNames, namedTypesAndFailures) {
    TQWrapperTest::CatalogueDatabase::open();
    const ObjectIdentifier ai3(OBJECT_ANALOG_INPUT, 3);
    EXPECT_EQ(ai3, parsed("analog-input,3"));
    EXPECT_EQ(ai3, parsed("0,3,ignored,tokens"));
    EXPECT_EQ(0x020004D2u, parsed("device,1234").getValue());
    EXPECT_EQ(0x00400005u,
              ObjectIdentifier::createObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(1025), 5));

    EXPECT_EQ("String \"\" is not a valid unsigned integer, nor does it contain two comma separated tokens",
              messageOf<Poco::InvalidArgumentException>([] { parsed(""); }));
    EXPECT_EQ("String \"no-such-type,1\" does contain valid BACnet Object Type name",
              messageOf<Poco::NotFoundException>([] { parsed("no-such-type,1"); }));
    EXPECT_THROW(parsed("device,-1"), Poco::SyntaxException);

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
    EXPECT_EQ(unnamed, parsed(unnamed.getPath(false)));
}

TEST(ObjectIdentifierCodec, boundedDecodersAndMatchingEncoders) {
    const ObjectIdentifier dev(OBJECT_DEVICE, 1234);
    // Content: type 8 in bits 31..22, instance 1234 = 0x4D2.
    const std::vector<uint8_t> content = {0x02, 0x00, 0x04, 0xD2};
    // Context tag 1, length 4: (1 << 4) | 0x08 | 4.
    const std::vector<uint8_t> context = {0x1C, 0x02, 0x00, 0x04, 0xD2};

    uint8_t buffer[8] = {};
    EXPECT_EQ(4, dev.encode(nullptr));
    ASSERT_EQ(4, dev.encode(buffer));
    EXPECT_EQ(content, std::vector<uint8_t>(buffer, buffer + 4));
    ASSERT_EQ(5, dev.encodeContext(buffer, 1));
    EXPECT_EQ(context, std::vector<uint8_t>(buffer, buffer + 5));

    ObjectIdentifier id;
    EXPECT_EQ(4, id.decode(content.data(), 4));
    EXPECT_EQ(dev, id);
    EXPECT_EQ(5, ObjectIdentifier().decodeContext(context.data(), 5, 1));
    // Unbounded forms read within one APDU of the start.
    ObjectIdentifier unbounded;
    EXPECT_EQ(4, unbounded.decode(content.data()));
    EXPECT_EQ(dev, unbounded);
    unbounded = ObjectIdentifier();
    EXPECT_EQ(5, unbounded.decodeContext(context.data(), uint8_t(1)));
    EXPECT_EQ(dev, unbounded);

    // Every truncation fails and leaves the value as it was; so do another tag and a null buffer.
    const ObjectIdentifier before(OBJECT_ANALOG_VALUE, 9);
    for (uint32_t len = 0; len < 4; ++len) {
        ObjectIdentifier kept = before;
        EXPECT_LT(kept.decode(content.data(), len), 1) << len;
        EXPECT_EQ(before, kept);
    }
    for (uint32_t len = 0; len < 5; ++len) {
        ObjectIdentifier kept = before;
        EXPECT_LT(kept.decodeContext(context.data(), len, 1), 1) << len;
        EXPECT_EQ(before, kept);
    }
    ObjectIdentifier kept = before;
    EXPECT_LT(kept.decodeContext(context.data(), 5, 2), 1);
    EXPECT_LT(kept.decode(nullptr, 4), 1);
    EXPECT_EQ(before, kept);
}
